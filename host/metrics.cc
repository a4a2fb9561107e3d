#include "host/metrics.h"

#include <cstdio>

namespace tidewell {
namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

// "-" is 0, screen n is n + 1, anything else the last.
size_t ScreenIndex(std::string_view screen, size_t count) {
  if (screen == "-") return 0;
  if (screen.empty() || screen.size() > 2 ||
      screen.find_first_not_of("0123456789") != std::string_view::npos) {
    return count - 1;
  }
  const size_t n = static_cast<size_t>(std::stoi(std::string(screen)));
  return n + 1 < count - 1 ? n + 1 : count - 1;
}

std::string ScreenLabel(size_t index, size_t count) {
  if (index == 0) return "-";
  if (index == count - 1) return "other";
  return std::to_string(index - 1);
}

std::string Number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

void Describe(std::string& out, const char* name, const char* type, const char* help) {
  out += "# HELP ";
  out += name;
  out += ' ';
  out += help;
  out += "\n# TYPE ";
  out += name;
  out += ' ';
  out += type;
  out += '\n';
}

void Sample(std::string& out, const std::string& series, uint64_t value) {
  out += series + ' ' + std::to_string(value) + '\n';
}

}  // namespace

void Metrics::CountAnswer(std::string_view screen, int status, double seconds) {
  size_t status_index = kStatuses.size() - 1;
  for (size_t i = 0; i + 1 < kStatuses.size(); ++i) {
    if (kStatuses[i] == status) status_index = i;
  }
  requests_[ScreenIndex(screen, kScreens)][status_index].fetch_add(1, kRelaxed);
  size_t bucket = 0;
  while (bucket < kDurationBounds.size() && seconds > kDurationBounds[bucket]) ++bucket;
  duration_buckets_[bucket].fetch_add(1, kRelaxed);
  duration_microseconds_.fetch_add(static_cast<uint64_t>(seconds * 1e6), kRelaxed);
}

void Metrics::CountPage(long long statements, ErrorKind error_kind, int link_keys_refused,
                        LoginRefusal login_refused) {
  statements_.fetch_add(static_cast<uint64_t>(statements), kRelaxed);
  // The first entry counts the errors that escaped the page; a page's own start at the second.
  for (size_t i = 1; i < kDatabaseErrorKinds.size(); ++i) {
    if (error_kind == kDatabaseErrorKinds[i].kind) database_errors_[i].fetch_add(1, kRelaxed);
  }
  link_keys_refused_.fetch_add(static_cast<uint64_t>(link_keys_refused), kRelaxed);
  if (login_refused == LoginRefusal::kCredentials) logins_refused_credentials_.fetch_add(1, kRelaxed);
  if (login_refused == LoginRefusal::kThrottled) logins_refused_throttled_.fetch_add(1, kRelaxed);
}

void Metrics::CountEscapedDatabaseError() {
  database_errors_[0].fetch_add(1, kRelaxed);  // the entry of no kind
}

std::string Metrics::Exposition(const ado::PoolStats& pools) const {
  std::string out;
  Describe(out, "tidewell_requests_total", "counter",
           "Requests answered, by the screen drawn (- for anything not a page) and status.");
  for (size_t screen = 0; screen < kScreens; ++screen) {
    for (size_t status = 0; status < kStatuses.size(); ++status) {
      const uint64_t count = requests_[screen][status].load(kRelaxed);
      if (count == 0) continue;
      const std::string code = kStatuses[status] ? std::to_string(kStatuses[status]) : "other";
      Sample(out,
             "tidewell_requests_total{screen=\"" + ScreenLabel(screen, kScreens) +
                 "\",status=\"" + code + "\"}",
             count);
    }
  }

  Describe(out, "tidewell_request_duration_seconds", "histogram",
           "Time from a request's arrival to its answer leaving.");
  uint64_t cumulative = 0;
  for (size_t bucket = 0; bucket < duration_buckets_.size(); ++bucket) {
    cumulative += duration_buckets_[bucket].load(kRelaxed);
    const std::string bound =
        bucket < kDurationBounds.size() ? Number(kDurationBounds[bucket]) : "+Inf";
    Sample(out, "tidewell_request_duration_seconds_bucket{le=\"" + bound + "\"}", cumulative);
  }
  out += "tidewell_request_duration_seconds_sum " +
         Number(static_cast<double>(duration_microseconds_.load(kRelaxed)) / 1e6) + '\n';
  Sample(out, "tidewell_request_duration_seconds_count", cumulative);

  Describe(out, "tidewell_statements_total", "counter", "Statements the pages ran on the database.");
  Sample(out, "tidewell_statements_total", statements_.load(kRelaxed));

  Describe(out, "tidewell_database_errors_total", "counter",
           "Pages that ended with a database error, by its kind (DB, DP, DS; D escaped the page).");
  for (size_t kind = 0; kind < kDatabaseErrorKinds.size(); ++kind) {
    Sample(out,
           std::string("tidewell_database_errors_total{kind=\"") + kDatabaseErrorKinds[kind].label +
               "\"}",
           database_errors_[kind].load(kRelaxed));
  }

  Describe(out, "tidewell_link_keys_refused_total", "counter",
           "Keys in links refused: malformed, expired, or not signed for their account.");
  Sample(out, "tidewell_link_keys_refused_total", link_keys_refused_.load(kRelaxed));

  Describe(out, "tidewell_logins_refused_total", "counter",
           "Login forms refused, by reason: credentials (unknown name or wrong password) or "
           "throttled.");
  Sample(out, "tidewell_logins_refused_total{reason=\"credentials\"}",
         logins_refused_credentials_.load(kRelaxed));
  Sample(out, "tidewell_logins_refused_total{reason=\"throttled\"}",
         logins_refused_throttled_.load(kRelaxed));

  Describe(out, "tidewell_pool_sessions_in_use", "gauge",
           "Database sessions handed out to requests, all pools together.");
  Sample(out, "tidewell_pool_sessions_in_use", pools.in_use);
  Describe(out, "tidewell_pool_sessions_idle", "gauge", "Database sessions open and idle.");
  Sample(out, "tidewell_pool_sessions_idle", pools.idle);
  Describe(out, "tidewell_pool_requests_waiting", "gauge",
           "Requests waiting for a database session because their pool is full.");
  Sample(out, "tidewell_pool_requests_waiting", pools.waiting);
  return out;
}

}  // namespace tidewell

#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "data/session.h"
#include "page/page.h"

namespace tidewell {

// The server's counters, shown at /metrics in the Prometheus text format. Every count is an
// atomic in a fixed table, so a request counts itself without a lock, and a label can only
// take values from a short known list: a link that names screen 123456 counts as "other".
class Metrics {
 public:
  // Seconds at the histogram's bucket bounds (the last bucket, +Inf, holds the rest).
  static constexpr std::array<double, 11> kDurationBounds = {
      0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1, 2.5, 5, 10};

  // Every answer sent: its screen ("-", "0" ... "16") and status, and how long it took.
  void CountAnswer(std::string_view screen, int status, double seconds);

  // What a page saw (host/component_host.h): the statements it ran, the database error it
  // ended with (the other kinds of pending error are not the database's), link keys it
  // refused, and a refused login.
  void CountPage(long long statements, ErrorKind error_kind, int link_keys_refused,
                 LoginRefusal login_refused);

  // A database error that escaped the page entirely (the request answered 500).
  void CountEscapedDatabaseError();

  // The exposition (text format 0.0.4), with the pools' sessions as they stand.
  std::string Exposition(const ado::PoolStats& pools) const;

 private:
  static constexpr size_t kScreens = screens::kCount + 2;  // "-", each screen, "other"
  static constexpr std::array<int, 9> kStatuses = {200, 400, 404, 405, 413, 431, 500, 503, 0};
  // Each database error counted, by its label: one that escaped the page (no kind), then the
  // error screen's three kinds.
  struct DatabaseErrorLabel {
    ErrorKind kind;
    const char* label;
  };
  static constexpr std::array<DatabaseErrorLabel, 4> kDatabaseErrorKinds = {
      {{ErrorKind::kNone, "D"},
       {ErrorKind::kCannotConnect, "DB"},
       {ErrorKind::kDatabaseRefused, "DP"},
       {ErrorKind::kDataRead, "DS"}}};
  using Counter = std::atomic<uint64_t>;

  std::array<std::array<Counter, kStatuses.size()>, kScreens> requests_{};
  std::array<Counter, kDurationBounds.size() + 1> duration_buckets_{};
  Counter duration_microseconds_{0};
  Counter statements_{0};
  std::array<Counter, kDatabaseErrorKinds.size()> database_errors_{};
  Counter link_keys_refused_{0};
  Counter logins_refused_credentials_{0};
  Counter logins_refused_throttled_{0};
};

}  // namespace tidewell

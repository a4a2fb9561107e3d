#include "runtime/clock.h"

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <stdexcept>
#include <string>

#include "runtime/dates.h"

namespace tidewell {
namespace {

std::optional<Date> ParseFixedNow(const char* text) {
  int y, mo, d, h, mi, s;
  char tail;
  if (std::sscanf(text, "%4d-%2d-%2d %2d:%2d:%2d%c", &y, &mo, &d, &h, &mi, &s, &tail) != 6 ||
      !IsValidCalendarDate(y, mo, d) || h > 23 || mi > 59 || s > 59 || h < 0 || mi < 0 || s < 0) {
    return std::nullopt;
  }
  return Combine(DateSerial(y, mo, d), TimeSerial(h, mi, s));
}

Date LocalTime(std::time_t t) {
  std::tm local{};
  localtime_r(&t, &local);
  return Combine(DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
                 TimeSerial(local.tm_hour, local.tm_min, local.tm_sec));
}

// The fixed moment's serial, or NaN while the clock runs. TIDEWELL_NOW is read once, on first
// use. A page asks for the time with every link it signs, on every server thread at once:
// reading an atomic takes no lock.
constexpr double kRunning = std::numeric_limits<double>::quiet_NaN();

std::atomic<double>& FixedMoment() {
  static std::atomic<double> moment{[] {
    const char* text = std::getenv("TIDEWELL_NOW");
    if (text == nullptr || *text == '\0') return kRunning;
    const std::optional<Date> fixed = ParseFixedNow(text);
    return fixed ? fixed->serial : kRunning;
  }()};
  return moment;
}

// The local time of the last second this thread asked for: its conversion is worked out once
// a second.
Date SystemNow() {
  thread_local std::time_t last_second = -1;
  thread_local Date last_local;
  const std::time_t t = std::time(nullptr);
  if (t != last_second) {
    last_second = t;
    last_local = LocalTime(t);
  }
  return last_local;
}

}  // namespace

void CheckClockEnvironment() {
  const char* text = std::getenv("TIDEWELL_NOW");
  if (text != nullptr && *text != '\0' && !ParseFixedNow(text)) {
    throw std::runtime_error(std::string("TIDEWELL_NOW must read YYYY-MM-DD HH:MM:SS, not \"") +
                             text + "\"");
  }
}

Date Now() {
  const double fixed = FixedMoment().load(std::memory_order_relaxed);
  return std::isnan(fixed) ? SystemNow() : Date{fixed};
}

Date Today() {
  return DateOnly(Now());
}

void SetFixedNow(std::optional<Date> moment) {
  FixedMoment().store(moment ? moment->serial : kRunning, std::memory_order_relaxed);
}

}  // namespace tidewell

#include "runtime/clock.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
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

struct ClockState {
  std::mutex mutex;
  bool environment_read = false;
  std::optional<Date> fixed;
  // The local time of the last second asked for: a page asks for the time with every link it
  // signs, and the conversion to local time is worked out once a second.
  std::time_t last_second = -1;
  Date last_local;
};

ClockState& State() {
  static ClockState state;
  return state;
}

Date SystemNow(ClockState& state) {
  std::time_t t = std::time(nullptr);
  if (t == state.last_second) return state.last_local;
  state.last_second = t;
  state.last_local = LocalTime(t);
  return state.last_local;
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
  ClockState& state = State();
  std::lock_guard lock(state.mutex);
  if (!state.environment_read) {
    state.environment_read = true;
    if (const char* text = std::getenv("TIDEWELL_NOW"); text != nullptr && *text != '\0') {
      state.fixed = ParseFixedNow(text);
    }
  }
  return state.fixed ? *state.fixed : SystemNow(state);
}

Date Today() {
  return DateOnly(Now());
}

void SetFixedNow(std::optional<Date> moment) {
  ClockState& state = State();
  std::lock_guard lock(state.mutex);
  state.environment_read = true;
  state.fixed = moment;
}

}  // namespace tidewell

#include "data/iso_dates.h"

#include <cctype>
#include <cstdio>
#include <string>

#include "runtime/dates.h"

namespace tidewell::ado {
namespace {

// Reads up to `max_digits` digits at the front of `text`; nothing when there is none.
std::optional<int> TakeNumber(std::string_view& text, size_t max_digits) {
  size_t n = 0;
  int value = 0;
  while (n < text.size() && n < max_digits && std::isdigit(static_cast<unsigned char>(text[n]))) {
    value = value * 10 + (text[n] - '0');
    ++n;
  }
  if (n == 0) return std::nullopt;
  text.remove_prefix(n);
  return value;
}

bool TakeChar(std::string_view& text, char c) {
  if (text.empty() || text.front() != c) return false;
  text.remove_prefix(1);
  return true;
}

void SkipBlanks(std::string_view& text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
}

struct TimeOfDay {
  int hour = 0, minute = 0, second = 0;
};

// "hh:mm[:ss]"; the caller has checked that something follows the date.
std::optional<TimeOfDay> TakeTime(std::string_view& text) {
  TimeOfDay t;
  auto hour = TakeNumber(text, 2);
  if (!hour || !TakeChar(text, ':')) return std::nullopt;
  auto minute = TakeNumber(text, 2);
  if (!minute) return std::nullopt;
  t.hour = *hour;
  t.minute = *minute;
  if (TakeChar(text, ':')) {
    auto second = TakeNumber(text, 2);
    if (!second) return std::nullopt;
    t.second = *second;
  }
  if (t.hour > 23 || t.minute > 59 || t.second > 59) return std::nullopt;
  return t;
}

std::optional<Date> MakeDate(int year, int month, int day, const TimeOfDay& time) {
  if (!IsValidCalendarDate(year, month, day)) return std::nullopt;
  return Combine(DateSerial(year, month, day), TimeSerial(time.hour, time.minute, time.second));
}

// ParseIsoDate without the thread's last date.
std::optional<Date> ReadIsoDate(std::string_view text) {
  auto year = TakeNumber(text, 4);
  if (!year || !TakeChar(text, '-')) return std::nullopt;
  auto month = TakeNumber(text, 2);
  if (!month || !TakeChar(text, '-')) return std::nullopt;
  auto day = TakeNumber(text, 2);
  if (!day) return std::nullopt;
  TimeOfDay time;
  if (TakeChar(text, ' ') || TakeChar(text, 'T')) {
    auto t = TakeTime(text);
    if (!t) return std::nullopt;
    time = *t;
    if (TakeChar(text, '.')) TakeNumber(text, 9);
    // A time zone ("+01", "-05:30", "Z") is dropped: dates are kept in local time.
    if (TakeChar(text, '+') || TakeChar(text, '-')) {
      TakeNumber(text, 2);
      if (TakeChar(text, ':')) TakeNumber(text, 2);
    } else {
      TakeChar(text, 'Z');
    }
  }
  if (!text.empty()) return std::nullopt;
  return MakeDate(*year, *month, *day, time);
}

}  // namespace

std::string IsoDateText(Date value) {
  char text[32];
  const YearMonthDay day = CalendarDay(value);
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", day.year, day.month, day.day);
  std::string result = text;
  if (HasTimeOfDay(value)) {
    std::snprintf(text, sizeof text, " %02d:%02d:%02d", Hour(value), Minute(value), Second(value));
    result += text;
  }
  return result;
}

std::optional<Date> ParseIsoDate(std::string_view text) {
  // A view's rows come day by day, so most dates read are the one read before: the last text
  // this thread read is kept with its date.
  thread_local std::string last_text;
  thread_local std::optional<Date> last_date;
  if (text == last_text) return last_date;
  last_date = ReadIsoDate(text);
  last_text.assign(text);
  return last_date;
}

std::optional<Date> ParseStatementDate(std::string_view text) {
  SkipBlanks(text);
  auto month = TakeNumber(text, 2);
  if (!month || !TakeChar(text, '/')) return std::nullopt;
  auto day = TakeNumber(text, 2);
  if (!day || !TakeChar(text, '/')) return std::nullopt;
  std::string_view before_year = text;
  auto year = TakeNumber(text, 4);
  if (!year) return std::nullopt;
  size_t year_digits = before_year.size() - text.size();
  if (year_digits == 2)
    *year += *year < 30 ? 2000 : 1900;
  else if (year_digits != 4)
    return std::nullopt;
  TimeOfDay time;
  SkipBlanks(text);
  if (!text.empty()) {
    auto t = TakeTime(text);
    if (!t) return std::nullopt;
    time = *t;
    SkipBlanks(text);
    if (text == "PM" || text == "pm" || text == "AM" || text == "am") {
      if (time.hour < 1 || time.hour > 12) return std::nullopt;
      bool pm = text[0] == 'P' || text[0] == 'p';
      time.hour = time.hour % 12 + (pm ? 12 : 0);
      text = {};
    }
    SkipBlanks(text);
    if (!text.empty()) return std::nullopt;
  }
  return MakeDate(*year, *month, *day, time);
}

}  // namespace tidewell::ado

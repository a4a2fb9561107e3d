#include "runtime/dates.h"

#include <array>
#include <cmath>

#include "runtime/automation_error.h"

namespace tidewell {
namespace {

constexpr int kSecondsPerDay = 86400;

// Days since 1 January 1970 of a proleptic Gregorian date (H. Hinnant's algorithm).
constexpr long DaysFromCivil(long y, unsigned m, unsigned d) {
  y -= m <= 2;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<long>(doe) - 719468;
}

struct Civil {
  int year;
  int month;
  int day;
};

Civil CivilFromDays(long z) {
  z += 719468;
  const long era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long y = static_cast<long>(yoe) + era * 400;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  const unsigned d = doy - (153 * mp + 2) / 5 + 1;
  const unsigned m = mp < 10 ? mp + 3 : mp - 9;
  return {static_cast<int>(y + (m <= 2)), static_cast<int>(m), static_cast<int>(d)};
}

// Worked out when compiling, so that dates made while other files' statics are initialised
// are already right.
constexpr long kEpochOffset = DaysFromCivil(1899, 12, 30);

// Whole days and seconds of the day, the seconds rounded so that 0.99999 of a day is midnight.
struct Split {
  long days;
  int seconds;
};

Split SplitSerial(Date d) {
  double days = std::floor(d.serial);
  long seconds = std::lround((d.serial - days) * kSecondsPerDay);
  if (seconds >= kSecondsPerDay) {
    days += 1;
    seconds -= kSecondsPerDay;
  }
  return {static_cast<long>(days), static_cast<int>(seconds)};
}

Civil CivilOf(Date d) {
  return CivilFromDays(SplitSerial(d).days + kEpochOffset);
}

const std::array<const char*, 12> kMonthNames = {"January",   "February", "March",    "April",
                                                 "May",       "June",     "July",     "August",
                                                 "September", "October",  "November", "December"};
const std::array<const char*, 7> kWeekdayNames = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                  "Thursday", "Friday", "Saturday"};

}  // namespace

Date DateSerial(int year, int month, int day) {
  // Roll the month into the year first, then let the day count run past the month's end.
  long months = static_cast<long>(year) * 12 + (month - 1);
  long y = months >= 0 ? months / 12 : (months - 11) / 12;
  unsigned m = static_cast<unsigned>(months - y * 12 + 1);
  long days = DaysFromCivil(y, m, 1) + (day - 1) - kEpochOffset;
  return Date{static_cast<double>(days)};
}

Date TimeSerial(int hour, int minute, int second) {
  return Date{(hour * 3600.0 + minute * 60.0 + second) / kSecondsPerDay};
}

Date Combine(Date day, Date time_of_day) {
  return Date{std::floor(day.serial) + (time_of_day.serial - std::floor(time_of_day.serial))};
}

YearMonthDay CalendarDay(Date d) {
  const Civil c = CivilOf(d);
  return {c.year, c.month, c.day};
}

int Year(Date d) {
  return CivilOf(d).year;
}
int Month(Date d) {
  return CivilOf(d).month;
}
int Day(Date d) {
  return CivilOf(d).day;
}
int Hour(Date d) {
  return SplitSerial(d).seconds / 3600;
}
int Minute(Date d) {
  return SplitSerial(d).seconds / 60 % 60;
}
int Second(Date d) {
  return SplitSerial(d).seconds % 60;
}

int Weekday(Date d) {
  // Serial 0, 30 December 1899, was a Saturday.
  long days = SplitSerial(d).days;
  long index = ((days + 6) % 7 + 7) % 7;  // 0 = Sunday
  return static_cast<int>(index) + 1;
}

Date DateOnly(Date d) {
  return Date{static_cast<double>(SplitSerial(d).days)};
}

bool HasTimeOfDay(Date d) {
  return SplitSerial(d).seconds != 0;
}

int DaysInCalendarMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[month - 1];
}

bool IsValidCalendarDate(int year, int month, int day) {
  return year >= 100 && year <= 9999 && day >= 1 && day <= DaysInCalendarMonth(year, month);
}

Date DateAdd(std::string_view interval, long number, Date d) {
  Split split = SplitSerial(d);
  double time = static_cast<double>(split.seconds) / kSecondsPerDay;
  if (interval == "d") return Date{d.serial + static_cast<double>(number)};
  if (interval == "h") return Date{d.serial + number / 24.0};
  if (interval == "n") return Date{d.serial + number / 1440.0};
  if (interval == "s") return Date{d.serial + static_cast<double>(number) / kSecondsPerDay};
  long months;
  if (interval == "m") {
    months = number;
  } else if (interval == "yyyy") {
    months = number * 12;
  } else {
    RaiseInvalidProcedureCall();
  }
  Civil c = CivilOf(d);
  Date first = DateSerial(c.year, c.month + static_cast<int>(months), 1);
  Civil target = CivilOf(first);
  int day = std::min(c.day, DaysInCalendarMonth(target.year, target.month));
  return Date{first.serial + (day - 1) + time};
}

std::string MonthName(int month, bool abbreviate) {
  if (month < 1 || month > 12) RaiseInvalidProcedureCall();
  std::string name = kMonthNames[month - 1];
  return abbreviate ? name.substr(0, 3) : name;
}

std::string WeekdayName(int weekday, bool abbreviate) {
  if (weekday < 1 || weekday > 7) RaiseInvalidProcedureCall();
  std::string name = kWeekdayNames[weekday - 1];
  return abbreviate ? name.substr(0, 3) : name;
}

}  // namespace tidewell

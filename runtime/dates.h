#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

// Calendar arithmetic on automation dates, as the run time's date functions did it.

// The date of year, month and day; a month or day out of range rolls over (month 13 is January
// of the next year, day 0 the last day of the month before), as DateSerial did.
Date DateSerial(int year, int month, int day);
Date TimeSerial(int hour, int minute, int second);
Date Combine(Date day, Date time_of_day);

struct YearMonthDay {
  int year;
  int month;
  int day;
};
// The three at once, for callers that need them all.
YearMonthDay CalendarDay(Date d);

int Year(Date d);
int Month(Date d);
int Day(Date d);
int Hour(Date d);
int Minute(Date d);
int Second(Date d);
// 1 = Sunday ... 7 = Saturday.
int Weekday(Date d);
// The date with the time of day dropped.
Date DateOnly(Date d);
bool HasTimeOfDay(Date d);

// DateAdd for the intervals "yyyy", "m" and "d" (and "h", "n", "s"). Adding months or years
// keeps the day when the target month has it and otherwise takes the month's last day.
Date DateAdd(std::string_view interval, long number, Date d);

// English month and weekday names; weekday 1 is Sunday.
std::string MonthName(int month, bool abbreviate = false);
std::string WeekdayName(int weekday, bool abbreviate = false);

int DaysInCalendarMonth(int year, int month);
bool IsValidCalendarDate(int year, int month, int day);

}  // namespace tidewell

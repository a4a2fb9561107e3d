#pragma once

namespace tidewell {

// The calendar grids' month arithmetic. These go through the run time's date text
// conversions on purpose, so that they follow the server's regional settings.

// 31 or 30 by month; February 29 when "February 29, <year>" reads as a date; 0 for a month
// outside 1..12.
int DaysInMonth(int month, int year);

// Whether the server writes dates month first: "31/12/99" read as a date and written back
// again is none of "31.12.99", "31/12/99", "31-12-99".
bool IsMonthFirstDateFormat();

// Weekday of the month's first day, 1 = Sunday ... 7 = Saturday.
int FirstWeekdayOfMonth(int month, int year);

}  // namespace tidewell

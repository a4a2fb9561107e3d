#include "runtime/dates.h"

#include <gtest/gtest.h>

#include "runtime/automation_error.h"

namespace tidewell {
namespace {

TEST(DateSerial, DayZeroIsThirtiethOfDecember1899) {
  EXPECT_EQ(DateSerial(1899, 12, 30).serial, 0);
  EXPECT_EQ(DateSerial(2000, 1, 1).serial, 36526);
}

TEST(DateSerial, RollsMonthsAndDaysOver) {
  EXPECT_EQ(DateSerial(2025, 13, 1), DateSerial(2026, 1, 1));
  EXPECT_EQ(DateSerial(2024, 3, 0), DateSerial(2024, 2, 29));
  EXPECT_EQ(DateSerial(2024, 0, 15), DateSerial(2023, 12, 15));
}

TEST(DateParts, ReadBackWhatWasBuilt) {
  Date d = Combine(DateSerial(2026, 2, 28), TimeSerial(13, 45, 9));
  EXPECT_EQ(Year(d), 2026);
  EXPECT_EQ(Month(d), 2);
  EXPECT_EQ(Day(d), 28);
  EXPECT_EQ(Hour(d), 13);
  EXPECT_EQ(Minute(d), 45);
  EXPECT_EQ(Second(d), 9);
  EXPECT_TRUE(HasTimeOfDay(d));
  EXPECT_FALSE(HasTimeOfDay(DateOnly(d)));
}

TEST(Weekday, CountsFromSunday) {
  EXPECT_EQ(Weekday(DateSerial(2026, 11, 1)), 1);   // a Sunday
  EXPECT_EQ(Weekday(DateSerial(2026, 1, 2)), 6);    // a Friday
  EXPECT_EQ(Weekday(DateSerial(1899, 12, 30)), 7);  // a Saturday
  EXPECT_EQ(Weekday(DateSerial(1850, 6, 2)), 1);    // before day zero too
}

TEST(DateAdd, AddsDays) {
  EXPECT_EQ(DateAdd("d", -1, DateSerial(2026, 3, 1)), DateSerial(2026, 2, 28));
}

TEST(DateAdd, MonthsKeepTheDayOrTakeTheMonthsLast) {
  EXPECT_EQ(DateAdd("m", 1, DateSerial(2024, 1, 31)), DateSerial(2024, 2, 29));
  EXPECT_EQ(DateAdd("m", -1, DateSerial(2026, 3, 31)), DateSerial(2026, 2, 28));
  EXPECT_EQ(DateAdd("m", 1, DateSerial(2026, 12, 15)), DateSerial(2027, 1, 15));
}

TEST(DateAdd, YearsFromLeapDay) {
  EXPECT_EQ(DateAdd("yyyy", 1, DateSerial(2024, 2, 29)), DateSerial(2025, 2, 28));
  EXPECT_EQ(DateAdd("yyyy", -4, DateSerial(2024, 2, 29)), DateSerial(2020, 2, 29));
}

TEST(DateAdd, KeepsTheTimeOfDay) {
  Date d = Combine(DateSerial(2026, 1, 31), TimeSerial(8, 30, 0));
  EXPECT_EQ(DateAdd("m", 1, d), Combine(DateSerial(2026, 2, 28), TimeSerial(8, 30, 0)));
}

TEST(DateAdd, UnknownIntervalIsInvalidProcedureCall) {
  EXPECT_THROW(DateAdd("q", 1, DateSerial(2026, 1, 1)), AutomationError);
}

TEST(Names, MonthAndWeekdayNames) {
  EXPECT_EQ(MonthName(2), "February");
  EXPECT_EQ(MonthName(9, true), "Sep");
  EXPECT_EQ(WeekdayName(1), "Sunday");
  EXPECT_EQ(WeekdayName(7, true), "Sat");
  EXPECT_THROW(MonthName(13), AutomationError);
}

TEST(DaysInCalendarMonth, KnowsLeapYears) {
  EXPECT_EQ(DaysInCalendarMonth(2000, 2), 29);
  EXPECT_EQ(DaysInCalendarMonth(1900, 2), 28);
  EXPECT_EQ(DaysInCalendarMonth(2024, 2), 29);
  EXPECT_EQ(DaysInCalendarMonth(2026, 4), 30);
}

}  // namespace
}  // namespace tidewell

#include "page/date_helpers.h"

#include <gtest/gtest.h>

#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

class DateHelpers : public ::testing::TestWithParam<const char*> {
  ScopedRegionalSettings settings_{GetParam()};
};

TEST_P(DateHelpers, LeapFebruaryOf2000Has29Days) {
  EXPECT_EQ(DaysInMonth(2, 2000), 29);
}
TEST_P(DateHelpers, February1900Has28Days) {
  EXPECT_EQ(DaysInMonth(2, 1900), 28);
}
TEST_P(DateHelpers, Month13HasNoDays) {
  EXPECT_EQ(DaysInMonth(13, 2004), 0);
}
TEST_P(DateHelpers, MonthZeroHasNoDays) {
  EXPECT_EQ(DaysInMonth(0, 2004), 0);
}
TEST_P(DateHelpers, LongAndShortMonths) {
  EXPECT_EQ(DaysInMonth(1, 2026), 31);
  EXPECT_EQ(DaysInMonth(4, 2026), 30);
  EXPECT_EQ(DaysInMonth(2, 2026), 28);
  EXPECT_EQ(DaysInMonth(2, 2024), 29);
}

TEST_P(DateHelpers, FirstWeekdays) {
  EXPECT_EQ(FirstWeekdayOfMonth(2, 2009), 1);   // February 2009 began on a Sunday
  EXPECT_EQ(FirstWeekdayOfMonth(8, 2015), 7);   // August 2015 on a Saturday
  EXPECT_EQ(FirstWeekdayOfMonth(1, 2026), 5);   // January 2026 on a Thursday
  EXPECT_EQ(FirstWeekdayOfMonth(11, 2026), 1);  // November 2026 on a Sunday
  EXPECT_EQ(FirstWeekdayOfMonth(12, 2026), 3);  // December 2026 on a Tuesday
}

INSTANTIATE_TEST_SUITE_P(BothLocales, DateHelpers, ::testing::Values("en-US", "en-GB"));

TEST(IsMonthFirstDateFormat, TrueForUnitedStates) {
  ScopedRegionalSettings us("en-US");
  EXPECT_TRUE(IsMonthFirstDateFormat());
}

TEST(IsMonthFirstDateFormat, FalseForBritain) {
  ScopedRegionalSettings gb("en-GB");
  EXPECT_FALSE(IsMonthFirstDateFormat());
}

// The first weekday is always built with "/" separators; on a day-first server the run
// time's conversion must still read them, in the day-first order.
TEST(FirstWeekdayOfMonth, DayFirstServerReadsSlashSeparatedText) {
  ScopedRegionalSettings gb("en-GB");
  EXPECT_EQ(FirstWeekdayOfMonth(3, 2026), 1);  // 1/3/2026 is 1 March, a Sunday
  EXPECT_EQ(FirstWeekdayOfMonth(1, 2026), 5);  // not 3 January
}

}  // namespace
}  // namespace tidewell

#include "runtime/date_text.h"

#include <gtest/gtest.h>

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

Date At(int y, int mo, int d, int h, int mi, int s) {
  return Combine(DateSerial(y, mo, d), TimeSerial(h, mi, s));
}

class UnitedStates : public ::testing::Test {
  ScopedRegionalSettings settings_{"en-US"};
};
class Britain : public ::testing::Test {
  ScopedRegionalSettings settings_{"en-GB"};
};

TEST_F(UnitedStates, WritesMonthFirstUnpadded) {
  EXPECT_EQ(DateToText(DateSerial(2026, 1, 2)), "1/2/2026");
}
TEST_F(UnitedStates, WritesTwelveHourTimeAfterTheDate) {
  EXPECT_EQ(DateToText(At(2026, 1, 2, 13, 5, 0)), "1/2/2026 1:05:00 PM");
  EXPECT_EQ(DateToText(At(2026, 1, 2, 0, 0, 1)), "1/2/2026 12:00:01 AM");
}
TEST_F(UnitedStates, ReadsMonthFirst) {
  EXPECT_EQ(CDate("1/2/2026"), DateSerial(2026, 1, 2));
}
TEST_F(UnitedStates, ImpossibleMonthFirstReadsDayFirst) {
  EXPECT_EQ(CDate("31/12/99"), DateSerial(1999, 12, 31));
}
TEST_F(UnitedStates, ReadsOtherSeparatorsAndTwoDigitYears) {
  EXPECT_EQ(CDate("2-29-24"), DateSerial(2024, 2, 29));
  EXPECT_EQ(CDate("12.1.75"), DateSerial(1975, 12, 1));
}
TEST_F(UnitedStates, ReadsMonthNames) {
  EXPECT_EQ(CDate("February 29, 2024"), DateSerial(2024, 2, 29));
  EXPECT_EQ(CDate("29 Feb 2024"), DateSerial(2024, 2, 29));
  EXPECT_FALSE(IsDate("February 29, 1900"));
}
TEST_F(UnitedStates, ReadsIsoDates) {
  EXPECT_EQ(CDate("2026-11-21"), DateSerial(2026, 11, 21));
}
TEST_F(UnitedStates, ReadsTimes) {
  EXPECT_EQ(CDate("1/2/2026 1:05:00 PM"), At(2026, 1, 2, 13, 5, 0));
  EXPECT_EQ(CDate("1/2/2026 14:30"), At(2026, 1, 2, 14, 30, 0));
}
TEST_F(UnitedStates, RefusesWhatIsNoDate) {
  EXPECT_FALSE(IsDate("hello"));
  EXPECT_FALSE(IsDate(""));
  EXPECT_FALSE(IsDate("2/30/2026"));
  EXPECT_FALSE(IsDate("13/13/2026"));
  EXPECT_FALSE(IsDate("1/2/2026 25:00"));
  EXPECT_FALSE(IsDate("6"));
}
TEST_F(UnitedStates, DateTextRoundTrips) {
  Date d = At(2026, 11, 21, 9, 15, 30);
  EXPECT_EQ(CDate(DateToText(d)), d);
}

TEST_F(Britain, WritesDayFirstPadded) {
  EXPECT_EQ(DateToText(DateSerial(2026, 1, 2)), "02/01/2026");
}
TEST_F(Britain, WritesTwentyFourHourTime) {
  EXPECT_EQ(DateToText(At(2026, 1, 2, 13, 5, 0)), "02/01/2026 13:05:00");
}
TEST_F(Britain, ReadsDayFirst) {
  EXPECT_EQ(CDate("1/2/2026"), DateSerial(2026, 2, 1));
}
TEST_F(Britain, ImpossibleDayFirstReadsMonthFirst) {
  EXPECT_EQ(CDate("12/31/2026"), DateSerial(2026, 12, 31));
}
TEST_F(Britain, ReadsDotsAsTheCalendarsDo) {
  EXPECT_EQ(CDate("5.11.2026"), DateSerial(2026, 11, 5));
}
TEST_F(Britain, DateTextRoundTrips) {
  Date d = At(2026, 11, 21, 21, 0, 5);
  EXPECT_EQ(CDate(DateToText(d)), d);
}

TEST(DateText, TwoNumbersMeanThisYear) {
  ScopedRegionalSettings us("en-US");
  SetFixedNow(At(2026, 11, 21, 10, 0, 0));
  EXPECT_EQ(CDate("3/4"), DateSerial(2026, 3, 4));
  SetFixedNow(std::nullopt);
}

}  // namespace
}  // namespace tidewell

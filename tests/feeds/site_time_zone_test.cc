// The site's zone through libical and the system's tzdata: names, the machine's own zone, and
// wall times to moments and back, on ordinary days and on the days the clocks change.

#include "feeds/site_time_zone.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace tidewell {
namespace {

constexpr long long kHour = 3600;

// Unix seconds of a UTC time, written out so that the expectations read as times.
long long Utc(int year, int month, int day, int hour, int minute = 0) {
  return WallTimeToUnix(TimeZoneNamed("UTC"), {year, month, day, hour, minute, 0});
}

TEST(SiteTimeZone, KnowsIanaNamesAndRefusesOthers) {
  EXPECT_TRUE(IsKnownTimeZone("Europe/Berlin"));
  EXPECT_TRUE(IsKnownTimeZone("America/New_York"));
  EXPECT_TRUE(IsKnownTimeZone("UTC"));
  EXPECT_FALSE(IsKnownTimeZone("Europe/Nowhere"));
  EXPECT_FALSE(IsKnownTimeZone(""));
  EXPECT_FALSE(IsKnownTimeZone("../../etc/passwd"));
  EXPECT_FALSE(IsKnownTimeZone("/usr/share/zoneinfo/Europe/Berlin"));
  try {
    TimeZoneNamed("Mars/Olympus_Mons");
    ADD_FAILURE() << "an unknown zone was loaded";
  } catch (const UnknownTimeZone& error) {
    EXPECT_EQ(std::string(error.what()), "unknown time zone Mars/Olympus_Mons");
  }
}

TEST(SiteTimeZone, UtcSecondsAreTheUnixEpochs) {
  EXPECT_EQ(Utc(1970, 1, 1, 0), 0);
  EXPECT_EQ(Utc(2026, 11, 24, 9), 1795510800);
  EXPECT_EQ(UnixToWallTime(TimeZoneNamed("UTC"), 1795510800), (WallTime{2026, 11, 24, 9, 0, 0}));
}

TEST(SiteTimeZone, WinterAndSummerTimeInBerlin) {
  SiteTimeZone berlin = TimeZoneNamed("Europe/Berlin");
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 1, 15, 9, 0, 0}), Utc(2026, 1, 15, 8));
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 7, 15, 9, 0, 0}), Utc(2026, 7, 15, 7));
  EXPECT_EQ(UnixToWallTime(berlin, Utc(2026, 7, 15, 7)), (WallTime{2026, 7, 15, 9, 0, 0}));
}

// 29 March 2026: at 02:00 the clocks in Berlin jump to 03:00.
TEST(SiteTimeZone, TheDayClocksGoForwardSkipsAnHour) {
  SiteTimeZone berlin = TimeZoneNamed("Europe/Berlin");
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 3, 29, 1, 0, 0}), Utc(2026, 3, 29, 0));
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 3, 29, 3, 0, 0}), Utc(2026, 3, 29, 1));
  // 02:30 does not exist: read with the winter offset, it is 03:30 summer time.
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 3, 29, 2, 30, 0}), Utc(2026, 3, 29, 1, 30));
  EXPECT_EQ(UnixToWallTime(berlin, Utc(2026, 3, 29, 1, 30)), (WallTime{2026, 3, 29, 3, 30, 0}));
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 3, 29, 12, 0, 0}) -
                WallTimeToUnix(berlin, {2026, 3, 28, 12, 0, 0}),
            23 * kHour);
}

// 25 October 2026: at 03:00 summer time the clocks in Berlin go back to 02:00.
TEST(SiteTimeZone, TheDayClocksGoBackRepeatsAnHourAndTakesItsFirstOccurrence) {
  SiteTimeZone berlin = TimeZoneNamed("Europe/Berlin");
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 10, 25, 2, 30, 0}), Utc(2026, 10, 25, 0, 30));
  EXPECT_EQ(UnixToWallTime(berlin, Utc(2026, 10, 25, 0, 30)), (WallTime{2026, 10, 25, 2, 30, 0}));
  EXPECT_EQ(UnixToWallTime(berlin, Utc(2026, 10, 25, 1, 30)), (WallTime{2026, 10, 25, 2, 30, 0}));
  EXPECT_EQ(WallTimeToUnix(berlin, {2026, 10, 25, 12, 0, 0}) -
                WallTimeToUnix(berlin, {2026, 10, 24, 12, 0, 0}),
            25 * kHour);
}

TEST(SiteTimeZone, ConvertsWallTimesBetweenZones) {
  SiteTimeZone new_york = TimeZoneNamed("America/New_York");
  SiteTimeZone berlin = TimeZoneNamed("Europe/Berlin");
  // Between the two zones' changes in March the gap is five hours, not six.
  EXPECT_EQ(ConvertWallTime({2026, 3, 20, 9, 0, 0}, new_york, berlin),
            (WallTime{2026, 3, 20, 14, 0, 0}));
  EXPECT_EQ(ConvertWallTime({2026, 4, 20, 9, 0, 0}, new_york, berlin),
            (WallTime{2026, 4, 20, 15, 0, 0}));
  EXPECT_EQ(ConvertWallTime({2026, 12, 31, 23, 30, 0}, TimeZoneNamed("UTC"),
                            TimeZoneNamed("Asia/Kolkata")),
            (WallTime{2027, 1, 1, 5, 0, 0}));
}

TEST(SiteTimeZone, SystemZoneComesFromTzFirst) {
  const char* saved = std::getenv("TZ");
  std::string kept = saved ? saved : "";
  setenv("TZ", ":Asia/Tokyo", 1);
  EXPECT_EQ(SystemTimeZoneName(), "Asia/Tokyo");
  setenv("TZ", "/usr/share/zoneinfo/America/Chicago", 1);
  EXPECT_EQ(SystemTimeZoneName(), "America/Chicago");
  setenv("TZ", "Not/AZone", 1);
  EXPECT_TRUE(IsKnownTimeZone(SystemTimeZoneName()));  // the next source, or UTC
  if (saved) {
    setenv("TZ", kept.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
}

TEST(SiteTimeZone, VTimezoneIsNamedByTheIanaNameAndStartsAtTheGivenYear) {
  icalcomponent* vtimezone = NewVTimezone(TimeZoneNamed("Europe/Berlin"), 2025);
  std::string text = icalcomponent_as_ical_string(vtimezone);
  icalcomponent_free(vtimezone);
  EXPECT_NE(text.find("TZID:Europe/Berlin\r\n"), std::string::npos) << text;
  EXPECT_NE(text.find("TZOFFSETTO:+0200"), std::string::npos) << text;
  EXPECT_EQ(text.find("1916"), std::string::npos) << text;  // no history before the window

  icalcomponent* utc = NewVTimezone(TimeZoneNamed("UTC"), 2025);
  text = icalcomponent_as_ical_string(utc);
  icalcomponent_free(utc);
  EXPECT_NE(text.find("TZID:UTC\r\n"), std::string::npos) << text;
  EXPECT_NE(text.find("TZOFFSETTO:+0000"), std::string::npos) << text;
}

}  // namespace
}  // namespace tidewell

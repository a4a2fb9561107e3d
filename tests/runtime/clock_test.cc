#include "runtime/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "runtime/dates.h"

namespace tidewell {
namespace {

TEST(Clock, FixedMomentStandsStill) {
  Date moment = Combine(DateSerial(2026, 11, 21), TimeSerial(14, 5, 0));
  SetFixedNow(moment);
  EXPECT_EQ(Now(), moment);
  EXPECT_EQ(Today(), DateSerial(2026, 11, 21));
  SetFixedNow(std::nullopt);
}

TEST(Clock, SystemClockIsNearTheCalendarOfToday) {
  SetFixedNow(std::nullopt);
  EXPECT_GE(Year(Now()), 2024);
}

TEST(Clock, MalformedEnvironmentIsReported) {
  setenv("TIDEWELL_NOW", "2026-13-01 00:00:00", 1);
  EXPECT_THROW(CheckClockEnvironment(), std::runtime_error);
  setenv("TIDEWELL_NOW", "2026-11-21 08:00:00", 1);
  EXPECT_NO_THROW(CheckClockEnvironment());
  unsetenv("TIDEWELL_NOW");
}

}  // namespace
}  // namespace tidewell

// Dates as SQLite stores them: "yyyy-mm-dd", with a time or without.

#include "data/iso_dates.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

#include "runtime/dates.h"

namespace tidewell::ado {
namespace {

TEST(ParseIsoDate, ReadsADayAndADayWithATime) {
  EXPECT_EQ(ParseIsoDate("2026-11-05"), DateSerial(2026, 11, 5));
  EXPECT_EQ(ParseIsoDate("2026-11-05 09:30:00"),
            Combine(DateSerial(2026, 11, 5), TimeSerial(9, 30, 0)));
  EXPECT_EQ(ParseIsoDate("2026-11-05T09:30:00.250+01:00"),
            Combine(DateSerial(2026, 11, 5), TimeSerial(9, 30, 0)));
}

TEST(ParseIsoDate, RefusesWhatIsNoSuchDate) {
  EXPECT_EQ(ParseIsoDate(""), std::nullopt);
  EXPECT_EQ(ParseIsoDate("2026-02-30"), std::nullopt);
  EXPECT_EQ(ParseIsoDate("2026-11-05 25:00"), std::nullopt);
  EXPECT_EQ(ParseIsoDate("11/5/2026"), std::nullopt);
  EXPECT_EQ(ParseIsoDate("2026-11-05x"), std::nullopt);
}

// The thread keeps the last text it read with its date: a text read again, right after or
// after others, good or bad, reads as it did the first time.
TEST(ParseIsoDate, ReadsATextAlikeHoweverOftenItComes) {
  const Date fifth = DateSerial(2026, 11, 5);
  const Date sixth = DateSerial(2026, 11, 6);
  const Date fifth_at_half_past_nine = Combine(fifth, TimeSerial(9, 30, 0));
  const std::pair<const char*, std::optional<Date>> reads[] = {
      {"2026-11-05", fifth},        {"2026-11-05", fifth},
      {"2026-11-06", sixth},        {"2026-11-05x", std::nullopt},
      {"2026-11-05", fifth},        {"", std::nullopt},
      {"", std::nullopt},           {"2026-11-05 09:30", fifth_at_half_past_nine},
      {"2026-11-05", fifth},        {"2026-02-30", std::nullopt},
      {"2026-02-30", std::nullopt}, {"2026-11-06", sixth},
  };
  for (const auto& [text, expected] : reads) {
    const std::string copy = text;  // another buffer each time
    EXPECT_EQ(ParseIsoDate(copy), expected) << text;
  }
}

}  // namespace
}  // namespace tidewell::ado

// An event instance made into the item the item form would store.

#include <gtest/gtest.h>

#include <string>

#include "feeds/event_import.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

constexpr const char* kOwner = "0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a";

EventInstance Instance(WallTime start, bool all_day = false) {
  EventInstance instance;
  instance.uid = "u";
  instance.start = start;
  instance.all_day = all_day;
  instance.summary = "Harbour";
  return instance;
}

TEST(InstanceItem, TimedInstanceTakesItsDayHourAndMinuteAsTheFormWritesThem) {
  ItemCuts cuts;
  ItemRecord item = ItemOfInstance(Instance({2026, 11, 24, 9, 5, 0}), kOwner, 8, cuts);
  EXPECT_EQ(item.owner_key, kOwner);
  EXPECT_EQ(item.date, DateSerial(2026, 11, 24));
  EXPECT_EQ(item.hour, 9);
  EXPECT_EQ(item.time_text, "09:05");
  EXPECT_EQ(item.heading, "Harbour");
  EXPECT_FALSE(item.urgent);
  EXPECT_FALSE(item.complete);
  EXPECT_EQ(ItemOfInstance(Instance({2026, 11, 24, 23, 59, 0}), kOwner, 8, cuts).time_text,
            "23:59");
}

TEST(InstanceItem, AllDayInstanceTakesTheStartHourAtMinuteZero) {
  ItemCuts cuts;
  ItemRecord item = ItemOfInstance(Instance({2026, 11, 26, 0, 0, 0}, true), kOwner, 7, cuts);
  EXPECT_EQ(item.date, DateSerial(2026, 11, 26));
  EXPECT_EQ(item.hour, 7);
  EXPECT_EQ(item.time_text, "07:00");
  EXPECT_EQ(ItemOfInstance(Instance({2026, 11, 26, 0, 0, 0}, true), kOwner, 14, cuts).time_text,
            "14:00");
}

TEST(InstanceItem, PrioritiesOneToFourAreUrgent) {
  ItemCuts cuts;
  for (int priority = 0; priority <= 9; ++priority) {
    EventInstance instance = Instance({2026, 11, 24, 9, 0, 0});
    instance.priority = priority;
    EXPECT_EQ(ItemOfInstance(instance, kOwner, 8, cuts).urgent, priority >= 1 && priority <= 4)
        << priority;
  }
}

TEST(InstanceItem, TextsAreTrimmedAndCutToTheFormsLengthsInCharacters) {
  EventInstance instance = Instance({2026, 11, 24, 9, 0, 0});
  // 49 characters, then a two-byte one (the 50th) and more: the cut keeps whole characters.
  instance.summary = "  " + std::string(49, 'a') + "\xC3\xA9" + "bcd  ";
  instance.description = std::string(250, 'x') + "\n" + std::string(10, 'y');
  ItemCuts cuts;
  ItemRecord item = ItemOfInstance(instance, kOwner, 8, cuts);
  EXPECT_EQ(item.heading, std::string(49, 'a') + "\xC3\xA9");
  // 250, CR LF (two characters) and three of the ten.
  EXPECT_EQ(item.description, std::string(250, 'x') + "\r\n" + "yyy");
  EXPECT_EQ(cuts.headings, 1);
  EXPECT_EQ(cuts.descriptions, 1);

  instance.summary = "  Short  ";
  instance.description = "  one\rtwo\r\nthree\nfour  ";
  item = ItemOfInstance(instance, kOwner, 8, cuts);
  EXPECT_EQ(item.heading, "Short");
  EXPECT_EQ(item.description, "one\r\ntwo\r\nthree\r\nfour");
  EXPECT_EQ(cuts.headings, 1);
  EXPECT_EQ(cuts.descriptions, 1);
}

TEST(InstanceItem, AHeadingIsOneLine) {
  EventInstance instance = Instance({2026, 11, 24, 9, 0, 0});
  instance.summary = "Tide\nand wind";
  ItemCuts cuts;
  EXPECT_EQ(ItemOfInstance(instance, kOwner, 8, cuts).heading, "Tide and wind");
}

// Our own feeds mark a complete item's summary; the mark makes a complete item again.
TEST(InstanceItem, TheFeedsCompleteMarkMakesACompleteItem) {
  ItemCuts cuts;
  EventInstance done = Instance({2026, 11, 24, 9, 0, 0});
  done.summary = "\u2713 Caulk the hull";
  const ItemRecord item = ItemOfInstance(done, kOwner, 8, cuts);
  EXPECT_TRUE(item.complete);
  EXPECT_EQ(item.heading, "Caulk the hull");
  EventInstance open = Instance({2026, 11, 24, 9, 0, 0});
  open.summary = "Caulk \u2713 the hull";
  EXPECT_FALSE(ItemOfInstance(open, kOwner, 8, cuts).complete);
  EXPECT_EQ(ItemOfInstance(open, kOwner, 8, cuts).heading, "Caulk \u2713 the hull");
}

TEST(InstanceItem, TheSummaryLineCountsEveryReason) {
  ImportReport report;
  report.user_name = "alice";
  report.imported = 12;
  report.already_imported = 2;
  report.skipped.outside_window = 1;
  EXPECT_EQ(ImportSummary(report),
            "imported 12 items for alice; skipped 3 (2 already imported, 1 outside the window)");
  report = {};
  report.user_name = "bob";
  report.imported = 1;
  EXPECT_EQ(ImportSummary(report), "imported 1 item for bob; skipped 0");
  report.deleted_since = 1;
  report.repeated = 2;
  report.skipped.cancelled = 3;
  report.skipped.not_events = 1;
  report.cuts.headings = 1;
  report.cuts.descriptions = 2;
  EXPECT_EQ(ImportSummary(report),
            "imported 1 item for bob; skipped 7 (1 imported before and deleted since, 2 repeated "
            "in the file, 3 cancelled, 1 not a VEVENT); cut 1 heading to 50 characters and 2 "
            "descriptions to 255 characters");
}

}  // namespace
}  // namespace tidewell

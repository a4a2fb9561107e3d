// The views read the item lists of all their cells with one statement (ViewLists) and deal
// the rows out in memory; the old reading, a statement a cell, is still there and is what the
// one statement must reproduce. Seeded random calendars on both engines are drawn both ways,
// in every view, under every sort order and both regional settings, and the pages must be the
// same to the byte, errors included.

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "data/connection.h"
#include "page/page.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/page_text.h"
#include "tests/support/seeder.h"
#include "tests/views/random_calendar.h"
#include "tests/views/view_drawing.h"
#include "views/list_reading.h"

namespace tidewell {
namespace {

using testing::Between;
using testing::Chance;
using testing::Count;
using testing::Drawing;
using testing::PasswordHashing;
using testing::RandomCalendar;
using testing::Seeder;
using testing::ViewKind;
using testing::ViewRequest;

// Every code a sort link can carry: the default and the time view headers' eight, which the
// views read with one statement; a column's position, which they read cell by cell; and a code
// no header makes, which fails.
const std::vector<std::string> kSorts = {"",    "U*A", "U*D", "T*A", "T*D", "I*A",
                                         "I*D", "H*A", "H*D", "2",   "X*D"};
constexpr const char* kColumnPositionSort = "2";
constexpr const char* kFailingSort = "X*D";
const std::vector<std::string> kLocales = {"en-US", "en-GB"};
const std::vector<std::string> kWeekArguments = {"", "n", "p"};

// Months whose grids are unusual (four rows, six rows, a leap day) and weeks that straddle a
// month or a year.
const std::vector<Date> kEdgeDays = {DateSerial(2015, 2, 14), DateSerial(2020, 5, 31),
                                     DateSerial(2024, 2, 29), DateSerial(2025, 12, 30),
                                     DateSerial(2027, 1, 2),  DateSerial(2026, 11, 21),
                                     DateSerial(2026, 3, 31), DateSerial(2000, 2, 29),
                                     DateSerial(2026, 8, 1),  DateSerial(2026, 12, 31)};

// The day the calendar of `seed` crowds around: one of the edge days for every fourth seed, any
// day from 1998 to 2030 for the others.
Date FocusOf(int seed) {
  std::mt19937 random(static_cast<unsigned>(seed) * 7919u);
  if (seed % 4 == 0) return kEdgeDays[static_cast<size_t>(seed / 4) % kEdgeDays.size()];
  const int year = Between(random, 1998, 2030);
  const int month = Between(random, 1, 12);
  return DateSerial(year, month, Between(random, 1, DaysInCalendarMonth(year, month)));
}

// What the drawings of one test covered, to show the calendars did exercise what they are
// meant to.
struct Tally {
  std::set<std::string> seen;  // "sort|locale", and "|argument" for week views
  long drawings = 0;
  long item_links = 0;
  long more_links = 0;
  long failures = 0;
  long group_drawings = 0;  // for a user who sees his group's items
  long kept_per_key = 0;    // drawn again after the engine kept each cell's rows itself
  long mismatches = 0;      // drawings that failed a check
};

// After this many drawings that fail a check a test stops: each reports two whole pages.
constexpr long kMismatchesReported = 5;

// How many checks of the running test have failed so far.
int FailedChecks() {
  return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

// What a view read with one statement runs, however many cells it has: the group's number
// (for a user who sees his group; a page that read the account knows it already) and the
// lists. One statement needs no transaction around it.
constexpr long long kStatementsPerView = 2;

// A drawing fails with the "DS" error when its statements are in the other engine's dialect,
// its page has no open connection, or its sort code is none a list knows; every other one must
// draw.
bool FailsByDesign(const ViewRequest& request) {
  return request.other_dialect || request.closed_connection || request.sort == kFailingSort;
}

template <class Engine>
class ViewListsEquivalence : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    data_ = std::make_unique<Seeder>(engine_.connection_string, PasswordHashing::kOncePerProcess);
    connection_ = std::make_shared<ado::Connection>();
    connection_->Open(engine_.connection_string);
  }

  void TearDown() override {
    if (connection_) connection_->Close();
    SetFixedNow(std::nullopt);
  }

  // A fresh calendar, and the clock set to a moment near its focus so that today's cell or row
  // is sometimes among those drawn.
  RandomCalendar Seed(int seed) {
    RandomCalendar calendar = testing::SeedRandomCalendar(*data_, seed, FocusOf(seed));
    std::mt19937 random(static_cast<unsigned>(seed) * 104729u);
    SetFixedNow(Combine(DateAdd("d", Between(random, -2, 2), calendar.focus),
                        TimeSerial(Between(random, 0, 23), Between(random, 0, 59), 0)));
    return calendar;
  }

  // The `index`th drawing of a test: the sort codes and the settings taken in turn so that
  // every pair comes up, the rest random.
  static ViewRequest RequestFor(ViewKind view, const RandomCalendar& calendar, std::mt19937& random,
                                size_t index) {
    ViewRequest request;
    request.view = view;
    request.sort = kSorts[index % kSorts.size()];
    request.locale = kLocales[(index / kSorts.size()) % kLocales.size()];
    request.user =
        static_cast<size_t>(Between(random, 0, static_cast<int>(calendar.users.size()) - 1));
    request.date = calendar.focus;
    request.hour = Between(random, 0, 23);
    request.highlight_today = Chance(random, 0.5);
    request.cross_out_completed = Chance(random, 0.5);
    request.hex_links = Chance(random, 0.2);
    request.default_start_hour = Between(random, 0, 23);
    switch (view) {
      case ViewKind::kMonth:
        request.highlight_delta_days = Chance(random, 0.5);
        break;
      case ViewKind::kWeek:
        request.date = DateAdd("d", Between(random, -3, 3), calendar.focus);
        request.screen_argument = testing::PickFrom(random, kWeekArguments);
        request.highlight_delta_days = Chance(random, 0.8);
        break;
      case ViewKind::kDay:
        // Half of the day views start late enough to run into the next day.
        request.date = DateAdd("d", Between(random, -1, 0), calendar.focus);
        request.hour = Chance(random, 0.5) ? Between(random, 12, 23) : Between(random, 0, 23);
        request.show_12_hour_day = Chance(random, 0.5);
        break;
    }
    return request;
  }

  Drawing Draw(const RandomCalendar& calendar, const ViewRequest& request, ListReading reading) {
    return testing::DrawView(calendar, request, reading,
                             request.closed_connection ? never_opened_ : connection_,
                             engine_.connection_string, signing_,
                             request.other_dialect ? Engine::kOtherDialect : Engine::kDialect);
  }

  // Draws the view both ways and expects the same page and the same error.
  void ExpectSameDrawing(const RandomCalendar& calendar, const ViewRequest& request, Tally& tally) {
    const std::string where = testing::Describe(calendar, request);
    // Cell by cell first: the engine's session has then seen every table and column, and what
    // the one statement runs is all it runs.
    const Drawing each = Draw(calendar, request, ListReading::kOnePerCell);
    const Drawing one = Draw(calendar, request, ListReading::kOnePerView);
    // Again: a session that saw crowded cells in the first drawing has the engine keep each
    // cell's rows itself in the second.
    const Drawing again = Draw(calendar, request, ListReading::kOnePerView);
    const int failed_before = FailedChecks();
    EXPECT_EQ(one.html, each.html) << where << "\n"
                                   << testing::FirstDifference(one.html, each.html);
    EXPECT_EQ(again.html, one.html) << where << " drawn again\n"
                                    << testing::FirstDifference(again.html, one.html);
    EXPECT_EQ(again.error_text, one.error_text) << where << " drawn again";
    EXPECT_EQ(one.error_flag, each.error_flag) << where;
    EXPECT_EQ(one.error_kind, each.error_kind) << where;
    EXPECT_EQ(one.error_text, each.error_text) << where;
    EXPECT_EQ(one.screen, each.screen) << where;
    // Pages that both fail are alike whatever the lists hold: only the designed failures may.
    EXPECT_EQ(one.error_flag, FailsByDesign(request)) << where << "\n" << one.error_text;
    if (one.error_flag) {
      EXPECT_EQ(one.error_kind, ErrorKind::kDataRead) << where;
      EXPECT_EQ(one.screen, screens::kErrorScreen) << where;
    }
    if (!one.error_flag && request.sort != kColumnPositionSort) {
      EXPECT_LE(one.statements_run, kStatementsPerView) << where;
      EXPECT_GT(each.statements_run, one.statements_run) << where;
    }
    if (!one.error_flag && request.sort == kColumnPositionSort) {
      EXPECT_EQ(one.statements_run, each.statements_run) << where << ": read cell by cell";
    }

    ++tally.drawings;
    if (FailedChecks() != failed_before) ++tally.mismatches;
    if (one.error_flag) ++tally.failures;
    if (again.kept_per_key > 0) ++tally.kept_per_key;
    const testing::CalendarUser& user = calendar.users[request.user];
    if (user.show_all && user.group != 0) ++tally.group_drawings;
    tally.item_links += Count(one.html, "<a class=text href=");
    tally.more_links += Count(one.html, "nav_more.gif") + Count(one.html, "[More..]");
    std::string seen = request.sort + "|" + request.locale;
    if (request.view == ViewKind::kWeek) seen += "|" + request.screen_argument;
    tally.seen.insert(seen);
  }

  // Seeds `calendars` calendars from `first_seed` on and draws `view` `per_calendar` times in
  // each, both ways.
  Tally DrawRandomCalendars(ViewKind view, int first_seed, int calendars, int per_calendar) {
    Tally tally;
    size_t index = 0;
    for (int seed = first_seed; seed < first_seed + calendars; ++seed) {
      const RandomCalendar calendar = Seed(seed);
      std::mt19937 random(static_cast<unsigned>(seed));
      for (int n = 0; n < per_calendar; ++n) {
        ExpectSameDrawing(calendar, RequestFor(view, calendar, random, index++), tally);
        if (tally.mismatches >= kMismatchesReported) return tally;
      }
    }
    return tally;
  }

  // Every sort code under both settings (and, for week views, every way of coming in) was
  // drawn, and the drawings were full enough to show "more" links.
  static void ExpectEverythingCovered(const Tally& tally, bool week) {
    for (const std::string& sort : kSorts) {
      for (const std::string& locale : kLocales) {
        if (!week) {
          EXPECT_TRUE(tally.seen.count(sort + "|" + locale)) << sort << " " << locale;
          continue;
        }
        for (const std::string& argument : kWeekArguments) {
          EXPECT_TRUE(tally.seen.count(sort + "|" + locale + "|" + argument))
              << sort << " " << locale << " " << argument;
        }
      }
    }
    EXPECT_GT(tally.item_links, tally.drawings);
    EXPECT_GT(tally.more_links, tally.drawings / 10);
    EXPECT_GT(tally.group_drawings, tally.drawings / 4);
    EXPECT_GT(tally.kept_per_key, 0);
    std::printf(
        "%ld drawings compared, %ld for a user seeing his group; %ld item links, %ld \"more\" "
        "links; %ld failed by design; %ld drawn again with each cell's rows kept by the engine\n",
        tally.drawings, tally.group_drawings, tally.item_links, tally.more_links, tally.failures,
        tally.kept_per_key);
  }

  Engine engine_;
  std::unique_ptr<Seeder> data_;
  std::shared_ptr<ado::Connection> connection_;
  std::shared_ptr<ado::Connection> never_opened_ = std::make_shared<ado::Connection>();
  LinkSigning signing_{"equivalence test secret", 3600};
};

TYPED_TEST_SUITE(ViewListsEquivalence, testing::Engines, testing::EngineNames);

TYPED_TEST(ViewListsEquivalence, MonthViewsOfRandomCalendarsDrawAsCellByCell) {
  const Tally tally = this->DrawRandomCalendars(ViewKind::kMonth, 1, 100, 10);
  this->ExpectEverythingCovered(tally, /*week=*/false);
}

TYPED_TEST(ViewListsEquivalence, WeekViewsOfRandomCalendarsDrawAsCellByCell) {
  const Tally tally = this->DrawRandomCalendars(ViewKind::kWeek, 1001, 80, 12);
  this->ExpectEverythingCovered(tally, /*week=*/true);
}

TYPED_TEST(ViewListsEquivalence, DayViewsOfRandomCalendarsDrawAsCellByCell) {
  const Tally tally = this->DrawRandomCalendars(ViewKind::kDay, 2001, 80, 16);
  this->ExpectEverythingCovered(tally, /*week=*/false);
}

// Statements in the other engine's dialect fail at the first list either way: the same error,
// and the same page, the view taken back.
TYPED_TEST(ViewListsEquivalence, TheOtherEnginesDialectFailsAlikeInEveryView) {
  Tally tally;
  size_t index = 0;
  for (int seed = 3001; seed < 3031 && tally.mismatches < kMismatchesReported; ++seed) {
    const RandomCalendar calendar = this->Seed(seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    for (ViewKind view : {ViewKind::kMonth, ViewKind::kWeek, ViewKind::kDay}) {
      for (int n = 0; n < 2; ++n) {
        ViewRequest request = this->RequestFor(view, calendar, random, index++);
        request.other_dialect = true;
        this->ExpectSameDrawing(calendar, request, tally);
      }
    }
  }
  EXPECT_EQ(tally.drawings, 180);
  EXPECT_EQ(tally.failures, tally.drawings);
}

// Without an open connection the first list fails either way, with the closed connection's
// error.
TYPED_TEST(ViewListsEquivalence, AClosedConnectionFailsAlikeInEveryView) {
  Tally tally;
  size_t index = 0;
  const RandomCalendar calendar = this->Seed(4001);
  std::mt19937 random(4001u);
  for (ViewKind view : {ViewKind::kMonth, ViewKind::kWeek, ViewKind::kDay}) {
    for (int n = 0; n < 8; ++n) {
      ViewRequest request = this->RequestFor(view, calendar, random, index++);
      request.closed_connection = true;
      this->ExpectSameDrawing(calendar, request, tally);
    }
  }
  EXPECT_EQ(tally.failures, 24);
}

}  // namespace
}  // namespace tidewell

// How long a feed of 1,000 items takes: writing it with libical alone (WriteFeed), and a whole
// read of it (the token's lookup, the items' statement, writing it twice: once to hash its
// content, once with its stamp) on the embedded database. The aim is under 20 ms for either.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "data/connection.h"
#include "data/schema.h"
#include "data/session.h"
#include "feeds/feed_calendar.h"
#include "feeds/feed_document.h"
#include "feeds/feed_tokens.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

constexpr int kItems = 1000;
constexpr long long kNow = 1774008000;  // 2026-03-20 12:00:00 UTC

std::string HeadingOf(int i) {
  return "Item " + std::to_string(i) + ": tide tables, \u00e4\u20ac; checked";
}

std::vector<FeedItem> ThousandItems() {
  std::vector<FeedItem> items;
  for (int i = 0; i < kItems; ++i) {
    const int day = 1 + i % 28;
    items.push_back({.item_id = i + 1,
                     .start = {2026, 3 + i / 250, day, 8 + i % 10, (i % 4) * 15, 0},
                     .heading = HeadingOf(i),
                     .description = "Notes for item " + std::to_string(i) + "\nsecond line",
                     .urgent = i % 7 == 0,
                     .complete = i % 5 == 0});
  }
  return items;
}

void BM_WriteFeedOfAThousandItems(benchmark::State& state) {
  const SiteTimeZone zone = TimeZoneNamed("Europe/Berlin");
  const FeedHeading heading{.calendar_name = "bob \u2013 Tidewell",
                            .site_identity = "0123456789abcdef0123456789abcdef",
                            .zone = &zone,
                            .first_year = 2026,
                            .stamp = kNow};
  const std::vector<FeedItem> items = ThousandItems();
  size_t bytes = 0;
  for (auto _ : state) {
    std::string body = WriteFeed(heading, items);
    bytes = body.size();
    benchmark::DoNotOptimize(body);
  }
  state.counters["bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_WriteFeedOfAThousandItems)->Unit(benchmark::kMillisecond);

void BM_ReadFeedOfAThousandItemsFromSqlite(benchmark::State& state) {
  testing::TempFolder folder;
  const std::string connection_string =
      "Provider=SQLite;Data Source=" + folder.path() + "/calendar.db";
  CreateSchema(connection_string);
  testing::Seeder data(connection_string, testing::PasswordHashing::kOncePerProcess);
  const std::string bob =
      data.AddUser({.name = "bob", .group = data.AddGroup("Crew"), .initials = "BB"});
  std::vector<testing::Item> items;
  for (int i = 0; i < kItems; ++i) {
    items.push_back({.owner = bob,
                     .date = DateSerial(2026, 3 + i / 250, 1 + i % 28),
                     .hour = 8 + i % 10,
                     .time_text = std::to_string(8 + i % 10) + ":15",
                     .heading = HeadingOf(i),
                     .description = "Notes",
                     .urgent = i % 7 == 0,
                     .complete = i % 5 == 0});
  }
  data.AddItems(items);
  ado::Connection connection;
  connection.Open(connection_string);
  const std::string token = FeedTokenFor(connection, bob, kNow);
  const FeedSource source{.connection_string = connection_string,
                          .dialect = ASPDataServer::Access,
                          .zone = TimeZoneNamed("Europe/Berlin"),
                          .days_back = 90,
                          .days_ahead = 400};
  size_t events = 0;
  for (auto _ : state) {
    std::optional<FeedDocument> feed = ReadFeed(source, token, kNow);
    if (!feed) state.SkipWithError("the token opened no feed");
    events = feed ? feed->body.size() : 0;
    benchmark::DoNotOptimize(feed);
  }
  state.counters["bytes"] = static_cast<double>(events);
  ado::ClosePooledSessions();
}
BENCHMARK(BM_ReadFeedOfAThousandItemsFromSqlite)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tidewell

BENCHMARK_MAIN();

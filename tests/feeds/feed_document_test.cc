// A feed read on both engines: the items its account sees within the window, the token made,
// replaced and refused, and the time a body's content changed, kept with the token so that
// every server serves the same body for the same content.

#include "feeds/feed_document.h"

#include <gtest/gtest.h>
#include <libical/ical.h>

#include <string>
#include <vector>

#include "data/connection.h"
#include "feeds/feed_tokens.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

constexpr long long kNoon20March2026 = 1774008000;  // 2026-03-20 12:00:00 UTC

// The SUMMARY of every VEVENT, in order, as libical reads the body back.
std::vector<std::string> Summaries(const std::string& body) {
  std::vector<std::string> summaries;
  icalcomponent* calendar = icalparser_parse_string(body.c_str());
  if (calendar == nullptr) return {"unreadable"};
  for (icalcomponent* event = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
       event != nullptr;
       event = icalcomponent_get_next_component(calendar, ICAL_VEVENT_COMPONENT)) {
    summaries.push_back(icalcomponent_get_summary(event));
  }
  icalcomponent_free(calendar);
  return summaries;
}

template <class Engine>
class FeedOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    testing::Seeder data(engine_.connection_string, testing::PasswordHashing::kOncePerProcess);
    const long crew = data.AddGroup("Crew");
    const long galley = data.AddGroup("Galley");
    bob_ = data.AddUser({.name = "bob", .group = crew, .initials = "BB"});
    carla_ =
        data.AddUser({.name = "carla", .group = crew, .options = "1+8+0+0+0", .initials = "CA"});
    dora_ =
        data.AddUser({.name = "dora", .group = galley, .options = "1+8+0+0+0", .initials = "DO"});
    data.AddItems({{.owner = bob_, .date = DateSerial(2026, 3, 9), .heading = "Before"},
                   {.owner = bob_, .date = DateSerial(2026, 3, 10), .heading = "First"},
                   {.owner = carla_, .date = DateSerial(2026, 3, 22), .hour = 8,
                    .heading = "Carla's"},
                   {.owner = bob_, .date = DateSerial(2026, 3, 22), .hour = 10,
                    .heading = "Bob's"},
                   {.owner = dora_, .date = DateSerial(2026, 3, 22), .heading = "Dora's"},
                   {.owner = bob_, .date = DateSerial(2026, 4, 9), .heading = "Last"},
                   {.owner = bob_, .date = DateSerial(2026, 4, 10), .heading = "After"}});
    source_ = FeedSource{.connection_string = engine_.connection_string,
                         .dialect = Engine::kDialect,
                         .zone = TimeZoneNamed("Europe/Berlin"),
                         .days_back = 10,
                         .days_ahead = 20};
    connection_.Open(engine_.connection_string);
  }

  std::string TokenOf(const std::string& key) {
    return FeedTokenFor(connection_, key, kNoon20March2026);
  }

  Engine engine_;
  ado::Connection connection_;
  FeedSource source_;
  std::string bob_, carla_, dora_;
};

TYPED_TEST_SUITE(FeedOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(FeedOnEngine, HoldsWhatItsAccountSeesWithinTheWindowInTheListsOrder) {
  auto summaries = [&](const std::string& key) {
    auto feed = ReadFeed(this->source_, this->TokenOf(key), kNoon20March2026);
    return feed ? Summaries(feed->body) : std::vector<std::string>{"no feed"};
  };
  EXPECT_EQ(summaries(this->bob_), (std::vector<std::string>{"First", "Bob's", "Last"}));
  EXPECT_EQ(summaries(this->carla_),
            (std::vector<std::string>{"First", "Carla's", "Bob's", "Last"}));
  EXPECT_EQ(summaries(this->dora_), (std::vector<std::string>{"Dora's"}));
}

TYPED_TEST(FeedOnEngine, ATokenIsMadeOnceAndAReplacedOneOpensNothing) {
  const std::string token = this->TokenOf(this->bob_);
  EXPECT_TRUE(IsFeedToken(token)) << token;
  EXPECT_EQ(this->TokenOf(this->bob_), token);
  EXPECT_NE(this->TokenOf(this->carla_), token);
  ASSERT_TRUE(ReadFeed(this->source_, token, kNoon20March2026));

  const std::string renewed = RenewFeedToken(this->connection_, this->bob_, kNoon20March2026);
  EXPECT_NE(renewed, token);
  EXPECT_EQ(this->TokenOf(this->bob_), renewed);
  EXPECT_FALSE(ReadFeed(this->source_, token, kNoon20March2026));
  EXPECT_TRUE(ReadFeed(this->source_, renewed, kNoon20March2026));
  EXPECT_FALSE(ReadFeed(this->source_, std::string(32, '0'), kNoon20March2026));
  EXPECT_FALSE(ReadFeed(this->source_, "x'; DROP TABLE Items; --", kNoon20March2026));
  // A token whose account is gone opens nothing either.
  this->connection_.Execute(ado::Statement("DELETE FROM Users WHERE Username = 'bob'"));
  EXPECT_FALSE(ReadFeed(this->source_, renewed, kNoon20March2026));
}

// The first body of a content is recorded with its time; later fetches, from this server or
// another, serve the same bytes until the items change.
TYPED_TEST(FeedOnEngine, TheSameContentKeepsItsBodyAndANewOneItsOwnTime) {
  const std::string token = this->TokenOf(this->bob_);
  auto first = ReadFeed(this->source_, token, kNoon20March2026);
  auto later = ReadFeed(this->source_, token, kNoon20March2026 + 3600);
  ASSERT_TRUE(first && later);
  EXPECT_EQ(first->last_modified, kNoon20March2026);
  EXPECT_EQ(later->last_modified, kNoon20March2026);
  EXPECT_EQ(later->body, first->body);
  EXPECT_EQ(later->etag, first->etag);
  EXPECT_NE(first->body.find("DTSTAMP:20260320T120000Z"), std::string::npos);

  this->connection_.Execute(ado::Statement("UPDATE Items SET Heading = 'Renamed' WHERE "
                                           "Heading = 'Bob''s'"));
  this->connection_.Execute(ado::Statement("UPDATE Items SET Urgent = 1 WHERE Heading = 'Last'"));
  auto changed = ReadFeed(this->source_, token, kNoon20March2026 + 7200);
  ASSERT_TRUE(changed);
  EXPECT_EQ(changed->last_modified, kNoon20March2026 + 7200);
  EXPECT_NE(changed->etag, first->etag);
  EXPECT_NE(changed->body.find("PRIORITY:1"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

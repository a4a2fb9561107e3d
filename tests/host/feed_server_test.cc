// Feeds through the real server on a real SQLite file, read back by Python's icalendar (an
// iCalendar reader that shares nothing with libical): every field against the items, whose
// items a feed holds, its window, its validators, replacing an address, and a site with feeds
// off.

#include <gtest/gtest.h>
#include <httplib.h>

#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "runtime/dates.h"
#include "tests/component/seeded_database.h"
#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"
#include "tests/host/table_snapshot.h"
#include "tests/support/run_binary.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using testing::FormAction;
using testing::LinkTitled;
using testing::ServerProcess;

// 20 March 2026 in Berlin: the window of 10 days back and 20 ahead runs from 10 March to
// 9 April, over the night the clocks go forward (29 March).
constexpr const char* kNow = "TIDEWELL_NOW=2026-03-20 09:30:00";

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The fields of read_feed.py's event line: UID, start, zone, end, summary, description,
// priority.
std::vector<std::string> Fields(const std::string& event) {
  std::vector<std::string> fields;
  size_t start = 0;
  for (size_t bar; (bar = event.find(" | ", start)) != std::string::npos; start = bar + 3) {
    fields.push_back(event.substr(start, bar - start));
  }
  fields.push_back(event.substr(start));
  return fields;
}

class FeedServer : public ::testing::Test {
 protected:
  void SetUp() override {
    data_ = std::make_unique<testing::Seeder>(database_.connection_string(),
                                              testing::PasswordHashing::kOncePerProcess);
    const long crew = data_->AddGroup("Crew");
    const long galley = data_->AddGroup("Galley");
    bob_ = data_->AddUser({.name = "bob", .group = crew, .initials = "BB"});  // his own items only
    carla_ = data_->AddUser({.name = "carla",
                             .group = crew,
                             .options = "1+8+0+0+0",
                             .initials = "CA"});  // the whole group
    dora_ = data_->AddUser({.name = "dora", .group = galley, .initials = "DO"});
    Write("Feeds = on\nTimeZone = Europe/Berlin\nFeedDaysBack = 10\nFeedDaysAhead = 20\n");
  }

  void Write(const std::string& keys) {
    config_ = database_.folder() + "/site.conf";
    std::ofstream(config_) << "ConnectionString = " << database_.connection_string()
                           << "\nLinkSecret = feed-test-secret-0123456789\n" << keys;
  }

  void Start() {
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config_, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server_->WaitForPort();
    ASSERT_NE(port_, 0) << server_->Log();
  }

  long AddItem(const std::string& owner, Date day, long hour, const std::string& time_text,
               const std::string& heading, const std::string& description = "",
               bool urgent = false, bool complete = false) {
    return data_->AddItem({.owner = owner, .date = day, .hour = hour, .time_text = time_text,
                           .heading = heading, .description = description, .urgent = urgent,
                           .complete = complete});
  }

  // `tidewell user feed NAME` (with --renew): the address it prints.
  std::string FeedPath(const std::string& name, bool renew = false) {
    std::vector<std::string> args{"user", "feed", name, "--config", config_};
    if (renew) args.push_back("--renew");
    testing::CommandResult run = testing::RunBinary(TIDEWELL_BINARY, args);
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out.substr(0, run.out.find('\n'));
  }

  httplib::Result Fetch(const std::string& path, const httplib::Headers& headers = {}) {
    httplib::Client client("127.0.0.1", port_);
    return client.Get(path.c_str(), headers);
  }

  // What Python's icalendar reads from the body: read_feed.py's lines.
  std::vector<std::string> ReadWithPython(const std::string& body) {
    const std::string file = database_.folder() + "/feed.ics";
    std::ofstream(file, std::ios::binary) << body;
    testing::CommandResult run = testing::RunBinary(
        "/usr/bin/python3", {TIDEWELL_SOURCE_DIR "/tests/feeds/read_feed.py", file});
    EXPECT_EQ(run.status, 0) << run.err << body;
    return Lines(run.out);
  }

  std::vector<std::string> Events(const std::string& body) {
    std::vector<std::string> events;
    for (const std::string& line : ReadWithPython(body)) {
      if (line.starts_with("event ")) events.push_back(line.substr(6));
    }
    return events;
  }

  // A form posted as a browser posts it; the page it answers.
  std::string Post(const std::string& action, const std::string& body) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Post(("/" + action).c_str(), body, "application/x-www-form-urlencoded");
    return res ? res->body : "";
  }

  // Bob signs in (password "pw") and opens his user options screen.
  std::string BobsOptionsScreen() {
    httplib::Client client("127.0.0.1", port_);
    const std::string month =
        Post(FormAction(client.Get("/")->body), "username=bob&password=pw&login=y");
    return client.Get(("/" + LinkTitled(month, "User Options")).c_str())->body;
  }

  std::string UidOf(long item_id) {
    testing::CommandResult run = testing::RunBinary(
        "/usr/bin/python3",
        {"-c", "import sqlite3,sys; print(sqlite3.connect(sys.argv[1]).execute(\"SELECT Value "
               "FROM TidewellSettings WHERE Name = 'FeedSiteIdentity'\").fetchone()[0])",
         database_.folder() + "/calendar.db"});
    return "tidewell-item-" + std::to_string(item_id) + "@" + run.out.substr(0, 32);
  }

  // An account's items as the database holds them, a line of their columns but the owner
  // each, in the order of date, hour and heading.
  std::string ItemsOf(const std::string& name) {
    const char* query =
        name == "bob"
            ? "SELECT DateStamp, TimeStamp, TimeText, Heading, Description, Urgent, Complete FROM "
              "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE Username = 'bob' "
              "ORDER BY DateStamp, TimeStamp, Heading"
            : "SELECT DateStamp, TimeStamp, TimeText, Heading, Description, Urgent, Complete FROM "
              "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE Username = 'dora' "
              "ORDER BY DateStamp, TimeStamp, Heading";
    return testing::TableSnapshot(database_.connection_string(), {query});
  }

  testing::SeededDatabase database_;
  std::unique_ptr<testing::Seeder> data_;
  std::string bob_, carla_, dora_;
  std::string config_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
};

TEST_F(FeedServer, EveryFieldReadsBackAsTheItemHasIt) {
  const long tide = AddItem(bob_, DateSerial(2026, 3, 24), 9, "09:30",
                            "Spring tide, high; water \\ low",
                            "Line one\nLine two, with \"quotes\"", /*urgent=*/true);
  const long done = AddItem(bob_, DateSerial(2026, 3, 30), 14, "14:45", "Caulk the hull", "",
                            false, /*complete=*/true);
  Start();
  auto res = Fetch(FeedPath("bob"));
  ASSERT_TRUE(res);
  ASSERT_EQ(res->status, 200);
  EXPECT_EQ(res->get_header_value("Content-Type"), "text/calendar; charset=utf-8");
  const std::vector<std::string> lines = ReadWithPython(res->body);
  ASSERT_GE(lines.size(), 4u) << res->body;
  EXPECT_EQ(lines[0], "calendar 2.0 GREGORIAN bob \u2013 Tidewell");
  EXPECT_EQ(lines[1], "prodid -//Tidewell//Tidewell Calendar Feed//EN");
  // Winter time before the change on 29 March, summer time after it.
  EXPECT_EQ(lines[2], "event " + UidOf(tide) +
                          " | 2026-03-24T09:30:00+01:00 | Europe/Berlin | "
                          "2026-03-24T10:30:00+01:00 | Spring tide, high; water \\\\ low | "
                          "Line one\\nLine two, with \"quotes\" | 1");
  EXPECT_EQ(lines[3], "event " + UidOf(done) +
                          " | 2026-03-30T14:45:00+02:00 | Europe/Berlin | "
                          "2026-03-30T15:45:00+02:00 | \u2713 Caulk the hull |  | -");
  EXPECT_EQ(lines.size(), 4u);
  EXPECT_NE(res->body.find("BEGIN:VTIMEZONE\r\nTZID:Europe/Berlin\r\n"), std::string::npos);
}

TEST_F(FeedServer, LongTextIsFoldedBetweenCharactersAndReadsBackWhole) {
  std::string heading = "Tide tables: ";
  for (int i = 0; i < 12; ++i) heading += "\u00e4\u20ac\U0001F30A, ";  // 2-, 3- and 4-byte
  const std::string description = std::string(200, 'x') + ";\\\n" + heading;
  AddItem(bob_, DateSerial(2026, 3, 21), 8, "08:00", heading, description);
  Start();
  auto res = Fetch(FeedPath("bob"));
  ASSERT_TRUE(res && res->status == 200);
  for (const std::string& line : Lines(res->body)) {
    EXPECT_LE(line.size(), 76u) << line;  // 75 octets and the CR
  }
  const std::vector<std::string> events = Events(res->body);
  ASSERT_EQ(events.size(), 1u);
  EXPECT_NE(events[0].find(" | " + heading + " | " + std::string(200, 'x') + ";\\\\\\n" +
                           heading + " | -"),
            std::string::npos)
      << events[0];
}

TEST_F(FeedServer, AFeedHoldsWhatItsOwnerSeesWithinTheWindow) {
  AddItem(bob_, DateSerial(2026, 3, 9), 9, "09:00", "Too early");
  AddItem(bob_, DateSerial(2026, 3, 10), 9, "09:00", "First day");
  AddItem(bob_, DateSerial(2026, 4, 9), 9, "09:00", "Last day");
  AddItem(bob_, DateSerial(2026, 4, 10), 9, "09:00", "Too late");
  AddItem(carla_, DateSerial(2026, 3, 22), 9, "09:00", "Carla's");
  AddItem(dora_, DateSerial(2026, 3, 22), 9, "09:00", "Dora's");
  Start();
  auto headings = [&](const std::string& name) {
    std::string all;
    for (const std::string& event : Events(Fetch(FeedPath(name))->body)) {
      all += Fields(event).at(4) + ";";
    }
    return all;
  };
  // Bob sees his own items; Carla, with the show-all option, her group's; nobody Dora's.
  EXPECT_EQ(headings("bob"), "First day;Last day;");
  EXPECT_EQ(headings("carla"), "First day;Carla's;Last day;");
  EXPECT_EQ(headings("dora"), "Dora's;");
}

TEST_F(FeedServer, ValidatorsAnswer304AndAChangeKeepsTheUid) {
  const long item = AddItem(bob_, DateSerial(2026, 3, 25), 11, "11:00", "Old heading");
  Start();
  const std::string path = FeedPath("bob");
  auto first = Fetch(path);
  ASSERT_TRUE(first && first->status == 200);
  const std::string etag = first->get_header_value("ETag");
  const std::string modified = first->get_header_value("Last-Modified");
  EXPECT_TRUE(std::regex_match(etag, std::regex("\"[0-9a-f]{32}\""))) << etag;
  EXPECT_EQ(modified, "Fri, 20 Mar 2026 09:30:00 GMT");
  EXPECT_EQ(first->get_header_value("Cache-Control"), "private, max-age=300");

  auto again = Fetch(path);
  EXPECT_EQ(again->body, first->body);  // the same body, byte for byte: same ETag
  EXPECT_EQ(again->get_header_value("ETag"), etag);

  auto unchanged = Fetch(path, {{"If-None-Match", etag}});
  EXPECT_EQ(unchanged->status, 304);
  EXPECT_EQ(unchanged->body, "");
  EXPECT_EQ(unchanged->get_header_value("ETag"), etag);
  EXPECT_EQ(Fetch(path, {{"If-Modified-Since", modified}})->status, 304);
  EXPECT_EQ(Fetch(path, {{"If-Modified-Since", "Thu, 19 Mar 2026 09:30:00 GMT"}})->status, 200);
  EXPECT_EQ(Fetch(path, {{"If-None-Match", "\"0123\""}, {"If-Modified-Since", modified}})->status,
            200);

  httplib::Client client("127.0.0.1", port_);
  auto head = client.Head(path.c_str());
  ASSERT_TRUE(head);
  EXPECT_EQ(head->status, 200);
  EXPECT_EQ(head->body, "");
  EXPECT_EQ(head->get_header_value("ETag"), etag);

  database_.Execute("UPDATE Items SET Heading = 'New heading'");
  auto changed = Fetch(path, {{"If-None-Match", etag}});
  ASSERT_EQ(changed->status, 200);
  EXPECT_NE(changed->get_header_value("ETag"), etag);
  const std::vector<std::string> before = Events(first->body);
  const std::vector<std::string> after = Events(changed->body);
  ASSERT_EQ(before.size(), 1u);
  ASSERT_EQ(after.size(), 1u);
  EXPECT_EQ(before[0].substr(0, before[0].find(' ')), UidOf(item));
  EXPECT_EQ(after[0].substr(0, after[0].find(' ')), UidOf(item));
  EXPECT_NE(after[0].find("| New heading |"), std::string::npos) << after[0];
}

TEST_F(FeedServer, UnknownMalformedAndReplacedAddressesAreTheSitesOrdinary404) {
  Start();
  const std::string old_path = FeedPath("bob");
  ASSERT_EQ(Fetch(old_path)->status, 200);
  const std::string new_path = FeedPath("bob", /*renew=*/true);
  EXPECT_NE(new_path, old_path);
  EXPECT_EQ(Fetch(new_path)->status, 200);
  const std::string ordinary = Fetch("/no-such-page")->body;
  for (const std::string& path :
       {old_path, std::string("/feed/0123456789abcdef0123456789abcdef.ics"),
        std::string("/feed/not-a-token.ics"), std::string("/feed/"),
        new_path.substr(0, new_path.size() - 4)}) {
    auto res = Fetch(path);
    ASSERT_TRUE(res) << path;
    EXPECT_EQ(res->status, 404) << path;
    EXPECT_EQ(res->body, ordinary) << path;
  }
}

TEST_F(FeedServer, TheLogNeverCarriesAToken) {
  Start();
  const std::string path = FeedPath("bob");
  const std::string token = path.substr(6, 32);
  Fetch(path);
  Fetch("/feed/" + std::string(32, 'a') + ".ics");
  ASSERT_TRUE(server_->WaitForLog("\"GET /feed/... HTTP/1.1\" 404"));
  const std::string log = server_->Log();
  EXPECT_NE(log.find("\"GET /feed/... HTTP/1.1\" 200"), std::string::npos) << log;
  EXPECT_EQ(log.find(token), std::string::npos) << log;
  EXPECT_EQ(log.find(std::string(32, 'a')), std::string::npos) << log;
}

// The user options screen shows the address with the request's Host; its button replaces the
// token only with the screen's own, valid key.
TEST_F(FeedServer, TheOptionsScreenShowsTheAddressAndItsButtonReplacesIt) {
  Start();
  const std::string options = BobsOptionsScreen();
  const std::string origin = "http://127.0.0.1:" + std::to_string(port_);
  std::smatch shown;
  ASSERT_TRUE(std::regex_search(options, shown,
                                std::regex("value=\"(" + origin + "/feed/[0-9a-f]{32}\\.ics)\"")))
      << options;
  const std::string address = shown[1];
  EXPECT_EQ(origin + FeedPath("bob"), address);

  // A key signed before the password changed no longer opens the account: nothing renews.
  const std::string stale_action = FormAction(options);
  database_.Execute("UPDATE Users SET Password = 'changed-elsewhere' WHERE Username = 'bob'");
  const std::string refused = Post(stale_action, "feedaction=renew");
  // Signed out: the site without an administrator greets a visitor with its welcome screen.
  EXPECT_NE(refused.find("<!-- WelcomeScreen  Start -->"), std::string::npos) << refused;
  EXPECT_EQ(refused.find("<!-- UserOptionsView  Start -->"), std::string::npos);
  EXPECT_EQ(origin + FeedPath("bob"), address);
}

TEST_F(FeedServer, TheButtonReplacesTheAddressAndTheOldOneAnswers404) {
  Start();
  const std::string options = BobsOptionsScreen();
  const std::string old_path = FeedPath("bob");
  ASSERT_NE(options.find(old_path), std::string::npos) << options;
  const std::string renewed = Post(FormAction(options), "feedaction=renew");
  ASSERT_NE(renewed.find("<!-- UserOptionsView  Start -->"), std::string::npos) << renewed;
  EXPECT_EQ(renewed.find(old_path), std::string::npos);
  const std::string new_path = FeedPath("bob");
  EXPECT_NE(new_path, old_path);
  EXPECT_NE(renewed.find(new_path), std::string::npos) << renewed;
  EXPECT_EQ(Fetch(old_path)->status, 404);
  EXPECT_EQ(Fetch(new_path)->status, 200);
}

TEST_F(FeedServer, ThePublicAddressStandsInTheScreensAndTheCommandsAddress) {
  Write("Feeds = on\nPublicAddress = https://cal.example.org/\n");
  Start();
  const std::string path = FeedPath("bob");
  EXPECT_TRUE(std::regex_match(path, std::regex("https://cal\\.example\\.org/feed/[0-9a-f]{32}\\.ics")))
      << path;
}

TEST_F(FeedServer, WithFeedsOffThereIsNoFeedAndNoRow) {
  Start();
  const std::string path = FeedPath("bob");
  server_.reset();
  Write("");
  Start();
  EXPECT_EQ(Fetch(path)->status, 404);
  const std::string options = BobsOptionsScreen();
  ASSERT_NE(options.find("<!-- UserOptionsView  Start -->"), std::string::npos) << options;
  EXPECT_EQ(options.find("Calendar Feed"), std::string::npos);
  EXPECT_EQ(options.find("feedaction"), std::string::npos);
}

// A feed imported into another account makes the same items: day, hour, time text, heading,
// description (line ends as the form posts them), urgent and complete, across the night the
// clocks go forward; importing it again adds nothing.
TEST_F(FeedServer, AFeedImportedIntoAnotherAccountMakesTheSameItems) {
  AddItem(bob_, DateSerial(2026, 3, 12), 7, "07:15", "Tide table, \"spring\"; check",
          "Line one\r\nLine two, with a ; and a \\", /*urgent=*/true);
  AddItem(bob_, DateSerial(2026, 3, 28), 23, "23:45", "Night watch \u00e9\u00e8\u4e2d\u6587");
  AddItem(bob_, DateSerial(2026, 3, 30), 14, "14:00", "Caulk the hull", "", false,
          /*complete=*/true);
  AddItem(bob_, DateSerial(2026, 4, 9), 0, "00:05", "Last day, first minute", "", true, true);
  Start();
  const std::string feed_file = database_.folder() + "/bob.ics";
  std::ofstream(feed_file, std::ios::binary) << Fetch(FeedPath("bob"))->body;

  const auto import = [&] {
    return testing::RunBinary("/usr/bin/env", {kNow, TIDEWELL_BINARY, "import", "--user", "dora",
                                               feed_file, "--config", config_});
  };
  testing::CommandResult first = import();
  EXPECT_EQ(first.status, 0) << first.err;
  EXPECT_EQ(first.out, "tidewell import: imported 4 items for dora; skipped 0\n") << first.err;
  const std::string bobs = ItemsOf("bob");
  size_t rows = 0;  // each row's line ends "|" (a description may hold line ends of its own)
  for (size_t at = bobs.find("|\n"); at != std::string::npos; at = bobs.find("|\n", at + 1)) ++rows;
  EXPECT_EQ(rows, 4u) << bobs;
  EXPECT_EQ(ItemsOf("dora"), bobs);

  testing::CommandResult again = import();
  EXPECT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(again.out, "tidewell import: imported 0 items for dora; skipped 4 (4 already imported)\n");
  EXPECT_EQ(ItemsOf("dora"), bobs);
}

}  // namespace
}  // namespace tidewell

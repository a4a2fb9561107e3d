// Accounts under attack and under load, through two real servers that share one database on
// either engine, as two servers behind a load balancer do: the first administrator made once,
// user names unique, the login throttled across servers, links that die with the account or its
// password, the link secret shared with no configuration, passwords never stored as typed.

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/component/site_visit.h"
#include "tests/data/engines.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using testing::AccountForm;
using testing::FormAction;
using testing::FormFields;
using testing::LinkTitled;
using testing::ServerProcess;
using testing::SiteClient;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";
constexpr const char* kInvalidLogin = "The Username and/or Password you have entered is invalid.";

bool Contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

// Runs `request(i)` for i in [0, count) on as many threads, released at one moment.
void AllAtOnce(int count, const std::function<void(int)>& request) {
  std::latch start(count);
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      request(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// Two servers on one database of the engine, with no LinkSecret configured: the secret is the
// one the database keeps. The clock stands still, so the login throttle's window never passes.
template <class Engine>
class TwoServers : public ::testing::Test {
 protected:
  static constexpr int kServers = 2;

  void SetUp() override {
    if (std::string skip = engine_.Start(); !skip.empty()) GTEST_SKIP() << skip;
    config_ = folder_.path() + "/site.conf";
    std::ofstream(config_) << "Visible = True\nImagePath = images/\nConnectionString = "
                           << engine_.connection_string << "\nDataServer = "
                           << (Engine::kDialect == ASPDataServer::SQLServer ? 1 : 0) << "\n";
    for (int i = 0; i < kServers; ++i) {
      servers_.push_back(StartServer());
      ports_.push_back(servers_.back()->WaitForPort());
      ASSERT_NE(ports_.back(), 0) << servers_.back()->Log();
    }
  }

  std::unique_ptr<ServerProcess> StartServer() const {
    return std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config_, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
  }

  // A browser at server `i` (any number wraps around the servers).
  SiteClient At(int i) const { return SiteClient(ports_[i % kServers]); }

  // The first column of the first row of a statement made of fixed text, as a number.
  long Number(const char* statement) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement(statement), connection);
    return CLng(rs.Fields(0).Value());
  }
  std::string StoredPassword(const std::string& key) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT Password FROM Users WHERE OwnerKey = ").Text(key), connection);
    return rs.Eof() ? "" : CStr(rs.Fields("Password").Value());
  }

  Engine engine_;
  testing::TempFolder folder_;
  std::string config_;
  std::vector<std::unique_ptr<ServerProcess>> servers_;
  std::vector<int> ports_;
};

// A site with an administrator "boss" and "bob", "carol" of the group Crew (passwords "pw").
template <class Engine>
class SeededSite : public TwoServers<Engine> {
 protected:
  void SetUp() override {
    TwoServers<Engine>::SetUp();
    if (this->IsSkipped() || this->HasFatalFailure()) return;
    testing::Seeder data(this->engine_.connection_string,
                         testing::PasswordHashing::kOncePerProcess);
    crew_ = data.AddGroup("Crew");
    boss_ = data.AddUser({.name = "boss", .group = crew_, .administrator = true, .initials = "BO"});
    bob_ = data.AddUser({.name = "bob", .group = crew_, .initials = "BB"});
    carol_ = data.AddUser({.name = "carol", .group = crew_, .initials = "CC"});
  }
  long crew_ = 0;
  std::string boss_, bob_, carol_;
};

TYPED_TEST_SUITE(TwoServers, testing::Engines, testing::EngineNames);
TYPED_TEST_SUITE(SeededSite, testing::Engines, testing::EngineNames);

TYPED_TEST(TwoServers, TheFirstAdministratorIsMadeOnceWhateverTheNumberOfVisitorsAtOnce) {
  const std::string welcome = this->At(0).Get("");
  ASSERT_TRUE(Contains(welcome, "<!-- WelcomeScreen  Start -->")) << welcome;
  const std::string first_form =
      this->At(0).PostForm(FormAction(welcome), {{"submit", "Next"}, {"welcome", "y"}});
  const std::string action = FormAction(first_form);
  ASSERT_FALSE(action.empty()) << first_form;

  constexpr int kVisitors = 16;
  std::atomic<int> made{0};
  AllAtOnce(kVisitors, [&](int i) {
    FormFields form = AccountForm("first" + std::to_string(i), "F" + std::string(1, 'A' + i), "",
                                  "Bridge" + std::to_string(i), "Add New User");
    form.emplace_back("welcome", "y");
    if (Contains(this->At(i).PostForm(action, form), "<!-- AdminOptionsView  Start -->")) ++made;
  });
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM Users WHERE Administrator <> 0"), 1);
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM Users"), 1);
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM Groups"), 1);
  EXPECT_EQ(made, 1);
}

TYPED_TEST(SeededSite, AUserNameIsTakenOnceWhateverTheNumberOfAdministratorsPostingIt) {
  // The administrator's new-user form, on each server.
  std::vector<std::string> actions;
  for (int i = 0; i < TwoServers<TypeParam>::kServers; ++i) {
    const std::string calendar = this->At(i).LogIn("boss", "pw");
    const std::string options = this->At(i).Get(LinkTitled(calendar, "Administrator Options"));
    const std::string form = this->At(i).PostForm(FormAction(options), {{"submit", "New User"}});
    ASSERT_TRUE(Contains(form, "value=\"Add New User\" >")) << form;
    actions.push_back(FormAction(form));
  }
  const std::string group = std::to_string(this->crew_);

  constexpr int kPosts = 16;
  const std::vector<std::string> spellings = {"racer", "Racer", "RACER", "rAcEr"};
  std::atomic<int> made{0}, told{0};
  AllAtOnce(kPosts, [&](int i) {
    const std::string page =
        this->At(i).PostForm(actions[i % actions.size()],
                             AccountForm(spellings[i % spellings.size()],
                                         "R" + std::string(1, 'A' + i), group, "", "Add New User"));
    if (Contains(page, "There is already a user named: ")) {
      ++told;
    } else if (Contains(page, "value=\"Delete This User\"")) {
      ++made;
    }
  });
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM Users WHERE Username = 'racer'"), 1);
  EXPECT_EQ(made, 1);
  EXPECT_EQ(told, kPosts - 1);  // the losers of the race hear what anyone else would hear
}

TYPED_TEST(SeededSite, GuessingOnePasswordIsThrottledAcrossServers) {
  constexpr int kGuesses = 30;
  AllAtOnce(kGuesses, [&](int i) {
    EXPECT_TRUE(Contains(this->At(i).LogIn("bob", "guess" + std::to_string(i)), kInvalidLogin));
  });
  // Each guess whose password was checked leaves its failure; the refused ones leave nothing.
  // Guesses that overlap can only be refused more, never checked more: at most five.
  const char* kChecked = "SELECT COUNT(*) AS N FROM LoginFailures WHERE Subject LIKE 'account:%'";
  EXPECT_LE(this->Number(kChecked), 5);
  // Guesses one after another fill the window up to the limit and no further.
  for (int i = 0; i < 6; ++i) this->At(i).LogIn("bob", "again" + std::to_string(i));
  EXPECT_EQ(this->Number(kChecked), 5);
  // Now even the right password is refused, on either server, with the same message.
  for (int i = 0; i < TwoServers<TypeParam>::kServers; ++i) {
    const std::string page = this->At(i).LogIn("BOB", "pw");
    EXPECT_TRUE(Contains(page, kInvalidLogin));
    EXPECT_FALSE(Contains(page, "<!-- MonthView  Start -->"));
  }
  EXPECT_LE(this->Number("SELECT COUNT(*) AS N FROM LoginFailures WHERE Subject LIKE 'account:%'"),
            5);
  // Another account is not locked out by them.
  EXPECT_TRUE(Contains(this->At(1).LogIn("carol", "pw"), "<!-- MonthView  Start -->"));
}

TYPED_TEST(SeededSite, GuessingManyNamesFromOneAddressIsThrottled) {
  for (int i = 0; i < 25; ++i) this->At(i).LogIn("ghost" + std::to_string(i), "guess");
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM LoginFailures WHERE Subject LIKE 'address:%'"),
            20);
  const std::string page = this->At(0).LogIn("carol", "pw");
  EXPECT_TRUE(Contains(page, kInvalidLogin));
  EXPECT_FALSE(Contains(page, "<!-- MonthView  Start -->"));
}

TYPED_TEST(SeededSite, AKeyOfADeletedAccountWritesNothing) {
  const std::string calendar = this->At(0).LogIn("bob", "pw");
  const std::string form = this->At(0).Get(LinkTitled(calendar, "Add New Item"));
  const std::string action = FormAction(form);
  ASSERT_FALSE(action.empty()) << form;
  {
    ado::Connection connection;
    connection.Open(this->engine_.connection_string);
    connection.Execute(ado::Statement("DELETE FROM Users WHERE OwnerKey = ").Text(this->bob_));
  }
  const std::string answer = this->At(1).PostForm(action, {{"ownerkey", this->bob_},
                                                           {"datestamp", "11/25/2026"},
                                                           {"timestamp", "10"},
                                                           {"timetext", "30"},
                                                           {"heading", "Harbour"},
                                                           {"description", ""},
                                                           {"submit", "Add"},
                                                           {"action", "a"}});
  EXPECT_TRUE(Contains(answer, "<!-- LoginScreen  Start -->")) << answer;
  EXPECT_EQ(this->Number("SELECT COUNT(*) AS N FROM Items"), 0);
}

TYPED_TEST(SeededSite, LinksOfOneServerOpenOnTheOtherAndDieWithTheOldPassword) {
  const std::string calendar = this->At(0).LogIn("bob", "pw");
  const std::string next_month = LinkTitled(calendar, "Next Month");
  // The secret the database keeps signs alike on both servers.
  EXPECT_TRUE(Contains(this->At(1).Get(next_month), "<b>User:</b> bob"));

  // Bob changes his password on the other server; his page there goes on signed in.
  const std::string options = this->At(1).Get(LinkTitled(calendar, "User Options"));
  ASSERT_TRUE(Contains(options, "<!-- UserOptionsView  Start -->")) << options;
  const std::string after = this->At(1).PostForm(FormAction(options), {{"loadgroupdata", "1"},
                                                                       {"defaultview", "0"},
                                                                       {"password", "tide"},
                                                                       {"confirm", "tide"},
                                                                       {"submit", "Update"},
                                                                       {"action", "u"}});
  EXPECT_TRUE(Contains(this->At(0).Get(LinkTitled(after, "Next Month")), "<b>User:</b> bob"));

  // Every link signed before the change now opens the login screen, on either server.
  for (int i = 0; i < TwoServers<TypeParam>::kServers; ++i) {
    const std::string page = this->At(i).Get(next_month);
    EXPECT_TRUE(Contains(page, "<!-- LoginScreen  Start -->"));
    EXPECT_FALSE(Contains(page, "<b>User:</b> bob"));
  }
  EXPECT_TRUE(VerifyPassword(this->StoredPassword(this->bob_), "tide"));
}

TYPED_TEST(SeededSite, PasswordsKeptAsTypedAreHashedWhenAServerStarts) {
  {
    ado::Connection connection;
    connection.Open(this->engine_.connection_string);
    connection.Execute(ado::Statement("UPDATE Users SET Password = 'as typed' WHERE OwnerKey = ")
                           .Text(this->carol_));
  }
  auto restarted = this->StartServer();
  const int port = restarted->WaitForPort();
  ASSERT_NE(port, 0) << restarted->Log();
  const std::string stored = this->StoredPassword(this->carol_);
  EXPECT_TRUE(IsPasswordHash(stored)) << stored;
  EXPECT_TRUE(restarted->WaitForLog("replaced 1 stored password with its hash"));
  EXPECT_TRUE(Contains(SiteClient(port).LogIn("carol", "as typed"), "<!-- MonthView  Start -->"));
}

TYPED_TEST(TwoServers, TheFirstAdministratorsPasswordIsStoredHashed) {
  const std::string welcome = this->At(0).Get("");
  const std::string first_form =
      this->At(0).PostForm(FormAction(welcome), {{"submit", "Next"}, {"welcome", "y"}});
  FormFields form = AccountForm("boss", "BO", "", "Bridge", "Add New User");
  form.emplace_back("welcome", "y");
  const std::string page = this->At(1).PostForm(FormAction(first_form), form);
  ado::Connection connection;
  connection.Open(this->engine_.connection_string);
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT Password FROM Users"), connection);
  ASSERT_FALSE(rs.Eof());
  const std::string stored = CStr(rs.Fields("Password").Value());
  EXPECT_TRUE(stored.starts_with("$argon2id$v=19$m=19456,t=2,p=1$")) << stored;
  EXPECT_TRUE(VerifyPassword(stored, "pw"));
  EXPECT_FALSE(Contains(page, stored));
  EXPECT_FALSE(Contains(page, "value=\"pw\""));
}

}  // namespace
}  // namespace tidewell

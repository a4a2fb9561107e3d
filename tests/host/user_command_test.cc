// tidewell user, run as an operator runs it, on both engines.

#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "accounts/account_records.h"
#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"
#include "tests/host/table_snapshot.h"
#include "tests/support/run_binary.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using testing::CommandResult;
using testing::RunBinary;

template <class Engine>
class UserCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::string skip = engine_.Start(); !skip.empty()) GTEST_SKIP() << skip;
  }

  // tidewell user WORDS... --connection STRING, with `input` on standard input.
  CommandResult User(std::vector<std::string> words, const std::string& input = "") {
    words.insert(words.begin(), "user");
    words.push_back("--connection");
    words.push_back(engine_.connection_string);
    return RunBinary(TIDEWELL_BINARY, words, input);
  }

  CommandResult Add(const std::string& name, const std::string& group,
                    std::vector<std::string> more = {}, const std::string& password = "pw\n") {
    std::vector<std::string> words = {"add", name, "--group", group, "--password-stdin"};
    words.insert(words.end(), more.begin(), more.end());
    return User(words, password);
  }

  std::vector<AccountSummary> Accounts() {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    return ListAccounts(connection);
  }

  // Every column of every row of the three tables: what "nothing changed" compares.
  std::string Snapshot() {
    return testing::TableSnapshot(engine_.connection_string,
                                  {"SELECT * FROM Users ORDER BY OwnerKey",
                                   "SELECT * FROM Groups ORDER BY GroupID",
                                   "SELECT * FROM Items ORDER BY ItemID"});
  }

  // The stored value of one column of the account `name`.
  std::string Column(const std::string& name, const char* column) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT * FROM Users WHERE UserName = ").Text(name), connection);
    return rs.Eof() ? "<none>" : CStrOrBlank(rs.Fields(column).Value());
  }

  void AddItem(const std::string& owner_key, const std::string& heading) {
    testing::Seeder(engine_.connection_string).AddItem({.owner = owner_key, .heading = heading});
  }

  long ItemsOf(const std::string& owner_key) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT ItemID FROM Items WHERE OwnerKey = ").Text(owner_key),
            connection);
    long count = 0;
    for (; !rs.Eof(); rs.MoveNext()) ++count;
    return count;
  }

  Engine engine_;
};

TYPED_TEST_SUITE(UserCommand, testing::Engines, testing::EngineNames);

TYPED_TEST(UserCommand, AddMakesTheAccountInANewGroupWithAHashedPassword) {
  CommandResult run = this->Add("alice", "Crew", {}, "s3cret pass\n");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "tidewell user: added alice (initials AL) to the new group Crew\n");
  EXPECT_EQ(run.err, "");

  std::vector<AccountSummary> accounts = this->Accounts();
  ASSERT_EQ(accounts.size(), 1u);
  EXPECT_EQ(accounts[0].user_name, "alice");
  EXPECT_EQ(accounts[0].initials, "AL");
  EXPECT_EQ(accounts[0].group_name, "Crew");
  EXPECT_FALSE(accounts[0].administrator);
  EXPECT_TRUE(std::regex_match(accounts[0].owner_key, std::regex("[0-9a-f]{32}")));

  const std::string hash = this->Column("alice", "Password");
  EXPECT_TRUE(IsPasswordHash(hash)) << hash;
  EXPECT_TRUE(VerifyPassword(hash, "s3cret pass"));  // the line end is not part of it
  EXPECT_EQ(this->Column("alice", "DefaultView"), "0");
  EXPECT_EQ(this->Column("alice", "Options"), "1");
}

TYPED_TEST(UserCommand, AddJoinsAnExistingGroupWithGivenInitialsAsAnAdministrator) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  CommandResult run = this->Add("bob", "crew", {"--initials", "BX", "--admin"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "tidewell user: added bob (initials BX) to the group crew, as an administrator\n");
  std::vector<AccountSummary> accounts = this->Accounts();
  ASSERT_EQ(accounts.size(), 2u);
  EXPECT_EQ(accounts[1].user_name, "bob");
  EXPECT_EQ(accounts[1].group_name, "Crew");  // the group's name compares without case
  EXPECT_TRUE(accounts[1].administrator);
  EXPECT_EQ(this->Column("alice", "GroupID"), this->Column("bob", "GroupID"));
}

TYPED_TEST(UserCommand, ListPrintsAnAlignedTable) {
  ASSERT_EQ(this->Add("alice", "Crew", {"--admin"}).status, 0);
  ASSERT_EQ(this->Add("bob", "Night shift", {"--initials", "B"}).status, 0);
  CommandResult run = this->User({"list"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "NAME   INITIALS  GROUP        ADMINISTRATOR\n"
            "alice  AL        Crew         yes\n"
            "bob    B         Night shift  no\n");
}

TYPED_TEST(UserCommand, ATakenNameInAnySpellingIsRefusedAndNothingChanges) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  const std::string before = this->Snapshot();
  CommandResult run = this->Add("ALICE", "Elsewhere", {"--initials", "ZZ"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "tidewell user: there is already a user named alice. Nothing was changed.\n");
  EXPECT_EQ(this->Snapshot(), before);  // not even the new group
}

TYPED_TEST(UserCommand, InitialsTakenInTheGroupAreRefusedButFreeInAnotherGroup) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  const std::string before = this->Snapshot();
  CommandResult run = this->Add("albert", "Crew");  // AL as well
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "tidewell user: there is already a user with the initials AL in the group Crew: "
            "alice. Nothing was changed.\n");
  EXPECT_EQ(this->Snapshot(), before);
  EXPECT_EQ(this->Add("albert", "Deck").status, 0);
}

TYPED_TEST(UserCommand, PasswdReplacesTheHash) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  CommandResult run = this->User({"passwd", "Alice", "--password-stdin"}, "new one\r\n");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "tidewell user: changed the password of alice\n");
  const std::string hash = this->Column("alice", "Password");
  EXPECT_TRUE(VerifyPassword(hash, "new one"));
  EXPECT_FALSE(VerifyPassword(hash, "pw"));
}

TYPED_TEST(UserCommand, PasswordsThatAreEmptyOrMissingAreRefused) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  const std::string before = this->Snapshot();
  CommandResult empty = this->User({"passwd", "alice", "--password-stdin"}, "\n");
  EXPECT_EQ(empty.status, 1);
  EXPECT_EQ(empty.err, "tidewell user: the password is empty. Nothing was changed.\n");
  CommandResult none = this->User({"passwd", "alice", "--password-stdin"}, "");
  EXPECT_EQ(none.status, 1);
  EXPECT_EQ(none.err, "tidewell user: standard input held no password. Nothing was changed.\n");
  EXPECT_EQ(this->Add("bob", "Crew", {}, "\n").status, 1);
  EXPECT_EQ(this->Snapshot(), before);
}

TYPED_TEST(UserCommand, WithoutATerminalThePasswordMustComeFromStandardInput) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  const std::string before = this->Snapshot();
  CommandResult run = this->User({"passwd", "alice"}, "typed\n");  // a pipe, no terminal
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.err.find("standard input is not a terminal: give --password-stdin"),
            std::string::npos)
      << run.err;
  EXPECT_EQ(this->Snapshot(), before);
}

TYPED_TEST(UserCommand, UnknownUsersAreRefused) {
  ASSERT_EQ(this->Add("alice", "Crew", {"--admin"}).status, 0);
  const std::string before = this->Snapshot();
  for (std::vector<std::string> words : std::vector<std::vector<std::string>>{
           {"passwd", "zed", "--password-stdin"}, {"admin", "zed", "on"}, {"delete", "zed"}}) {
    CommandResult run = this->User(words, "pw\n");
    EXPECT_EQ(run.status, 1) << words[0];
    EXPECT_EQ(run.err, "tidewell user: there is no user named zed. Nothing was changed.\n");
  }
  EXPECT_EQ(this->Snapshot(), before);
}

TYPED_TEST(UserCommand, AdminSetsAndClearsTheFlagButKeepsTheLastAdministrator) {
  ASSERT_EQ(this->Add("alice", "Crew", {"--admin"}).status, 0);
  ASSERT_EQ(this->Add("bob", "Crew").status, 0);

  CommandResult on = this->User({"admin", "bob", "on"});
  ASSERT_EQ(on.status, 0) << on.err;
  EXPECT_EQ(on.out, "tidewell user: bob is an administrator\n");
  EXPECT_TRUE(this->Accounts()[1].administrator);

  EXPECT_EQ(this->User({"admin", "alice", "off"}).status, 0);
  const std::string before = this->Snapshot();
  CommandResult last = this->User({"admin", "bob", "off"});
  EXPECT_EQ(last.status, 1);
  EXPECT_NE(last.err.find("bob is the only administrator"), std::string::npos) << last.err;
  EXPECT_EQ(this->Snapshot(), before);

  CommandResult forced = this->User({"admin", "bob", "off", "--force"});
  EXPECT_EQ(forced.status, 0) << forced.err;
  EXPECT_EQ(forced.out, "tidewell user: bob is no administrator\n");
  for (const AccountSummary& account : this->Accounts()) EXPECT_FALSE(account.administrator);
}

TYPED_TEST(UserCommand, DeleteRemovesTheAccountAndItsItemsOnly) {
  ASSERT_EQ(this->Add("alice", "Crew", {"--admin"}).status, 0);
  ASSERT_EQ(this->Add("bob", "Crew").status, 0);
  const std::string alice = this->Accounts()[0].owner_key;
  const std::string bob = this->Accounts()[1].owner_key;
  this->AddItem(bob, "Dentist");
  this->AddItem(bob, "Lunch");
  this->AddItem(alice, "Review");

  CommandResult run = this->User({"delete", "BOB"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "tidewell user: deleted bob and 2 items\n");
  ASSERT_EQ(this->Accounts().size(), 1u);
  EXPECT_EQ(this->ItemsOf(bob), 0);
  EXPECT_EQ(this->ItemsOf(alice), 1);
}

TYPED_TEST(UserCommand, DeletingTheOnlyAdministratorNeedsForce) {
  ASSERT_EQ(this->Add("alice", "Crew", {"--admin"}).status, 0);
  const std::string before = this->Snapshot();
  CommandResult refused = this->User({"delete", "alice"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("alice is the only administrator"), std::string::npos);
  EXPECT_EQ(this->Snapshot(), before);
  EXPECT_EQ(this->User({"delete", "alice", "--force"}).status, 0);
  EXPECT_TRUE(this->Accounts().empty());
}

TYPED_TEST(UserCommand, BadUsageExitsTwoWithTheUsage) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  const std::string before = this->Snapshot();
  for (std::vector<std::string> words :
       std::vector<std::vector<std::string>>{{},
                                             {"rename", "alice"},
                                             {"add", "bob"},
                                             {"add", "bob", "--group", "Crew", "--password", "pw"},
                                             {"admin", "alice", "maybe"},
                                             {"admin", "alice"},
                                             {"delete"},
                                             {"list", "extra"},
                                             {"passwd", "alice", "--force"}}) {
    CommandResult run = this->User(words, "pw\n");
    EXPECT_EQ(run.status, 2) << ::testing::PrintToString(words);
    EXPECT_NE(run.err.find("Usage: tidewell user ACTION"), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");
  }
  EXPECT_EQ(this->Snapshot(), before);
}

}  // namespace
}  // namespace tidewell

namespace tidewell {
namespace {

// tidewell user feed on both engines: the same address until --renew replaces it, only for an
// account that exists; with --connection alone there is no PublicAddress, so the path.
TYPED_TEST(UserCommand, FeedPrintsTheSameAddressUntilItIsRenewed) {
  ASSERT_EQ(this->Add("alice", "Crew").status, 0);
  CommandResult first = this->User({"feed", "ALICE"});
  ASSERT_EQ(first.status, 0) << first.err;
  EXPECT_TRUE(std::regex_match(first.out, std::regex("/feed/[0-9a-f]{32}\\.ics\n"))) << first.out;
  EXPECT_EQ(first.err, "tidewell user: feeds are off: the address answers once the server runs "
                       "with Feeds = on\n");
  EXPECT_EQ(this->User({"feed", "alice"}).out, first.out);

  CommandResult renewed = this->User({"feed", "alice", "--renew"});
  ASSERT_EQ(renewed.status, 0) << renewed.err;
  EXPECT_TRUE(std::regex_match(renewed.out, std::regex("/feed/[0-9a-f]{32}\\.ics\n")));
  EXPECT_NE(renewed.out, first.out);
  EXPECT_NE(renewed.err.find("replaced the feed address of alice; the old one no longer answers"),
            std::string::npos)
      << renewed.err;
  EXPECT_EQ(this->User({"feed", "alice"}).out, renewed.out);

  CommandResult unknown = this->User({"feed", "zed"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.err, "tidewell user: there is no user named zed. Nothing was changed.\n");
  EXPECT_EQ(this->User({"feed"}).status, 2);
  EXPECT_EQ(this->User({"feed", "alice", "--force"}).status, 2);
}

}  // namespace
}  // namespace tidewell

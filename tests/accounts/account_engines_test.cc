// Account processing and deletion on both engines: the same statements, the group insert that
// may fail without a word, the flag the first administrator gets, and the deletes.

#include <gtest/gtest.h>

#include <memory>

#include "accounts/account_updates.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "page/asp_objects.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/component/seeded_database.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

constexpr const char* kAdmin = "0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a";
constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";

template <class Engine>
class AccountsOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    page_.props.DataServer = Engine::kDialect;
    page_.props.DefaultStartHour = 14;
    page_.request = &request_;
    page_.Screen = screens::kAdministratorOptions;
    page_.Connection = std::make_shared<ado::Connection>();
    page_.Connection->Open(engine_.connection_string);
    crew_ = testing::Seeder(*page_.Connection).AddGroup("Crew");
    AddUser(kAdmin, "admin", true);
    AddUser(kBob, "bob", false);
    page_.UserKey = kAdmin;
    page_.AdminKey = kAdmin;
  }
  void TearDown() override {
    if (page_.Connection) page_.Connection->Close();
  }

  // An account of Crew with one item of its own.
  void AddUser(const char* key, const char* name, bool administrator) {
    testing::Seeder seeder(*page_.Connection);
    seeder.AddUser({.key = key,
                    .name = name,
                    .group = crew_,
                    .administrator = administrator,
                    .options = "1+8+0+0+0"});
    seeder.AddItem({.owner = key,
                    .date = DateSerial(2026, 11, 21),
                    .time_text = std::nullopt,
                    .heading = std::string(name) + "'s item",
                    .description = std::nullopt});
  }
  void Posted(const char* name, const char* initials, const char* new_group) {
    request_.Form = {{"username", name},
                     {"initials", initials},
                     {"groupid", std::to_string(crew_)},
                     {"newgroup", new_group},
                     {"loadgroupdata", "1"},
                     {"userdefaultstarthour", "7"},
                     {"userhighlighttodaysdate", "1"},
                     {"userhighlighttodaystime", "0"},
                     {"usershow12hourday", "1"},
                     {"defaultview", "2"},
                     {"password", "new"}};
  }
  // "name|password|initials|view|options|administrator|group name" of account `key`.
  std::string Account(const std::string& key) {
    Recordset rs;
    rs.Open(Statement("SELECT * FROM Users WHERE OwnerKey = ").Text(key), *page_.Connection);
    if (rs.Eof()) return "";
    const long group = CLng(rs.Fields("GroupID").Value());
    std::string group_name = "none";
    Recordset groups;
    groups.Open(Statement("SELECT GroupName FROM Groups WHERE GroupID = ").Number(group),
                *page_.Connection);
    if (!groups.Eof()) group_name = CStr(groups.Fields("GroupName").Value());
    return CStr(rs.Fields("Username").Value()) + "|" +
           testing::TypedPassword(CStr(rs.Fields("Password").Value())) + "|" +
           CStr(rs.Fields("Initials").Value()) + "|" + CStr(rs.Fields("DefaultView").Value()) +
           "|" + CStr(rs.Fields("Options").Value()) + "|" +
           (CBool(rs.Fields("Administrator").Value()) ? "admin" : "-") + "|" + group_name;
  }
  long Count(const char* statement) {
    Recordset rs;
    rs.Open(Statement(statement), *page_.Connection);
    return rs.RecordCount();
  }

  Engine engine_;
  AspRequest request_;
  Page page_;
  long crew_ = 0;
};

TYPED_TEST_SUITE(AccountsOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(AccountsOnEngine, ANewAccountInANewGroup) {
  this->Posted("carol", "CA", "Deck");
  this->page_.NewUserMode = true;
  ProcessAccount(this->page_, AccountForm::kAdministratorOptions);
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  const std::string carol = this->page_.UserKey;
  EXPECT_TRUE(IsOwnerKey(carol));
  EXPECT_EQ(this->Account(carol), "carol|new|CA|2|1+7+1+0+1|-|Deck");
}

TYPED_TEST(AccountsOnEngine, AGroupNameThatExistsIsJoinedWithoutAWord) {
  this->Posted("carol", "XX", "Crew");
  this->page_.NewUserMode = true;
  ProcessAccount(this->page_, AccountForm::kAdministratorOptions);
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Account(this->page_.UserKey), "carol|new|XX|2|1+7+1+0+1|-|Crew");
  EXPECT_EQ(this->Count("SELECT * FROM Groups"), 1);
}

TYPED_TEST(AccountsOnEngine, TheWelcomeFormsAccountIsAnAdministrator) {
  this->Posted("first", "FA", "Bridge");
  this->request_.Form.Add("welcome", "y");
  this->page_.NewUserMode = true;
  this->page_.UserKey.clear();
  ProcessAccount(this->page_, AccountForm::kAdministratorOptions);
  EXPECT_EQ(this->Account(this->page_.UserKey), "first|new|FA|2|1+7+1+0+1|admin|Bridge");
}

TYPED_TEST(AccountsOnEngine, InitialsTakenInTheGroupAreRefused) {
  this->Posted("carol", "XX", "");
  this->page_.NewUserMode = true;
  ProcessAccount(this->page_, AccountForm::kAdministratorOptions);
  EXPECT_EQ(this->page_.Error.Kind, ErrorKind::kInitialsTaken);
  EXPECT_EQ(this->Count("SELECT * FROM Users"), 2);
}

TYPED_TEST(AccountsOnEngine, AnExistingAccountIsChanged) {
  this->Posted("robert", "RB", "");
  this->page_.UserKey = kBob;
  ProcessAccount(this->page_, AccountForm::kAdministratorOptions);
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Account(kBob), "robert|new|RB|2|1+7+1+0+1|-|Crew");
  EXPECT_EQ(this->page_.props.DefaultStartHour, 7);
}

TYPED_TEST(AccountsOnEngine, DeletingAnotherAccountAndThenOnesOwn) {
  this->page_.UserKey = kBob;
  DeleteUser(this->page_, kBob);
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Account(kBob), "");
  EXPECT_EQ(this->Count("SELECT * FROM Items"), 1);
  EXPECT_EQ(this->page_.UserKey, kAdmin);
  DeleteUser(this->page_, kAdmin);
  EXPECT_EQ(this->Count("SELECT * FROM Users"), 0);
  EXPECT_EQ(this->Count("SELECT * FROM Items"), 0);
  EXPECT_EQ(this->Count("SELECT * FROM Groups"), 0);
  EXPECT_EQ(this->page_.Screen, screens::kWelcome);
}

}  // namespace
}  // namespace tidewell

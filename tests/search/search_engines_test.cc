// The search on both engines: each variant of the statement finds the same rows, in the order
// its dialect sorts them, and the scope check reads a member's group the same way.

#include <gtest/gtest.h>

#include <memory>

#include "data/recordset.h"
#include "data/statement.h"
#include "page/asp_objects.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "search/search_results.h"
#include "tests/data/engines.h"
#include "tests/search/search_site.h"
#include "tests/support/cast.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using ado::Statement;
using testing::FoundHeadings;
using testing::UserHeadings;
using Strings = std::vector<std::string>;

using testing::cast::kAnn;
using testing::cast::kBob;
using testing::cast::kCarol;
using testing::cast::kDave;
constexpr const char* kAbe = "0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e";

// Crew: the administrator ann, bob (who sees his whole group) and carol; Deck: abe and dave.
// Ordered by group, abe comes after carol; ordered by name alone, first.
template <class Engine>
class SearchOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_ = std::make_shared<ado::Connection>();
    connection_->Open(engine_.connection_string);
    testing::Seeder seeder(*connection_);
    crew_ = seeder.AddGroup("Crew");
    deck_ = seeder.AddGroup("Deck");
    seeder.AddUser({.key = kAnn, .name = "ann", .group = crew_, .administrator = true});
    seeder.AddUser({.key = kBob, .name = "bob", .group = crew_});
    seeder.AddUser({.key = kCarol, .name = "carol", .group = crew_});
    seeder.AddUser({.key = kAbe, .name = "abe", .group = deck_});
    seeder.AddUser({.key = kDave, .name = "dave", .group = deck_});
    seeder.AddItem({.owner = kBob, .date = DateSerial(2026, 11, 5), .heading = "Harbour b"});
    seeder.AddItem({.owner = kCarol, .date = DateSerial(2026, 11, 6), .heading = "harbour c"});
    seeder.AddItem({.owner = kDave, .date = DateSerial(2026, 11, 7), .heading = "Harbour d"});
    seeder.AddItem({.owner = kDave, .date = DateSerial(2026, 11, 7), .heading = "Galley"});
    seeder.AddItem({.owner = kAbe, .date = DateSerial(2026, 11, 8), .heading = "HARBOUR e"});
    seeder.AddItem({.owner = kAnn, .date = DateSerial(2026, 12, 1), .heading = "Harbour a"});
  }
  void TearDown() override {
    if (connection_) connection_->Close();
  }

  // `key` (of `group`) searches November 2026 for "harbour" in `owner`; answers the result
  // table, and fails the test on a pending error.
  std::string Search(const char* key, long group, bool administrator, bool whole_group,
                     const std::string& owner) {
    Page page;
    AspRequest request;
    request.Form = {{"ownerkey", owner},
                    {"startdate", "11/1/2026"},
                    {"enddate", "11/30/2026"},
                    {"search", "harbour"},
                    {"action", "u"}};
    page.request = &request;
    page.props.DataServer = Engine::kDialect;
    page.props.ImagePath = "images/";
    page.Screen = screens::kSearch;
    page.UserKey = key;
    page.AdminKey = administrator ? key : "";
    page.UserGroupId = group;
    page.User.ShowAllGroupUsers = whole_group;
    page.Connection = connection_;
    ProcessSearch(page);
    EXPECT_FALSE(page.Error.Raised()) << page.Error.Text;
    return page.SearchResults;
  }

  Engine engine_;
  std::shared_ptr<ado::Connection> connection_;
  long crew_ = 0;
  long deck_ = 0;
};

TYPED_TEST_SUITE(SearchOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(SearchOnEngine, AnAdministratorSearchesAGroupByItsNumber) {
  std::string table = this->Search(kAnn, this->crew_, true, false, std::to_string(this->deck_));
  EXPECT_EQ(FoundHeadings(table), (Strings{"HARBOUR e", "Harbour d"}));
  EXPECT_EQ(UserHeadings(table), (Strings{"Deck - abe", "Deck - dave"}));
}

TYPED_TEST(SearchOnEngine, AnAdministratorSearchesAUserByHisKey) {
  std::string table = this->Search(kAnn, this->crew_, true, false, kCarol);
  EXPECT_EQ(FoundHeadings(table), (Strings{"harbour c"}));
  EXPECT_EQ(UserHeadings(table), (Strings{"Crew - carol"}));
}

TYPED_TEST(SearchOnEngine, AUserSearchesAnOwnerByKey) {
  std::string table = this->Search(kBob, this->crew_, false, true, kCarol);
  EXPECT_EQ(FoundHeadings(table), (Strings{"harbour c"}));
}

TYPED_TEST(SearchOnEngine, AUserWhoSeesHisGroupSearchesItAll) {
  std::string table = this->Search(kBob, this->crew_, false, true, "all");
  EXPECT_EQ(FoundHeadings(table), (Strings{"Harbour b", "harbour c"}));
  EXPECT_EQ(UserHeadings(table), (Strings{"Crew - bob", "Crew - carol"}));
}

TYPED_TEST(SearchOnEngine, AnAdministratorSearchesEveryoneInHisDialectsOrder) {
  std::string table = this->Search(kAnn, this->crew_, true, false, "all");
  if (TypeParam::kDialect == ASPDataServer::SQLServer) {
    // By name alone: the group's name is read again at every change of group.
    EXPECT_EQ(FoundHeadings(table), (Strings{"HARBOUR e", "Harbour b", "harbour c", "Harbour d"}));
    EXPECT_EQ(UserHeadings(table),
              (Strings{"Deck - abe", "Crew - bob", "Crew - carol", "Deck - dave"}));
  } else {
    EXPECT_EQ(FoundHeadings(table), (Strings{"Harbour b", "harbour c", "HARBOUR e", "Harbour d"}));
    EXPECT_EQ(UserHeadings(table),
              (Strings{"Crew - bob", "Crew - carol", "Deck - abe", "Deck - dave"}));
  }
}

TYPED_TEST(SearchOnEngine, NothingFoundGivesTheMessage) {
  std::string table = this->Search(kAnn, this->crew_, true, false, kAnn);
  EXPECT_EQ(table, kNoSearchResults);
}

TYPED_TEST(SearchOnEngine, AForgedOwnerOfAnotherGroupSearchesTheUsersOwnCalendar) {
  std::string table = this->Search(kBob, this->crew_, false, true, kDave);
  EXPECT_EQ(FoundHeadings(table), (Strings{"Harbour b"}));
}

}  // namespace
}  // namespace tidewell

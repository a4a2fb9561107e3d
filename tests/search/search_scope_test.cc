// Whose calendars a search reaches, through Show: an administrator anyone, a user who sees
// his whole group that group, anyone else himself; every other posted owner searches the
// searcher's own calendar.

#include "search/search_scope.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "tests/search/search_site.h"

namespace tidewell {
namespace {

using testing::FoundHeadings;
using Strings = std::vector<std::string>;

// One item in November for each of ann, bob, carol (Crew) and dave (Deck).
class SearchScopeTest : public testing::SearchSiteTest {
 protected:
  void SetUp() override {
    SearchSiteTest::SetUp();
    AddNovemberItem(kAnn, 2, "Tide ann");
    AddNovemberItem(kBob, 3, "Tide bob");
    AddNovemberItem(kCarol, 4, "Tide carol");
    AddNovemberItem(kDave, 5, "Tide dave");
  }
  Strings Found(const char* searcher, const std::string& owner) {
    return FoundHeadings(Search(searcher, owner, "Tide").Show());
  }
  std::string Crew() const { return std::to_string(crew_); }
  std::string Deck() const { return std::to_string(deck_); }
};

TEST_F(SearchScopeTest, AnAdministratorSearchesEveryone) {
  EXPECT_EQ(Found(kAnn, "all"), (Strings{"Tide ann", "Tide bob", "Tide carol", "Tide dave"}));
}

TEST_F(SearchScopeTest, AnAdministratorSearchesAnyGroup) {
  EXPECT_EQ(Found(kAnn, Deck()), (Strings{"Tide dave"}));
  EXPECT_EQ(Found(kAnn, Crew()), (Strings{"Tide ann", "Tide bob", "Tide carol"}));
}

TEST_F(SearchScopeTest, AnAdministratorSearchesAnyUser) {
  EXPECT_EQ(Found(kAnn, kDave), (Strings{"Tide dave"}));
  EXPECT_EQ(Found(kAnn, kBob), (Strings{"Tide bob"}));
}

TEST_F(SearchScopeTest, AnAdministratorWorkingOnAnotherCalendarKeepsHisReach) {
  std::string html =
      Visit()
          .Link("~15/0~11/21/2026~14~0~" + InLink(kCarol) + "~~" + InLink(kAnn) + "~")
          .Post("ownerkey", "all")
          .Post("startdate", "11/1/2026")
          .Post("enddate", "11/30/2026")
          .Post("search", "Tide")
          .Post("action", "u")
          .Show();
  EXPECT_EQ(FoundHeadings(html), (Strings{"Tide ann", "Tide bob", "Tide carol", "Tide dave"}));
}

TEST_F(SearchScopeTest, AUserWhoSeesHisGroupSearchesItForAll) {
  EXPECT_EQ(Found(kBob, "all"), (Strings{"Tide ann", "Tide bob", "Tide carol"}));
}

TEST_F(SearchScopeTest, AUserWhoSeesHisGroupSearchesOneMember) {
  EXPECT_EQ(Found(kBob, kCarol), (Strings{"Tide carol"}));
  EXPECT_EQ(Found(kBob, kBob), (Strings{"Tide bob"}));
}

TEST_F(SearchScopeTest, AUserWhoSeesHisGroupCannotReachAnotherGroupsUser) {
  EXPECT_EQ(Found(kBob, kDave), (Strings{"Tide bob"}));
}

TEST_F(SearchScopeTest, AGroupNumberFromAUserWhoIsNoAdministratorSearchesHisOwnCalendar) {
  EXPECT_EQ(Found(kBob, Deck()), (Strings{"Tide bob"}));
  EXPECT_EQ(Found(kBob, Crew()), (Strings{"Tide bob"}));
  EXPECT_EQ(Found(kCarol, Crew()), (Strings{"Tide carol"}));
}

TEST_F(SearchScopeTest, AllFromAUserWithoutTheShowAllOptionSearchesHisOwnCalendar) {
  EXPECT_EQ(Found(kCarol, "all"), (Strings{"Tide carol"}));
  EXPECT_EQ(Found(kDave, "all"), (Strings{"Tide dave"}));
}

TEST_F(SearchScopeTest, AUserWithoutTheShowAllOptionCannotReachAnotherMember) {
  EXPECT_EQ(Found(kCarol, kBob), (Strings{"Tide carol"}));
  EXPECT_EQ(Found(kCarol, kAnn), (Strings{"Tide carol"}));
}

TEST_F(SearchScopeTest, AnOwnerThatIsNoKeySearchesTheOwnCalendarWithoutError) {
  for (const char* owner : {"", "nobody", "x' OR '1'='1", "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b.1.2"}) {
    testing::SiteVisit visit = Search(kBob, owner, "Tide");
    EXPECT_EQ(FoundHeadings(visit.Show()), (Strings{"Tide bob"})) << owner;
    EXPECT_FALSE(visit.page().Error.Raised()) << owner;
  }
}

TEST_F(SearchScopeTest, AKeyOfAnAccountThatIsGoneSearchesTheOwnCalendar) {
  EXPECT_EQ(Found(kCarol, "0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f"), (Strings{"Tide carol"}));
  EXPECT_EQ(Found(kBob, "0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f0f"), (Strings{"Tide bob"}));
}

TEST_F(SearchScopeTest, AnAdministratorKeyThatFailsTheCheckGetsNoSearch) {
  testing::SiteVisit visit = Visit();
  visit.Link("~15/0~11/21/2026~14~0~" + InLink(kCarol) + "~~" + std::string(kAnn) + "~")
      .Post("ownerkey", "all")
      .Post("startdate", "11/1/2026")
      .Post("enddate", "11/30/2026")
      .Post("search", "Tide")
      .Post("action", "u");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().SearchResults, "");
  EXPECT_TRUE(FoundHeadings(html).empty());
}

TEST_F(SearchScopeTest, AnAdministratorKeyOfAUserWhoIsNoAdministratorGetsNoSearch) {
  testing::SiteVisit visit = Visit();
  visit.Link("~15/0~11/21/2026~14~0~" + InLink(kCarol) + "~~" + InLink(kBob) + "~")
      .Post("ownerkey", "all")
      .Post("startdate", "11/1/2026")
      .Post("enddate", "11/30/2026")
      .Post("search", "Tide")
      .Post("action", "u");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().SearchResults, "");
}

TEST_F(SearchScopeTest, NobodySignedInGetsNoSearch) {
  testing::SiteVisit visit = Visit();
  visit.Link("~15/0~11/21/2026~14~0~~~~")
      .Post("ownerkey", "all")
      .Post("startdate", "11/1/2026")
      .Post("enddate", "11/30/2026")
      .Post("search", "Tide")
      .Post("action", "u");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().SearchResults, "");
}

}  // namespace
}  // namespace tidewell

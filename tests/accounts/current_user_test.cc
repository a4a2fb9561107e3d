// The current user a link names: the account, the banner, the administrator key and the
// user's own settings, through Show against a seeded database.

#include <gtest/gtest.h>

#include "accounts/login.h"
#include "tests/component/site_visit.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::SiteTest;
using testing::SiteVisit;

class CurrentUser : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    admin_ = AddAdministrator("admin", "pw");
  }
  // Shows `screen` with `user` and `administrator` as a link carries them.
  SiteVisit& Show(SiteVisit& visit, const std::string& user, const std::string& administrator = "",
                  const std::string& screen = "0") {
    visit.Link("~" + screen + "~11/21/2026~9~0~" + user + "~~" + administrator + "~");
    visit.Show();
    return visit;
  }
  std::string admin_;
};

TEST_F(CurrentUser, LoadsTheAccountAndItsGroup) {
  std::string bob = database_.AddUser({.name = "bob",
                                       .password = "pw",
                                       .group = crew_,
                                       .default_view = 1,
                                       .options = "4+6+1+0+1",
                                       .initials = "BO"});
  SiteVisit visit = Visit();
  const Page& page = Show(visit, InLink(bob)).page();
  EXPECT_EQ(page.UserKey, bob);
  EXPECT_EQ(page.Screen, screens::kMonthView);
  EXPECT_EQ(page.User.Username, "bob");
  EXPECT_EQ(testing::TypedPassword(page.User.Password), "pw");  // as stored: hashed
  EXPECT_EQ(page.User.Initials, "BO");
  EXPECT_EQ(page.User.DefaultView, 1);
  EXPECT_FALSE(page.User.Administrator);
  EXPECT_EQ(page.User.Options, "4+6+1+0+1");
  EXPECT_TRUE(page.User.ShowAllGroupUsers);
  EXPECT_TRUE(page.User.MayChangeShowAllGroupUsers);
  EXPECT_EQ(page.User.StartHour, 6);
  EXPECT_TRUE(page.User.HighlightTodaysDate);
  EXPECT_FALSE(page.User.HighlightTodaysTime);
  EXPECT_TRUE(page.User.Show12HourDay);
  EXPECT_EQ(page.UserGroupId, crew_);
  EXPECT_EQ(page.UserBanner, "<b>Group:</b> Crew | <b>User:</b> bob");
  EXPECT_EQ(page.AdminKey, "");
}

TEST_F(CurrentUser, BannerEscapesTheNames) {
  long group = database_.AddGroup("<script>alert(1)</script>");
  std::string key = database_.AddUser({.name = "a&b", .password = "pw", .group = group});
  SiteVisit visit = Visit();
  const Page& page = Show(visit, InLink(key)).page();
  EXPECT_EQ(page.UserBanner,
            "<b>Group:</b> &lt;script&gt;alert(1)&lt;/script&gt; | <b>User:</b> a&amp;b");
  EXPECT_EQ(visit.html().find("<script>alert(1)"), std::string::npos);
}

TEST_F(CurrentUser, ADeletedAccountSignsOut) {
  std::string bob = AddUser("bob");
  std::string link = InLink(bob);
  database_.Execute("DELETE FROM Users WHERE Username = 'bob'");
  SiteVisit visit = Visit();
  Show(visit, link);
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().UserBanner, "&nbsp;");
  EXPECT_NE(visit.html().find("<a title=\"Login User\""), std::string::npos);
}

TEST_F(CurrentUser, AnAccountWhoseGroupIsGoneSignsOut) {
  std::string bob = AddUser("bob");
  database_.Execute("DELETE FROM Groups");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob));
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
}

TEST_F(CurrentUser, AnAdministratorsOwnKeyBecomesTheAdminKey) {
  SiteVisit visit = Visit();
  Show(visit, InLink(admin_));
  EXPECT_EQ(visit.page().AdminKey, admin_);
  EXPECT_TRUE(visit.page().User.Administrator);
  EXPECT_EQ(LinkFields(LinkTitled(visit.html(), "Administrator Options"))[7], Expected(admin_));
}

TEST_F(CurrentUser, AnAdministratorOnAnotherUsersCalendarGoesOn) {
  std::string bob = AddUser("bob");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob), InLink(admin_));
  EXPECT_EQ(visit.page().Screen, screens::kMonthView);
  EXPECT_EQ(visit.page().UserKey, bob);
  EXPECT_EQ(visit.page().AdminKey, admin_);
  std::vector<std::string> fields = LinkFields(LinkTitled(visit.html(), "Next Month"));
  EXPECT_EQ(fields[5], Expected(bob));
  EXPECT_EQ(fields[7], Expected(admin_));
  EXPECT_NE(visit.html().find("<a title=\"Administrator Options\""), std::string::npos);
}

TEST_F(CurrentUser, AnAdminKeyThatFailsTheCheckShowsTheLoginScreen) {
  std::string bob = AddUser("bob");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob), admin_);  // the administrator's bare key
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().AdminKey, "");
  EXPECT_EQ(visit.html().find("Administrator Options"), std::string::npos);
}

TEST_F(CurrentUser, AnAdminKeyOfNoAccountShowsTheLoginScreen) {
  std::string bob = AddUser("bob");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob), InLink(GenerateOwnerKey()));
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
}

TEST_F(CurrentUser, AnAdminKeyOfAnOrdinaryUserIsDroppedWithTheLoginScreen) {
  std::string bob = AddUser("bob");
  std::string carol = AddUser("carol");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob), InLink(carol));
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().AdminKey, "");
  EXPECT_EQ(visit.html().find("Administrator Options"), std::string::npos);
}

TEST_F(CurrentUser, UsersOwnDefaultsReplaceThePagesWhenAllowed) {
  std::string bob = AddUser("bob", "pw", 0, "0+6+1+1+1");
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.SetAllowUserOwnDefaults(true); });
  Show(visit, InLink(bob));
  const Properties& props = visit.page().props;
  EXPECT_EQ(props.DefaultStartHour, 6);
  EXPECT_TRUE(props.HighlightTodaysDate);
  EXPECT_TRUE(props.HighlightTodaysTime);
  EXPECT_TRUE(props.Show12HourDay);
  EXPECT_EQ(LinkFields(LinkTitled(visit.html(), "Display WeekView"))[3], "6");
}

TEST_F(CurrentUser, UsersOwnDefaultsAreIgnoredOtherwise) {
  std::string bob = AddUser("bob", "pw", 0, "0+6+1+1+1");
  SiteVisit visit = Visit();
  Show(visit, InLink(bob));
  const Properties& props = visit.page().props;
  EXPECT_EQ(props.DefaultStartHour, 14);  // the hour of the clock
  EXPECT_FALSE(props.HighlightTodaysDate);
  EXPECT_FALSE(props.Show12HourDay);
}

TEST_F(CurrentUser, AOneElementOptionsStringKeepsThePagesDefaults) {
  std::string bob = AddUser("bob", "pw", 0, "4");
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) {
    c.SetAllowUserOwnDefaults(true);
    c.SetDefaultStartHour(9);
    c.SetShow12HourDay(true);
  });
  Show(visit, InLink(bob));
  const Page& page = visit.page();
  EXPECT_FALSE(page.Error.Raised());
  EXPECT_TRUE(page.User.ShowAllGroupUsers);
  EXPECT_TRUE(page.User.MayChangeShowAllGroupUsers);
  EXPECT_EQ(page.User.StartHour, 9);
  EXPECT_TRUE(page.User.Show12HourDay);
  EXPECT_EQ(page.props.DefaultStartHour, 9);
  EXPECT_TRUE(page.props.Show12HourDay);
}

}  // namespace
}  // namespace tidewell

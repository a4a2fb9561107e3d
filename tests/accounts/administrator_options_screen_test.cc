// The administrator options screen in its three modes, through Show against a seeded
// database: the markup of each mode, the form refilled after a refusal, and the screen's rules.

#include "accounts/administrator_options_screen.h"

#include <gtest/gtest.h>

#include "tests/accounts/account_site.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::AdminOptions;
using testing::Contains;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::SiteVisit;

constexpr const char* kNetscape = "Mozilla/5.0 (Windows; U; Windows NT 5.1) Netscape/7.2";
constexpr const char* kNavigator = "Mozilla/4.78 [en] (Nav; Windows NT 5.0)";
constexpr const char* kOpera = "Opera/9.80 (Windows NT 6.1; U; en) Presto/2.2.15";

class AdministratorOptionsScreen : public AccountSite {
 protected:
  // The placeholders of the goldens: signed keys as the page writes them, bare keys as the
  // user list shows them.
  std::vector<std::pair<std::string, std::string>> Keys() const {
    return {{"admin", Expected(admin_)},
            {"bob", Expected(bob_)},
            {"admin_key", admin_},
            {"bob_key", bob_},
            {"carol_key", carol_}};
  }
  // The same, and the stand-in the password fields show for the account on the form.
  std::vector<std::pair<std::string, std::string>> WithStandIn(const std::string& key) const {
    auto marks = Keys();
    marks.emplace_back("standin", StandInOf(key));
    return marks;
  }
};

TEST_F(AdministratorOptionsScreen, OwnAccount) {
  SiteVisit visit = AsAdministrator();
  EXPECT_TRUE(MatchesGolden(AdminOptions(visit.Show()), "admin_options_own_account.html",
                            WithStandIn(admin_)));
}

TEST_F(AdministratorOptionsScreen, AnotherAccount) {
  SiteVisit visit = Screen8(bob_, admin_);
  EXPECT_TRUE(
      MatchesGolden(AdminOptions(visit.Show()), "admin_options_other_account.html",
                    WithStandIn(bob_)));
}

TEST_F(AdministratorOptionsScreen, NewUserMode) {
  SiteVisit visit = AsAdministrator();
  visit.Post("submit", "New User");
  EXPECT_TRUE(MatchesGolden(AdminOptions(visit.Show()), "admin_options_new_user.html", Keys()));
  EXPECT_TRUE(visit.page().NewUserMode);
}

TEST_F(AdministratorOptionsScreen, FirstAdministratorMode) {
  database_.Execute("DELETE FROM Items");
  database_.Execute("DELETE FROM Users");
  SiteVisit visit = Visit();
  visit.Link("~9~11/21/2026~14~0~~~~").Post("submit", "Next").Post("welcome", "y");
  EXPECT_TRUE(MatchesGolden(AdminOptions(visit.Show()), "admin_options_first_administrator.html"));
  EXPECT_TRUE(visit.page().FirstAdministratorMode);
}

// Bob's name and bob's initials in bob's group: both messages, both fields emptied, and
// everything else as posted.
TEST_F(AdministratorOptionsScreen, AfterARefusalWithBothMessages) {
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("bob", "BB", "1");
  Set(form, "loadgroupdata", "0");
  Set(form, "userdefaultstarthour", "7");
  Set(form, "userhighlighttodaysdate", "1");
  Set(form, "usershow12hourday", "1");
  Set(form, "defaultview", "3");
  Set(form, "password", "n&w");
  Set(form, "confirm", "n&w");
  Set(form, "submit", "Add New User");
  Set(form, "action", "a");
  Post(visit, form);
  EXPECT_TRUE(MatchesGolden(AdminOptions(visit.Show()),
                            "admin_options_refused_name_and_initials.html", Keys()));
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameAndInitialsTaken);
}

TEST_F(AdministratorOptionsScreen, HeightsByBrowser) {
  auto height = [this](const char* agent) {
    SiteVisit visit = AsAdministrator();
    if (agent) visit.Agent(agent);
    return FrameHeight(visit.Show());
  };
  EXPECT_EQ(height(nullptr), "545");
  EXPECT_EQ(height(kNetscape), "545");
  EXPECT_EQ(height(kNavigator), "554");
  EXPECT_EQ(height(kOpera), "555");
}

TEST_F(AdministratorOptionsScreen, OnHisOwnAccountTheMarkAndNoDeleteButton) {
  SiteVisit visit = AsAdministrator();
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_TRUE(Contains(screen, "size=18 >&nbsp;<font color=#b22222><b>(Administrator)</b></font>"));
  EXPECT_FALSE(Contains(screen, "Delete This User"));
}

TEST_F(AdministratorOptionsScreen, OnAnotherAccountTheDeleteButtonAndNoMark) {
  for (const std::string& key : {bob_, carol_}) {
    SiteVisit visit = Screen8(key, admin_);
    const std::string screen = AdminOptions(visit.Show());
    EXPECT_FALSE(Contains(screen, "(Administrator)"));
    EXPECT_TRUE(Contains(screen,
                         "<td align=right valign=middle width=50%><input class=text "
                         "type=submit name=submit value=\"Delete This User\" ></td>"));
  }
}

TEST_F(AdministratorOptionsScreen, AnAdministratorsEntryCarriesClassAdminAllOthersClassText) {
  database_.AddUser({.name = "dave", .password = "pw", .group = deck_, .administrator = true});
  SiteVisit visit = AsAdministrator();
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_TRUE(Contains(screen, "<option selected class=admin value=" + admin_ + " >Crew - admin"));
  EXPECT_TRUE(Contains(screen, "<option class=text value=" + bob_ + " >Crew - bob</option>"));
  EXPECT_TRUE(Contains(screen, "<option class=text value=" + carol_ + " >Deck - carol</option>"));
  EXPECT_TRUE(Contains(screen, " class=admin value=" + KeyOf("dave") + " >Deck - dave</option>"));
}

TEST_F(AdministratorOptionsScreen, ARefusedNameIsEmptiedAndTheRestKept) {
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("carol", "ZZ", "2");
  Set(form, "userdefaultstarthour", "5");
  Set(form, "password", "kept");
  Set(form, "confirm", "kept");
  Set(form, "submit", "Add New User");
  Post(visit, form);
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameTaken);
  EXPECT_TRUE(Contains(screen, "name=username value=\"\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=initials value=\"ZZ\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "<option selected class=text value=2 >Deck</option>"));
  EXPECT_TRUE(Contains(screen, "<option class=text value=5 SELECTED  >05:00</option>"));
  // A typed password is never carried back: the fields are empty, to be typed again.
  EXPECT_TRUE(Contains(screen, "name=password value=\"\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=confirm value=\"\" size=18 >"));
  EXPECT_FALSE(Contains(screen, "kept"));
  EXPECT_TRUE(Contains(screen, "value=\"Add New User\" >"));
}

TEST_F(AdministratorOptionsScreen, ARefusedUpdateThatKeptThePasswordShowsTheStandInAgain) {
  SiteVisit visit = Screen8(bob_, admin_);
  Fields form = AccountForm("carol", "BB", "1");
  Set(form, "password", StandInOf(bob_));
  Set(form, "confirm", StandInOf(bob_));
  Set(form, "submit", "Update");
  Post(visit, form);
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameTaken);
  EXPECT_TRUE(Contains(screen, "name=password value=\"" + StandInOf(bob_) + "\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=confirm value=\"" + StandInOf(bob_) + "\" size=18 >"));
}

TEST_F(AdministratorOptionsScreen, RefusedInitialsAreEmptiedAndTheNameKept) {
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("dave", "CA", "2");
  Set(form, "loadgroupdata", "0");
  Set(form, "submit", "Add New User");
  Post(visit, form);
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kInitialsTaken);
  EXPECT_TRUE(Contains(screen,
                       "<font color=#b22222><b><br>There is already a user with the "
                       "initials: CA in the group: Deck.<br>The user is: carol.</b></font>"));
  EXPECT_TRUE(Contains(screen, "name=username value=\"dave\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=initials value=\"\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "<option class=text value=0 SELECTED  >False</option>"));
}

// The form has no onsubmit: only "Update" and "Add New User" run the validator, through their
// onclick; "New User", "Change User", "Manage" and "Delete This User" post unchecked.
TEST_F(AdministratorOptionsScreen, OnlyUpdateAndAddNewUserRunTheValidator) {
  SiteVisit edit = Screen8(bob_, admin_);
  const std::string editing = AdminOptions(edit.Show());
  EXPECT_TRUE(Contains(editing, " method=post name=adminoptions  >"));
  EXPECT_FALSE(Contains(editing, "onsubmit"));
  EXPECT_TRUE(Contains(editing,
                       "<input onclick=\"javascript:return validator(adminoptions)\" "
                       "class=text type=submit name=submit value=Update >"));
  for (const char* button :
       {"\"New User\"", "\"Change User\"", "\"Manage\"", "\"Delete This User\""}) {
    EXPECT_TRUE(Contains(
        editing, "<input class=text type=submit name=submit value=" + std::string(button) + " >"))
        << button;
  }
  SiteVisit add = AsAdministrator();
  add.Post("submit", "New User");
  EXPECT_TRUE(Contains(AdminOptions(add.Show()),
                       "<input onclick=\"javascript:return validator(adminoptions)\" class=text "
                       "type=submit name=submit value=\"Add New User\" >"));
}

// On this screen an option is selected when it equals the stored value or its negation: the
// page's True (-1), preset in NewUserMode, selects the entry 1.
TEST_F(AdministratorOptionsScreen, ABooleanTrueSelectsTheEntryOne) {
  SiteVisit visit = AsAdministrator();
  visit.Post("submit", "New User").Configure([](ASPTidewell& component) {
    component.SetHighlightTodaysTime(true);
  });
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_TRUE(Contains(screen,
                       "<select class=text name=userhighlighttodaystime ><option "
                       "class=text value=0 >False</option><option class=text value=1 "
                       "SELECTED  >True</option></select>"));
}

// Names, initials, group names and posted values are user text: escaped where they stand.
TEST_F(AdministratorOptionsScreen, UserTextIsEscaped) {
  database_.AddUser({.name = "<b>eve",
                     .password = "a\"b",
                     .group = database_.AddGroup("R&D"),
                     .initials = "<i>"});
  SiteVisit visit = Screen8(KeyOf("<b>eve"), admin_);
  visit.Post("newgroup", "\"x\"");
  const std::string screen = AdminOptions(visit.Show());
  EXPECT_TRUE(Contains(screen, " >R&amp;D - &lt;b&gt;eve</option>"));
  EXPECT_TRUE(Contains(screen, "<option selected class=text value=3 >R&amp;D</option>"));
  EXPECT_TRUE(Contains(screen, "name=username value=\"&lt;b&gt;eve\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=initials value=\"&lt;i&gt;\" size=18 >"));
  // The password was stored hashed: the form shows its stand-in, never the password.
  const std::string stand_in = StandInOf(KeyOf("<b>eve"));
  EXPECT_TRUE(Contains(screen, "name=password value=\"" + stand_in + "\" size=18 >"));
  EXPECT_FALSE(Contains(screen, "a&quot;b"));
  EXPECT_TRUE(Contains(screen, "name=newgroup value=\"&quot;x&quot;\" size=15 >"));
  EXPECT_FALSE(Contains(screen, "<b>eve"));
}

TEST_F(AdministratorOptionsScreen, TheHelpLinkLeadsToTheUserHelpScreen) {
  SiteVisit visit = AsAdministrator();
  visit.Show();
  const std::string help = testing::LinkTitled(visit.html(), "Show me help for this page.");
  EXPECT_EQ(testing::LinkFields(help).at(1), "11/0");
}

}  // namespace
}  // namespace tidewell

// Account processing and deletion, posted through Show against a seeded SQLite database, the
// tables read back row by row.

#include "accounts/account_updates.h"

#include <gtest/gtest.h>

#include "page/link_keys.h"
#include "tests/accounts/account_site.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::AdminOptions;
using testing::Contains;
using testing::SiteVisit;

class AccountUpdates : public AccountSite {
 protected:
  // The administrator posts `form` with the button `submit` on the screen showing `shown`.
  SiteVisit& Submit(SiteVisit& visit, Fields form, const std::string& submit) {
    Set(form, "submit", submit);
    Set(form, "action", submit == "Add New User" ? "a" : "u");
    Post(visit, form);
    visit.Show();
    return visit;
  }
  // A user's own options form, posted to screen 7.
  SiteVisit UserOptionsPost(const std::string& key) {
    SiteVisit visit = Visit();
    visit.Link("~7/0~11/21/2026~14~0~" + InLink(key) + "~~~");
    visit.Post("defaultview", "2").Post("password", "secret").Post("confirm", "secret");
    visit.Post("submit", "Update").Post("action", "u");
    return visit;
  }
};

// --- Names ---

TEST_F(AccountUpdates, RenamingAUserToHisOwnNameIsNoClash) {
  SiteVisit visit = Screen8(bob_, admin_);
  Fields form = AccountForm("bob", "BB", "1");
  Set(form, "password", "changed");
  Submit(visit, form, "Update");
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Account(bob_), "bob|changed|BB|0|1+8+0+0+0|False|1");
}

TEST_F(AccountUpdates, RenamingAUserToAnotherUsersNameIsRefused) {
  const auto before = AllTables();
  SiteVisit visit = Screen8(bob_, admin_);
  Submit(visit, AccountForm("carol", "BB", "1"), "Update");
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameTaken);
  EXPECT_EQ(visit.page().Error.Text,
            "<br>There is already a user named: carol, Please choose another.");
  EXPECT_TRUE(AllTables() == before);
  EXPECT_TRUE(Contains(AdminOptions(visit.html()),
                       "<font color=#b22222><b><br>There is already a user named: carol, Please "
                       "choose another.</b></font>"));
}

TEST_F(AccountUpdates, InNewUserModeAnyExistingNameClashes) {
  const auto before = AllTables();
  // The administrator's own name, while his own account is the one shown.
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("admin", "ZZ", "2"), "Add New User");
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameTaken);
  EXPECT_TRUE(visit.page().NewUserMode);
  EXPECT_TRUE(AllTables() == before);
}

TEST_F(AccountUpdates, NamesCompareWithoutRegardToCase) {
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("BOB", "ZZ", "2"), "Add New User");
  EXPECT_EQ(visit.page().Error.Text,
            "<br>There is already a user named: bob, Please choose another.");
}

// --- Initials ---

TEST_F(AccountUpdates, TheSameInitialsInTwoDifferentGroupsAreAllowed) {
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("dave", "BB", "2"), "Add New User");
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Account(KeyOf("dave")), "dave|pw|BB|0|1+8+0+0+0|False|2");
}

TEST_F(AccountUpdates, TheSameInitialsTwiceInOneGroupAreRefused) {
  const auto before = AllTables();
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("dave", "BB", "1"), "Add New User");
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kInitialsTaken);
  EXPECT_EQ(visit.page().Error.Text,
            "<br>There is already a user with the initials: BB in the group: Crew.<br>The user "
            "is: bob.");
  EXPECT_TRUE(AllTables() == before);
}

TEST_F(AccountUpdates, KeepingHisOwnInitialsIsNoClash) {
  SiteVisit visit = Screen8(carol_, admin_);
  Submit(visit, AccountForm("carol", "CA", "2"), "Update");
  EXPECT_FALSE(visit.page().Error.Raised());
}

TEST_F(AccountUpdates, InitialsAreNotCheckedWhenTheAccountGoesIntoANewGroup) {
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("dave", "BB", "1");
  Set(form, "newgroup", "Galley");
  Submit(visit, form, "Add New User");
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck", "3|Galley"}));
  EXPECT_EQ(Account(KeyOf("dave")), "dave|pw|BB|0|1+8+0+0+0|False|3");
}

TEST_F(AccountUpdates, BothMessagesStandTogetherAndNothingIsWritten) {
  const auto before = AllTables();
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("bob", "BB", "1"), "Add New User");
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameAndInitialsTaken);
  EXPECT_EQ(visit.page().Error.Text,
            "<br>There is already a user named: bob, Please choose another.<br>There is already "
            "a user with the initials: BB in the group: Crew.<br>The user is: bob.");
  EXPECT_TRUE(AllTables() == before);
}

// --- Groups ---

TEST_F(AccountUpdates, ANewGroupWhoseNameExistsJoinsTheExistingGroupSilently) {
  SiteVisit visit = Screen8(bob_, admin_);
  Fields form = AccountForm("bob", "BB", "1");
  Set(form, "newgroup", "Deck");
  Submit(visit, form, "Update");
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
  EXPECT_EQ(Account(bob_), "bob|pw|BB|0|1+8+0+0+0|False|2");
}

TEST_F(AccountUpdates, MovingAnAccountToAnotherGroup) {
  SiteVisit visit = Screen8(bob_, admin_);
  Submit(visit, AccountForm("bob", "BB", "2"), "Update");
  EXPECT_EQ(Account(bob_), "bob|pw|BB|0|1+8+0+0+0|False|2");
  EXPECT_TRUE(Contains(visit.html(), "<b>Group:</b> Deck | <b>User:</b> bob"));
}

// --- New accounts ---

TEST_F(AccountUpdates, ANewAccountGetsAFreshKeyAndIsShown) {
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("dave", "DV", "2");
  Set(form, "loadgroupdata", "0");
  Set(form, "userdefaultstarthour", "6");
  Set(form, "userhighlighttodaysdate", "1");
  Set(form, "usershow12hourday", "1");
  Set(form, "defaultview", "3");
  Set(form, "password", "dpw");
  Submit(visit, form, "Add New User");
  const std::string dave = KeyOf("dave");
  EXPECT_TRUE(IsOwnerKey(dave));
  EXPECT_NE(dave, admin_);
  EXPECT_EQ(Account(dave), "dave|dpw|DV|3|0+6+1+0+1|False|2");
  // The new account is the one shown, the administrator still the one signed in.
  EXPECT_EQ(visit.page().UserKey, dave);
  EXPECT_EQ(visit.page().AdminKey, admin_);
  EXPECT_FALSE(visit.page().NewUserMode);
  const std::string screen = AdminOptions(visit.html());
  EXPECT_TRUE(Contains(screen, "name=username value=\"dave\" size=18 >&nbsp;</td>"));
  EXPECT_TRUE(Contains(screen, "value=\"Delete This User\""));
}

TEST_F(AccountUpdates, NewKeysDifferEveryTime) {
  for (const char* name : {"dave", "erin"}) {
    SiteVisit visit = AsAdministrator();
    Submit(visit, AccountForm(name, name, "2"), "Add New User");
  }
  EXPECT_NE(KeyOf("dave"), KeyOf("erin"));
  EXPECT_TRUE(IsOwnerKey(KeyOf("erin")));
}

TEST_F(AccountUpdates, AnAccountAnAdministratorAddsIsNoAdministrator) {
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("dave", "DV", "2"), "Add New User");
  EXPECT_EQ(Account(KeyOf("dave")).substr(0, 5), "dave|");
  EXPECT_TRUE(Contains(Account(KeyOf("dave")), "|False|"));
}

// --- The start hour ---

TEST_F(AccountUpdates, TheStartHourTakesEffectInTheSameRequest) {
  SiteVisit visit = Screen8(bob_, admin_);
  Fields form = AccountForm("bob", "BB", "1");
  Set(form, "userdefaultstarthour", "6");
  Submit(visit, form, "Update");
  EXPECT_EQ(visit.page().props.DefaultStartHour, 6);
  // The view tabs lead to the views at the new hour.
  const std::string tab = testing::LinkTitled(visit.html(), "Display TimeView");
  ASSERT_FALSE(tab.empty());
  EXPECT_EQ(testing::LinkFields(tab).at(3), "6");
}

// --- The user's own options ---

TEST_F(AccountUpdates, AUserPostingShowAllZeroStoresThree) {
  SiteVisit visit = UserOptionsPost(bob_);
  visit.Post("loadgroupdata", "0");
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|3|False|1");
}

TEST_F(AccountUpdates, AUserPostingShowAllOneStoresFour) {
  SiteVisit visit = UserOptionsPost(carol_);
  visit.Post("loadgroupdata", "1");
  visit.Show();
  EXPECT_EQ(Account(carol_), "carol|secret|CA|2|4|False|2");
}

TEST_F(AccountUpdates, AUserPostingNoShowAllKeepsTheStoredFlag) {
  SiteVisit visit = UserOptionsPost(carol_);
  visit.Show();
  EXPECT_EQ(Account(carol_), "carol|secret|CA|2|0|False|2");
}

TEST_F(AccountUpdates, WithUserDefaultsOffUpdateLeavesAOneCharacterOptions) {
  SiteVisit visit = UserOptionsPost(bob_);
  visit.Post("loadgroupdata", "1").Post("userdefaultstarthour", "5");
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4|False|1");
}

TEST_F(AccountUpdates, WithUserDefaultsOnTheUserKeepsHisDisplayOptions) {
  SiteVisit visit = UserOptionsPost(bob_);
  visit.Post("loadgroupdata", "0")
      .Post("userdefaultstarthour", "5")
      .Post("userhighlighttodaysdate", "0")
      .Post("userhighlighttodaystime", "1")
      .Post("usershow12hourday", "1")
      .Configure([](ASPTidewell& component) { component.SetAllowUserOwnDefaults(true); });
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|3+5+0+1+1|False|1");
  EXPECT_EQ(visit.page().props.DefaultStartHour, 5);
}

// The user's form changes neither name, initials nor group, whatever it posts.
TEST_F(AccountUpdates, TheUsersFormKeepsNameInitialsAndGroup) {
  SiteVisit visit = UserOptionsPost(bob_);
  visit.Post("username", "robert")
      .Post("initials", "RB")
      .Post("groupid", "2")
      .Post("newgroup", "Galley");
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4|False|1");
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
}

// The next screen is the user's default view as it was stored when he posted (carol's month
// view), not the one he chose in the post (the day view).
TEST_F(AccountUpdates, TheUsersFormGoesOnToHisDefaultView) {
  SiteVisit visit = UserOptionsPost(carol_);
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kMonthView);
  EXPECT_EQ(Account(carol_), "carol|secret|CA|2|0|False|2");
}

// --- Single quotes ---

TEST_F(AccountUpdates, ANameWithASingleQuoteBreaksTheStatementAndIsReported) {
  const auto before = AllTables();
  SiteVisit visit = AsAdministrator();
  Submit(visit, AccountForm("o'hara", "OH", "2"), "Add New User");
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kDatabaseRefused);
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_TRUE(Contains(visit.html(), "<!-- ErrorScreen Start -->"));
  EXPECT_TRUE(AllTables() == before);
}

TEST_F(AccountUpdates, ANewGroupWithASingleQuoteIsReportedAndNothingWritten) {
  const auto before = AllTables();
  SiteVisit visit = AsAdministrator();
  Fields form = AccountForm("dave", "DV", "2");
  Set(form, "newgroup", "Cook's");
  Submit(visit, form, "Add New User");
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kDatabaseRefused);
  EXPECT_TRUE(AllTables() == before);
}

// --- Buttons the driver handles itself ---

TEST_F(AccountUpdates, ChangeUserShowsTheChosenAccount) {
  SiteVisit visit = AsAdministrator();
  visit.Post("submit", "Change User").Post("ownerkey", carol_);
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, carol_);
  EXPECT_EQ(visit.page().AdminKey, admin_);
  EXPECT_TRUE(Contains(AdminOptions(visit.html()), "name=username value=\"carol\" size=18 >"));
  // Its links carry both keys, signed.
  const std::vector<std::string> fields = testing::LinkFields(testing::FormAction(visit.html()));
  EXPECT_EQ(fields.at(5), Expected(carol_));
  EXPECT_EQ(fields.at(7), Expected(admin_));
}

TEST_F(AccountUpdates, ManageLeadsToTheGroupOptionsScreen) {
  SiteVisit visit = AsAdministrator();
  visit.Post("submit", "Manage");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kGroupOptions);
}

// --- Deletion ---

TEST_F(AccountUpdates, DeletingAnotherAccountTakesItsItemsAndReturnsToTheAdministrator) {
  SiteVisit visit = Screen8(bob_, admin_);
  visit.Post("submit", "Delete This User");
  visit.Show();
  EXPECT_EQ(Account(bob_), "");
  EXPECT_EQ(Items().size(), 1u);
  EXPECT_TRUE(Contains(Items()[0], "|" + carol_ + "|Anchor"));
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
  EXPECT_EQ(visit.page().UserKey, admin_);
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
  EXPECT_TRUE(Contains(AdminOptions(visit.html()), "name=username value=\"admin\""));
}

TEST_F(AccountUpdates, AnAdministratorDeletingHisOwnAccountEmptiesGroupsAndLandsOnWelcome) {
  SiteVisit visit = AsAdministrator();
  visit.Post("submit", "Delete This User");
  visit.Show();
  EXPECT_EQ(Account(admin_), "");
  EXPECT_TRUE(Groups().empty());
  // The others stay, with a group id that names no group.
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4+9+1+0+1|False|1");
  EXPECT_EQ(Items().size(), 2u);
  EXPECT_EQ(visit.page().Screen, screens::kWelcome);
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_TRUE(Contains(visit.html(), "<!-- WelcomeScreen  Start -->"));
  // The next visitor meets the welcome screen too: no administrator is left.
  SiteVisit next = Visit();
  next.Show();
  EXPECT_EQ(next.page().Screen, screens::kWelcome);
}

}  // namespace
}  // namespace tidewell

// Who may use the administrator options screen and its buttons. Every request below comes
// from somebody who is not an administrator: each gets the login screen, no page shows another
// account's key, and the tables stay as they were, row by row.

#include "accounts/administrator_check.h"

#include <gtest/gtest.h>

#include "tests/accounts/account_site.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::Contains;
using testing::SiteVisit;

constexpr const char* kButtons[] = {"Change User",  "Update", "New User",
                                    "Add New User", "Manage", "Delete This User"};

class AdministratorCheck : public AccountSite {
 protected:
  // What one visitor sends: the link's two key fields and whether "welcome" = "y" comes along.
  struct Visitor {
    std::string name = "";
    std::string user_key = "";   // as the link carries it
    std::string admin_key = "";  // as the link carries it
    bool welcome = false;
    std::string own_key = "";  // the visitor's own account, which his pages may carry
  };

  // Screen 8 for `visitor`, without a post ("") or with the whole form and `button`.
  SiteVisit Request(const Visitor& visitor, const std::string& button) {
    SiteVisit visit = Visit();
    visit.Link("~8/0~11/21/2026~14~0~" + visitor.user_key + "~~" + visitor.admin_key + "~");
    if (visitor.welcome) visit.Query("welcome", "y");
    if (!button.empty()) {
      Fields form = AccountForm("mallory", "MA", "1");
      Set(form, "newgroup", "Mallory's");
      Set(form, "ownerkey", carol_);
      Set(form, "submit", button);
      Set(form, "action", button == "Add New User" ? "a" : "u");
      if (visitor.welcome) Set(form, "welcome", "y");
      Post(visit, form);
    }
    visit.Show();
    return visit;
  }

  // The answer is the login screen and shows no key but the visitor's own.
  void ExpectRefused(const SiteVisit& visit, const Visitor& visitor) {
    EXPECT_EQ(visit.page().Screen, screens::kLogin);
    EXPECT_FALSE(visit.page().NewUserMode);
    EXPECT_FALSE(visit.page().FirstAdministratorMode);
    EXPECT_TRUE(Contains(visit.html(), "<!-- LoginScreen  Start -->"));
    EXPECT_FALSE(Contains(visit.html(), "AdminOptionsView"));
    EXPECT_FALSE(Contains(visit.html(), "Administrator Options"));
    EXPECT_FALSE(Contains(visit.html(), "name=ownerkey"));
    for (const std::string& key : {admin_, bob_, carol_}) {
      if (key == visitor.own_key) continue;
      EXPECT_FALSE(Contains(visit.html(), key)) << "the page shows a key of another account";
    }
    EXPECT_NE(visit.page().UserKey, carol_);
  }

  // Screen 8 and every button, for `visitor`.
  void ExpectEveryRequestRefused(const Visitor& visitor) {
    const Tables before = AllTables();
    std::vector<std::string> requests = {""};
    requests.insert(requests.end(), std::begin(kButtons), std::end(kButtons));
    for (const std::string& button : requests) {
      SCOPED_TRACE(visitor.name + (button.empty() ? ": screen 8" : ": " + button));
      SiteVisit visit = Request(visitor, button);
      ExpectRefused(visit, visitor);
      const Tables after = AllTables();
      EXPECT_EQ(after.users, before.users);
      EXPECT_EQ(after.groups, before.groups);
      EXPECT_EQ(after.items, before.items);
    }
  }
};

TEST_F(AdministratorCheck, ANonAdministratorIsRefusedEverything) {
  ExpectEveryRequestRefused(
      {.name = "bob", .user_key = InLink(bob_), .admin_key = "", .own_key = bob_});
}

// Bob's own signed key in the administrator field as well makes him no administrator.
TEST_F(AdministratorCheck, ANonAdministratorWithHisOwnKeyAsAdministratorKeyIsRefused) {
  ExpectEveryRequestRefused({.name = "bob as admin",
                             .user_key = InLink(bob_),
                             .admin_key = InLink(bob_),
                             .own_key = bob_});
}

TEST_F(AdministratorCheck, ALoggedOutVisitorIsRefusedEverything) {
  ExpectEveryRequestRefused({.name = "logged out"});
}

TEST_F(AdministratorCheck, AWelcomeVisitorAfterAnAdministratorExistsIsRefusedEverything) {
  ExpectEveryRequestRefused({.name = "welcome", .welcome = true});
}

// A bare key is what option lists show; in a link it opens nothing.
TEST_F(AdministratorCheck, ABareAdministratorKeyInALinkIsRefused) {
  ExpectEveryRequestRefused({.name = "bare keys", .user_key = bob_, .admin_key = admin_});
}

TEST_F(AdministratorCheck, ABareAdministratorKeyBesideASignedUserKeyIsRefused) {
  ExpectEveryRequestRefused({.name = "bob with a bare admin key",
                             .user_key = InLink(bob_),
                             .admin_key = admin_,
                             .own_key = bob_});
}

// The flag is read from the database at the request, not taken from the link: an account
// whose flag was taken away is refused although its links are still valid.
TEST_F(AdministratorCheck, AnAdministratorFlagTakenAwayInTheDatabaseCounts) {
  database_.Execute("UPDATE Users SET Administrator = 0");
  ExpectEveryRequestRefused({.name = "former administrator",
                             .user_key = InLink(admin_),
                             .admin_key = InLink(admin_),
                             .own_key = admin_});
}

// --- What administrators may do ---

TEST_F(AdministratorCheck, AnAdministratorOnHisOwnAccountIsServed) {
  SiteVisit visit = AsAdministrator();
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
  EXPECT_TRUE(Contains(visit.html(), "<!-- AdminOptionsView  Start -->"));
}

// Working on bob's calendar, the administrator's key travels in the administrator field.
TEST_F(AdministratorCheck, AnAdministratorOnAnotherAccountIsServed) {
  SiteVisit visit = Screen8(bob_, admin_);
  visit.Post("submit", "Change User").Post("ownerkey", carol_);
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, carol_);
  EXPECT_TRUE(Contains(visit.html(), "name=username value=\"carol\""));
}

// An administrator's link that carries his key only as the user key (no administrator key)
// still names an administrator.
TEST_F(AdministratorCheck, AnAdministratorKeyAsTheUserKeyAloneIsEnough) {
  SiteVisit visit = Visit();
  visit.Link("~8/0~11/21/2026~14~0~" + InLink(admin_) + "~~~");
  visit.Post("submit", "Change User").Post("ownerkey", carol_);
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, carol_);
  EXPECT_EQ(visit.page().AdminKey, admin_);
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
}

// --- The first administrator ---

class FirstAdministrator : public testing::SiteTest {
 protected:
  SiteVisit AddNewUser(const std::string& name) {
    SiteVisit visit = Visit();
    visit.Link("~8/9~11/21/2026~14~0~~~~");
    visit.Post("username", name)
        .Post("initials", "FA")
        .Post("newgroup", "Bridge")
        .Post("loadgroupdata", "1")
        .Post("userdefaultstarthour", "8")
        .Post("userhighlighttodaysdate", "0")
        .Post("userhighlighttodaystime", "0")
        .Post("usershow12hourday", "0")
        .Post("defaultview", "0")
        .Post("password", "pw")
        .Post("confirm", "pw")
        .Post("submit", "Add New User")
        .Post("action", "a")
        .Post("welcome", "y");
    visit.Show();
    return visit;
  }
  long Accounts() {
    ado::Connection connection;
    connection.Open(database_.connection_string());
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT * FROM Users"), connection);
    return rs.RecordCount();
  }
};

TEST_F(FirstAdministrator, TheWelcomeFormMakesAnAdministratorWhileThereIsNone) {
  SiteVisit visit = AddNewUser("first");
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Accounts(), 1);
  // Signed in as the new administrator, on his own account.
  EXPECT_TRUE(IsOwnerKey(visit.page().UserKey));
  EXPECT_EQ(visit.page().AdminKey, visit.page().UserKey);
  EXPECT_TRUE(visit.page().User.Administrator);
  EXPECT_FALSE(visit.page().FirstAdministratorMode);
  EXPECT_TRUE(Contains(visit.html(), "<b>Group:</b> Bridge | <b>User:</b> first"));
  EXPECT_TRUE(Contains(visit.html(), "<font color=#b22222><b>(Administrator)</b></font>"));
}

TEST_F(FirstAdministrator, AccountsWithoutTheFlagDoNotCloseTheWelcomeForm) {
  database_.AddUser({.name = "bob", .password = "pw", .group = crew_});
  SiteVisit visit = AddNewUser("first");
  EXPECT_EQ(Accounts(), 2);
  EXPECT_TRUE(visit.page().User.Administrator);
}

TEST_F(FirstAdministrator, OnceThereIsOneTheWelcomeFormMakesNoAccount) {
  AddNewUser("first");
  SiteVisit again = AddNewUser("second");
  EXPECT_EQ(Accounts(), 1);
  EXPECT_EQ(again.page().Screen, screens::kLogin);
  EXPECT_EQ(again.page().UserKey, "");
  EXPECT_TRUE(Contains(again.html(), "<!-- LoginScreen  Start -->"));
}

// A refused first account comes back as the first-administrator form, which shows no
// account list to the visitor.
TEST_F(FirstAdministrator, ARefusedFirstAccountShowsTheFormAgainWithoutTheAccountList) {
  std::string bob = database_.AddUser({.name = "bob", .password = "pw", .group = crew_});
  SiteVisit visit = AddNewUser("bob");
  EXPECT_EQ(Accounts(), 1);
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kUserNameTaken);
  EXPECT_TRUE(visit.page().FirstAdministratorMode);
  EXPECT_TRUE(Contains(visit.html(), "<b>New Administrator/User Account.</b>"));
  EXPECT_TRUE(Contains(visit.html(), "There is already a user named: bob, Please choose another."));
  EXPECT_FALSE(Contains(visit.html(), "name=ownerkey"));
  EXPECT_FALSE(Contains(visit.html(), bob));
}

}  // namespace
}  // namespace tidewell

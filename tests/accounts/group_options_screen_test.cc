// The group options screen (screen 10) and its buttons through Show against a seeded
// database: the markup with and without unassigned groups, "Add" (and the message for a name in
// use), "Update", "Delete" and "Back", and the refusal of every request that does not come
// from an administrator.

#include "accounts/group_options_screen.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "accounts/group_updates.h"
#include "tests/accounts/account_site.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::Contains;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::SiteVisit;

constexpr const char* kDatabaseErrorHeading =
    "<font color=#b22222><b>The following error was presented when trying to connect to the "
    "database.</b></font><br><br>Error Number: ";

// The screen's own markup, from its start comment to its end comment.
std::string GroupOptions(const std::string& html) {
  const size_t start = html.find("<!-- GroupOptionsView  Start -->");
  const std::string end = "<!-- GroupOptionsView End -->";
  const size_t end_comment = html.find(end);
  if (start == std::string::npos || end_comment == std::string::npos) return "";
  return html.substr(start, end_comment + end.size() - start);
}

class GroupOptionsScreen : public AccountSite {
 protected:
  // Screen 10 as the administrator options screen's pages link to it.
  SiteVisit Screen10(const std::string& shown, const std::string& acting) {
    SiteVisit visit = Visit();
    visit.Link("~10/0~11/21/2026~14~0~" + InLink(shown) + "~~" +
               (acting.empty() ? "" : InLink(acting)) + "~");
    return visit;
  }
  SiteVisit AsAdministrator() { return Screen10(admin_, admin_); }

  // The whole form as a browser posts it, with `button` pressed.
  static Fields GroupForm(const std::string& button) {
    return {{"newgroup", ""}, {"groupid", "1"},   {"groupname", ""},
            {"rgroupid", ""}, {"submit", button}, {"groupaction", "u"}};
  }

  SiteVisit PostAsAdministrator(const Fields& form) {
    SiteVisit visit = AsAdministrator();
    Post(visit, form);
    visit.Show();
    return visit;
  }

  long AddEmptyGroup(const std::string& name) { return database_.AddGroup(name); }

  std::vector<std::pair<std::string, std::string>> Keys() const {
    return {{"admin", Expected(admin_)}};
  }
};

TEST_F(GroupOptionsScreen, EveryGroupInUseShowsTheGreyNoticeAndNoDeleteButton) {
  const std::string screen = GroupOptions(AsAdministrator().Show());
  EXPECT_TRUE(MatchesGolden(screen, "group_options_every_group_in_use.html", Keys()));
  EXPECT_TRUE(Contains(screen, "&nbsp;<font color=#adadad><b>No Groups Unassigned</b></font>"));
  EXPECT_FALSE(Contains(screen, "value=\"Delete\""));
  EXPECT_FALSE(Contains(screen, "name=rgroupid"));
}

TEST_F(GroupOptionsScreen, UnassignedGroupsAreListedForDeletion) {
  EXPECT_EQ(AddEmptyGroup("Spare"), 3);
  EXPECT_EQ(AddEmptyGroup("Galley"), 4);
  const std::string screen = GroupOptions(AsAdministrator().Show());
  EXPECT_TRUE(MatchesGolden(screen, "group_options_unassigned_groups.html", Keys()));
}

TEST_F(GroupOptionsScreen, AGroupThatLosesItsLastMemberByDeletionIsOfferedNextTime) {
  SiteVisit deletion = Screen8(carol_, admin_);
  deletion.Post("submit", "Delete This User");
  deletion.Show();
  ASSERT_EQ(Account(carol_), "");
  const std::string screen = GroupOptions(AsAdministrator().Show());
  EXPECT_TRUE(Contains(screen,
                       "<select class=text name=rgroupid><option class=text value=2 "
                       ">Deck</option></select>"));
  EXPECT_TRUE(Contains(screen, "value=\"Delete\""));
}

TEST_F(GroupOptionsScreen, AGroupThatLosesItsLastMemberByAMoveIsOfferedNextTime) {
  SiteVisit move = Screen8(carol_, admin_);
  Fields form = AccountForm("carol", "CA", "1");
  Set(form, "submit", "Update");
  Set(form, "action", "u");
  Post(move, form);
  move.Show();
  ASSERT_EQ(Account(carol_).substr(Account(carol_).rfind('|')), "|1");
  const std::string screen = GroupOptions(AsAdministrator().Show());
  EXPECT_TRUE(Contains(screen,
                       "<select class=text name=rgroupid><option class=text value=2 "
                       ">Deck</option></select>"));
}

TEST_F(GroupOptionsScreen, AddMakesAGroupThatIsThenUnassigned) {
  Fields form = GroupForm("Add");
  Set(form, "newgroup", "Galley");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Screen, screens::kGroupOptions);
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck", "3|Galley"}));
  EXPECT_TRUE(Contains(GroupOptions(visit.html()),
                       "<select class=text name=rgroupid><option class=text value=3 "
                       ">Galley</option></select>"));
}

TEST_F(GroupOptionsScreen, AddingANameInUseShowsTheMessageAndInsertsNothing) {
  Fields form = GroupForm("Add");
  Set(form, "newgroup", "Deck");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kGroupNameTaken);
  EXPECT_EQ(visit.page().Error.Text, "<br>There is already a group named: Deck");
  EXPECT_EQ(visit.page().Screen, screens::kGroupOptions);
  EXPECT_TRUE(Contains(GroupOptions(visit.html()),
                       "method=post name=groupoptions><font color=#b22222><b><br>There is "
                       "already a group named: Deck</b></font><br><table"));
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
}

TEST_F(GroupOptionsScreen, TheMessageEscapesThePostedName) {
  database_.AddGroup("<i>");
  Fields form = GroupForm("Add");
  Set(form, "newgroup", "<i>");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_EQ(visit.page().Error.Text, "<br>There is already a group named: &lt;i&gt;");
  EXPECT_FALSE(Contains(visit.html(), "<i>"));
}

TEST_F(GroupOptionsScreen, AddOrUpdateWithAnEmptyNameDoesNothing) {
  const Tables before = AllTables();
  for (const char* button : {"Add", "Update"}) {
    SCOPED_TRACE(button);
    Fields form = GroupForm(button);
    Set(form, "newgroup", "  ");
    Set(form, "groupname", "   ");
    SiteVisit visit = PostAsAdministrator(form);
    EXPECT_FALSE(visit.page().Error.Raised());
    EXPECT_EQ(AllTables(), before);
  }
}

TEST_F(GroupOptionsScreen, UpdateRenamesTheGroupForAllItsMembers) {
  Fields form = GroupForm("Update");
  Set(form, "groupid", "1");
  Set(form, "groupname", "Bridge");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Bridge", "2|Deck"}));
  // Both members still name group 1, which is now called Bridge.
  EXPECT_EQ(Account(admin_).substr(Account(admin_).rfind('|')), "|1");
  EXPECT_EQ(Account(bob_).substr(Account(bob_).rfind('|')), "|1");
  EXPECT_TRUE(
      Contains(GroupOptions(visit.html()), "<option selected class=text value=1 >Bridge</option>"));
  EXPECT_TRUE(Contains(visit.html(), "<b>Group:</b> Bridge | <b>User:</b> admin"));
}

TEST_F(GroupOptionsScreen, RenamingToANameInUseIsADatabaseError) {
  Fields form = GroupForm("Update");
  Set(form, "groupid", "1");
  Set(form, "groupname", "Deck");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_NE(visit.page().Error.Kind, ErrorKind::kGroupNameTaken);
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_TRUE(Contains(visit.html(), kDatabaseErrorHeading));
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
}

TEST_F(GroupOptionsScreen, DeleteRemovesAnUnassignedGroup) {
  AddEmptyGroup("Spare");
  Fields form = GroupForm("Delete");
  Set(form, "rgroupid", "3");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(Groups(), (std::vector<std::string>{"1|Crew", "2|Deck"}));
  EXPECT_TRUE(Contains(GroupOptions(visit.html()), "No Groups Unassigned"));
}

TEST_F(GroupOptionsScreen, BackDoesNoProcessingEvenWithFieldsFilledIn) {
  AddEmptyGroup("Spare");
  const Tables before = AllTables();
  Fields form = GroupForm("Back");
  Set(form, "newgroup", "Galley");
  Set(form, "groupid", "1");
  Set(form, "groupname", "Bridge");
  Set(form, "rgroupid", "3");
  SiteVisit visit = PostAsAdministrator(form);
  EXPECT_EQ(AllTables(), before);
  EXPECT_FALSE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
  EXPECT_TRUE(Contains(visit.html(), "<!-- AdminOptionsView  Start -->"));
  EXPECT_FALSE(Contains(visit.html(), "GroupOptionsView"));
}

TEST_F(GroupOptionsScreen, HeightFollowsTheBrowser) {
  EXPECT_EQ(FrameHeight(AsAdministrator().Show()), "545");
  EXPECT_EQ(FrameHeight(AsAdministrator().Agent("Mozilla/4.78 [en] (Nav; Windows NT 5.0)").Show()),
            "554");
  EXPECT_EQ(FrameHeight(
                AsAdministrator().Agent("Opera/9.80 (Windows NT 6.1; U; en) Presto/2.2.15").Show()),
            "555");
}

TEST_F(GroupOptionsScreen, GroupNamesAreEscaped) {
  AddEmptyGroup("A&B");
  const std::string screen = GroupOptions(AsAdministrator().Show());
  EXPECT_TRUE(Contains(screen, ">A&amp;B</option>"));
  EXPECT_FALSE(Contains(screen, ">A&B<"));
}

// --- Nobody but an administrator ---

class GroupOptionsRefused : public GroupOptionsScreen {
 protected:
  void ExpectLoginScreen(const SiteVisit& visit) {
    EXPECT_EQ(visit.page().Screen, screens::kLogin);
    EXPECT_TRUE(Contains(visit.html(), "<!-- LoginScreen  Start -->"));
    EXPECT_FALSE(Contains(visit.html(), "GroupOptionsView"));
    EXPECT_FALSE(Contains(visit.html(), "Administrator Group Options"));
  }
};

TEST_F(GroupOptionsRefused, ANonAdministratorRequestingTheScreenGetsTheLoginScreen) {
  SiteVisit visit = Screen10(bob_, "");
  visit.Show();
  ExpectLoginScreen(visit);
}

TEST_F(GroupOptionsRefused, ANonAdministratorWithHisOwnKeyAsAdministratorKeyGetsTheLoginScreen) {
  SiteVisit visit = Screen10(bob_, bob_);
  visit.Show();
  ExpectLoginScreen(visit);
}

TEST_F(GroupOptionsRefused, ALoggedOutVisitorGetsTheLoginScreen) {
  SiteVisit visit = Visit();
  visit.Link("~10/0~11/21/2026~14~0~~~~");
  visit.Show();
  ExpectLoginScreen(visit);
}

TEST_F(GroupOptionsRefused, EveryGroupActionOfANonAdministratorChangesNothing) {
  AddEmptyGroup("Spare");
  const Tables before = AllTables();
  for (const std::string visitor : {"bob", "bob as administrator", "nobody"}) {
    for (const char* button : {"Add", "Update", "Delete", "Back"}) {
      SCOPED_TRACE(visitor + ": " + button);
      SiteVisit visit = visitor == "nobody" ? Screen10("", "")
                        : visitor == "bob"  ? Screen10(bob_, "")
                                            : Screen10(bob_, bob_);
      Fields form = GroupForm(button);
      Set(form, "newgroup", "Galley");
      Set(form, "groupid", "2");
      Set(form, "groupname", "Bridge");
      Set(form, "rgroupid", "3");
      Post(visit, form);
      visit.Show();
      ExpectLoginScreen(visit);
      EXPECT_FALSE(Contains(visit.html(), "AdminOptionsView"));
      EXPECT_EQ(AllTables(), before);
    }
  }
}

}  // namespace
}  // namespace tidewell

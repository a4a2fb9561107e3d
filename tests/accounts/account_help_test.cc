// The user and group help screens (11 and 12) through Show against a seeded database.

#include "accounts/account_help.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/accounts/account_site.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::Between;
using testing::Contains;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::SiteVisit;

std::string UserHelp(const std::string& html) {
  return Between(html, "<!-- HelpScreenUser  Start -->", "<!-- HelpScreenUser End -->");
}
std::string GroupHelp(const std::string& html) {
  return Between(html, "<!-- HelpScreenGroup  Start -->", "<!-- HelpScreenGroup End -->");
}

class AccountHelp : public AccountSite {
 protected:
  SiteVisit Screen(long screen, const std::string& user, const std::string& admin) {
    SiteVisit visit = Visit();
    visit.Link("~" + std::to_string(screen) + "/1~11/21/2026~14~0~" + InLink(user) + "~~" +
               (admin.empty() ? "" : InLink(admin)) + "~");
    return visit;
  }
};

TEST_F(AccountHelp, UserHelp) {
  EXPECT_TRUE(MatchesGolden(UserHelp(Screen(11, bob_, "").Show()), "user_help.html"));
}

TEST_F(AccountHelp, GroupHelp) {
  EXPECT_TRUE(MatchesGolden(GroupHelp(Screen(12, admin_, admin_).Show()), "group_help.html"));
}

TEST_F(AccountHelp, NeitherHelpScreenHasAFormOrALink) {
  for (const std::string& screen :
       {UserHelp(Screen(11, bob_, "").Show()), GroupHelp(Screen(12, admin_, admin_).Show())}) {
    ASSERT_FALSE(screen.empty());
    EXPECT_FALSE(Contains(screen, "<form"));
    EXPECT_FALSE(Contains(screen, "<a "));
    EXPECT_FALSE(Contains(screen, "href="));
    EXPECT_FALSE(Contains(screen, "<input"));
  }
}

// Each group's last entry meets its rule without a line break; the user help's show-all entry
// closes the first group.
TEST_F(AccountHelp, TheLastEntryOfEachGroupHasNoBreakBeforeItsRule) {
  const std::string user = UserHelp(Screen(11, bob_, "").Show());
  const std::string group = GroupHelp(Screen(12, admin_, admin_).Show());
  EXPECT_FALSE(Contains(user, "<br><hr"));
  EXPECT_FALSE(Contains(group, "<br><hr"));
  EXPECT_TRUE(Contains(user, "on or off.</font><hr size=1 color=#c0c0c0 ><b>Start my Days at"));
  EXPECT_TRUE(Contains(user, "a 24 hours. This option"));
  EXPECT_TRUE(Contains(user, "correctly.</font><hr size=1 color=#c0c0c0 ></td>"));
  EXPECT_TRUE(Contains(user, "(max 15 chars)</font><br><b>Initials:"));
  size_t rules = 0;
  for (size_t at = group.find("</font><hr size=1 color=#c0c0c0 >"); at != std::string::npos;
       at = group.find("</font><hr size=1 color=#c0c0c0 >", at + 1)) {
    ++rules;
  }
  EXPECT_EQ(rules, 3u);
}

TEST_F(AccountHelp, HeightFollowsTheBrowser) {
  for (long screen : {11L, 12L}) {
    SCOPED_TRACE(screen);
    EXPECT_EQ(FrameHeight(Screen(screen, admin_, admin_).Show()), "545");
    EXPECT_EQ(
        FrameHeight(
            Screen(screen, admin_, admin_).Agent("Mozilla/4.78 [en] (Nav; Windows NT 5.0)").Show()),
        "554");
    EXPECT_EQ(FrameHeight(Screen(screen, admin_, admin_)
                              .Agent("Opera/9.80 (Windows NT 6.1; U; en) Presto/2.2.15")
                              .Show()),
              "555");
  }
}

// Screen 7's and screen 8's help icons lead here, returning to the view in use.
TEST_F(AccountHelp, TheUserHelpIsReachedFromTheUserOptionsScreen) {
  SiteVisit visit = Screen(7, bob_, "");
  const std::string html = visit.Show();
  const std::string link = testing::LinkTitled(html, "Show me help for this page.");
  ASSERT_FALSE(link.empty());
  EXPECT_EQ(testing::LinkFields(link)[1], "11/1");
}

}  // namespace
}  // namespace tidewell

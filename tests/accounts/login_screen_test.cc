// The login and welcome screens, inside the frame, through Show.

#include "accounts/login_screen.h"

#include <gtest/gtest.h>

#include "accounts/welcome_screen.h"
#include "tests/component/site_visit.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::MatchesGolden;
using testing::SiteTest;
using testing::SiteVisit;

constexpr const char* kExplorer = "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)";
constexpr const char* kNetscape = "Mozilla/5.0 (Windows; U; Windows NT 5.1) Netscape/7.2";
constexpr const char* kNavigator = "Mozilla/4.78 [en] (Nav; Windows NT 5.0)";
constexpr const char* kOpera = "Opera/9.80 (Windows NT 6.1; U; en) Presto/2.2.15";

// The outer table's height as the screen settled it.
std::string FrameHeight(const std::string& html) {
  const std::string before = "<table align=center valign=top width=620 height=";
  size_t at = html.find(before);
  if (at == std::string::npos) return "";
  at += before.size();
  return html.substr(at, html.find(' ', at) - at);
}

class LoginScreenPage : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    AddAdministrator("admin", "pw");
  }
  std::string FirstVisit(const char* agent) {
    SiteVisit visit = Visit();
    visit.Agent(agent);
    return visit.Show();
  }
};

TEST_F(LoginScreenPage, FirstVisit) {
  EXPECT_TRUE(MatchesGolden(FirstVisit(kExplorer), "login_screen_first_visit.html"));
}

TEST_F(LoginScreenPage, AfterAFailedLogin) {
  SiteVisit visit = Visit();
  visit.Agent(kExplorer)
      .Link("~6~11/21/2026~14~0~~~~")
      .Post("username", "admin")
      .Post("password", "wrong")
      .Post("submit", "Login")
      .Post("login", "y");
  EXPECT_TRUE(MatchesGolden(visit.Show(), "login_screen_failed_login.html"));
}

TEST_F(LoginScreenPage, ForNetscape) {
  EXPECT_TRUE(MatchesGolden(FirstVisit(kNetscape), "login_screen_netscape.html"));
}

TEST_F(LoginScreenPage, BothFieldsAcceptAtMostFifteenCharacters) {
  std::string html = FirstVisit(kExplorer);
  EXPECT_NE(html.find("<input maxlength=15 type=text class=text name=username size=20 >"),
            std::string::npos);
  EXPECT_NE(html.find("<input maxlength=15 type=password class=text name=password size=20 >"),
            std::string::npos);
  EXPECT_EQ(Count(html, "<input maxlength="), 2u);
}

TEST_F(LoginScreenPage, AFirstVisitShowsOnlyThePrompt) {
  std::string html = FirstVisit(kExplorer);
  EXPECT_EQ(html.find("invalid"), std::string::npos);
  EXPECT_NE(html.find("<hr size=1 color=#c0c0c0 >Please login with a Username and Password."),
            std::string::npos);
}

TEST_F(LoginScreenPage, AFailedLoginShowsTheNoticeOnceAboveThePrompt) {
  SiteVisit visit = Visit();
  visit.Link("~6~11/21/2026~14~0~~~~").Post("username", "x").Post("password", "y");
  visit.Post("login", "y");
  std::string html = visit.Show();
  EXPECT_EQ(Count(html, "The Username and/or Password you have entered is invalid."), 1u);
  EXPECT_NE(html.find("<hr size=1 color=#c0c0c0 ><font color=#b22222><b>The Username and/or "
                      "Password you have entered is invalid.</b></font><br><br>Please login with "
                      "a Username and Password."),
            std::string::npos);
}

TEST_F(LoginScreenPage, NetscapeGetsOneExtraLineAfterThePrompt) {
  EXPECT_NE(
      FirstVisit(kNetscape).find("Please login with a Username and Password.<br>&nbsp;<form "),
      std::string::npos);
  for (const char* agent : {kExplorer, kNavigator, kOpera}) {
    EXPECT_NE(FirstVisit(agent).find("Please login with a Username and Password.<form "),
              std::string::npos)
        << agent;
  }
}

TEST_F(LoginScreenPage, HeightsByBrowser) {
  EXPECT_EQ(FrameHeight(FirstVisit(kExplorer)), "558");
  EXPECT_EQ(FrameHeight(FirstVisit(kNetscape)), "558");
  EXPECT_EQ(FrameHeight(FirstVisit(kNavigator)), "557");
  EXPECT_EQ(FrameHeight(FirstVisit(kOpera)), "561");
}

TEST_F(LoginScreenPage, TheFormPostsBackToTheLoginScreen) {
  std::string action = testing::FormAction(FirstVisit(kExplorer));
  EXPECT_EQ(action, "default.asp?WS=~6~11/21/2026~14~0~~~~");
}

// --- The welcome screen ---

class WelcomeScreenPage : public SiteTest {
 protected:
  std::string FirstVisit(const char* agent) {
    SiteVisit visit = Visit();
    visit.Agent(agent);
    return visit.Show();
  }
};

TEST_F(WelcomeScreenPage, FirstVisitToAFreshSite) {
  EXPECT_TRUE(MatchesGolden(FirstVisit(kExplorer), "welcome_screen.html"));
}

TEST_F(WelcomeScreenPage, HeightsByBrowser) {
  EXPECT_EQ(FrameHeight(FirstVisit(kExplorer)), "555");
  EXPECT_EQ(FrameHeight(FirstVisit(kNetscape)), "555");
  EXPECT_EQ(FrameHeight(FirstVisit(kNavigator)), "555");
  EXPECT_EQ(FrameHeight(FirstVisit(kOpera)), "557");
}

TEST_F(WelcomeScreenPage, AnEmptyUsersTableShowsTheWelcomeScreenToEveryVisitorWithoutAKey) {
  for (std::string payload : {"", "~6~11/21/2026~14~0~~~~", "~0~11/21/2026~9~0~~~~",
                              "~2~11/21/2026~9~0~0123456789abcdef0123456789abcdef~~~"}) {
    SiteVisit visit = Visit();
    if (!payload.empty()) visit.Link(payload);
    std::string html = visit.Show();
    EXPECT_EQ(visit.page().Screen, screens::kWelcome) << payload;
    EXPECT_NE(html.find("<!-- WelcomeScreen  Start -->"), std::string::npos) << payload;
    EXPECT_EQ(html.find("LoginScreen"), std::string::npos) << payload;
  }
}

TEST_F(WelcomeScreenPage, AccountsWithoutTheAdministratorFlagStillGetTheWelcomeScreen) {
  AddUser("bob", "pw");
  AddUser("carol", "pw");
  SiteVisit visit = Visit();
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kWelcome);
  EXPECT_EQ(html.find("LoginScreen"), std::string::npos);
}

TEST_F(WelcomeScreenPage, ALoginFormPostedMeanwhileStillEndsOnTheWelcomeScreen) {
  AddUser("bob", "pw");
  SiteVisit visit = Visit();
  visit.Link("~6~11/21/2026~14~0~~~~").Post("username", "x").Post("password", "y");
  visit.Post("login", "y");
  visit.Show();
  // The failed login is pending, so the administrator question is not asked: the login
  // screen with its notice. A correct login opens the user's calendar.
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kLoginRefused);
}

TEST_F(WelcomeScreenPage, WelcomeYesOpensTheFirstAdministratorFormWhenNoneExists) {
  SiteVisit visit = Visit();
  visit.Link("~9~11/21/2026~14~0~~~~").Post("submit", "Next").Post("welcome", "y");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
  EXPECT_TRUE(visit.page().NewUserMode);
  EXPECT_TRUE(visit.page().FirstAdministratorMode);
  EXPECT_EQ(html.find("WelcomeScreen"), std::string::npos);
}

// Once an account is an administrator the first-administrator form is no way in: a request
// with "welcome" = "y" gets the login screen.
TEST_F(WelcomeScreenPage, WelcomeYesShowsTheLoginScreenOnceAnAdministratorExists) {
  AddAdministrator();
  SiteVisit visit = Visit();
  visit.Query("welcome", "y");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_FALSE(visit.page().NewUserMode);
  EXPECT_FALSE(visit.page().FirstAdministratorMode);
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_EQ(html.find("AdminOptionsView"), std::string::npos);
}

TEST_F(WelcomeScreenPage, TheNextButtonPostsWelcome) {
  std::string html = FirstVisit(kExplorer);
  EXPECT_EQ(testing::FormAction(html), "default.asp?WS=~9~11/21/2026~14~0~~~~");
  EXPECT_NE(html.find("<input type=hidden class=text value=y name=welcome>"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

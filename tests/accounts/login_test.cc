// Signing in and the current user, through Show against a seeded database.

#include "accounts/login.h"

#include <gtest/gtest.h>

#include "tests/component/site_visit.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::SiteTest;
using testing::SiteVisit;

constexpr const char* kInvalidLogin =
    "<font color=#b22222><b>The Username and/or Password you have entered is "
    "invalid.</b></font><br><br>";

class Login : public SiteTest {
 protected:
  // The login form as the login screen posts it.
  SiteVisit PostLogin(const std::string& name, const std::string& password) {
    SiteVisit visit = Visit();
    visit.Link("~6~11/21/2026~14~0~~~~")
        .Post("username", name)
        .Post("password", password)
        .Post("submit", "Login")
        .Post("login", "y");
    return visit;
  }
};

// --- Logging in ---

TEST_F(Login, CorrectLoginWithDefaultViewTwoOpensTheDayView) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret", /*default_view=*/2);
  SiteVisit visit = PostLogin("bob", "secret");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
  EXPECT_EQ(visit.page().Screen, screens::kDayView);
  EXPECT_EQ(visit.page().ReturnView, screens::kDayView);
  EXPECT_FALSE(visit.page().Error.Raised());
  // The day view's tab strip, its DayView tab selected, and links that carry bob signed.
  EXPECT_NE(html.find("<td align=left height=21 class=tabs bgcolor=#172676 nowrap><a class=tabs "
                      "href=default.asp?WS=~2/n~11/21/2026~"),
            std::string::npos);
  std::vector<std::string> fields = LinkFields(LinkTitled(html, "Next Month"));
  ASSERT_GE(fields.size(), 8u);
  EXPECT_EQ(fields[1], "2/n");
  EXPECT_EQ(fields[5], Expected(bob));
  EXPECT_EQ(html.find("LoginScreen"), std::string::npos);
}

TEST_F(Login, LoginTakesTheStartHourFromTheUsersOptions) {
  AddAdministrator();
  AddUser("bob", "pw", 0, "0+7+0+0+0");
  SiteVisit visit = PostLogin("bob", "pw");
  visit.Show();
  EXPECT_EQ(visit.page().CurrentHour, 7);
  EXPECT_EQ(LinkFields(LinkTitled(visit.html(), "Next Month"))[3], "7");
}

TEST_F(Login, LoginWithAOneElementOptionsStringKeepsTheHour) {
  AddAdministrator();
  AddUser("bob", "pw", 1, "4");
  SiteVisit visit = PostLogin("bob", "pw");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kWeekView);
  EXPECT_EQ(visit.page().CurrentHour, 14);
}

TEST_F(Login, NamesCompareWithoutRegardToCase) {
  // As Jet compared names.
  AddAdministrator();
  std::string bob = AddUser("Bob", "pw");
  SiteVisit visit = PostLogin("BOB", "pw");
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
}

TEST_F(Login, LoginFromTheLogoutLinkOpensTheDayWithoutTheTimeOfDay) {
  AddAdministrator();
  AddUser("bob", "secret");
  SiteVisit visit = Visit();
  visit.Link("~6~11/21/2026 2:05:00 PM~0~0~~~~")
      .Post("username", "bob")
      .Post("password", "secret")
      .Post("submit", "Login")
      .Post("login", "y");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kMonthView);
  EXPECT_EQ(visit.page().CurrentDate, DateSerial(2026, 11, 21));
  std::vector<std::string> fields = LinkFields(LinkTitled(html, "Add New Item"));
  ASSERT_GE(fields.size(), 3u);
  EXPECT_EQ(fields[2], "11/21/2026");
}

TEST_F(Login, WrongLoginFromTheLogoutLinkKeepsItsDateAndTime) {
  AddAdministrator();
  AddUser("bob", "secret");
  SiteVisit visit = Visit();
  visit.Link("~6~11/21/2026 2:05:00 PM~0~0~~~~")
      .Post("username", "bob")
      .Post("password", "wrong")
      .Post("submit", "Login")
      .Post("login", "y");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().CurrentDate, Combine(DateSerial(2026, 11, 21), TimeSerial(14, 5, 0)));
}

TEST_F(Login, WrongPasswordLeavesTheLoginScreenWithTheNotice) {
  AddAdministrator();
  AddUser("bob", "secret");
  SiteVisit visit = PostLogin("bob", "wrong");
  std::string html = visit.Show();
  const Page& page = visit.page();
  EXPECT_EQ(page.UserKey, "");
  EXPECT_EQ(page.Screen, screens::kLogin);
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kLoginRefused);
  EXPECT_EQ(page.Error.Text, kInvalidLogin);
  EXPECT_NE(html.find(std::string(kInvalidLogin) + "Please login with a Username and Password."),
            std::string::npos);
}

TEST_F(Login, UnknownUserIsTheSameInvalidLogin) {
  AddAdministrator();
  SiteVisit visit = PostLogin("nobody", "pw");
  visit.Show();
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kLoginRefused);
}

TEST_F(Login, WithoutTheLoginFieldNothingIsTried) {
  AddAdministrator();
  AddUser("bob", "pw");
  SiteVisit visit = Visit();
  visit.Link("~6~11/21/2026~14~0~~~~").Post("username", "bob").Post("password", "pw");
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_FALSE(visit.page().Error.Raised());
}

TEST_F(Login, LoginFormOnAnotherScreenIsNotRun) {
  AddAdministrator();
  std::string bob = AddUser("bob", "pw");
  AddUser("carol", "pw");
  SiteVisit visit = Visit();
  visit.Link("~0~11/21/2026~14~0~" + InLink(bob) + "~~~")
      .Post("username", "carol")
      .Post("password", "pw")
      .Post("login", "y");
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
  EXPECT_EQ(visit.page().Screen, screens::kMonthView);
}

TEST_F(Login, LoginFormOnALinkWhoseKeyFailsIsRunOnTheLoginScreen) {
  AddAdministrator();
  std::string carol = AddUser("carol", "pw", 1);
  SiteVisit visit = Visit();
  visit.Link("~0~11/21/2026~14~0~~~~")
      .Post("username", "carol")
      .Post("password", "pw")
      .Post("login", "y");
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, carol);
  EXPECT_EQ(visit.page().Screen, screens::kWeekView);
}

// A single quote in a spliced value refuses the statement: the error screen, not a login.
TEST_F(Login, QuoteInTheNameIsADatabaseErrorNotALogin) {
  AddAdministrator();
  AddUser("bob", "pw");
  SiteVisit visit = PostLogin("bob' OR 'a'='a", "x' OR 'a'='a");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_NE(html.find("<!-- ErrorScreen Start -->"), std::string::npos);
  EXPECT_NE(visit.page().Error.Text.find("when trying to connect to the database."),
            std::string::npos);
}

// --- AutoLogin ---

TEST_F(Login, AutoLoginWithAWrongPasswordShowsTheLoginScreenWithTheNotice) {
  AddAdministrator();
  AddUser("bob", "secret");
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.AutoLogin("bob", "wrong", false); });
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kLoginRefused);
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_NE(html.find(std::string(kInvalidLogin) + "Please login with a Username and Password."),
            std::string::npos);
}

TEST_F(Login, AutoLoginOpensTheUsersDefaultView) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret", 3);
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.AutoLogin("bob", "secret", false); });
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
  EXPECT_EQ(visit.page().Screen, screens::kTimeView);
}

TEST_F(Login, AutoLoginWinsOverAPostedForm) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret");
  AddUser("carol", "pw");
  SiteVisit visit = PostLogin("carol", "pw");
  visit.Configure([](ASPTidewell& c) { c.AutoLogin("bob", "secret", false); });
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
}

// --- Throttling ---

TEST_F(Login, AfterFiveFailuresInAMinuteEvenTheRightPasswordIsRefusedUntilTheMinutePasses) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret");
  for (int i = 0; i < 5; ++i) {
    SiteVisit wrong = PostLogin("bob", "guess");
    wrong.Show();
    EXPECT_EQ(wrong.page().Error.Text, kInvalidLogin);
  }
  SiteVisit refused = PostLogin("BOB", "secret");
  refused.Show();
  EXPECT_EQ(refused.page().UserKey, "");
  EXPECT_EQ(refused.page().Error.Kind, ErrorKind::kLoginRefused);
  EXPECT_EQ(refused.page().Error.Text, kInvalidLogin);

  // Sixty seconds after the first failure it no longer counts, and the right password works.
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(14, 6, 1)));
  SiteVisit admitted = PostLogin("bob", "secret");
  admitted.Show();
  EXPECT_EQ(admitted.page().UserKey, bob);
  EXPECT_FALSE(admitted.page().Error.Raised());
}

TEST_F(Login, AnAddressThatFailsTwentyTimesInAMinuteIsRefusedForEveryName) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret");
  for (int i = 0; i < 20; ++i) {
    PostLogin("name" + std::to_string(i), "guess").From("192.0.2.7").Show();
  }
  SiteVisit refused = PostLogin("bob", "secret");
  refused.From("192.0.2.7").Show();
  EXPECT_EQ(refused.page().UserKey, "");
  EXPECT_EQ(refused.page().Error.Text, kInvalidLogin);
  // Another address is not held back by them.
  SiteVisit elsewhere = PostLogin("bob", "secret");
  elsewhere.From("192.0.2.8").Show();
  EXPECT_EQ(elsewhere.page().UserKey, bob);
}

TEST_F(Login, ASuccessLeavesNoFailureBehind) {
  AddAdministrator();
  std::string bob = AddUser("bob", "secret");
  for (int round = 0; round < 8; ++round) {
    SiteVisit visit = PostLogin("bob", "secret");
    visit.Show();
    EXPECT_EQ(visit.page().UserKey, bob) << round;
  }
}

TEST_F(Login, AutoLoginIsNotThrottled) {
  // The site's own configuration signs in on every request of its page.
  AddAdministrator();
  std::string bob = AddUser("bob", "secret");
  for (int i = 0; i < 5; ++i) PostLogin("bob", "guess").Show();
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.AutoLogin("bob", "secret", false); });
  visit.Show();
  EXPECT_EQ(visit.page().UserKey, bob);
}

// --- Login or welcome ---

TEST_F(Login, WithoutAnAdministratorARequestWithoutKeyShowsTheWelcomeScreen) {
  AddUser("bob");
  SiteVisit visit = Visit();
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kWelcome);
  EXPECT_NE(html.find("<!-- WelcomeScreen  Start -->"), std::string::npos);
}

TEST_F(Login, WithAnAdministratorARequestWithoutKeyShowsTheLoginScreen) {
  AddAdministrator();
  SiteVisit visit = Visit();
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kLogin);
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_EQ(html.find("WelcomeScreen"), std::string::npos);
}

TEST_F(Login, TheAdministratorQuestionFollowsTheDialect) {
  AddAdministrator();
  // Flags are kept as -1 by the Access dialect; asked the SQL Server way (= 1), no
  // administrator is found.
  SiteVisit visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.SetDataServer(ASPDataServer::SQLServer); });
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kWelcome);
}

TEST_F(Login, AnAdministratorQuestionThatFailsShowsTheErrorScreenNotTheWelcome) {
  database_.Execute("DROP TABLE Users");
  SiteVisit visit = Visit();
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kCannotConnect);
  EXPECT_EQ(html.find("WelcomeScreen"), std::string::npos);
  EXPECT_NE(html.find("no such table: Users"), std::string::npos);
}

// --- On PostgreSQL, in the SQL Server dialect ---

class LoginOnPostgres : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    group_ = testing::Seeder(engine_.connection_string).AddGroup("Crew");
  }

  std::string AddAccount(const std::string& name, bool administrator, long view) {
    return testing::Seeder(engine_.connection_string)
        .AddUser({.name = name,
                  .group = group_,
                  .administrator = administrator,
                  .default_view = view,
                  .options = "0+10+0+0+0"});
  }

  Page ShowPage(testing::FakeVisit& visit) {
    visit.Start();
    visit.component.SetConnectionString(engine_.connection_string);
    visit.component.SetDataServer(ASPDataServer::SQLServer);
    visit.component.SetLinkSigning({"postgres test secret", 3600});
    visit.component.ViewSource();
    return visit.component.page();
  }

  testing::PostgresEngine engine_;
  long group_ = 0;
};

TEST_F(LoginOnPostgres, AdministratorQuestionLoginAndCurrentUser) {
  {
    testing::FakeVisit visit;
    EXPECT_EQ(ShowPage(visit).Screen, screens::kWelcome);
  }
  std::string admin = AddAccount("admin", true, 2);
  {
    testing::FakeVisit visit;
    EXPECT_EQ(ShowPage(visit).Screen, screens::kLogin);
  }
  {
    testing::FakeVisit visit;
    visit.request.Form.Add("login", "y");
    visit.request.Form.Add("username", "ADMIN");
    visit.request.Form.Add("password", "pw");
    Page page = ShowPage(visit);
    EXPECT_FALSE(page.Error.Raised()) << page.Error.Text;
    EXPECT_EQ(page.UserKey, admin);
    EXPECT_EQ(page.Screen, screens::kDayView);
    EXPECT_EQ(page.CurrentHour, 10);
    EXPECT_EQ(page.AdminKey, admin);
    EXPECT_EQ(page.UserBanner, "<b>Group:</b> Crew | <b>User:</b> admin");
    EXPECT_TRUE(page.User.Administrator);
  }
}

}  // namespace
}  // namespace tidewell

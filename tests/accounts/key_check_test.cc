// The key a link carries opens a calendar only in the signed form this server (or one that
// shares its secret) wrote, and only until it expires. Everything else shows the login screen.

#include <gtest/gtest.h>

#include "tests/component/site_visit.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::SiteTest;
using testing::SiteVisit;

class KeyCheck : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    AddAdministrator();
    bob_ = AddUser("bob", "pw", 2);
  }
  // The day view requested with `key` in the user key field.
  SiteVisit& Open(SiteVisit& visit, const std::string& key) {
    visit.Link("~2~11/21/2026~9~0~" + key + "~~~");
    visit.Show();
    return visit;
  }
  void ExpectLoginScreen(SiteVisit& visit) {
    EXPECT_EQ(visit.page().UserKey, "");
    EXPECT_EQ(visit.page().Screen, screens::kLogin);
    EXPECT_NE(visit.html().find("<!-- LoginScreen  Start -->"), std::string::npos);
    EXPECT_EQ(visit.html().find("Group:</b>"), std::string::npos);
  }
  std::string bob_;
};

TEST_F(KeyCheck, ASignedKeyOpensTheCalendar) {
  SiteVisit visit = Visit();
  Open(visit, InLink(bob_));
  EXPECT_EQ(visit.page().UserKey, bob_);
  EXPECT_EQ(visit.page().Screen, screens::kDayView);
  EXPECT_NE(visit.html().find("<b>Group:</b> Crew | <b>User:</b> bob"), std::string::npos);
}

TEST_F(KeyCheck, ABareKeyShowsTheLoginScreen) {
  SiteVisit visit = Visit();
  ExpectLoginScreen(Open(visit, bob_));
}

TEST_F(KeyCheck, OneChangedDigitOfTheMacShowsTheLoginScreen) {
  std::string token = InLink(bob_);
  token.back() = token.back() == '7' ? '8' : '7';
  SiteVisit visit = Visit();
  ExpectLoginScreen(Open(visit, token));
}

TEST_F(KeyCheck, OneChangedDigitOfTheExpiryShowsTheLoginScreen) {
  std::string token = InLink(bob_);
  // The last digit of the expiry: a later expiry is no better than an earlier one.
  size_t digit = token.rfind('.') - 1;
  token[digit] = token[digit] == '9' ? '0' : static_cast<char>(token[digit] + 1);
  SiteVisit visit = Visit();
  ExpectLoginScreen(Open(visit, token));
}

TEST_F(KeyCheck, AnExpiredKeyShowsTheLoginScreen) {
  std::string token = InLink(bob_);  // valid for an hour from 2:05 PM
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(15, 4, 59)));
  SiteVisit still_valid = Visit();
  EXPECT_EQ(Open(still_valid, token).page().UserKey, bob_);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(15, 5, 1)));
  SiteVisit expired = Visit();
  ExpectLoginScreen(Open(expired, token));
}

TEST_F(KeyCheck, AKeySignedWithAnotherSecretShowsTheLoginScreen) {
  std::string token =
      SignKey({"another server's secret", kLifetime}, bob_, database_.StampOf(bob_));
  SiteVisit visit = Visit();
  ExpectLoginScreen(Open(visit, token));
}

TEST_F(KeyCheck, AServerWithTheSameSecretAcceptsTheKey) {
  // Its own lifetime may differ; the expiry travels in the link.
  std::string token = SignKey({kSecret, 60}, bob_, database_.StampOf(bob_));
  SiteVisit visit = Visit();
  EXPECT_EQ(Open(visit, token).page().UserKey, bob_);
}

TEST_F(KeyCheck, ASignedKeyOfAnotherFormShowsTheLoginScreen) {
  // Keys are 32 lower-case hex digits; an account under any other key is never opened.
  for (std::string key : {"carol", "0123456789ABCDEF0123456789ABCDEF"}) {
    database_.AddUser({.key = key, .name = key, .password = "pw", .group = crew_});
    SiteVisit visit = Visit();
    ExpectLoginScreen(Open(visit, InLink(key)));
  }
}

TEST_F(KeyCheck, AKeyOfNoAccountShowsTheLoginScreen) {
  SiteVisit visit = Visit();
  ExpectLoginScreen(Open(visit, InLink(GenerateOwnerKey())));
}

TEST_F(KeyCheck, AWelcomeRequestWithABadKeyKeepsItsScreenButNoKey) {
  // The first-administrator form is drawn only while no account is an administrator.
  database_.Execute("UPDATE Users SET Administrator = 0");
  SiteVisit visit = Visit();
  visit.Query("welcome", "y");
  Open(visit, bob_);
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_EQ(visit.page().Screen, screens::kAdministratorOptions);
}

// Every page signs its links again, so a user at work never meets the expiry.
TEST_F(KeyCheck, EveryPageSignsItsLinksAfresh) {
  std::string token = InLink(bob_);
  SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(14, 50, 0)));
  SiteVisit visit = Visit();
  Open(visit, token);
  std::vector<std::string> fields = LinkFields(LinkTitled(visit.html(), "Next Month"));
  ASSERT_GE(fields.size(), 8u);
  EXPECT_EQ(fields[5], testing::ExpectedSignedKey(kSecret, bob_,
                                                  testing::UnixSeconds(2026, 11, 21, 15, 50, 0),
                                                  database_.StampOf(bob_)));
}

TEST_F(KeyCheck, TheLogoutLinkCarriesNoKey) {
  SiteVisit visit = Visit();
  Open(visit, InLink(bob_));
  EXPECT_NE(visit.html().find("href=default.asp?WS=~6~11/21/2026 2:05:00 PM~0~0~~~~ >"),
            std::string::npos);
}

}  // namespace
}  // namespace tidewell

#include "frame/header.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "tests/component/site_visit.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::LinkFields;
using testing::LinkTitled;
using testing::MatchesGolden;
using testing::SiteTest;

// The header with its buttons, drawn alone: state as a page in the week view would have it.
class HeaderMarkup : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    page_.props.ImagePath = "images/";
    page_.props.HexQueryString = false;
    page_.signing = signing_;
    page_.ScriptName = "default.asp?";
    page_.Screen = screens::kWeekView;
    page_.ReturnView = screens::kWeekView;
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.CurrentHour = 9;
    page_.SortOrder = "hd";
  }
  std::string Header() {
    AppendFrameOpening(page_);
    AppendButtonSection(page_);
    return page_.PageBuffer;
  }
  // The golden with the keys the links must carry.
  ::testing::AssertionResult Matches(const std::string& actual, const std::string& name,
                                            bool with_administrator = true) {
    return MatchesGolden(
        actual, name,
        {{"bob", Expected(kBob)}, {"admin", with_administrator ? Expected(kAdmin) : ""}});
  }

  static constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";
  static constexpr const char* kAdmin = "adadadadadadadadadadadadadadadad";
  Page page_;
};

TEST_F(HeaderMarkup, NobodySignedInHasTheLoginButton) {
  EXPECT_TRUE(Matches(Header(), "header_nobody_signed_in.html"));
}

TEST_F(HeaderMarkup, SignedInUser) {
  page_.UserKey = kBob;
  EXPECT_TRUE(Matches(Header(), "header_signed_in.html", /*with_administrator=*/false));
}

TEST_F(HeaderMarkup, AdministratorWorkingOnAUsersCalendar) {
  page_.UserKey = kBob;
  page_.AdminKey = kAdmin;
  EXPECT_TRUE(Matches(Header(), "header_signed_in_administrator.html"));
}

TEST_F(HeaderMarkup, AutoLogin) {
  page_.AutoLoginEnabled = true;
  page_.UserKey = kBob;
  page_.AdminKey = kAdmin;
  EXPECT_TRUE(Matches(Header(), "header_auto_login.html"));
}

TEST_F(HeaderMarkup, ReadOnlyAutoLogin) {
  page_.AutoLoginEnabled = true;
  page_.AutoLoginReadOnly = true;
  page_.UserKey = kBob;
  page_.AdminKey = kAdmin;
  EXPECT_TRUE(Matches(Header(), "header_auto_login_read_only.html"));
}

TEST_F(HeaderMarkup, LinksAreHexEncodedWhenHexQueryStringIsOn) {
  page_.props.HexQueryString = true;
  Header();
  // "~6~11/21/2026~9~0~~hd~~", each byte as two upper-case hex digits.
  EXPECT_NE(
      page_.PageBuffer.find("href=default.asp?WS=7E367E31312F32312F323032367E397E307E7E68647E7E "),
      std::string::npos);
}

TEST_F(HeaderMarkup, FrameEnd) {
  AppendFrameEnd(page_);
  EXPECT_EQ(page_.PageBuffer, "</td></tr></table><!-- Outer Table End -->");
}

// The button section of a page that went through Show.
std::string ButtonSection(const std::string& html) {
  size_t from = html.find("<!-- Button Section Start -->");
  size_t to = html.find("<!-- Button Section End -->");
  if (from == std::string::npos || to == std::string::npos) return "";
  return html.substr(from, to - from);
}

using Header = SiteTest;

TEST_F(Header, NobodySignedInAndNoAutoLoginShowsOnlyTheLoginButton) {
  AddAdministrator();
  auto visit = Visit();
  std::string buttons = ButtonSection(visit.Show());
  EXPECT_EQ(Count(buttons, "<a title="), 1u);
  EXPECT_NE(buttons.find("<a title=\"Login User\""), std::string::npos);
}

TEST_F(Header, ReadOnlyAutoLoginShowsOnlySearchEvenForAnAdministrator) {
  AddAdministrator("admin", "pw");
  auto visit = Visit();
  visit.Configure([](ASPTidewell& c) { c.AutoLogin("admin", "pw", /*read_only=*/true); });
  std::string buttons = ButtonSection(visit.Show());
  EXPECT_FALSE(visit.page().AdminKey.empty());
  EXPECT_EQ(Count(buttons, "<a title="), 1u);
  EXPECT_NE(buttons.find("<a title=\"Search for Items\""), std::string::npos);
}

TEST_F(Header, AutoLoginNeverShowsLogout) {
  AddAdministrator("admin", "pw");
  std::string bob = AddUser("bob", "pw");
  auto first = Visit();
  first.Configure([](ASPTidewell& c) { c.AutoLogin("bob", "pw", false); });
  std::string html = first.Show();
  EXPECT_EQ(html.find("Logout / Change User"), std::string::npos);
  EXPECT_NE(html.find("<a title=\"User Options\""), std::string::npos);

  // A later request of the same page, carrying the key from a link.
  auto later = Visit();
  later.Link("~1~11/21/2026~9~0~" + InLink(bob) + "~~~").Configure([](ASPTidewell& c) {
    c.AutoLogin("bob", "pw", false);
  });
  EXPECT_EQ(later.Show().find("Logout / Change User"), std::string::npos);
  EXPECT_EQ(later.page().Screen, screens::kWeekView);
}

TEST_F(Header, ReturnViewFourMakesTheButtonLinksEndInThree) {
  AddAdministrator();
  std::string bob = AddUser("bob");
  auto visit = Visit();
  visit.Link("~15/4~11/21/2026~9~0~" + InLink(bob) + "~~~");
  std::string html = visit.Show();
  for (const char* title : {"Add New Item", "Search for Items", "User Options"}) {
    std::vector<std::string> fields = LinkFields(LinkTitled(html, title));
    ASSERT_GE(fields.size(), 2u) << title;
    EXPECT_EQ(fields[1].substr(fields[1].find('/')), "/3") << title;
  }
  EXPECT_EQ(visit.page().ReturnView, 3);
  EXPECT_NE(html.find("<!-- tabs start -->"), std::string::npos);  // the time view's tabs
  EXPECT_NE(html.find("title=\"Display TimeView\" >&nbsp;TimeView&nbsp;</a></td><td align=left "
                      "width=5 height=21><img src=images/tb_right_sel.gif"),
            std::string::npos);
}

TEST_F(Header, ScreensThatReplaceNoHeightKeepThePlaceholder) {
  AddAdministrator();
  std::string bob = AddUser("bob");
  auto visit = Visit();
  visit.Link("~20~11/21/2026~9~0~" + InLink(bob) + "~~~");  // a screen code that draws nothing
  EXPECT_NE(visit.Show().find("<table align=center valign=top width=620 height=<height></height> "
                              "cellpadding=0 cellspacing=0 border=0>"),
            std::string::npos);
}

TEST_F(Header, LogoutLinkCarriesThePresentDateAndTimeAndNoKey) {
  AddAdministrator();
  std::string bob = AddUser("bob");
  auto visit = Visit();
  visit.Link("~0~1/5/2026~9~0~" + InLink(bob) + "~hd~~");
  EXPECT_NE(visit.Show().find("<a title=\"Logout / Change User\" "
                              "href=default.asp?WS=~6~11/21/2026 2:05:00 PM~0~0~~~~ >"),
            std::string::npos);
}

TEST_F(Header, FollowingTheLogoutLinkShowsTheLoginScreenOnToday) {
  AddAdministrator();
  auto visit = Visit();
  visit.Link("~6~11/21/2026 2:05:00 PM~0~0~~~~");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().UserKey, "");
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_NE(html.find("<b>November 2026</b>"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

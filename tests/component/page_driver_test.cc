#include "component/page_driver.h"

#include <gtest/gtest.h>

#include "component/link_state.h"
#include "page/link_keys.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"
#include "tests/component/fake_request.h"
#include "tests/component/seeded_database.h"

namespace tidewell {
namespace {

using testing::FakeVisit;

class PageDriver : public ::testing::Test {
 protected:
  // A database with an administrator, so that a visitor without a key gets the login screen.
  void SetUp() override {
    SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(14, 5, 0)));
    long crew = database_.AddGroup("Crew");
    admin_ = database_.AddUser(
        {.name = "admin", .password = "pw", .group = crew, .administrator = true});
    bob_ = database_.AddUser({.name = "bob", .password = "pw", .group = crew});
    visit_.component.SetConnectionString(database_.connection_string());
    visit_.component.SetLinkSigning(kSigning);
  }
  void TearDown() override { SetFixedNow(std::nullopt); }

  // Shows a page for the link payload and returns the request's state afterwards.
  const Page& ShowLink(std::string_view payload) {
    visit_.Link(payload).Start().ViewSource();
    return visit_.component.page();
  }
  // Bob's key as a link carries it: signed, so that the screen of the link stands.
  std::string BobInLink() const { return SignKey(kSigning, bob_, database_.StampOf(bob_)); }
  std::string AdminInLink() const { return SignKey(kSigning, admin_, database_.StampOf(admin_)); }

  const LinkSigning kSigning{"test secret", 3600};
  testing::SeededDatabase database_;
  std::string admin_;
  std::string bob_;
  FakeVisit visit_;
};

TEST_F(PageDriver, RequestWithoutLinkShowsTheLoginScreen) {
  visit_.Start().ViewSource();
  const Page& page = visit_.component.page();
  EXPECT_EQ(page.Screen, screens::kLogin);
  EXPECT_EQ(page.CurrentDate, DateSerial(2026, 11, 21));
  EXPECT_EQ(page.CurrentHour, 14);
  EXPECT_EQ(page.ItemId, 0);
  EXPECT_EQ(page.UserKey, "");
  ASSERT_EQ(page.LinkFields.size(), 9u);
  EXPECT_EQ(page.LinkFields[1], Variant(6));
  EXPECT_EQ(page.LinkFields[2], Variant(DateSerial(2026, 11, 21)));
  EXPECT_EQ(page.LinkFields[3], Variant(14));
  EXPECT_EQ(page.LinkFields[8], Variant(""));
}

TEST_F(PageDriver, StartHourComesFromTheClockWhenUnset) {
  visit_.Start().ViewSource();
  EXPECT_EQ(visit_.component.DefaultStartHour(), 14);
}

TEST_F(PageDriver, ConfiguredStartHourIsKept) {
  visit_.Start().SetDefaultStartHour(8);
  visit_.component.ViewSource();
  EXPECT_EQ(visit_.component.page().CurrentHour, 8);
}

TEST_F(PageDriver, ScreenWithNumericReturnView) {
  const Page& page = ShowLink("~4/2~11/3/2026~9~0~~~~");
  EXPECT_EQ(page.Screen, screens::kLogin);  // no valid key: back to the login screen
  EXPECT_EQ(page.ReturnView, 2);
  EXPECT_EQ(page.ScreenArgument, "");
}

TEST_F(PageDriver, ScreenWithNumericReturnViewAndAValidKey) {
  const Page& page = ShowLink("~4/2~11/3/2026~9~0~" + BobInLink() + "~~~");
  EXPECT_EQ(page.Screen, 4);
  EXPECT_EQ(page.ReturnView, 2);
}

TEST_F(PageDriver, ScreenWithTextArgument) {
  const Page& page = ShowLink("~3/name~11/3/2026~9~0~" + BobInLink() + "~~~");
  EXPECT_EQ(page.Screen, 3);
  EXPECT_EQ(page.ReturnView, 3);
  EXPECT_EQ(page.ScreenArgument, "name");
}

TEST_F(PageDriver, ScreenFieldWithOnePart) {
  const Page& page = ShowLink("~2~11/3/2026~9~0~" + BobInLink() + "~~~");
  EXPECT_EQ(page.Screen, 2);
  EXPECT_EQ(page.ReturnView, 2);
}

TEST_F(PageDriver, ScreenFieldWithThreePartsTakesTheFirst) {
  // (Screen 7: a return view of 4 would become 3 in the header.)
  const Page& page = ShowLink("~7/1/2~11/3/2026~9~0~" + BobInLink() + "~~~");
  EXPECT_EQ(page.Screen, 7);
  EXPECT_EQ(page.ReturnView, 7);
  EXPECT_EQ(page.ScreenArgument, "");
}

TEST_F(PageDriver, ValidDateIsTaken) {
  const Page& page = ShowLink("~0~2/28/2026~9~0~~~~");
  EXPECT_EQ(page.CurrentDate, DateSerial(2026, 2, 28));
  EXPECT_EQ(page.CurrentHour, 9);
}

TEST_F(PageDriver, DateFollowsTheRegionalSettings) {
  ScopedRegionalSettings gb("en-GB");
  const Page& page = ShowLink("~0~03/02/2026~9~0~~~~");
  EXPECT_EQ(page.CurrentDate, DateSerial(2026, 2, 3));
}

TEST_F(PageDriver, InvalidDateKeepsToday) {
  const Page& page = ShowLink("~0~2/30/2026~9~0~~~~");
  EXPECT_EQ(page.CurrentDate, DateSerial(2026, 11, 21));
}

TEST_F(PageDriver, TrailingDAsksForDeletion) {
  const Page& page = ShowLink("~0~11/3/2026~9~37d~~~~");
  EXPECT_EQ(page.ItemId, 37);
  EXPECT_TRUE(page.DeletionRequested);
}

TEST_F(PageDriver, PlainItemIdIsNoDeletion) {
  const Page& page = ShowLink("~0~11/3/2026~9~37~~~~");
  EXPECT_EQ(page.ItemId, 37);
  EXPECT_FALSE(page.DeletionRequested);
}

TEST_F(PageDriver, SortTokenIsKept) {
  const Page& page = ShowLink("~3~11/3/2026~9~0~~hd~~");
  EXPECT_EQ(page.SortOrder, "hd");
}

TEST_F(PageDriver, NonNumericHourRaisesTypeMismatch) {
  visit_.Link("~0~11/3/2026~nine~0~~~~").Start();
  try {
    visit_.component.ViewSource();
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), errors::kTypeMismatch);
  }
}

TEST_F(PageDriver, NonNumericScreenRaisesTypeMismatch) {
  visit_.Link("~x/0~11/3/2026~9~0~~~~").Start();
  EXPECT_THROW(visit_.component.ViewSource(), AutomationError);
}

TEST_F(PageDriver, NonNumericItemBeforeDRaisesTypeMismatch) {
  visit_.Link("~0~11/3/2026~9~xd~~~~").Start();
  EXPECT_THROW(visit_.component.ViewSource(), AutomationError);
}

TEST_F(PageDriver, ShortPayloadRaisesSubscriptOutOfRange) {
  visit_.Link("~6~").Start();
  try {
    visit_.component.ViewSource();
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), errors::kSubscriptOutOfRange);
  }
}

TEST_F(PageDriver, MalformedHexRaisesTypeMismatch) {
  visit_.request.QueryString.Add("WS", "7E3G");
  visit_.Start();
  EXPECT_THROW(visit_.component.ViewSource(), AutomationError);
}

TEST_F(PageDriver, KeyThatFailsTheCheckShowsTheLoginScreen) {
  const Page& page = ShowLink("~0~11/3/2026~9~0~0123456789abcdef0123456789abcdef~~~");
  EXPECT_EQ(page.UserKey, "");
  EXPECT_EQ(page.Screen, screens::kLogin);
}

TEST_F(PageDriver, SignedKeyPassesTheCheck) {
  const Page& page = ShowLink("~2~11/3/2026~9~0~" + BobInLink() + "~~~");
  EXPECT_EQ(page.UserKey, bob_);
  EXPECT_EQ(page.Screen, 2);
}

TEST_F(PageDriver, WelcomeRequestWithoutKeyKeepsTheLinksReturnView) {
  // The first-administrator form is drawn only while no account is an administrator.
  database_.Execute("UPDATE Users SET Administrator = 0");
  visit_.request.QueryString.Add("welcome", "y");
  const Page& page = ShowLink("~4/2~11/3/2026~9~0~~~~");
  EXPECT_EQ(page.ReturnView, 2);
  EXPECT_EQ(page.Screen, screens::kAdministratorOptions);  // the first-administrator form
}

TEST_F(PageDriver, ForgedAdministratorKeyIsDroppedAndRemembered) {
  const Page& page = ShowLink("~0~11/3/2026~9~0~~~0123456789abcdef0123456789abcdef~");
  EXPECT_EQ(page.AdminKey, "");
  EXPECT_TRUE(page.AdminKeyRejected);
}

// An administrator on his own calendar carries one signed key in both fields.
TEST_F(PageDriver, OneSignedKeyInBothFieldsIsKeptInBoth) {
  const std::string key = AdminInLink();
  const Page& page = ShowLink("~2~11/3/2026~9~0~" + key + "~~" + key + "~");
  EXPECT_EQ(page.UserKey, admin_);
  EXPECT_EQ(page.AdminKey, admin_);
  EXPECT_FALSE(page.AdminKeyRejected);
  EXPECT_EQ(page.LinkKeysRefused, 0);
}

// The user key signed otherwise in the administrator field is checked on its own.
TEST_F(PageDriver, TheUserKeyWithAnotherSignatureAsAdministratorKeyIsDropped) {
  const std::string key = AdminInLink();
  std::string forged = key;
  forged.back() = forged.back() == '7' ? '8' : '7';
  const Page& page = ShowLink("~2~11/3/2026~9~0~" + key + "~~" + forged + "~");
  EXPECT_EQ(page.UserKey, admin_);
  EXPECT_TRUE(page.AdminKeyRejected);
  EXPECT_EQ(page.LinkKeysRefused, 1);
}

TEST_F(PageDriver, HexOffReadsPlainLinks) {
  visit_.request.QueryString.Add("WS", "~2~11/3/2026~10~5~~~~");
  visit_.Start().SetHexQueryString(false);
  visit_.component.ViewSource();
  EXPECT_EQ(visit_.component.page().CurrentHour, 10);
  EXPECT_EQ(visit_.component.page().ItemId, 5);
}

TEST_F(PageDriver, VisibleFalseHidesTheWholePage) {
  std::string html = visit_.Start().ViewSource();
  EXPECT_EQ(html.rfind("<div id=ws_vis style=\"display:none\"><div id=ws_pos >", 0), 0u);
  EXPECT_EQ(html.substr(html.size() - 12), "</div></div>");
}

TEST_F(PageDriver, VisibleTrueShowsThePage) {
  visit_.Start().SetVisible(true);
  std::string html = visit_.component.ViewSource();
  EXPECT_EQ(html.rfind("<div id=ws_vis ><div id=ws_pos ><!-- Outer Table Start -->", 0), 0u);
  EXPECT_EQ(html.substr(html.size() - 36), "<!-- Outer Table End --></div></div>");
}

TEST_F(PageDriver, PositionStylesTheInnerDiv) {
  visit_.Start().SetVisible(true);
  visit_.component.SetPosition("position:absolute;top:10px");
  std::string html = visit_.component.ViewSource();
  EXPECT_EQ(html.rfind("<div id=ws_vis ><div id=ws_pos style=\"position:absolute;top:10px\">"
                       "<!-- Outer Table Start -->",
                       0),
            0u);
  EXPECT_EQ(html.substr(html.size() - 12), "</div></div>");
}

TEST_F(PageDriver, UserBannerStartsAsNonBreakingSpace) {
  visit_.Start().ViewSource();
  EXPECT_EQ(visit_.component.page().UserBanner, "&nbsp;");
}

TEST_F(PageDriver, DatePickerIsWrittenAloneEvenForViewSource) {
  visit_.Start().SetVisible(true);
  visit_.component.SetLinkSigning({"test secret", 3600});
  std::string key = SignKey({"test secret", 3600}, GenerateOwnerKey(), "");
  visit_.request.QueryString.Add("WS",
                                 EncodeQueryString("~5/5~11/3/2026~9~0~" + key + "~~~", true));
  std::string html = visit_.component.ViewSource();
  EXPECT_EQ(visit_.response.body(), html);
  // The wrapper divs, then the picker alone: no frame, and the divs are never closed.
  EXPECT_EQ(html.rfind("<div id=ws_vis ><div id=ws_pos ><body topmargin=0 leftmargin=0 >"
                       "<!-- datepicker  start -->",
                       0),
            0u);
  EXPECT_EQ(html.find("Outer Table"), std::string::npos);
  const std::string end = "<!-- DatePicker End --></body>";
  EXPECT_EQ(html.substr(html.size() - end.size()), end);
}

TEST(ScriptName, KeepsWhatFollowsTheLastSlash) {
  EXPECT_EQ(ScriptNameOf("/cal/default.asp"), "default.asp?");
  EXPECT_EQ(ScriptNameOf("/default.asp"), "default.asp?");
  EXPECT_EQ(ScriptNameOf("calendar.asp"), "calendar.asp?");
  EXPECT_EQ(ScriptNameOf("/"), "?");
  EXPECT_EQ(ScriptNameOf("/a/b/c/"), "?");
  EXPECT_EQ(ScriptNameOf(""), "?");
}

TEST_F(PageDriver, ScriptNameFromTheUrlServerVariable) {
  visit_.Start().ViewSource();
  EXPECT_EQ(visit_.component.page().ScriptName, "default.asp?");
}

TEST(BrowserKind, MsieAndOperaCountsAsOpera) {
  EXPECT_EQ(BrowserKindOf("Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1) Opera 7.54"), 3);
}
TEST(BrowserKind, EachNameInTurn) {
  EXPECT_EQ(BrowserKindOf("Mozilla/4.0 (compatible; MSIE 6.0)"), 0);
  EXPECT_EQ(BrowserKindOf("Mozilla/5.0 Netscape/7.1"), 1);
  EXPECT_EQ(BrowserKindOf("Mozilla/4.7 [en] (Nav)"), 2);
  EXPECT_EQ(BrowserKindOf("Opera/9.80"), 3);
  EXPECT_EQ(BrowserKindOf("Mozilla/5.0 (X11; Linux x86_64) Chrome/120"), 0);
  EXPECT_EQ(BrowserKindOf(""), 0);
}

TEST_F(PageDriver, BrowserKindFromTheUserAgent) {
  visit_.Agent("Mozilla/4.0 (compatible; MSIE 5.5) Opera 7").Start().ViewSource();
  EXPECT_EQ(visit_.component.page().BrowserKind, 3);
}

}  // namespace
}  // namespace tidewell

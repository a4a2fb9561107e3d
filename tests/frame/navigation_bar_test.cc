#include "frame/navigation_bar.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "runtime/regional_settings.h"
#include "tests/component/site_visit.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::MatchesGolden;
using testing::SiteTest;

class NavigationMarkup : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    page_.props.ImagePath = "images/";
    page_.props.HexQueryString = false;
    page_.signing = signing_;
    page_.ScriptName = "default.asp?";
    page_.UserKey = kBob;
    page_.UserBanner = "<b>Group:</b> Crew | <b>User:</b> bob";
  }
  static constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";
  static constexpr const char* kAdmin = "adadadadadadadadadadadadadadadad";
  Page page_;
};

TEST_F(NavigationMarkup, OnThirtyFirstJanuaryForExplorer) {
  page_.Screen = screens::kMonthView;
  page_.CurrentDate = DateSerial(2026, 1, 31);
  page_.CurrentHour = 9;
  AppendNavigationBar(page_);
  EXPECT_TRUE(
      MatchesGolden(page_.PageBuffer, "navigation_31_january.html", {{"bob", Expected(kBob)}}));
}

TEST_F(NavigationMarkup, OnTwentyNinthFebruaryForNetscape) {
  page_.Screen = screens::kDayView;
  page_.CurrentDate = DateSerial(2028, 2, 29);
  page_.CurrentHour = 15;
  page_.SortOrder = "d";
  page_.AdminKey = kAdmin;
  page_.BrowserKind = browsers::kNetscape;
  AppendNavigationBar(page_);
  EXPECT_TRUE(MatchesGolden(page_.PageBuffer, "navigation_29_february.html",
                            {{"bob", Expected(kBob)}, {"admin", Expected(kAdmin)}}));
}

// Through Show, for a signed-in user.
class Navigation : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    AddAdministrator();
    bob_ = AddUser("bob");
  }
  // The month view of `date` as bob sees it.
  std::string MonthOf(const std::string& date, std::function<void(ASPTidewell&)> configure = {}) {
    auto visit = Visit();
    visit.Link("~0~" + date + "~9~0~" + InLink(bob_) + "~~~");
    if (configure) visit.Configure(configure);
    return visit.Show();
  }
  // The date a navigation link leads to.
  static std::string TargetOf(const std::string& html, const std::string& title) {
    std::vector<std::string> fields = LinkFields(LinkTitled(html, title));
    return fields.size() > 2 ? fields[2] : "(no link)";
  }
  std::string bob_;
};

TEST_F(Navigation, NextMonthFromThirtyFirstJanuaryAndBackAgain) {
  std::string january = MonthOf("1/31/2026");
  EXPECT_EQ(TargetOf(january, "Next Month"), "2/28/2026");
  std::string february = MonthOf(TargetOf(january, "Next Month"));
  EXPECT_NE(february.find("<b>February 2026</b>"), std::string::npos);
  EXPECT_EQ(TargetOf(february, "Previous Month"), "1/28/2026");
}

TEST_F(Navigation, NextMonthFromThirtyFirstJanuaryInALeapYear) {
  std::string january = MonthOf("1/31/2028");
  EXPECT_EQ(TargetOf(january, "Next Month"), "2/29/2028");
  EXPECT_EQ(TargetOf(MonthOf("2/29/2028"), "Previous Month"), "1/29/2028");
}

TEST_F(Navigation, BothYearLinksFromTwentyNinthFebruaryLeadToTheTwentyEighth) {
  std::string html = MonthOf("2/29/2028");
  EXPECT_EQ(TargetOf(html, "Previous Year"), "2/28/2027");
  EXPECT_EQ(TargetOf(html, "Next Year"), "2/28/2029");
}

TEST_F(Navigation, LinksReopenTheSameScreenMarkedBackOrForward) {
  std::string html = MonthOf("11/21/2026");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Previous Year"))[1], "0/p");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Previous Month"))[1], "0/p");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Next Month"))[1], "0/n");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Next Year"))[1], "0/n");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Next Year"))[5], Expected(bob_));
}

TEST_F(Navigation, MonthTitleIsTheFullNameAndTheFourDigitYear) {
  EXPECT_NE(MonthOf("11/21/2026")
                .find("<td class=mwdname align=center valign=bottom ><b>November "
                      "2026</b></td>"),
            std::string::npos);
}

TEST_F(Navigation, MonthTitleUnderBritishSettings) {
  ScopedRegionalSettings gb("en-GB");
  std::string html = MonthOf("03/02/2026");
  EXPECT_NE(html.find("<b>February 2026</b>"), std::string::npos);
  EXPECT_EQ(TargetOf(html, "Next Month"), "03/03/2026");
}

TEST_F(Navigation, ExplorerGetsAWhiteRule) {
  std::string html = MonthOf("11/21/2026");
  EXPECT_NE(html.find("<!-- Navigation Section End --><tr><td colspan=2><hr size=1 width=98% "
                      "color=#ffffff></td></tr></table><!-- Header Section End -->"),
            std::string::npos);
}

TEST_F(Navigation, OtherBrowsersGetALineImageInTheSchemeColour) {
  for (const char* agent : {"Mozilla/5.0 Netscape/7.1", "Mozilla/4.7 [en] (Nav)", "Opera/9.80"}) {
    auto visit = Visit();
    visit.Agent(agent)
        .Link("~0~11/21/2026~9~0~" + InLink(bob_) + "~~~")
        .Configure([](ASPTidewell& c) {
          c.SetTidewellColor("#336699");
          c.SetImagePath("elsewhere/");
        });
    EXPECT_NE(visit.Show().find(
                  "<!-- Navigation Section End --><tr><td bgcolor=#336699 height=15 valign=middle "
                  "align=center colspan=2><img src=images/nav_line.gif width=600 height=1 "
                  "border=0 align=absbottom></td></tr></table><!-- Header Section End -->"),
              std::string::npos)
        << agent;
  }
}

TEST_F(Navigation, BannerNamesTheGroupAndTheUserEscaped) {
  long lab = database_.AddGroup("R&D <Lab>");
  std::string key = database_.AddUser({.name = "Zoë \"Z\"", .password = "pw", .group = lab});
  auto visit = Visit();
  visit.Link("~0~11/21/2026~9~0~" + InLink(key) + "~~~");
  EXPECT_NE(visit.Show().find("width=100% height=20><b>Group:</b> R&amp;D &lt;Lab&gt; | "
                              "<b>User:</b> Zoë &quot;Z&quot;</td>"),
            std::string::npos);
}

}  // namespace
}  // namespace tidewell

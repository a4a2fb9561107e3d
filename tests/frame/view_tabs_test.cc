#include "frame/view_tabs.h"

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

class TabMarkup : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    page_.props.ImagePath = "images/";
    page_.props.HexQueryString = false;
    page_.props.DefaultStartHour = 8;
    page_.signing = signing_;
    page_.ScriptName = "default.asp?";
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.CurrentHour = 17;
    page_.UserKey = kBob;
  }
  ::testing::AssertionResult Draws(void (*tabs)(Page&), const std::string& golden) {
    tabs(page_);
    return MatchesGolden(page_.PageBuffer, golden, {{"bob", Expected(kBob)}});
  }
  static constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";
  Page page_;
};

TEST_F(TabMarkup, MonthTabs) {
  EXPECT_TRUE(Draws(AppendMonthTabs, "tabs_month.html"));
}
TEST_F(TabMarkup, WeekTabs) {
  EXPECT_TRUE(Draws(AppendWeekTabs, "tabs_week.html"));
}
TEST_F(TabMarkup, DayTabs) {
  EXPECT_TRUE(Draws(AppendDayTabs, "tabs_day.html"));
}
TEST_F(TabMarkup, TimeTabs) {
  EXPECT_TRUE(Draws(AppendTimeTabs, "tabs_time.html"));
}

// Navigator's filler is narrower; every other browser kind draws what Explorer does.
TEST_F(TabMarkup, MonthTabsForNavigator) {
  page_.BrowserKind = browsers::kNavigator;
  EXPECT_TRUE(Draws(AppendMonthTabs, "tabs_month_navigator.html"));
}
TEST_F(TabMarkup, WeekTabsForNavigator) {
  page_.BrowserKind = browsers::kNavigator;
  EXPECT_TRUE(Draws(AppendWeekTabs, "tabs_week_navigator.html"));
}
TEST_F(TabMarkup, DayTabsForNavigator) {
  page_.BrowserKind = browsers::kNavigator;
  EXPECT_TRUE(Draws(AppendDayTabs, "tabs_day_navigator.html"));
}
TEST_F(TabMarkup, TimeTabsForNavigator) {
  page_.BrowserKind = browsers::kNavigator;
  EXPECT_TRUE(Draws(AppendTimeTabs, "tabs_time_navigator.html"));
}

TEST_F(TabMarkup, NetscapeAndOperaDrawWhatExplorerDraws) {
  for (long kind : {browsers::kNetscape, browsers::kOpera}) {
    for (auto tabs : {AppendMonthTabs, AppendWeekTabs, AppendDayTabs, AppendTimeTabs}) {
      Page explorer = page_;
      tabs(explorer);
      Page other = page_;
      other.BrowserKind = kind;
      tabs(other);
      EXPECT_EQ(other.PageBuffer, explorer.PageBuffer);
    }
  }
}

// The tab strip of a page that went through Show.
std::string TabStrip(const std::string& html) {
  size_t from = html.find("<!-- Outer Table End -->");
  return from == std::string::npos ? "" : html.substr(from);
}

// The left edge image of the tab whose link is titled `tooltip`.
std::string LeftEdgeOf(const std::string& strip, const std::string& tooltip) {
  size_t link = strip.find("title=\"" + tooltip + "\"");
  size_t edge = strip.rfind("<td align=left width=5 height=21><img src=images/", link);
  if (link == std::string::npos || edge == std::string::npos) return "";
  size_t start = edge + 49;
  return strip.substr(start, strip.find(".gif", start) - start);
}

class Tabs : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    AddAdministrator();
    bob_ = AddUser("bob");
  }
  std::string Show(const std::string& screen, const std::string& hour = "9") {
    auto visit = Visit();
    visit.Link("~" + screen + "~11/21/2026~" + hour + "~0~" + InLink(bob_) + "~~~")
        .Configure([](ASPTidewell& c) { c.SetDefaultStartHour(8); });
    return visit.Show();
  }
  std::string bob_;
};

TEST_F(Tabs, ExactlyOneTabIsSelectedAndTheNeighbourEdgesFollowTheVariant) {
  const char* tooltips[] = {"Display MonthView", "Display WeekView", "Display DayView",
                            "Display TimeView"};
  for (int view = 0; view < 4; ++view) {
    std::string strip = TabStrip(Show(std::to_string(view)));
    EXPECT_EQ(Count(strip, "tb_left_sel.gif"), 1u) << view;
    EXPECT_EQ(Count(strip, "tb_right_sel.gif"), 1u) << view;
    EXPECT_EQ(Count(strip, "class=tabs bgcolor="), 1u) << view;
    EXPECT_EQ(LeftEdgeOf(strip, tooltips[view]), "tb_left_sel") << view;
    for (int other = 0; other < 4; ++other) {
      if (other == view) continue;
      bool after_selected_in_month_or_week = other == view + 1 && view <= 1;
      EXPECT_EQ(LeftEdgeOf(strip, tooltips[other]),
                after_selected_in_month_or_week ? "tb_left_sns" : "tb_left_ns")
          << view << " " << other;
    }
  }
}

TEST_F(Tabs, MonthStripWritesItsCommentInCapitals) {
  EXPECT_NE(TabStrip(Show("0")).find("<!-- Tabs Start -->"), std::string::npos);
  for (const char* view : {"1", "2", "3"}) {
    EXPECT_NE(TabStrip(Show(view)).find("<!-- tabs start -->"), std::string::npos) << view;
  }
}

TEST_F(Tabs, TabLinksCarryTheDefaultStartHour) {
  std::string html = Show("2", "17");
  for (const char* tooltip :
       {"Display MonthView", "Display WeekView", "Display DayView", "Display TimeView"}) {
    std::vector<std::string> fields = LinkFields(LinkTitled(html, tooltip));
    ASSERT_GE(fields.size(), 8u) << tooltip;
    EXPECT_EQ(fields[3], "8") << tooltip;
    EXPECT_EQ(fields[5], Expected(bob_)) << tooltip;
  }
  EXPECT_EQ(LinkFields(LinkTitled(html, "Display MonthView"))[1], "0/n");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Display TimeView"))[1], "3/n");
  EXPECT_EQ(LinkFields(LinkTitled(html, "Next Month"))[3], "17");  // the navigation keeps it
}

TEST_F(Tabs, OtherScreensShowTheTabsOfTheViewTheyReturnTo) {
  EXPECT_NE(TabStrip(Show("15/1"))
                .find("class=tabs bgcolor=#172676 nowrap><a class=tabs href="
                      "default.asp?WS=~1/n~"),
            std::string::npos);
  EXPECT_NE(TabStrip(Show("7/2"))
                .find("class=tabs bgcolor=#172676 nowrap><a class=tabs href="
                      "default.asp?WS=~2/n~"),
            std::string::npos);
}

TEST_F(Tabs, LoginWelcomeAndErrorScreensHaveNoTabs) {
  EXPECT_EQ(TabStrip(Show("6")), "<!-- Outer Table End --></div></div>");
}

}  // namespace
}  // namespace tidewell

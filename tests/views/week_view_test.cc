// The week view (screen 1), drawn against a seeded database.

#include "views/week_view.h"

#include <gtest/gtest.h>

#include "component/screen_dispatch.h"
#include "runtime/clock.h"
#include "tests/views/view_fixture.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::ViewTest;

class WeekViewPage : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    page_.Screen = screens::kWeekView;
  }

  // The opening of the row whose day link names `date_text`.
  static std::string RowOf(const std::string& html, const std::string& date_text) {
    size_t link = html.find("WS=~2~" + date_text + "~");
    if (link == std::string::npos) return "";
    size_t start = html.rfind("<tr", link);
    return html.substr(start, html.find('>', start) + 1 - start);
  }

  // The week of 26 April to 2 May 2026, opened with `argument`, neighbouring days tinted.
  std::string AprilMayWeek(const std::string& argument) {
    page_.CurrentDate = DateSerial(2026, 4, 28);
    page_.ScreenArgument = argument;
    page_.props.HighlightDeltaDays = true;
    return Draw(WeekView);
  }
  std::vector<std::string> TintedDays(const std::string& html) {
    std::vector<std::string> tinted;
    for (const char* date : {"4/26/2026", "4/27/2026", "4/28/2026", "4/29/2026", "4/30/2026",
                             "5/1/2026", "5/2/2026"}) {
      if (RowOf(html, date) == "<tr bgcolor=#efefef >") tinted.push_back(date);
    }
    return tinted;
  }
};

TEST_F(WeekViewPage, TheWeekOfFriday2January2026) {
  AddItem({.date = DateSerial(2025, 12, 31),
           .hour = 20,
           .time_text = "20:00",
           .heading = "New Year's Eve party",
           .urgent = true});
  AddItem({.date = DateSerial(2025, 12, 29),
           .hour = 9,
           .time_text = "09:00",
           .heading = "Review",
           .complete = true});
  for (int i = 1; i <= 5; ++i) {
    AddItem({.date = DateSerial(2026, 1, 2),
             .hour = 8 + i,
             .time_text = FormatTwoDigits(8 + i) + ":30",
             .heading = "Call " + std::to_string(i)});
  }
  page_.CurrentDate = DateSerial(2026, 1, 2);
  page_.ScreenArgument = "n";
  page_.props.HighlightDeltaDays = true;
  auto marks = Keys();
  marks.emplace_back("height", "545");
  EXPECT_TRUE(MatchesGolden(Draw(WeekView), "week_view_2_january_2026.html", marks));
}

TEST_F(WeekViewPage, OnASundayTheWeekStartsThatDay) {
  page_.CurrentDate = DateSerial(2026, 11, 15);
  std::string html = Draw(WeekView);
  EXPECT_NE(html.find("&nbsp;<b>Week Starting Sunday, November 15, 2026</b><td>"),
            std::string::npos);
  EXPECT_LT(html.find("WS=~2~11/15/2026~"), html.find("WS=~2~11/16/2026~"));
  EXPECT_NE(html.find("<b>Sun<br>15</b>"), std::string::npos);
  EXPECT_NE(html.find("<b>Sat<br>21</b>"), std::string::npos);
}

TEST_F(WeekViewPage, Friday2January2026StartsOnSunday28DecemberOfTheYearBefore) {
  page_.CurrentDate = DateSerial(2026, 1, 2);
  std::string html = Draw(WeekView);
  EXPECT_NE(html.find("&nbsp;<b>Week Starting Sunday, December 28, 2025</b>"), std::string::npos);
  const char* labels[] = {"Sun<br>28", "Mon<br>29", "Tue<br>30", "Wed<br>31",
                          "Thu<br>1",  "Fri<br>2",  "Sat<br>3"};
  const char* dates[] = {"12/28/2025", "12/29/2025", "12/30/2025", "12/31/2025",
                         "1/1/2026",   "1/2/2026",   "1/3/2026"};
  size_t at = 0;
  for (int i = 0; i < 7; ++i) {
    size_t row = html.find(
        "<a class=dtname href=" + Href("2", dates[i], 8) + " ><b>" + labels[i] + "</b></a>", at);
    ASSERT_NE(row, std::string::npos) << dates[i];
    at = row;
  }
}

TEST_F(WeekViewPage, TheArrowsPageAWeekBackAndForward) {
  page_.CurrentDate = DateSerial(2026, 1, 2);
  page_.CurrentHour = 17;
  std::string html = Draw(WeekView);
  EXPECT_NE(html.find("<a title=\"Previous Week\" href=" + Href("1/p", "12/21/2025", 17) +
                      " ><img src=images/nav_prev.gif width=24 height=15 align=absmiddle "
                      "border=0></a>"),
            std::string::npos);
  EXPECT_NE(html.find("<a title=\"Next Week\" href=" + Href("1/n", "1/4/2026", 17) +
                      " ><img src=images/nav_next.gif width=24 height=15 align=absmiddle "
                      "border=0></a>"),
            std::string::npos);
}

TEST_F(WeekViewPage, AWeekOpenedForwardTintsTheDaysOfTheNextMonth) {
  EXPECT_EQ(TintedDays(AprilMayWeek("n")), (std::vector<std::string>{"5/1/2026", "5/2/2026"}));
}

TEST_F(WeekViewPage, AWeekOpenedBackwardTintsTheDaysOfTheMonthBefore) {
  EXPECT_EQ(
      TintedDays(AprilMayWeek("p")),
      (std::vector<std::string>{"4/26/2026", "4/27/2026", "4/28/2026", "4/29/2026", "4/30/2026"}));
}

TEST_F(WeekViewPage, AWeekOpenedFromItsTabTintsTheDaysOfTheNextMonth) {
  auto visit = Visit();
  visit.Link("~1/n~4/28/2026~9~0~" + InLink(kBob) + "~~~").Configure([](ASPTidewell& c) {
    c.SetHighlightDeltaDays(true);
  });
  EXPECT_EQ(TintedDays(visit.Show()), (std::vector<std::string>{"5/1/2026", "5/2/2026"}));
  // The tab strip links the week view with "1/n".
  EXPECT_NE(visit.html().find("~1/n~4/28/2026~"), std::string::npos);
}

TEST_F(WeekViewPage, AnyOtherArgumentOrNoHighlightingTintsNothing) {
  EXPECT_TRUE(TintedDays(AprilMayWeek("")).empty());
  EXPECT_TRUE(TintedDays(AprilMayWeek("x")).empty());
  page_.props.HighlightDeltaDays = false;
  page_.ScreenArgument = "n";
  EXPECT_TRUE(TintedDays(Draw(WeekView)).empty());
}

TEST_F(WeekViewPage, AWeekInsideOneMonthTintsNothing) {
  page_.CurrentDate = DateSerial(2026, 11, 11);
  page_.props.HighlightDeltaDays = true;
  for (const char* argument : {"n", "p"}) {
    page_.ScreenArgument = argument;
    EXPECT_EQ(Count(Draw(WeekView), "<tr bgcolor=#efefef >"), 0u) << argument;
  }
}

TEST_F(WeekViewPage, TodayInsideATintedRunKeepsTheTodayColourWhenHighlighted) {
  SetFixedNow(Combine(DateSerial(2026, 5, 1), TimeSerial(10, 0, 0)));
  page_.props.HighlightTodaysDate = true;
  page_.props.HighlightTodaysDateColor = "#ffeedd";
  std::string html = AprilMayWeek("n");
  EXPECT_EQ(RowOf(html, "5/1/2026"), "<tr bgcolor=#ffeedd >");
  EXPECT_EQ(RowOf(html, "5/2/2026"), "<tr bgcolor=#efefef >");
}

TEST_F(WeekViewPage, TodayInsideATintedRunIsWhiteWhenTodayIsNotHighlighted) {
  SetFixedNow(Combine(DateSerial(2026, 5, 1), TimeSerial(10, 0, 0)));
  std::string html = AprilMayWeek("n");
  EXPECT_EQ(RowOf(html, "5/1/2026"), "<tr bgcolor=#ffffff>");
  EXPECT_EQ(RowOf(html, "5/2/2026"), "<tr bgcolor=#efefef >");
}

TEST_F(WeekViewPage, HeightsByBrowser) {
  page_.CurrentDate = DateSerial(2026, 11, 11);
  const std::pair<long, const char*> heights[] = {{browsers::kExplorer, "545"},
                                                  {browsers::kNetscape, "545"},
                                                  {browsers::kNavigator, "586"},
                                                  {browsers::kOpera, "555"}};
  for (auto [kind, height] : heights) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(Draw(WeekView)), height) << kind;
  }
}

TEST_F(WeekViewPage, AFailingListTakesTheViewBackAndTheErrorScreenFollowsOnce) {
  page_.CurrentDate = DateSerial(2026, 11, 11);
  page_.props.DataServer = ASPDataServer::SQLServer;
  page_.PageBuffer = "<table height=<height></height>>";
  DispatchScreen(page_);
  EXPECT_TRUE(
      page_.PageBuffer.starts_with("<table height=<height></height>><!-- ErrorScreen Start -->"));
  EXPECT_EQ(Count(page_.PageBuffer, "<!-- ErrorScreen Start -->"), 1u);
  EXPECT_EQ(page_.PageBuffer.find("WeekView"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

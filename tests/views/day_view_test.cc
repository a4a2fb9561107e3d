// The day view (screen 2), drawn against a seeded database on Saturday 21 November 2026,
// 2:05 PM.

#include "views/day_view.h"

#include <gtest/gtest.h>

#include "component/screen_dispatch.h"
#include "tests/views/view_fixture.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::ViewTest;

class DayViewPage : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    page_.Screen = screens::kDayView;
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.props.HighlightTodaysTime = true;
    const Date today = DateSerial(2026, 11, 21);
    AddItem({.date = today, .hour = 0, .time_text = "00:30", .heading = "Midnight snack"});
    AddItem({.date = today, .hour = 14, .time_text = "14:00", .heading = "Budget"});
    AddItem(
        {.date = today, .hour = 14, .time_text = "14:20", .heading = "Call Ann", .urgent = true});
    AddItem({.date = today, .hour = 14, .time_text = "14:40", .heading = "Wrap up"});
    AddItem({.date = today, .hour = 20, .time_text = "20:00", .heading = "Theatre"});
    AddItem({.date = DateSerial(2026, 11, 22),
             .hour = 6,
             .time_text = "06:45",
             .heading = "Early train"});
    AddItem(
        {.owner = kCarol, .date = today, .hour = 21, .time_text = "21:00", .heading = "Carol's"});
  }

  std::string DrawAt(long hour) {
    page_.CurrentHour = hour;
    return Draw(DayView);
  }
  ::testing::AssertionResult DrawsGolden(long hour, const std::string& golden) {
    auto marks = Keys();
    marks.emplace_back("height", "545");
    return MatchesGolden(DrawAt(hour), golden, marks);
  }
  std::string Arrow(const char* title, const std::string& href) const {
    return "<a title=\"" + std::string(title) + "\" href=" + href + " ><img src=images/nav_";
  }
  // The hour labels of the rows in page order, with their dates.
  static std::vector<std::string> Rows(const std::string& html) {
    std::vector<std::string> rows;
    const std::string marker = "<a class=dtname href=default.asp?WS=~3~";
    for (size_t at = html.find(marker); at != std::string::npos; at = html.find(marker, at + 1)) {
      size_t start = at + marker.size();
      std::string date = html.substr(start, html.find('~', start) - start);
      size_t label = html.find("<b>", at) + 3;
      rows.push_back(date + " " + html.substr(label, 5));
    }
    return rows;
  }
};

TEST_F(DayViewPage, AtHourZero) {
  EXPECT_TRUE(DrawsGolden(0, "day_view_hour_0.html"));
}
TEST_F(DayViewPage, AtHourTwelve) {
  EXPECT_TRUE(DrawsGolden(12, "day_view_hour_12.html"));
}
TEST_F(DayViewPage, AtHourTwenty) {
  EXPECT_TRUE(DrawsGolden(20, "day_view_hour_20.html"));
}

TEST_F(DayViewPage, FromHourZeroTheRowsRunToElevenAndTheArrowsLeadToNoonOfEitherDay) {
  std::string html = DrawAt(0);
  std::vector<std::string> rows = Rows(html);
  ASSERT_EQ(rows.size(), 12u);
  EXPECT_EQ(rows.front(), "11/21/2026 00:00");
  EXPECT_EQ(rows.back(), "11/21/2026 11:00");
  EXPECT_NE(html.find(Arrow("Previous 12 Hours", Href("2", "11/20/2026", 12))), std::string::npos);
  EXPECT_NE(html.find(Arrow("Next 12 Hours", Href("2", "11/21/2026", 12))), std::string::npos);
  EXPECT_NE(html.find("&nbsp;<b>Saturday, November 21, 2026</b><td>"), std::string::npos);
}

TEST_F(DayViewPage, FromHourTwelveTheNextArrowLeadsToMidnightOfTheNextDayUnderOneTitle) {
  std::string html = DrawAt(12);
  std::vector<std::string> rows = Rows(html);
  ASSERT_EQ(rows.size(), 12u);
  EXPECT_EQ(rows.front(), "11/21/2026 12:00");
  EXPECT_EQ(rows.back(), "11/21/2026 23:00");
  EXPECT_NE(html.find(Arrow("Previous 12 Hours", Href("2", "11/21/2026", 0))), std::string::npos);
  EXPECT_NE(html.find(Arrow("Next 12 Hours", Href("2", "11/22/2026", 0))), std::string::npos);
  EXPECT_NE(html.find("&nbsp;<b>Saturday, November 21, 2026</b><td>"), std::string::npos);
}

TEST_F(DayViewPage, FromHourTwentyTheRowsRunIntoTheNextDayAndReadItsItems) {
  std::string html = DrawAt(20);
  std::vector<std::string> rows = Rows(html);
  ASSERT_EQ(rows.size(), 12u);
  EXPECT_EQ(rows[0], "11/21/2026 20:00");
  EXPECT_EQ(rows[3], "11/21/2026 23:00");
  EXPECT_EQ(rows[4], "11/22/2026 00:00");
  EXPECT_EQ(rows[11], "11/22/2026 07:00");
  EXPECT_NE(html.find(">06:45 - Early train (BB)</a>"), std::string::npos);
  EXPECT_EQ(html.find("Midnight snack"), std::string::npos);  // 0:00 of the 21st is not shown
  EXPECT_NE(html.find("&nbsp;<b>Saturday/Sunday, November 22, 2026</b><td>"), std::string::npos);
  EXPECT_NE(html.find(Arrow("Previous 12 Hours", Href("2", "11/21/2026", 8))), std::string::npos);
  EXPECT_NE(html.find(Arrow("Next 12 Hours", Href("2", "11/22/2026", 8))), std::string::npos);
}

TEST_F(DayViewPage, WithATwelveHourDayTheArrowsKeepTheHourAndMoveADay) {
  page_.props.Show12HourDay = true;
  for (long hour : {0L, 9L, 20L}) {
    std::string html = DrawAt(hour);
    EXPECT_NE(html.find(Arrow("Previous Day", Href("2", "11/20/2026", hour))), std::string::npos)
        << hour;
    EXPECT_NE(html.find(Arrow("Next Day", Href("2", "11/22/2026", hour))), std::string::npos)
        << hour;
    EXPECT_EQ(html.find("12 Hours"), std::string::npos);
  }
  EXPECT_NE(DrawAt(20).find("&nbsp;<b>Saturday/Sunday, November 22, 2026</b>"), std::string::npos);
}

TEST_F(DayViewPage, OnlyThePresentHourOfTodayIsTintedAndOnlyWhenAsked) {
  std::string html = DrawAt(12);
  EXPECT_EQ(Count(html, "<tr bgcolor=#dee7f7 >"), 1u);
  EXPECT_NE(html.find("<tr bgcolor=#dee7f7 ><td class=dtname align=center valign=middle width=50 "
                      "height=38><a class=dtname href=" +
                      Href("3", "11/21/2026", 14) + " ><b>14:00</b>"),
            std::string::npos);
  page_.props.HighlightTodaysTime = false;
  EXPECT_EQ(Count(DrawAt(12), "<tr bgcolor=#dee7f7 >"), 0u);
  page_.props.HighlightTodaysTime = true;
  page_.CurrentDate = DateSerial(2026, 11, 20);  // the same hour of yesterday
  EXPECT_EQ(Count(DrawAt(12), "<tr bgcolor=#dee7f7 >"), 0u);
  page_.CurrentDate = DateSerial(2026, 11, 22);  // and of tomorrow
  EXPECT_EQ(Count(DrawAt(12), "<tr bgcolor=#dee7f7 >"), 0u);
}

TEST_F(DayViewPage, EachHourLinksToItsTimeView) {
  std::string html = DrawAt(20);
  EXPECT_NE(html.find("<a class=dtname href=" + Href("3", "11/22/2026", 3) + " ><b>03:00</b></a>"),
            std::string::npos);
}

TEST_F(DayViewPage, HeightsByBrowser) {
  const std::pair<long, const char*> heights[] = {{browsers::kExplorer, "545"},
                                                  {browsers::kNetscape, "545"},
                                                  {browsers::kNavigator, "617"},
                                                  {browsers::kOpera, "555"}};
  for (auto [kind, height] : heights) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(DrawAt(9)), height) << kind;
  }
}

TEST_F(DayViewPage, AFailingListTakesTheViewBackAndTheErrorScreenFollowsOnce) {
  page_.CurrentHour = 9;
  page_.props.DataServer = ASPDataServer::SQLServer;
  page_.PageBuffer = "<table height=<height></height>>";
  DispatchScreen(page_);
  EXPECT_TRUE(
      page_.PageBuffer.starts_with("<table height=<height></height>><!-- ErrorScreen Start -->"));
  EXPECT_EQ(Count(page_.PageBuffer, "<!-- ErrorScreen Start -->"), 1u);
  EXPECT_EQ(page_.PageBuffer.find("DayView"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

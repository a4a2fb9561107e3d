// The month view (screen 0), drawn against a seeded database.

#include "views/month_view.h"

#include <gtest/gtest.h>

#include "component/screen_dispatch.h"
#include "runtime/clock.h"
#include "tests/views/view_fixture.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::FrameHeight;
using testing::Item;
using testing::MatchesGolden;
using testing::ViewTest;

class MonthViewPage : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    page_.Screen = screens::kMonthView;
  }

  void SeedFebruary2009() {
    AddItem({.date = DateSerial(2009, 2, 3),
             .hour = 9,
             .time_text = "09:15",
             .heading = "Standup meeting",
             .complete = true});
    AddItem({.date = DateSerial(2009, 2, 3),
             .hour = 10,
             .time_text = "10:00",
             .heading = "Dentist",
             .urgent = true});
    AddItem(
        {.date = DateSerial(2009, 2, 14), .hour = 19, .time_text = "19:30", .heading = "Dinner"});
    AddItem({.date = DateSerial(2009, 2, 27),
             .hour = 12,
             .time_text = "12:00",
             .heading = "Tom & Jerry <3"});
    AddItem({.owner = kCarol,
             .date = DateSerial(2009, 2, 3),
             .hour = 9,
             .time_text = "09:00",
             .heading = "Carol's"});
    page_.CurrentDate = DateSerial(2009, 2, 10);
  }

  void SeedAugust2015() {
    for (int i = 1; i <= 6; ++i) {
      AddItem({.date = DateSerial(2015, 8, 12),
               .hour = 7 + i,
               .time_text = FormatTwoDigits(7 + i) + ":00",
               .heading = "Item " + std::to_string(i)});
    }
    AddItem({.date = DateSerial(2015, 7, 31), .hour = 7, .time_text = "07:00", .heading = "Trip"});
    AddItem({.date = DateSerial(2015, 9, 1),
             .hour = 8,
             .time_text = "08:00",
             .heading = "School starts"});
    page_.CurrentDate = DateSerial(2015, 8, 20);
    page_.props.HighlightDeltaDays = true;
  }

  ::testing::AssertionResult DrawsGolden(long kind, const std::string& golden,
                                         const std::string& height) {
    page_.BrowserKind = kind;
    auto marks = Keys();
    marks.emplace_back("height", height);
    return MatchesGolden(Draw(MonthView), golden, marks);
  }

  // The opening of the cell showing `date_text`, up to its link.
  static std::string CellOf(const std::string& html, const std::string& date_text) {
    size_t link = html.find("WS=~2~" + date_text + "~");
    size_t start = html.rfind("<td", link);
    return link == std::string::npos ? "" : html.substr(start, link - start);
  }
};

TEST_F(MonthViewPage, February2009ForExplorer) {
  SeedFebruary2009();
  EXPECT_TRUE(DrawsGolden(browsers::kExplorer, "month_view_february_2009.html", "545"));
}
TEST_F(MonthViewPage, February2009ForNavigator) {
  SeedFebruary2009();
  EXPECT_TRUE(DrawsGolden(browsers::kNavigator, "month_view_february_2009.html", "547"));
}
TEST_F(MonthViewPage, February2009ForOpera) {
  SeedFebruary2009();
  EXPECT_TRUE(DrawsGolden(browsers::kOpera, "month_view_february_2009.html", "547"));
}
TEST_F(MonthViewPage, August2015ForExplorer) {
  SeedAugust2015();
  EXPECT_TRUE(DrawsGolden(browsers::kExplorer, "month_view_august_2015.html", "615"));
}
TEST_F(MonthViewPage, August2015ForNavigator) {
  SeedAugust2015();
  EXPECT_TRUE(DrawsGolden(browsers::kNavigator, "month_view_august_2015.html", "652"));
}
TEST_F(MonthViewPage, August2015ForOpera) {
  SeedAugust2015();
  EXPECT_TRUE(DrawsGolden(browsers::kOpera, "month_view_august_2015.html", "664"));
}

TEST_F(MonthViewPage, LeapFebruaryBeginningOnSundayHasFiveRowsEndingWithTheFirstDaysOfMarch) {
  page_.CurrentDate = DateSerial(2004, 2, 1);  // 1 February 2004 was a Sunday
  std::string html = Draw(MonthView);
  EXPECT_EQ(Count(html, "<tr bgcolor=#ffffff>"), 5u);
  EXPECT_NE(html.find("WS=~2~2/29/2004~"), std::string::npos);
  std::string last_row = html.substr(html.rfind("<tr bgcolor=#ffffff>"));
  EXPECT_NE(last_row.find("WS=~2~2/29/2004~"), std::string::npos);
  for (int day = 1; day <= 6; ++day) {
    std::string date = "3/" + std::to_string(day) + "/2004";
    EXPECT_EQ(CellOf(last_row, date),
              "<td class=text align=left valign=top width=88 height=88><a class=delta href="
              "default.asp?")
        << date;
  }
  EXPECT_EQ(Count(html, "class=delta"), 6u);
  EXPECT_NE(last_row.find("</td></TR></table><!-- MonthView End -->"), std::string::npos);
  EXPECT_EQ(FrameHeight(html), "545");
}

TEST_F(MonthViewPage, February2009HasFourRowsNoNeighbouringDaysAndItsHeights) {
  page_.CurrentDate = DateSerial(2009, 2, 10);
  std::string html = Draw(MonthView);
  EXPECT_EQ(Count(html, "<tr bgcolor=#ffffff>"), 4u);
  EXPECT_EQ(Count(html, "class=delta"), 0u);
  EXPECT_EQ(Count(html, "</TR>"), 0u);
  EXPECT_EQ(FrameHeight(html), "545");
  for (long kind : {browsers::kNavigator, browsers::kOpera}) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(Draw(MonthView)), "547") << kind;
  }
  page_.BrowserKind = browsers::kNetscape;
  EXPECT_EQ(FrameHeight(Draw(MonthView)), "545");
}

TEST_F(MonthViewPage, August2015HasSixRowsAndItsHeights) {
  page_.CurrentDate = DateSerial(2015, 8, 20);
  std::string html = Draw(MonthView);
  EXPECT_EQ(Count(html, "<tr bgcolor=#ffffff>"), 6u);
  EXPECT_EQ(FrameHeight(html), "615");
  const std::pair<long, const char*> heights[] = {
      {browsers::kNetscape, "615"}, {browsers::kNavigator, "652"}, {browsers::kOpera, "664"}};
  for (auto [kind, height] : heights) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(Draw(MonthView)), height) << kind;
  }
}

TEST_F(MonthViewPage, AFiveRowMonthIsAsHighAsAFourRowMonthForEveryBrowser) {
  page_.CurrentDate = DateSerial(2026, 11, 1);  // five rows
  const std::pair<long, const char*> heights[] = {
      {browsers::kExplorer, "545"}, {browsers::kNavigator, "557"}, {browsers::kOpera, "567"}};
  for (auto [kind, height] : heights) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(Draw(MonthView)), height) << kind;
  }
}

TEST_F(MonthViewPage, WithoutHighlightingTodaysCellIsAnOrdinaryCell) {
  page_.CurrentDate = DateSerial(2026, 11, 2);
  EXPECT_EQ(CellOf(Draw(MonthView), "11/21/2026"),
            "<td class=text align=left valign=top width=88 height=88><a class=current href="
            "default.asp?");
}

TEST_F(MonthViewPage, WithHighlightingTodaysCellHasTheTodayColourAndClass) {
  page_.CurrentDate = DateSerial(2026, 11, 2);
  page_.props.HighlightTodaysDate = true;
  std::string html = Draw(MonthView);
  EXPECT_EQ(CellOf(html, "11/21/2026"),
            "<td class=text bgcolor=#dee7f7 align=left valign=top width=88 height=88><a "
            "class=today href=default.asp?");
  EXPECT_EQ(Count(html, "class=today"), 1u);
}

TEST_F(MonthViewPage, TodaysDayOfAnotherMonthIsNotHighlighted) {
  page_.CurrentDate = DateSerial(2026, 10, 2);
  page_.props.HighlightTodaysDate = true;
  EXPECT_EQ(Count(Draw(MonthView), "class=today"), 0u);
}

TEST_F(MonthViewPage, NeighbouringDaysLinkToTheDayViewOfTheirOwnMonthsDate) {
  SeedAugust2015();
  std::string html = Draw(MonthView);
  EXPECT_EQ(CellOf(html, "7/26/2015"),
            "<td bgcolor=#efefef class=text align=left valign=top width=88 height=88><a "
            "class=delta href=default.asp?");
  EXPECT_NE(html.find("<a class=delta href=" + Href("2", "7/26/2015", 8) + " ><b>26</b></a>"),
            std::string::npos);
  EXPECT_NE(html.find("<a class=delta href=" + Href("2", "9/5/2015", 8) + " ><b>05</b></a>"),
            std::string::npos);
  // The neighbouring days show their own items.
  EXPECT_NE(CellOf(html, "8/1/2015").empty(), true);
  EXPECT_NE(html.find(Href("3", "7/31/2015", 7, "7")), std::string::npos);
  EXPECT_NE(html.find(Href("3", "9/1/2015", 8, "8")), std::string::npos);
}

TEST_F(MonthViewPage, TheFirstCellOfEachRowLinksToItsWeek) {
  page_.CurrentDate = DateSerial(2015, 8, 20);
  page_.CurrentHour = 17;
  std::string html = Draw(MonthView);
  EXPECT_EQ(Count(html, "title=\"Display This Week\""), 6u);
  EXPECT_NE(html.find("<a title=\"Display This Week\" href=" + Href("1/p", "7/26/2015", 17) +
                      " ><img src=images/icon_week.gif width=12 height=12 border=0 "
                      "align=absmiddle ></a>"),
            std::string::npos);
  for (const char* date : {"8/2/2015", "8/9/2015", "8/16/2015", "8/23/2015", "8/30/2015"}) {
    EXPECT_NE(html.find("title=\"Display This Week\" href=" + Href("1/n", date, 17) + " >"),
              std::string::npos)
        << date;
  }
}

TEST_F(MonthViewPage, DayLinksCarryTheDefaultStartHourAndTheSortCode) {
  page_.CurrentDate = DateSerial(2026, 11, 2);
  page_.CurrentHour = 17;
  page_.SortOrder = "H*A";
  std::string html = Draw(MonthView);
  EXPECT_NE(html.find("<a class=current href=" + Href("2", "11/30/2026", 8, "0", "H*A") +
                      " ><b>30</b></a>"),
            std::string::npos);
}

TEST_F(MonthViewPage, AFailingListTakesTheViewBackAndTheErrorScreenFollowsOnce) {
  page_.CurrentDate = DateSerial(2009, 2, 10);
  page_.props.DataServer = ASPDataServer::SQLServer;  // every list fails on SQLite
  page_.PageBuffer = "<table height=<height></height>>";
  DispatchScreen(page_);
  const std::string& html = page_.PageBuffer;
  EXPECT_TRUE(html.starts_with("<table height=<height></height>><!-- ErrorScreen Start -->"))
      << html.substr(0, 200);
  EXPECT_EQ(Count(html, "<!-- ErrorScreen Start -->"), 1u);
  EXPECT_EQ(html.find("MonthView"), std::string::npos);
  EXPECT_NE(html.find("Tidewell.DataServer = 1"), std::string::npos);
}

// The whole page through Show: header, navigation, the month and its tabs.
TEST_F(MonthViewPage, AVisitorWithAKeySeesTheMonthInsideTheFrame) {
  AddItem({.date = DateSerial(2026, 11, 9), .hour = 10, .time_text = "10:00", .heading = "Visit"});
  auto visit = Visit();
  visit.Link("~0~11/21/2026~9~0~" + InLink(kBob) + "~~~");
  std::string html = visit.Show();
  size_t navigation = html.find("<!-- Navigation Section Start -->");
  size_t month = html.find("<!-- MonthView  Start -->");
  size_t end = html.find("<!-- MonthView End -->");
  size_t tabs = html.find("<!-- Tabs Start -->");
  ASSERT_NE(month, std::string::npos);
  EXPECT_LT(navigation, month);
  EXPECT_LT(end, tabs);
  EXPECT_NE(html.find(">Visit</a>"), std::string::npos);
  EXPECT_EQ(FrameHeight(html), "545");
}

}  // namespace
}  // namespace tidewell

// The views on a server whose regional settings write the day first (en-GB): the dates in the
// cells and links follow the settings, the statements read the right days all the same.

#include <gtest/gtest.h>

#include "runtime/regional_settings.h"
#include "tests/views/view_fixture.h"
#include "views/day_view.h"
#include "views/month_view.h"
#include "views/time_view.h"
#include "views/week_view.h"

namespace tidewell {
namespace {

using testing::ViewTest;

class DayFirstServer : public ViewTest {
 protected:
  ScopedRegionalSettings settings_{"en-GB"};
};

TEST_F(DayFirstServer, MonthCellsAndTheirLinksAreWrittenDayFirstAndFindTheirItems) {
  long id = AddItem(
      {.date = DateSerial(2009, 2, 3), .hour = 10, .time_text = "10:00", .heading = "Dentist"});
  page_.Screen = screens::kMonthView;
  page_.CurrentDate = DateSerial(2009, 2, 10);
  std::string html = Draw(MonthView);
  EXPECT_NE(html.find("<a class=current href=" + Href("2", "03/02/2009", 8) + " ><b>03</b></a>"),
            std::string::npos);
  EXPECT_NE(html.find("title=\"Display This Week\" href=" + Href("1/n", "01/02/2009", 9) + " >"),
            std::string::npos);
  // 3 February's cell holds the item, read with the month-first date #2/3/2009#.
  size_t cell = html.find("WS=~2~03/02/2009~");
  size_t item = html.find("<a class=text href=" + Href("3", "03/02/2009", 10, std::to_string(id)));
  EXPECT_NE(item, std::string::npos);
  EXPECT_LT(cell, item);
  EXPECT_LT(item, html.find("WS=~2~04/02/2009~"));
}

TEST_F(DayFirstServer, WeekRowsAndArrowsAreWrittenDayFirst) {
  AddItem({.date = DateSerial(2025, 12, 31), .hour = 20, .time_text = "20:00", .heading = "Party"});
  page_.Screen = screens::kWeekView;
  page_.CurrentDate = DateSerial(2026, 1, 2);
  std::string html = Draw(WeekView);
  EXPECT_NE(html.find("&nbsp;<b>Week Starting Sunday, December 28, 2025</b>"), std::string::npos);
  EXPECT_NE(html.find("<a title=\"Previous Week\" href=" + Href("1/p", "21/12/2025", 9)),
            std::string::npos);
  EXPECT_NE(html.find("<a class=dtname href=" + Href("2", "31/12/2025", 8) + " ><b>Wed<br>31</b>"),
            std::string::npos);
  EXPECT_NE(html.find(Href("3", "31/12/2025", 20, "1") + " title=\"20:00 - Party (BB)\""),
            std::string::npos);
}

TEST_F(DayFirstServer, DayRowsAcrossMidnightAreWrittenDayFirst) {
  AddItem({.date = DateSerial(2026, 11, 22), .hour = 6, .time_text = "06:45", .heading = "Train"});
  page_.Screen = screens::kDayView;
  page_.CurrentDate = DateSerial(2026, 11, 21);
  page_.CurrentHour = 20;
  std::string html = Draw(DayView);
  EXPECT_NE(html.find("<a class=dtname href=" + Href("3", "22/11/2026", 6) + " ><b>06:00</b>"),
            std::string::npos);
  EXPECT_NE(html.find(Href("3", "22/11/2026", 6, "1") + " title=\"06:45 - Train (BB)\""),
            std::string::npos);
  EXPECT_NE(html.find("<a title=\"Next 12 Hours\" href=" + Href("2", "22/11/2026", 8)),
            std::string::npos);
}

TEST_F(DayFirstServer, TimeViewLinksAreWrittenDayFirst) {
  long id = AddItem(
      {.date = DateSerial(2026, 11, 3), .hour = 9, .time_text = "09:00", .heading = "Mine"});
  page_.Screen = screens::kTimeView;
  page_.CurrentDate = DateSerial(2026, 11, 3);
  page_.CurrentHour = 9;
  std::string html = Draw(TimeView);
  EXPECT_NE(html.find("&nbsp;<b>Tuesday, November 3, 2026 @ 09:00</b>"), std::string::npos);
  EXPECT_NE(html.find(Href("4", "03/11/2026", 9, std::to_string(id))), std::string::npos);
  EXPECT_NE(html.find(Href("3", "03/11/2026", 9, "0", "T*D")), std::string::npos);
  EXPECT_NE(html.find("<a title=\"Previous Hour\" href=" + Href("3", "03/11/2026", 8)),
            std::string::npos);
}

// A link the server wrote reads back as the same day.
TEST_F(DayFirstServer, FollowingADayLinkOpensThatDay) {
  AddItem({.date = DateSerial(2026, 11, 3), .hour = 9, .time_text = "09:00", .heading = "Mine"});
  auto visit = Visit();
  visit.Link("~2~03/11/2026~8~0~" + InLink(kBob) + "~~~");
  std::string html = visit.Show();
  EXPECT_NE(html.find("&nbsp;<b>Tuesday, November 3, 2026</b>"), std::string::npos);
  EXPECT_NE(html.find(">09:00 - Mine (BB)</a>"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

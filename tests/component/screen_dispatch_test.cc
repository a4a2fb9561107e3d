#include "component/screen_dispatch.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

void MonthThatFailsAList(Page& page) {
  page.PageBuffer += "[month]";
  page.Error.Kind = ErrorKind::kDataRead;
  page.Screen = screens::kErrorScreen;
}
void ErrorScreen(Page& page) {
  page.PageBuffer += "[error]";
}
void Login(Page& page) {
  page.PageBuffer += "[login]";
}

ScreenTable TestTable() {
  ScreenTable table{};
  table[screens::kMonthView] = MonthThatFailsAList;
  table[screens::kErrorScreen] = ErrorScreen;
  table[screens::kLogin] = Login;
  return table;
}

TEST(DispatchScreen, DrawsTheSelectedScreen) {
  Page page;
  page.Screen = screens::kLogin;
  DispatchScreen(page, TestTable());
  EXPECT_EQ(page.PageBuffer, "[login]");
}

TEST(DispatchScreen, FailedListIsFollowedByTheErrorScreenOnce) {
  Page page;
  page.Screen = screens::kMonthView;
  DispatchScreen(page, TestTable());
  EXPECT_EQ(page.PageBuffer, "[month][error]");
}

TEST(DispatchScreen, PendingDatabaseErrorIsNotDrawnTwice) {
  Page page;
  page.Screen = screens::kErrorScreen;
  page.Error.Kind = ErrorKind::kCannotConnect;
  DispatchScreen(page, TestTable());
  EXPECT_EQ(page.PageBuffer, "[error]");
}

TEST(DispatchScreen, ScreenCodesOutsideTheTableDrawNothing) {
  for (long screen : {17L, 99L, -1L}) {
    Page page;
    page.Screen = screen;
    DispatchScreen(page, TestTable());
    EXPECT_EQ(page.PageBuffer, "");
  }
}

TEST(DispatchScreen, EmptyEntryDrawsNothing) {
  Page page;
  page.Screen = screens::kWeekView;
  DispatchScreen(page, TestTable());
  EXPECT_EQ(page.PageBuffer, "");
}

TEST(SelectViewTabs, CalendarViewsHaveTheirOwnTabs) {
  EXPECT_EQ(SelectViewTabs(0, 3), ViewTabs::kMonth);
  EXPECT_EQ(SelectViewTabs(1, 0), ViewTabs::kWeek);
  EXPECT_EQ(SelectViewTabs(2, 0), ViewTabs::kDay);
  EXPECT_EQ(SelectViewTabs(3, 0), ViewTabs::kTime);
}

TEST(SelectViewTabs, FormsAndHelpFollowTheReturnView) {
  for (long screen : {4L, 7L, 8L, 10L, 11L, 12L, 13L, 15L, 16L}) {
    EXPECT_EQ(SelectViewTabs(screen, 0), ViewTabs::kMonth) << screen;
    EXPECT_EQ(SelectViewTabs(screen, 1), ViewTabs::kWeek) << screen;
    EXPECT_EQ(SelectViewTabs(screen, 2), ViewTabs::kDay) << screen;
    EXPECT_EQ(SelectViewTabs(screen, 3), ViewTabs::kTime) << screen;
    EXPECT_EQ(SelectViewTabs(screen, 15), ViewTabs::kTime) << screen;
  }
}

TEST(SelectViewTabs, PickerLoginWelcomeAndErrorHaveNone) {
  for (long screen : {5L, 6L, 9L, 14L, 17L}) EXPECT_EQ(SelectViewTabs(screen, 0), ViewTabs::kNone);
}

}  // namespace
}  // namespace tidewell

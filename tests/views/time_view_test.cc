// The time view (screen 3), drawn against a seeded database on Saturday 21 November 2026,
// 2:05 PM.

#include "views/time_view.h"

#include <gtest/gtest.h>

#include "component/screen_dispatch.h"
#include "tests/views/view_fixture.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::ViewTest;

class TimeViewPage : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    page_.Screen = screens::kTimeView;
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.CurrentHour = 14;
  }

  // Bob's urgent and complete items, carol's of the same group and dave's of another group,
  // all at 2 PM today; the complete one selected; the whole group shown.
  void SeedTheGroupsHour() {
    const Date today = DateSerial(2026, 11, 21);
    AddItem({.date = today,
             .hour = 14,
             .time_text = "14:30",
             .heading = "Budget review",
             .description = "Bring the Q3 figures & notes",
             .urgent = true});
    AddItem({.date = today,
             .hour = 14,
             .time_text = "14:00",
             .heading = "Call <Ann>",
             .complete = true});
    AddItem({.owner = kCarol,
             .date = today,
             .hour = 14,
             .time_text = "14:15",
             .heading = "Site visit",
             .description = "Gate B"});
    AddItem(
        {.owner = kDave, .date = today, .hour = 14, .time_text = "14:45", .heading = "Deck check"});
    page_.ItemId = 2;
    page_.User.ShowAllGroupUsers = true;
    page_.props.HighlightTodaysTime = true;
  }

  ::testing::AssertionResult DrawsGolden(const std::string& golden) {
    auto marks = Keys();
    marks.emplace_back("height", "545");
    return MatchesGolden(Draw(TimeView), golden, marks);
  }
  std::string Arrow(const char* title, const std::string& href) const {
    return "<a title=\"" + std::string(title) + "\" href=" + href + " ><img src=images/nav_";
  }
};

TEST_F(TimeViewPage, TheGroupsHourInTheDefaultOrder) {
  SeedTheGroupsHour();
  EXPECT_TRUE(DrawsGolden("time_view_group_unsorted.html"));
}

TEST_F(TimeViewPage, TheGroupsHourSortedByTimeDescending) {
  SeedTheGroupsHour();
  page_.SortOrder = "T*D";
  EXPECT_TRUE(DrawsGolden("time_view_group_sorted_by_time.html"));
}

TEST_F(TimeViewPage, AtHourZeroThePreviousHourIsElevenPmOfTheDayBefore) {
  page_.CurrentHour = 0;
  std::string html = Draw(TimeView);
  EXPECT_NE(html.find(Arrow("Previous Hour", Href("3", "11/20/2026", 23))), std::string::npos);
  EXPECT_NE(html.find(Arrow("Next Hour", Href("3", "11/21/2026", 1))), std::string::npos);
  EXPECT_NE(html.find("&nbsp;<b>Saturday, November 21, 2026 @ 00:00</b><td>"), std::string::npos);
}

TEST_F(TimeViewPage, AtHourTwentyThreeTheNextHourIsMidnightOfTheNextDay) {
  page_.CurrentHour = 23;
  std::string html = Draw(TimeView);
  EXPECT_NE(html.find(Arrow("Previous Hour", Href("3", "11/21/2026", 22))), std::string::npos);
  EXPECT_NE(html.find(Arrow("Next Hour", Href("3", "11/22/2026", 0))), std::string::npos);
}

TEST_F(TimeViewPage, ThePresentHourOfAPastOrFutureDateIsNotTinted) {
  page_.props.HighlightTodaysTime = true;
  const std::string plain =
      "<td class=dtname align=center valign=top width=50 height=456 nowrap><b>14:00</b></td>";
  const std::string tinted =
      "<td class=dtname bgcolor=#dee7f7 align=center valign=top width=50 height=456 nowrap><b>"
      "14:00</b></td>";
  EXPECT_NE(Draw(TimeView).find(tinted), std::string::npos);
  for (Date other : {DateSerial(2026, 11, 20), DateSerial(2026, 11, 22)}) {
    page_.CurrentDate = other;
    std::string html = Draw(TimeView);
    EXPECT_NE(html.find(plain), std::string::npos);
    EXPECT_EQ(html.find("bgcolor=#dee7f7 align=center"), std::string::npos);
  }
}

TEST_F(TimeViewPage, ThePresentHourIsNotTintedUnlessAsked) {
  EXPECT_EQ(Draw(TimeView).find("<td class=dtname bgcolor="), std::string::npos);
}

TEST_F(TimeViewPage, HeightsByBrowser) {
  const std::pair<long, const char*> heights[] = {{browsers::kExplorer, "545"},
                                                  {browsers::kNetscape, "545"},
                                                  {browsers::kNavigator, "552"},
                                                  {browsers::kOpera, "552"}};
  for (auto [kind, height] : heights) {
    page_.BrowserKind = kind;
    EXPECT_EQ(FrameHeight(Draw(TimeView)), height) << kind;
  }
}

TEST_F(TimeViewPage, AFailingListTakesTheViewBackAndTheErrorScreenFollowsOnce) {
  page_.props.DataServer = ASPDataServer::SQLServer;
  page_.PageBuffer = "<table height=<height></height>>";
  DispatchScreen(page_);
  EXPECT_TRUE(
      page_.PageBuffer.starts_with("<table height=<height></height>><!-- ErrorScreen Start -->"));
  EXPECT_EQ(Count(page_.PageBuffer, "<!-- ErrorScreen Start -->"), 1u);
  EXPECT_EQ(page_.PageBuffer.find("TimeView"), std::string::npos);
}

// [Edit] opens the item form on the item; [Delete] reloads this hour asking for its deletion.
TEST_F(TimeViewPage, TheEditAndDeleteLinksLeadToTheItemFormAndBackHere) {
  long id = AddItem(
      {.date = DateSerial(2026, 11, 21), .hour = 14, .time_text = "14:10", .heading = "Mine"});
  std::string html = Draw(TimeView);
  std::string edit = testing::LinkTitled(html, "Edit this Item");
  std::string remove = testing::LinkTitled(html, "Delete this Item");
  EXPECT_EQ(testing::LinkFields(edit),
            (std::vector<std::string>{"", "4", "11/21/2026", "14", std::to_string(id),
                                      Expected(kBob), "", "", ""}));
  EXPECT_EQ(testing::LinkFields(remove),
            (std::vector<std::string>{"", "3", "11/21/2026", "14", std::to_string(id) + "d",
                                      Expected(kBob), "", "", ""}));
}

}  // namespace
}  // namespace tidewell

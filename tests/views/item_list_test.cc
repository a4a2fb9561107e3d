// The item lists of the four views (modes 0 to 3), against a seeded SQLite database.

#include "views/item_list.h"
#include "views/option_lists.h"

#include <gtest/gtest.h>

#include "runtime/regional_settings.h"
#include "tests/views/view_fixture.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::Item;
using testing::ViewTest;

const Date kTuesday = DateSerial(2026, 11, 3);

class ItemList : public ViewTest {
 protected:
  // Items at 8:00, 9:00, ... on Tuesday 3 November, headed "A1", "A2", ...
  void AddHours(int count) {
    for (int i = 0; i < count; ++i) {
      AddItem({.date = kTuesday,
               .hour = 8 + i,
               .time_text = FormatTwoDigits(8 + i) + ":00",
               .heading = "A" + std::to_string(i + 1)});
    }
  }
  // The short link of a month cell to item `id` at `hour` of 3 November.
  std::string CellLink(long id, long hour, const std::string& heading) {
    return "<a class=text href=" + Href("3", "11/3/2026", hour, std::to_string(id)) + " title=\"" +
           FormatTwoDigits(hour) + ":00 - " + heading + " (BB)\">" + heading + "</a>";
  }
};

// --- Month cells (mode 0) ---

TEST_F(ItemList, MonthCellWithExactlyFiveItemsShowsAllFiveAndNoMoreIcon) {
  AddHours(5);
  std::string expected;
  for (int i = 1; i <= 5; ++i) expected += "<br>" + CellLink(i, 7 + i, "A" + std::to_string(i));
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday), expected);
}

TEST_F(ItemList, MonthCellWithSixItemsShowsFiveTheFifthBesideTheMoreIcon) {
  AddHours(6);
  std::string expected;
  for (int i = 1; i <= 4; ++i) expected += "<br>" + CellLink(i, 7 + i, "A" + std::to_string(i));
  expected += "<br><table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=70>" +
              CellLink(5, 12, "A5") +
              "</td><td align=right width=18><a class=text href=" + Href("2", "11/3/2026", 8) +
              " title=\"Show All Items.\"><img src=images/nav_more.gif width=16 height=16 "
              "align=absmiddle border=0 ></a></td></tr></table>";
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday), expected);
}

TEST_F(ItemList, MonthCellWithMoreThanSixItemsShowsFiveAndTheMoreIcon) {
  AddHours(9);
  std::string list = List(list_modes::kMonthCell, kTuesday);
  EXPECT_EQ(Count(list, "<a class=text href=default.asp?WS=~3~"), 5u);
  EXPECT_EQ(Count(list, "nav_more.gif"), 1u);
  EXPECT_EQ(list.find(">A6<"), std::string::npos);
}

TEST_F(ItemList, MonthCellShowsAHeadingOfSevenCharactersWhole) {
  AddItem({.date = kTuesday, .hour = 10, .time_text = "10:15", .heading = "Dentist"});
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday),
            "<br><a class=text href=" + Href("3", "11/3/2026", 10, "1") +
                " title=\"10:15 - Dentist (BB)\">Dentist</a>");
}

TEST_F(ItemList, MonthCellCutsAHeadingOfEightCharactersToSevenAndTwoDots) {
  AddItem({.date = kTuesday, .hour = 10, .time_text = "10:15", .heading = "Dentists"});
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday),
            "<br><a class=text href=" + Href("3", "11/3/2026", 10, "1") +
                " title=\"10:15 - Dentists (BB)\">Dentist..</a>");
}

TEST_F(ItemList, MonthCellCutsBetweenCharactersNotBytes) {
  AddItem({.date = kTuesday, .heading = "Café Zoë am Mittag"});
  EXPECT_NE(List(list_modes::kMonthCell, kTuesday).find(">Café Zo..</a>"), std::string::npos);
}

TEST_F(ItemList, MonthCellMarksUrgencyOnlyInTheTitle) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:30", .heading = "Fire", .urgent = true});
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday),
            "<br><a class=text href=" + Href("3", "11/3/2026", 9, "1") +
                " title=\"09:30 - Fire (BB) ! \">Fire</a>");
}

TEST_F(ItemList, MonthCellEscapesTheHeadingAfterCuttingIt) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:30", .heading = "R&D <b>now</b>"});
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday),
            "<br><a class=text href=" + Href("3", "11/3/2026", 9, "1") +
                " title=\"09:30 - R&amp;D &lt;b&gt;now&lt;/b&gt; (BB)\">R&amp;D &lt;b&gt;..</a>");
}

TEST_F(ItemList, AnEmptyDayIsANonBreakingSpaceInEveryDayList) {
  AddItem({.date = DateSerial(2026, 11, 4)});
  for (long mode : {list_modes::kMonthCell, list_modes::kWeekRow, list_modes::kDayRow}) {
    EXPECT_EQ(List(mode, kTuesday, 9), "&nbsp;") << mode;
  }
}

// --- Complete items ---

TEST_F(ItemList, ACompleteItemWithoutCrossOutIsColouredButNotStruck) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:00", .heading = "Done", .complete = true});
  std::string cell = List(list_modes::kMonthCell, kTuesday);
  EXPECT_NE(cell.find("\"><font color=#adadad >Done</font></a>"), std::string::npos) << cell;
  EXPECT_EQ(cell.find("strike"), std::string::npos);
  page_.props.CompletedItemColor = "#808080";
  std::string row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_NE(row.find("\"><font color=#808080 >09:00 - Done (BB)</font></a>"), std::string::npos);
  EXPECT_EQ(row.find("strike"), std::string::npos);
}

TEST_F(ItemList, ACompleteItemWithCrossOutIsStruckInsideTheColour) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:00", .heading = "Done", .complete = true});
  page_.props.CompletedItemCrossOut = true;
  EXPECT_NE(List(list_modes::kMonthCell, kTuesday)
                .find("\"><font color=#adadad ><strike>Done</strike></font></a>"),
            std::string::npos);
}

// --- Week rows (mode 1) and day view hours (mode 2) ---

TEST_F(ItemList, WeekRowShowsLongLinksEachFollowedByABreakButTheLast) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:15", .heading = "Standup"});
  AddItem({.date = kTuesday, .hour = 11, .time_text = "11:00", .heading = "Call", .urgent = true});
  EXPECT_EQ(List(list_modes::kWeekRow, kTuesday),
            "<a class=text href=" + Href("3", "11/3/2026", 9, "1") +
                " title=\"09:15 - Standup (BB)\">09:15 - Standup (BB)</a><br>"
                "<a class=text href=" +
                Href("3", "11/3/2026", 11, "2") +
                " title=\"11:00 - Call (BB) ! \">11:00 - Call (BB)</a>&nbsp;<img "
                "src=images/icon_urgent.gif width=6 height=12 border=0 alt=Urgent >");
}

TEST_F(ItemList, WeekRowWithFiveItemsShowsFourTheFourthBesideAMoreLinkToTheDay) {
  AddHours(5);
  std::string row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_EQ(Count(row, "<a class=text href=default.asp?WS=~3~"), 4u);
  EXPECT_NE(row.find("11:00 - A4 (BB)</a></td><td align=right width=40><a class=text href=" +
                     Href("2", "11/3/2026", 8) +
                     " title=\"Show All Items.\">[More..]</a></td></tr></table>"),
            std::string::npos)
      << row;
  EXPECT_NE(row.find("<br><table cellspacing=0 cellpadding=0 border=0><tr><td align=left "
                     "width=520><a class=text href="),
            std::string::npos);
  EXPECT_FALSE(row.ends_with("<br>"));
}

TEST_F(ItemList, DayRowShowsTheItemsOfItsHourOnly) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:15", .heading = "Nine"});
  AddItem({.date = kTuesday, .hour = 10, .time_text = "10:15", .heading = "Ten"});
  EXPECT_EQ(List(list_modes::kDayRow, kTuesday, 10),
            "<a class=text href=" + Href("3", "11/3/2026", 10, "2") +
                " title=\"10:15 - Ten (BB)\">10:15 - Ten (BB)</a>");
}

TEST_F(ItemList, DayRowWithThreeItemsShowsTwoTheSecondBesideAMoreLinkToTheHour) {
  for (const char* minutes : {"00", "20", "40"}) {
    AddItem({.date = kTuesday,
             .hour = 14,
             .time_text = std::string("14:") + minutes,
             .heading = std::string("At ") + minutes});
  }
  std::string row = List(list_modes::kDayRow, kTuesday, 14);
  EXPECT_EQ(row, "<a class=text href=" + Href("3", "11/3/2026", 14, "1") +
                     " title=\"14:00 - At 00 (BB)\">14:00 - At 00 (BB)</a><br>"
                     "<table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=520>"
                     "<a class=text href=" +
                     Href("3", "11/3/2026", 14, "2") +
                     " title=\"14:20 - At 20 (BB)\">14:20 - At 20 (BB)</a></td><td align=right "
                     "width=40><a class=text href=" +
                     Href("3", "11/3/2026", 14) +
                     " title=\"Show All Items.\">[More..]</a></td></tr></table>");
}

// --- Whose items ---

TEST_F(ItemList, AListShowsOnlyTheUsersOwnItemsWithoutTheShowAllOption) {
  AddItem({.owner = kBob, .date = kTuesday, .heading = "Bob's"});
  AddItem({.owner = kCarol, .date = kTuesday, .heading = "Carol's"});
  std::string row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_NE(row.find("Bob's"), std::string::npos);
  EXPECT_EQ(row.find("Carol's"), std::string::npos);
}

TEST_F(ItemList, WithTheShowAllOptionAListShowsTheWholeGroupAndNoOtherGroup) {
  AddItem({.owner = kBob, .date = kTuesday, .hour = 9, .heading = "Bob's"});
  AddItem({.owner = kCarol, .date = kTuesday, .hour = 10, .heading = "Carol's"});
  AddItem({.owner = kDave, .date = kTuesday, .hour = 11, .heading = "Dave's"});
  page_.User.ShowAllGroupUsers = true;
  std::string row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_NE(row.find("09:00 - Bob's (BB)"), std::string::npos);
  EXPECT_NE(row.find("09:00 - Carol's (CC)"), std::string::npos);
  EXPECT_EQ(row.find("Dave's"), std::string::npos);
}

// --- Sorting ---

TEST_F(ItemList, ASortCodeOrdersTheLists) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:10", .heading = "Bravo"});
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:50", .heading = "Alpha"});
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:30", .heading = "Charlie"});
  page_.SortOrder = "T*D";
  std::string row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_LT(row.find("09:50"), row.find("09:30"));
  EXPECT_LT(row.find("09:30"), row.find("09:10"));
  page_.SortOrder = "H*A";
  row = List(list_modes::kWeekRow, kTuesday);
  EXPECT_LT(row.find("Alpha"), row.find("Bravo"));
  EXPECT_LT(row.find("Bravo"), row.find("Charlie"));
  // The links carry the code on.
  EXPECT_NE(row.find(Href("3", "11/3/2026", 9, "2", "H*A")), std::string::npos);
}

// --- The time view's table (mode 3) ---

TEST_F(ItemList, TimeTableHeaderLinksSortDescendingWhenNoSortWasAsked) {
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  for (const char* code : {"U*D", "T*D", "I*D", "H*D"}) {
    EXPECT_NE(table.find(Href("3", "11/3/2026", 9, "0", code)), std::string::npos) << code;
  }
  EXPECT_EQ(table.find("*A~"), std::string::npos);
}

TEST_F(ItemList, TimeTableHeaderLinksSortAscendingAfterSortingByTimeDescending) {
  page_.SortOrder = "T*D";
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  for (const char* code : {"U*A", "T*A", "I*A", "H*A"}) {
    EXPECT_NE(table.find(Href("3", "11/3/2026", 9, "0", code)), std::string::npos) << code;
  }
  EXPECT_EQ(table.find("*D~"), std::string::npos);
}

TEST_F(ItemList, TimeTableOfAnEmptyHourSaysSo) {
  EXPECT_EQ(List(list_modes::kTimeTable, kTuesday, 9),
            "<table bgcolor=#c0c0c0 width=100% cellpadding=2 cellspacing=1 border=0>"
            "<tr bgcolor=#a5c1e7 >"
            "<td class=text width=10 align=center ><a class=white href=" +
                Href("3", "11/3/2026", 9, "0", "U*D") +
                " title=\"Sort by Urgent\"><img src=images/icon_urgent_title.gif width=6 "
                "height=14 border=0 align=absmiddle ></a></td>"
                "<td class=text width=22 align=center ><a class=white href=" +
                Href("3", "11/3/2026", 9, "0", "T*D") +
                " title=\"Sort by Time\">Time</a></td>"
                "<td class=text width=30 align=center ><a class=white href=" +
                Href("3", "11/3/2026", 9, "0", "I*D") +
                " title=\"Sort by Initial\">Init</a></td>"
                "<td class=text width=375 align=left ><a class=white href=" +
                Href("3", "11/3/2026", 9, "0", "H*D") +
                " title=\"Sort by Heading\">Heading</a></td>"
                "<td class=text width=90 align=center >&nbsp;</td></tr>"
                "<tr bgcolor=#ffffff><td class=text align=left colspan=5 >No Items Showing For "
                "This Hour.</td></tr></table>");
}

TEST_F(ItemList, TimeTableShowsAnotherUsersItemReadOnly) {
  page_.User.ShowAllGroupUsers = true;
  AddItem({.owner = kCarol, .date = kTuesday, .hour = 9, .time_text = "09:00", .heading = "Hers"});
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  EXPECT_NE(table.find(">Hers</td><td class=text width=90 align=center >Read Only</td></tr>"),
            std::string::npos)
      << table;
  EXPECT_EQ(table.find("[Edit]"), std::string::npos);
}

TEST_F(ItemList, TimeTableShowsTheUsersOwnItemReadOnlyInAReadOnlyLogin) {
  AddItem({.date = kTuesday, .hour = 9, .time_text = "09:00", .heading = "Mine"});
  page_.AutoLoginEnabled = true;
  page_.AutoLoginReadOnly = true;
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  EXPECT_NE(table.find(">Mine</td><td class=text width=90 align=center >Read Only</td></tr>"),
            std::string::npos);
  EXPECT_EQ(table.find("[Delete]"), std::string::npos);
}

TEST_F(ItemList, TimeTableOffersEditAndDeleteOfTheUsersOwnItems) {
  long id = AddItem({.date = kTuesday, .hour = 9, .time_text = "09:45", .heading = "Mine"});
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  EXPECT_NE(table.find("<td class=text width=90 align=right ><a class=text href=" +
                       Href("4", "11/3/2026", 9, std::to_string(id)) +
                       " title=\"Edit this Item\" >[Edit]</a>&nbsp;<a class=text href=" +
                       Href("3", "11/3/2026", 9, std::to_string(id) + "d") +
                       " title=\"Delete this Item\" >[Delete]</a></td></tr>"),
            std::string::npos)
      << table;
}

TEST_F(ItemList, TimeTableWritesAUserRowWhenTheNameChanges) {
  page_.User.ShowAllGroupUsers = true;
  AddItem({.owner = kBob, .date = kTuesday, .hour = 9, .time_text = "09:00", .heading = "B1"});
  AddItem({.owner = kBob, .date = kTuesday, .hour = 9, .time_text = "09:30", .heading = "B2"});
  AddItem({.owner = kCarol, .date = kTuesday, .hour = 9, .time_text = "09:10", .heading = "C1"});
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  const std::string bob_row =
      "<tr bgcolor=#dee7f7 ><td class=text colspan=5 align=left >bob</td></tr>";
  const std::string carol_row =
      "<tr bgcolor=#dee7f7 ><td class=text colspan=5 align=left >carol</td></tr>";
  EXPECT_EQ(Count(table, bob_row), 1u);
  EXPECT_EQ(Count(table, carol_row), 1u);
  EXPECT_LT(table.find(bob_row), table.find(">B1<"));
  EXPECT_LT(table.find(">B2<"), table.find(carol_row));
  EXPECT_LT(table.find(carol_row), table.find(">C1<"));
}

TEST_F(ItemList, TimeTableSelectsTheItemTheLinkNamesAndShowsDescriptions) {
  long first = AddItem({.date = kTuesday,
                        .hour = 9,
                        .time_text = "09:00",
                        .heading = "One",
                        .description = "Bring <notes> & pens"});
  AddItem({.date = kTuesday,
           .hour = 9,
           .time_text = "09:30",
           .heading = "Two",
           .description = "Second"});
  page_.ItemId = first;
  page_.props.TimeViewDescriptionColor = "#fafafa";
  std::string table = List(list_modes::kTimeTable, kTuesday, 9);
  EXPECT_NE(table.find("<tr bgcolor=#dee7f7 ><td class=text width=10 align=center >&nbsp;</td>"
                       "<td class=text width=22 align=center >09:00</td>"),
            std::string::npos);
  EXPECT_NE(table.find("<tr bgcolor=#dee7f7 ><td class=text width=10 align=center >&nbsp;</td>"
                       "<td class=text align=left colspan=4 >Bring &lt;notes&gt; &amp; pens</td>"
                       "</tr>"),
            std::string::npos);
  EXPECT_NE(table.find("<tr bgcolor=#ffffff ><td class=text width=10 align=center >&nbsp;</td>"
                       "<td class=text width=22 align=center >09:30</td>"),
            std::string::npos);
  EXPECT_NE(table.find("<tr bgcolor=#fafafa ><td class=text width=10 align=center >&nbsp;</td>"
                       "<td class=text align=left colspan=4 >Second</td></tr>"),
            std::string::npos);
}

TEST_F(ItemList, TimeTableWritesNoDescriptionRowForAnEmptyDescription) {
  AddItem({.date = kTuesday, .hour = 9, .heading = "Bare"});
  EXPECT_EQ(Count(List(list_modes::kTimeTable, kTuesday, 9), "colspan=4"), 0u);
}

// --- The date ---

TEST_F(ItemList, TheDateIsRewrittenMonthFirstWithoutLeadingZeros) {
  std::string date = "01/05/2004";
  BuildItemList(page_, list_modes::kMonthCell, date, 0);
  EXPECT_EQ(date, "1/5/2004");
}

TEST_F(ItemList, OnADayFirstServerTheDateIsRewrittenMonthFirstAndTheLinksStayDayFirst) {
  ScopedRegionalSettings gb("en-GB");
  AddItem({.date = DateSerial(2026, 11, 3), .hour = 9, .time_text = "09:00", .heading = "Gb"});
  std::string date = "03/11/2026";
  std::string cell = BuildItemList(page_, list_modes::kMonthCell, date, 0);
  EXPECT_EQ(date, "11/3/2026");
  EXPECT_NE(cell.find(Href("3", "03/11/2026", 9, "1")), std::string::npos) << cell;
}

TEST_F(ItemList, TextThatIsNoDateIsSplicedUnchangedAndTheStatementFails) {
  std::string date = "Tuesday";
  EXPECT_EQ(BuildItemList(page_, list_modes::kMonthCell, date, 0), "&nbsp;");
  EXPECT_EQ(date, "Tuesday");
  EXPECT_TRUE(page_.Error.Raised());
  EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead);
}

TEST_F(ItemList, AnyOtherModeIsANonBreakingSpace) {
  for (long mode : {-1L, 5L, 7L, 9L, 16L}) {
    EXPECT_EQ(List(mode, kTuesday), "&nbsp;") << mode;
  }
  EXPECT_FALSE(page_.Error.Raised());
}

// --- Failure ---

TEST_F(ItemList, AFailingStatementBecomesTheDataServerErrorOfTheRequest) {
  page_.props.DataServer = ASPDataServer::SQLServer;  // quoted dates: Jet's type mismatch
  EXPECT_EQ(List(list_modes::kMonthCell, kTuesday), "&nbsp;");
  EXPECT_TRUE(page_.Error.Raised());
  EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead);
  EXPECT_EQ(page_.Screen, screens::kErrorScreen);
  EXPECT_EQ(page_.Error.Text,
            "<font color=#b22222><b>The following error was presented while attempting to "
            "retrieve data.</b></font><br><br>Error Number: -2147217913<br>Data type mismatch "
            "in criteria expression.");
}

TEST_F(ItemList, AListWithoutAConnectionIsTheDataServerError) {
  page_.Connection.reset();
  for (long mode : {list_modes::kMonthCell, list_modes::kTimeTable}) {
    page_.Error = {};
    EXPECT_EQ(List(mode, kTuesday, 9), "&nbsp;") << mode;
    EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead) << mode;
  }
  page_.Error = {};
  EXPECT_EQ(ItemOwnerList(page_), "&nbsp;");
  EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead);
}

TEST_F(ItemList, ASortCodeNoHeaderMadeFailsTheStatementInsteadOfReachingTheEngine) {
  page_.SortOrder = "T*D; DELETE FROM Items";
  AddItem({.date = kTuesday});
  EXPECT_EQ(List(list_modes::kWeekRow, kTuesday), "&nbsp;");
  EXPECT_EQ(page_.Error.Kind, ErrorKind::kDataRead);
  page_.Error = {};
  page_.SortOrder = "";
  EXPECT_NE(List(list_modes::kWeekRow, kTuesday), "&nbsp;");  // the item is still there
}

}  // namespace
}  // namespace tidewell

// The search through Show, against a seeded SQLite database: the date checks, the dates read
// month first, the grouping of the result rows, the rendering of urgent and complete items,
// the links to the time view, the empty result and the database error path.

#include "search/search_results.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "runtime/regional_settings.h"
#include "tests/search/search_site.h"

namespace tidewell {
namespace {

using testing::FoundHeadings;
using testing::LinkFields;
using testing::MatchesGolden;
using testing::SearchResultsOf;
using testing::UserHeadings;

using Strings = std::vector<std::string>;

class SearchResultsTest : public testing::SearchSiteTest {
 protected:
  // The href of the first result's heading.
  static std::string FirstResultLink(const std::string& html) {
    const std::string open = "<a class=search href=";
    const size_t at = html.find(open);
    if (at == std::string::npos) return "";
    const size_t start = at + open.size();
    return html.substr(start, html.find(' ', start) - start);
  }
};

TEST_F(SearchResultsTest, ATableSpanningTwoGroupsAndThreeUsers) {
  const long walk = AddItem({.owner = kBob,
                             .date = DateSerial(2026, 11, 3),
                             .hour = 16,
                             .time_text = "16:30",
                             .heading = "Harbour walk",
                             .complete = true});
  const long charts = AddItem({.owner = kBob,
                               .date = DateSerial(2026, 11, 25),
                               .hour = 9,
                               .time_text = "09:15",
                               .heading = "Harbour charts",
                               .urgent = true});
  const long watch = AddItem({.owner = kCarol,
                              .date = DateSerial(2026, 11, 10),
                              .hour = 7,
                              .time_text = "07:00",
                              .heading = "Harbour <watch>"});
  const long pilot = AddItem({.owner = kDave,
                              .date = DateSerial(2026, 11, 12),
                              .hour = 10,
                              .time_text = "10:45",
                              .heading = "Harbour pilot"});
  AddNovemberItem(kDave, 12, "Galley");
  AddItem({.owner = kCarol,
           .date = DateSerial(2026, 12, 2),
           .hour = 0,
           .time_text = "",
           .heading = "Harbour late"});

  std::string html = Search(kAnn, "all", "Harbour").Show();
  auto values = Keys();
  values.insert(values.end(), {{"walk", std::to_string(walk)},
                               {"charts", std::to_string(charts)},
                               {"watch", std::to_string(watch)},
                               {"pilot", std::to_string(pilot)}});
  EXPECT_TRUE(
      MatchesGolden(SearchResultsOf(html), "search_results_two_groups_three_users.html", values));
}

TEST_F(SearchResultsTest, AnInvalidStartDateIsRefusedBeforeAnyQuery) {
  AddNovemberItem(kCarol, 12, "Harbour");
  std::string html = Search(kCarol, kCarol, "Harbour", "11/31/2026", "also no date").Show();
  EXPECT_NE(html.find("<font color=#b22222><b>You have entered an invalid start date, please "
                      "choose another date.</b></font><br><br>"),
            std::string::npos);
  EXPECT_EQ(html.find("invalid end date"), std::string::npos);
  EXPECT_EQ(html.find("<table bgcolor=#c0c0c0"), std::string::npos);
  EXPECT_EQ(html.find("No search results"), std::string::npos);
}

TEST_F(SearchResultsTest, AnInvalidEndDateIsRefusedWithKindD) {
  testing::SiteVisit visit = Search(kCarol, kCarol, "Harbour", "11/1/2026", "11/31/2026");
  std::string html = visit.Show();
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kInvalidDate);
  EXPECT_EQ(visit.page().Error.Text, kInvalidEndDate);
  EXPECT_EQ(visit.page().Screen, screens::kSearch);
  EXPECT_EQ(visit.page().SearchResults, "");
}

TEST_F(SearchResultsTest, AnEndDateBeforeTheStartDateGivesTheEmptyResultMessage) {
  AddNovemberItem(kCarol, 12, "Harbour");
  std::string html = Search(kCarol, kCarol, "Harbour", "11/30/2026", "11/1/2026").Show();
  EXPECT_EQ(SearchResultsOf(html),
            "</form><font color=#b22222><b>No search results where found, please re-define your "
            "search critera.</b></font></td></tr></table><!-- SearchScreenView End -->");
}

TEST_F(SearchResultsTest, BothDatesAreInTheRange) {
  AddNovemberItem(kCarol, 1, "Harbour first");
  AddNovemberItem(kCarol, 30, "Harbour last");
  AddItem({.owner = kCarol,
           .date = DateSerial(2026, 10, 31),
           .hour = 0,
           .time_text = "",
           .heading = "Harbour before"});
  AddItem({.owner = kCarol,
           .date = DateSerial(2026, 12, 1),
           .hour = 0,
           .time_text = "",
           .heading = "Harbour after"});
  std::string html = Search(kCarol, kCarol, "Harbour", "11/1/2026", "11/30/2026").Show();
  EXPECT_EQ(FoundHeadings(html), (Strings{"Harbour first", "Harbour last"}));
}

TEST_F(SearchResultsTest, DayFirstDatesAreReadAsTheServerWritesThemAndSplicedMonthFirst) {
  ScopedRegionalSettings british("en-GB");
  AddItem({.owner = kCarol,
           .date = DateSerial(2027, 1, 5),
           .hour = 9,
           .time_text = "",
           .heading = "Harbour Jan"});
  AddItem({.owner = kCarol,
           .date = DateSerial(2027, 5, 1),
           .hour = 9,
           .time_text = "",
           .heading = "Harbour May"});
  // 2 to 6 January as a British server reads it; month first it would be February to June.
  std::string html = Visit()
                         .Link("~15/0~21/11/2026~14~0~" + InLink(kCarol) + "~~~")
                         .Post("ownerkey", kCarol)
                         .Post("startdate", "02/01/2027")
                         .Post("enddate", "06/01/2027")
                         .Post("search", "Harbour")
                         .Post("action", "u")
                         .Show();
  EXPECT_EQ(FoundHeadings(html), (Strings{"Harbour Jan"}));
  EXPECT_NE(html.find(">05/01/2027</td>"), std::string::npos) << SearchResultsOf(html);
}

TEST_F(SearchResultsTest, TheSearchTextMatchesAnywhereInTheHeadingWithoutRegardToCase) {
  AddNovemberItem(kCarol, 2, "Old HARBOUR wall");
  AddNovemberItem(kCarol, 3, "harbour");
  AddNovemberItem(kCarol, 4, "Harbor");
  std::string html = Search(kCarol, kCarol, "Harbour").Show();
  EXPECT_EQ(FoundHeadings(html), (Strings{"Old HARBOUR wall", "harbour"}));
}

TEST_F(SearchResultsTest, ASearchTextWithAQuoteLeadsToTheDatabaseErrorPath) {
  AddNovemberItem(kCarol, 12, "Carol's harbour");
  testing::SiteVisit visit = Search(kCarol, kCarol, "Carol's");
  std::string html = visit.Show();
  EXPECT_TRUE(visit.page().Error.Raised());
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_NE(html.find("<!-- ErrorScreen Start -->"), std::string::npos);
  EXPECT_NE(html.find("The following error was presented when trying to connect to the "
                      "database.</b></font><br><br>Error Number: "),
            std::string::npos);
  EXPECT_EQ(html.find("<!-- SearchScreenView  Start -->"), std::string::npos);
  // The error screen replaces the search screen once.
  EXPECT_EQ(html.find("<!-- ErrorScreen Start -->"), html.rfind("<!-- ErrorScreen Start -->"));
}

TEST_F(SearchResultsTest, RowsOfSeveralUsersStandUnderOneHeadingPerChangeOfUserName) {
  AddNovemberItem(kCarol, 4, "Harbour c1");
  AddNovemberItem(kBob, 5, "Harbour b1");
  AddNovemberItem(kCarol, 2, "Harbour c2");
  AddNovemberItem(kBob, 3, "Harbour b2");
  AddNovemberItem(kAnn, 6, "Harbour a1");
  std::string html = Search(kBob, "all", "Harbour").Show();
  EXPECT_EQ(UserHeadings(html), (Strings{"Crew - ann", "Crew - bob", "Crew - carol"}));
  EXPECT_EQ(FoundHeadings(html),
            (Strings{"Harbour a1", "Harbour b2", "Harbour b1", "Harbour c2", "Harbour c1"}));
}

TEST_F(SearchResultsTest, SameTrimmedNameInTwoGroupsInARowGetsOneHeading) {
  // "zed" is the last of Crew by name and "zed " the first of Deck to have an item found:
  // ordered by group and name their rows follow each other, the trimmed name never changes,
  // and Deck's row stands under Crew's heading.
  const std::string zed_crew = database_.AddUser({.name = "zed", .password = "pw", .group = crew_});
  const std::string zed_deck =
      database_.AddUser({.name = "zed ", .password = "pw", .group = deck_});
  AddNovemberItem(zed_crew.c_str(), 3, "Harbour crew zed");
  AddNovemberItem(zed_deck.c_str(), 4, "Harbour deck zed");
  AddNovemberItem(kDave, 5, "Galley");
  std::string html = Search(kAnn, "all", "Harbour").Show();
  EXPECT_EQ(UserHeadings(html), (Strings{"Crew - zed"}));
  EXPECT_EQ(FoundHeadings(html), (Strings{"Harbour crew zed", "Harbour deck zed"}));
}

TEST_F(SearchResultsTest, SameNameSeparatedByAnotherUserGetsAHeadingEachTime) {
  // Names are unique now; a database from before the unique index may still hold two alike.
  database_.Execute("DROP INDEX Users_Username_Unique");
  const std::string zed_crew = database_.AddUser({.name = "zed", .password = "pw", .group = crew_});
  const std::string zed_deck = database_.AddUser({.name = "zed", .password = "pw", .group = deck_});
  AddNovemberItem(zed_crew.c_str(), 3, "Harbour crew zed");
  AddNovemberItem(kDave, 5, "Harbour dave");
  AddNovemberItem(zed_deck.c_str(), 4, "Harbour deck zed");
  std::string html = Search(kAnn, "all", "Harbour").Show();
  EXPECT_EQ(UserHeadings(html), (Strings{"Crew - zed", "Deck - dave", "Deck - zed"}));
}

TEST_F(SearchResultsTest, EveryResultLinkOpensTheTimeViewOfItsDateAndHourForTheSearcher) {
  const long id = AddItem({.owner = kCarol,
                           .date = DateSerial(2026, 11, 17),
                           .hour = 15,
                           .time_text = "15:45",
                           .heading = "Harbour"});
  std::string html = Search(kBob, "all", "Harbour").Show();
  const std::string link = FirstResultLink(html);
  EXPECT_EQ(LinkFields(link), (Strings{"", "3/n", "11/17/2026", "15", std::to_string(id),
                                       Expected(kBob), "", "", ""}));

  // Followed, it opens bob's time view of that hour with the item selected.
  std::string time = Visit().Link(link.substr(link.find("WS=") + 3)).Show();
  EXPECT_NE(time.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(time.find("<b>User:</b> bob"), std::string::npos);
  EXPECT_EQ(time.find("<b>User:</b> carol"), std::string::npos);
  EXPECT_NE(time.find("<tr bgcolor=#dee7f7 ><td class=text width=10 align=center >&nbsp;</td>"
                      "<td class=text width=22 align=center >15:45</td>"),
            std::string::npos)
      << time;
}

TEST_F(SearchResultsTest, AnAdministratorsLinksCarryHisKeyAsAdministratorToo) {
  AddNovemberItem(kDave, 17, "Harbour");
  std::string html = Search(kAnn, "all", "Harbour").Show();
  const std::vector<std::string> fields = LinkFields(FirstResultLink(html));
  ASSERT_EQ(fields.size(), 9u);
  EXPECT_EQ(fields[5], Expected(kAnn));
  EXPECT_EQ(fields[7], Expected(kAnn));
}

TEST_F(SearchResultsTest, ACompleteItemIsColouredAndStruckThroughUnderCrossOut) {
  const long id = AddItem({.owner = kCarol,
                           .date = DateSerial(2026, 11, 17),
                           .hour = 15,
                           .time_text = "15:45",
                           .heading = "Harbour",
                           .complete = true});
  std::string html = Search(kCarol, kCarol, "Harbour")
                         .Configure([](ASPTidewell& tidewell) {
                           tidewell.SetCompletedItemCrossOut(true);
                           tidewell.SetCompletedItemColor("#123456");
                         })
                         .Show();
  const std::string link =
      "default.asp?WS=~3/n~11/17/2026~15~" + std::to_string(id) + "~" + Expected(kCarol) + "~~~";
  EXPECT_NE(
      html.find("<tr bgcolor=#ffffff ><td class=text width=10 align=center >&nbsp;</td>"
                "<td class=text width=70 align=left ><font color=#123456 ><strike>11/17/2026"
                "</strike></font></td>"
                "<td class=text width=22 align=center ><font color=#123456 ><strike>15:45"
                "</strike></font></td>"
                "<td class=text width=425 align=left ><a class=search href=" +
                link + " ><font color=#123456 ><strike>Harbour</strike></font></a></td></tr>"),
      std::string::npos)
      << SearchResultsOf(html);
}

TEST_F(SearchResultsTest, ACompleteItemWithoutCrossOutIsColouredOnly) {
  AddItem({.owner = kCarol,
           .date = DateSerial(2026, 11, 17),
           .hour = 15,
           .time_text = "15:45",
           .heading = "Harbour",
           .complete = true});
  std::string html = Search(kCarol, kCarol, "Harbour").Show();
  EXPECT_NE(html.find("<td class=text width=70 align=left ><font color=#adadad >11/17/2026</font>"
                      "</td><td class=text width=22 align=center ><font color=#adadad >15:45"
                      "</font></td>"),
            std::string::npos);
  EXPECT_NE(html.find(" ><font color=#adadad >Harbour</font></a></td></tr>"), std::string::npos);
  EXPECT_EQ(html.find("<strike>"), std::string::npos);
}

TEST_F(SearchResultsTest, AnUrgentItemHasTheUrgentIconAndTheRowColoursFollowTheProperties) {
  AddItem({.owner = kCarol,
           .date = DateSerial(2026, 11, 17),
           .hour = 15,
           .time_text = "15:45",
           .heading = "Harbour",
           .urgent = true});
  std::string html = Search(kCarol, kCarol, "Harbour")
                         .Configure([](ASPTidewell& tidewell) {
                           tidewell.SetTimeViewColumnColor("#010101");
                           tidewell.SetTimeViewSelectedItemColor("#020202");
                           tidewell.SetTimeViewHeadingColor("#030303");
                         })
                         .Show();
  EXPECT_NE(html.find("<tr bgcolor=#010101 ><td class=white width=10 align=center >"),
            std::string::npos);
  EXPECT_NE(html.find("<tr bgcolor=#020202 ><td class=text colspan=4 align=left >Crew - carol"),
            std::string::npos);
  EXPECT_NE(html.find("<tr bgcolor=#030303 ><td class=text width=10 align=center ><img "
                      "src=images/icon_urgent.gif width=6 height=12 border=0 ></td>"),
            std::string::npos);
}

TEST_F(SearchResultsTest, NamesHeadingsAndTimesFromUsersAreEscaped) {
  const long group = database_.AddGroup("A&B <crew>");
  const std::string key =
      database_.AddUser({.name = "<i>eve</i>", .password = "pw", .group = group});
  AddItem({.owner = key,
           .date = DateSerial(2026, 11, 17),
           .hour = 15,
           .time_text = "<b>15</b>",
           .heading = "\"Harbour\" <script>"});
  std::string html = Search(kAnn, "all", "Harbour").Show();
  EXPECT_EQ(UserHeadings(html), (Strings{"A&amp;B &lt;crew&gt; - &lt;i&gt;eve&lt;/i&gt;"}));
  EXPECT_EQ(FoundHeadings(html), (Strings{"&quot;Harbour&quot; &lt;script&gt;"}));
  EXPECT_NE(html.find(">&lt;b&gt;15&lt;/b&gt;</td>"), std::string::npos);
  EXPECT_EQ(html.find("<script>"), std::string::npos);
}

TEST_F(SearchResultsTest, NoSearchRunsWithoutAPostedAction) {
  AddNovemberItem(kCarol, 12, "Harbour");
  testing::SiteVisit visit = SearchScreen(kCarol);
  visit.Post("ownerkey", kCarol)
      .Post("startdate", "11/1/2026")
      .Post("enddate", "11/30/2026")
      .Post("search", "Harbour");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().SearchResults, "");
  EXPECT_EQ(html.find("<table bgcolor=#c0c0c0"), std::string::npos);
}

TEST_F(SearchResultsTest, ASearchPostedToAnotherScreenDoesNotRun) {
  AddNovemberItem(kCarol, 12, "Harbour");
  testing::SiteVisit visit = Visit();
  visit.Link("~0~11/21/2026~14~0~" + InLink(kCarol) + "~~~")
      .Post("ownerkey", kCarol)
      .Post("startdate", "11/1/2026")
      .Post("enddate", "11/30/2026")
      .Post("search", "Harbour")
      .Post("action", "u");
  visit.Show();
  EXPECT_EQ(visit.page().SearchResults, "");
}

}  // namespace
}  // namespace tidewell

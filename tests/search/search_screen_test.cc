// The search screen and its help through Show, against a seeded SQLite database: the whole
// form on a first visit and after a refused date, the values it keeps after a search, the
// date-picker links and the picker they open, the window sizes and page heights by browser.

#include "search/search_screen.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "tests/search/search_site.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::MatchesGolden;
using testing::SearchForm;
using testing::SearchResultsOf;

constexpr const char* kOpera = "Opera/9.80 (X11; Linux x86_64)";
constexpr const char* kNavigator = "Mozilla/4.0 (compatible; Navigator)";
constexpr const char* kNetscape = "Mozilla/5.0 Netscape/7.1";

class SearchScreenTest : public testing::SearchSiteTest {
 protected:
  // The href of the date-picker icon of the field `name` ("startdate" or "enddate").
  static std::string PickerLink(const std::string& html, const std::string& name) {
    const size_t field = html.find("name=" + name + " ");
    if (field == std::string::npos) return "";
    const std::string open = "href=javascript:datepicker('";
    const size_t start = html.find(open, field) + open.size();
    return html.substr(start, html.find("'", start) - start);
  }
  // The page a link of this site leads to, for `key`.
  std::string Follow(const std::string& link) {
    return Visit().Link(link.substr(link.find("WS=") + 3)).Show();
  }
};

TEST_F(SearchScreenTest, FirstVisitShowsTheDateInViewTwiceAnEmptySearchAndNoResults) {
  std::string html = SearchScreen(kBob).Show();
  EXPECT_TRUE(MatchesGolden(SearchForm(html), "search_screen_first_visit.html", Keys()));
  EXPECT_EQ(html.find("<table bgcolor=#c0c0c0"), std::string::npos);
  EXPECT_EQ(html.find("No search results"), std::string::npos);
}

TEST_F(SearchScreenTest, FirstVisitOfAnotherDateShowsThatDate) {
  std::string html = Visit().Link("~15/2~2/3/2027~8~0~" + InLink(kCarol) + "~~~").Show();
  EXPECT_NE(html.find("name=startdate value=\"2/3/2027\" size=15 >"), std::string::npos);
  EXPECT_NE(html.find("name=enddate value=\"2/3/2027\" size=15 >"), std::string::npos);
  EXPECT_NE(html.find("name=search value=\"\" size=50 >"), std::string::npos);
}

TEST_F(SearchScreenTest, AfterASearchThePostedValuesStandInTheFieldsAndTheResultsBelow) {
  AddNovemberItem(kCarol, 12, "Harbour pilot");
  std::string html = Search(kCarol, kCarol, "arbo", "11/01/2026", "2026-11-30").Show();
  EXPECT_NE(html.find("name=startdate value=\"11/01/2026\" size=15 >"), std::string::npos);
  EXPECT_NE(html.find("name=enddate value=\"2026-11-30\" size=15 >"), std::string::npos);
  EXPECT_NE(html.find("name=search value=\"arbo\" size=50 >"), std::string::npos);
  const std::string below = SearchResultsOf(html);
  ASSERT_EQ(below.find("</form><table bgcolor=#c0c0c0 width=100%"), 0u) << below;
  EXPECT_NE(below.find(">Harbour pilot</a>"), std::string::npos);
}

TEST_F(SearchScreenTest, PostedValuesAreEscapedWhenShownAgain) {
  std::string html =
      Search(kCarol, kCarol, "<b>\"tide\" & co", "11/1/2026\"><x", "11/30/2026").Show();
  EXPECT_NE(html.find("name=search value=\"&lt;b&gt;&quot;tide&quot; &amp; co\" size=50 >"),
            std::string::npos);
  EXPECT_NE(html.find("name=startdate value=\"11/1/2026&quot;&gt;&lt;x\" size=15 >"),
            std::string::npos);
  EXPECT_EQ(html.find("<b>\"tide\""), std::string::npos);
}

TEST_F(SearchScreenTest, AnInvalidEndDateIsShownAboveTheFormWithThePostedValues) {
  std::string html =
      Search(kCarol, kCarol, "Harbour", "11/1/2026", "11/31/2026").Agent(kOpera).Show();
  EXPECT_TRUE(MatchesGolden(SearchForm(html), "search_screen_invalid_end_date.html", Keys()));
}

TEST_F(SearchScreenTest, AnInvalidStartDateIsShownAboveTheForm) {
  std::string html = Search(kCarol, kCarol, "Harbour", "someday", "11/31/2026").Show();
  EXPECT_NE(html.find("onsubmit=\"return validator(this)\" ><font color=#b22222><b>You have "
                      "entered an invalid start date, please choose another date.</b></font>"
                      "<br><br>Owner:<br>"),
            std::string::npos);
  EXPECT_EQ(html.find("invalid end date"), std::string::npos);
}

TEST_F(SearchScreenTest, TheOwnerListOfAnAdministratorOffersEveryoneEveryGroupAndEveryUser) {
  std::string html = SearchScreen(kAnn).Show();
  EXPECT_NE(html.find("<select class=text name=ownerkey>"
                      "<option class=text value=all >- Search All Users -</option>"
                      "<option class=text value=" +
                      std::to_string(crew_) +
                      " >- Search Group Crew -</option>"
                      "<option class=text value=" +
                      std::to_string(deck_) +
                      " >- Search Group Deck -</option>"
                      "<option class=admin value=" +
                      kAnn +
                      " >Crew - ann</option>"
                      "<option class=text value=" +
                      kBob +
                      " >Crew - bob</option>"
                      "<option class=text value=" +
                      kCarol +
                      " >Crew - carol</option>"
                      "<option class=text value=" +
                      kDave +
                      " >Deck - dave</option>"
                      "</select>"),
            std::string::npos)
      << html;
}

TEST_F(SearchScreenTest, TheOwnerListOfAUserWithoutTheWholeGroupHoldsHimAlone) {
  std::string html = SearchScreen(kDave).Show();
  EXPECT_NE(html.find(std::string("<select class=text name=ownerkey><option class=text value=") +
                      kDave + " >Deck - dave</option></select>"),
            std::string::npos);
}

TEST_F(SearchScreenTest, TheOwnerListKeepsThePostedOwnerSelected) {
  std::string html = Search(kAnn, std::to_string(deck_), "x").Show();
  EXPECT_NE(html.find("<option selected class=text value=" + std::to_string(deck_) +
                      " >- Search Group Deck -</option>"),
            std::string::npos);
  EXPECT_NE(html.find("<option class=text value=all >- Search All Users -</option>"),
            std::string::npos);
}

TEST_F(SearchScreenTest, ThePickerOfTheEndDateFillsTheEndDateAlsoAfterPagingThroughMonths) {
  std::string html = SearchScreen(kBob).Show();
  const std::string link = PickerLink(html, "enddate");
  std::vector<std::string> fields = LinkFields(link);
  ASSERT_EQ(fields.size(), 9u) << link;
  EXPECT_EQ(fields[1], "5/15");
  EXPECT_EQ(fields[8], "1");

  std::string picker = Follow(link);
  EXPECT_NE(picker.find("<!-- datepicker  start -->"), std::string::npos) << picker;
  EXPECT_NE(picker.find("href=javascript:window.opener.document.searchscreen['enddate'].value="
                        "'11/21/2026';self.close(); >"),
            std::string::npos);
  EXPECT_EQ(picker.find("['startdate']"), std::string::npos);

  std::string next = Follow(LinkTitled(picker, "Next Month"));
  EXPECT_NE(next.find("December 2026"), std::string::npos);
  EXPECT_NE(next.find("searchscreen['enddate'].value='12/24/2026';self.close();"),
            std::string::npos);
  EXPECT_EQ(next.find("['startdate']"), std::string::npos);
  std::string back =
      Follow(LinkTitled(Follow(LinkTitled(next, "Previous Month")), "Previous Month"));
  EXPECT_NE(back.find("October 2026"), std::string::npos);
  EXPECT_NE(back.find("searchscreen['enddate'].value='10/5/2026';self.close();"),
            std::string::npos);
  EXPECT_EQ(back.find("['startdate']"), std::string::npos);
}

TEST_F(SearchScreenTest, ThePickerOfTheStartDateFillsTheStartDate) {
  std::string html = SearchScreen(kBob).Show();
  const std::string link = PickerLink(html, "startdate");
  EXPECT_EQ(LinkFields(link).at(8), "0");
  std::string picker = Follow(link);
  EXPECT_NE(picker.find("searchscreen['startdate'].value='11/21/2026';self.close();"),
            std::string::npos);
  EXPECT_EQ(picker.find("['enddate']"), std::string::npos);
}

TEST_F(SearchScreenTest, ThePickerOpensOnTheMonthOfThePostedDate) {
  std::string html = Search(kBob, "all", "x", "3/14/2027", "soon").Show();
  EXPECT_EQ(LinkFields(PickerLink(html, "startdate")).at(2), "3/14/2027");
  EXPECT_EQ(LinkFields(PickerLink(html, "enddate")).at(2), "11/21/2026");
}

TEST_F(SearchScreenTest, ThePickerWindowAndThePageHeightFollowTheBrowser) {
  struct Case {
    const char* agent;
    const char* size;
    const char* height;
  };
  for (const Case& c :
       {Case{"", "width=180,height=165", "545"}, Case{kNetscape, "width=200,height=185", "545"},
        Case{kNavigator, "width=200,height=185", "554"},
        Case{kOpera, "width=200,height=185", "555"}}) {
    std::string html = SearchScreen(kBob).Agent(c.agent).Show();
    EXPECT_NE(html.find(c.size), std::string::npos) << c.agent;
    EXPECT_EQ(html.find("<height></height>"), std::string::npos) << c.agent;
    EXPECT_NE(html.find(std::string("width=620 height=") + c.height + " "), std::string::npos)
        << c.agent;
  }
}

TEST_F(SearchScreenTest, TheHelpIconLeadsToTheSearchHelp) {
  std::string html = SearchScreen(kBob).Show();
  const std::string link = LinkTitled(html, "Show me help for this page.");
  EXPECT_EQ(LinkFields(link).at(1), "16/0");
  std::string help = Follow(link);
  EXPECT_TRUE(MatchesGolden(
      testing::Between(help, "<!-- HelpScreenSearch  Start -->", "<!-- HelpScreenSearch End -->"),
      "search_help.html"));
}

TEST_F(SearchScreenTest, TheHelpSetsThePageHeightByBrowser) {
  for (auto [agent, height] :
       {std::pair{"", "545"}, std::pair{kNavigator, "554"}, std::pair{kOpera, "555"}}) {
    std::string html =
        Visit().Agent(agent).Link("~16/1~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
    EXPECT_NE(html.find("<!-- HelpScreenSearch End -->"), std::string::npos);
    EXPECT_EQ(html.find("<height></height>"), std::string::npos) << agent;
    EXPECT_NE(html.find(std::string("width=620 height=") + height + " "), std::string::npos)
        << agent;
  }
}

TEST_F(SearchScreenTest, TheFormPostsBackToTheSearchScreen) {
  std::string html = Visit().Link("~15/2~11/21/2026~9~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_EQ(LinkFields(testing::FormAction(html)).at(1), "15/2");
}

}  // namespace
}  // namespace tidewell

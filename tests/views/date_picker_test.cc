// The date picker through Show: written alone, for the item form and both search dates.

#include "views/date_picker.h"

#include <gtest/gtest.h>

#include "runtime/regional_settings.h"
#include "tests/items/item_site.h"

namespace tidewell {
namespace {

using testing::Between;
using testing::Count;
using testing::LinkFields;
using testing::LinkTitled;
using testing::MatchesGolden;

constexpr const char* kNetscape = "Mozilla/5.0 Netscape/7.1";

class DatePickerTest : public testing::ItemSiteTest {
 protected:
  std::string Picker(const std::string& f1, const std::string& date, const std::string& suffix,
                     bool highlight_today = false, const char* agent = "") {
    return Visit()
        .Agent(agent)
        .Link("~" + f1 + "~" + date + "~14~0~" + InLink(kBob) + "~~~" + suffix)
        .Configure([highlight_today](ASPTidewell& tidewell) {
          tidewell.SetHighlightTodaysDate(highlight_today);
        })
        .Show();
  }
  // The picker opens no database, so it cannot know the account's stamp: its links carry the
  // key signed over an empty one. They lead only from month to month of the picker, which
  // reads a key's form and expiry alone; anywhere else such a key opens nothing.
  std::vector<std::pair<std::string, std::string>> PickerKeys() const {
    return {{"bob", testing::ExpectedSignedKey(kSecret, kBob,
                                               testing::UnixSeconds(2026, 11, 21, 14, 5, 0) +
                                                   kLifetime,
                                               "")}};
  }
  // The payload of a link the picker wrote, to follow it.
  static std::string Payload(const std::string& link) { return link.substr(link.find("WS=") + 3); }
  std::string Follow(const std::string& link) { return Visit().Link(Payload(link)).Show(); }
};

TEST_F(DatePickerTest, MonthStartingOnSundayForTheItemForm) {
  std::string html = Picker("5/5", "11/21/2026", "", /*highlight_today=*/true);
  EXPECT_TRUE(MatchesGolden(html, "date_picker_month_starting_sunday.html", PickerKeys()));
}

TEST_F(DatePickerTest, MonthStartingOnTuesdayForTheSearchEndDate) {
  std::string html = Picker("5/15", "12/10/2026", "1", /*highlight_today=*/false, kNetscape);
  EXPECT_TRUE(MatchesGolden(html, "date_picker_month_starting_tuesday.html", PickerKeys()));
}

TEST_F(DatePickerTest, IsWrittenAloneWithoutFrameOrClosingDivs) {
  std::string html = Picker("5/5", "11/21/2026", "");
  EXPECT_EQ(html.rfind("<div id=ws_vis ><div id=ws_pos ><body topmargin=0 leftmargin=0 >"
                       "<!-- datepicker  start -->",
                       0),
            0u);
  const std::string end = "<!-- DatePicker End --></body>";
  EXPECT_EQ(html.substr(html.size() - end.size()), end);
  EXPECT_EQ(html.find("Outer Table"), std::string::npos);
}

TEST_F(DatePickerTest, EndDateFieldIsKeptWhilePagingBackAndForth) {
  std::string html = Picker("5/15", "12/10/2026", "1");
  EXPECT_EQ(Count(html, "window.opener.document.searchscreen['enddate'].value="), 35u);
  EXPECT_EQ(html.find("startdate"), std::string::npos);

  std::string earlier = Follow(LinkTitled(html, "Previous Month"));
  EXPECT_NE(earlier.find("<font color=#ffffff >November 2026</font>"), std::string::npos);
  EXPECT_EQ(Count(earlier, "window.opener.document.searchscreen['enddate'].value="), 35u);
  EXPECT_EQ(earlier.find("startdate"), std::string::npos);

  std::string later = Follow(LinkTitled(Follow(LinkTitled(earlier, "Next Month")), "Next Month"));
  EXPECT_NE(later.find("<font color=#ffffff >January 2027</font>"), std::string::npos);
  EXPECT_NE(later.find("searchscreen['enddate'].value='1/31/2027';self.close();"),
            std::string::npos);
  EXPECT_EQ(later.find("startdate"), std::string::npos);
  EXPECT_EQ(LinkFields(LinkTitled(later, "Next Month")).at(8), "1");
}

TEST_F(DatePickerTest, StartDateFieldForSuffixZero) {
  std::string html = Picker("5/15", "12/10/2026", "0");
  EXPECT_NE(html.find("searchscreen['startdate'].value='12/10/2026';self.close();"),
            std::string::npos);
  EXPECT_EQ(html.find("enddate"), std::string::npos);
  EXPECT_EQ(LinkFields(LinkTitled(html, "Previous Month")).at(8), "0");
}

TEST_F(DatePickerTest, OtherReturnViewsLeaveFormAndFieldEmpty) {
  std::string html = Picker("5/3", "12/10/2026", "");
  EXPECT_NE(html.find("href=javascript:window.opener.document.[''].value='12/10/2026';"
                      "self.close(); ><b>10</b>"),
            std::string::npos);
}

TEST_F(DatePickerTest, MonthStartingOnSundayHasNoLeadingGreyDays) {
  std::string html = Picker("5/5", "11/21/2026", "");
  std::string first_row = Between(html, "<tr bgcolor=#ffffff>", "</tr>");
  EXPECT_EQ(first_row.find("<td align=center><a class=datepicker href=javascript:window.opener."
                           "document.addmodify['datestamp'].value='11/1/2026';self.close(); "
                           "><b>1</b></a></td>"),
            std::string("<tr bgcolor=#ffffff>").size());
  EXPECT_EQ(first_row.find("#adadad"), std::string::npos);
  // Grey days only after the 30th: December's 1 to 5.
  EXPECT_EQ(Count(html, "<font color=#adadad >"), 5u);
  EXPECT_LT(html.find("value='11/30/2026'"), html.find("#adadad"));
}

TEST_F(DatePickerTest, MonthStartingMidweekLeadsWithThePreviousMonthsLastDays) {
  std::string html = Picker("5/5", "12/10/2026", "");
  std::string first_row = Between(html, "<tr bgcolor=#ffffff>", "</tr>");
  EXPECT_NE(first_row.find("value='11/29/2026';self.close(); ><font color=#adadad ><b>29</b>"),
            std::string::npos);
  EXPECT_NE(first_row.find("value='11/30/2026';self.close(); ><font color=#adadad ><b>30</b>"),
            std::string::npos);
  EXPECT_LT(first_row.find("value='11/30/2026'"), first_row.find("value='12/1/2026'"));
}

TEST_F(DatePickerTest, TodayIsDarkRedWhenHighlighted) {
  std::string html = Picker("5/5", "11/3/2026", "", /*highlight_today=*/true);
  EXPECT_EQ(Count(html, "#b22222"), 1u);
  EXPECT_NE(html.find("<td align=center ><a class=datepicker href=javascript:window.opener."
                      "document.addmodify['datestamp'].value='11/21/2026';self.close(); ><font "
                      "color=#b22222 ><b>21</b></font></a></td>"),
            std::string::npos);
}

TEST_F(DatePickerTest, TodayLooksLikeAnyOtherDayWithoutHighlight) {
  std::string html = Picker("5/5", "11/3/2026", "", /*highlight_today=*/false);
  EXPECT_EQ(html.find("#b22222"), std::string::npos);
  EXPECT_NE(html.find("<td align=center><a class=datepicker href=javascript:window.opener."
                      "document.addmodify['datestamp'].value='11/21/2026';self.close(); "
                      "><b>21</b></a></td>"),
            std::string::npos);
}

TEST_F(DatePickerTest, TodayIsNotHighlightedInAnotherYearsSameMonth) {
  std::string html = Picker("5/5", "11/3/2025", "", /*highlight_today=*/true);
  EXPECT_EQ(html.find("#b22222"), std::string::npos);
}

TEST_F(DatePickerTest, NetscapeGetsNoBodyTags) {
  std::string html = Picker("5/5", "11/21/2026", "", false, kNetscape);
  EXPECT_EQ(html.find("<body"), std::string::npos);
  EXPECT_EQ(html.find("</body>"), std::string::npos);
  EXPECT_EQ(html.substr(html.size() - 23), "<!-- DatePicker End -->");
}

TEST_F(DatePickerTest, DayFirstSettingsWriteDayFirstDates) {
  ScopedRegionalSettings british("en-GB");
  std::string html = Picker("5/5", "21/11/2026", "");
  EXPECT_NE(html.find("addmodify['datestamp'].value='05/11/2026';self.close(); ><b>5</b>"),
            std::string::npos);
  EXPECT_EQ(LinkFields(LinkTitled(html, "Next Month")).at(2), "21/12/2026");
}

TEST_F(DatePickerTest, ItemFormOpensThePickerOnItsDatesMonth) {
  long id = AddItem({.owner = kBob,
                     .date = DateSerial(2027, 2, 3),
                     .hour = 9,
                     .time_text = "09:00",
                     .heading = "Later"});
  std::string form =
      Visit().Link("~4~11/21/2026~9~" + std::to_string(id) + "~" + InLink(kBob) + "~~~").Show();
  std::string link = Between(form, "javascript:datepicker('", "');");
  link = link.substr(23, link.size() - 23 - 3);
  std::vector<std::string> fields = LinkFields(link);
  ASSERT_GE(fields.size(), 8u);
  EXPECT_EQ(fields[1], "5/5");
  EXPECT_EQ(fields[2], "2/3/2027");
  std::string picker = Follow(link);
  EXPECT_NE(picker.find("<font color=#ffffff >February 2027</font>"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

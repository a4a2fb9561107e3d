// The item form through Show, against a seeded SQLite database: the whole screen in its three
// modes, and the rules of its selects, its window sizes and its escaping.

#include "items/item_form.h"

#include <gtest/gtest.h>

#include "page/page.h"
#include "tests/items/item_site.h"

namespace tidewell {
namespace {

using testing::Between;
using testing::Count;
using testing::ItemForm;
using testing::MatchesGolden;

constexpr const char* kOpera = "Opera/9.80 (X11; Linux x86_64)";
constexpr const char* kNetscape = "Mozilla/5.0 Netscape/7.1";

class ItemFormTest : public testing::ItemSiteTest {
 protected:
  // The form bob opens from the time view's [Edit] for item `id` of 25 November.
  std::string EditForm(long id, const char* agent = "") {
    return Visit()
        .Agent(agent)
        .Link("~4~11/25/2026~9~" + std::to_string(id) + "~" + InLink(kBob) + "~~~")
        .Show();
  }
  long AddBobsItem(std::string time_text, long hour = 9) {
    return AddItem({.owner = kBob,
                    .date = DateSerial(2026, 11, 25),
                    .hour = hour,
                    .time_text = std::move(time_text),
                    .heading = "Harbour"});
  }
};

TEST_F(ItemFormTest, AddModeIsTheEmptyFormOnTheShownDateAndHour) {
  std::string html = Visit().Link("~4/0~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_TRUE(MatchesGolden(ItemForm(html), "item_form_add.html", Keys()));
}

TEST_F(ItemFormTest, EditModeShowsTheStoredItem) {
  long id = AddItem({.owner = kBob,
                     .date = DateSerial(2026, 11, 25),
                     .hour = 9,
                     .time_text = "09:20",
                     .heading = "Crew \"brief\" & <notes>",
                     .description = "Charts <b>and</b> tea",
                     .urgent = true});
  std::string html = EditForm(id, kOpera);
  auto values = Keys();
  values.push_back({"item", std::to_string(id)});
  EXPECT_TRUE(MatchesGolden(ItemForm(html), "item_form_edit.html", values));
}

TEST_F(ItemFormTest, RefusedPostKeepsThePostedValuesButNotTheDate) {
  std::string html = Visit()
                         .Agent(kNetscape)
                         .Link("~4/2~11/21/2026~14~0~" + InLink(kBob) + "~~~")
                         .Post("ownerkey", kBob)
                         .Post("datestamp", "11/31/2026")
                         .Post("timestamp", "16")
                         .Post("timetext", "45")
                         .Post("heading", "Dock <check>")
                         .Post("description", "Bring \"rope\"")
                         .Post("urgent", "on")
                         .Post("submit", "Add")
                         .Post("action", "a")
                         .Show();
  EXPECT_TRUE(MatchesGolden(ItemForm(html), "item_form_refused_date.html", Keys()));
  EXPECT_TRUE(Items().empty());
}

TEST_F(ItemFormTest, RefusedUpdateKeepsThePostedValuesOverTheStoredOnes) {
  long id = AddBobsItem("09:15");
  std::string html =
      Visit()
          .Link("~4/3~11/25/2026~9~" + std::to_string(id) + "~" + InLink(kBob) + "~~~")
          .Post("datestamp", "not a date")
          .Post("timestamp", "11")
          .Post("timetext", "30")
          .Post("heading", "Harbour moved")
          .Post("complete", "on")
          .Post("action", "u")
          .Show();
  std::string form = ItemForm(html);
  EXPECT_NE(form.find("&nbsp;<b>Edit Scheduled Item.</b>"), std::string::npos);
  EXPECT_NE(form.find("<font color=#b22222><b>You have entered an invalid date, please choose "
                      "another date.</b></font><br><br>"),
            std::string::npos);
  // The stored date, not the refused text.
  EXPECT_NE(form.find("name=datestamp value=\"11/25/2026\""), std::string::npos);
  EXPECT_NE(form.find("<option selected class=text value=11 >11</option>"), std::string::npos);
  EXPECT_NE(form.find("<option selected class=text value=30 >30</option>"), std::string::npos);
  EXPECT_NE(form.find("value=\"Harbour moved\""), std::string::npos);
  EXPECT_NE(form.find("name=complete checked >"), std::string::npos);
  EXPECT_EQ(Items().at(0).heading, "Harbour");
}

TEST_F(ItemFormTest, AdministratorChoosesAmongEveryUser) {
  std::string html =
      Visit().Link("~4/1~11/21/2026~14~0~" + InLink(kAnn) + "~~" + InLink(kAnn) + "~").Show();
  EXPECT_TRUE(MatchesGolden(ItemForm(html), "item_form_add_administrator.html", Keys()));
}

TEST_F(ItemFormTest, MinuteTwentyIsMarkedAmongTheMinutesWhileTheQuarterHoursStayUnmarked) {
  std::string form = ItemForm(EditForm(AddBobsItem("09:20")));
  std::string minutes = Between(form, "<select class=text name=timetext >", "</select>");
  EXPECT_EQ(Count(minutes, "selected"), 1u);
  EXPECT_NE(minutes.find("<option selected class=text value=20 >20</option>"), std::string::npos);
  EXPECT_EQ(minutes.find("<option class=text value=00 >00</option><option class=text value=15 "
                         ">15</option><option class=text value=30 >30</option><option "
                         "class=text value=45 >45</option><option class=text value=00 "
                         ">--</option><option class=text value=00 >00</option>"),
            minutes.find("<option"));
}

TEST_F(ItemFormTest, ItemOnTheHourMarksNoMinute) {
  std::string form = ItemForm(EditForm(AddBobsItem("09:00")));
  std::string minutes = Between(form, "<select class=text name=timetext >", "</select>");
  ASSERT_FALSE(minutes.empty());
  EXPECT_EQ(minutes.find("selected"), std::string::npos);
  // The first entry, 00, is what the browser shows.
  EXPECT_EQ(minutes.find("<option"), minutes.find("<option class=text value=00 >00</option>"));
}

TEST_F(ItemFormTest, QuarterHourItemIsMarkedOnlyAmongTheMinutes) {
  std::string form = ItemForm(EditForm(AddBobsItem("09:45")));
  std::string minutes = Between(form, "<select class=text name=timetext >", "</select>");
  EXPECT_EQ(Count(minutes, "selected"), 1u);
  EXPECT_EQ(Count(minutes, "value=45 >45</option>"), 2u);
  EXPECT_NE(minutes.find("<option selected class=text value=45 >45</option>"), std::string::npos);
  EXPECT_LT(minutes.find("<option class=text value=45 >45</option>"),
            minutes.find("<option selected class=text value=45 >45</option>"));
}

TEST_F(ItemFormTest, HourSelectMarksTheItemsHourInTwentyFourHourForm) {
  std::string form = ItemForm(EditForm(AddBobsItem("17:05", 17)));
  std::string hours = Between(form, "<select class=text name=timestamp >", "</select>");
  EXPECT_EQ(Count(hours, "<option"), 24u);
  EXPECT_EQ(Count(hours, "selected"), 1u);
  EXPECT_NE(hours.find("<option selected class=text value=17 >17</option>"), std::string::npos);
  EXPECT_NE(hours.find("<option class=text value=23 >23</option></select>"), std::string::npos);
}

TEST_F(ItemFormTest, NewItemAtAnHourOutsideTheDayMarksNoHour) {
  std::string form = ItemForm(Visit().Link("~4/3~11/21/2026~24~0~" + InLink(kBob) + "~~~").Show());
  std::string hours = Between(form, "<select class=text name=timestamp >", "</select>");
  ASSERT_FALSE(hours.empty());
  EXPECT_EQ(hours.find("selected"), std::string::npos);
}

TEST_F(ItemFormTest, PickerWindowIsSizedByBrowserKind) {
  auto window = [&](const char* agent) {
    std::string form =
        ItemForm(Visit().Agent(agent).Link("~4/0~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show());
    return Between(form, "resizable=0,", ",left=");
  };
  EXPECT_EQ(window("Mozilla/4.0 (compatible; MSIE 6.0)"), "resizable=0,width=180,height=165,left=");
  EXPECT_EQ(window(kNetscape), "resizable=0,width=200,height=185,left=");
  EXPECT_EQ(window("Mozilla/4.7 [en] (Nav)"), "resizable=0,width=200,height=185,left=");
  EXPECT_EQ(window(kOpera), "resizable=0,width=200,height=185,left=");
}

// Show only ever finds kinds 0 to 3, so the screen is drawn on its own here, still against
// the seeded database.
TEST_F(ItemFormTest, OtherBrowserKindOpensThePickerWithNoSize) {
  Page page;
  page.props.ImagePath = "images/";
  page.props.HexQueryString = false;
  page.signing = signing_;
  page.ScriptName = "default.asp?";
  page.Screen = screens::kItemForm;
  page.CurrentDate = DateSerial(2026, 11, 21);
  page.CurrentHour = 14;
  page.UserKey = kBob;
  page.BrowserKind = 4;
  page.Connection = std::make_shared<ado::Connection>();
  page.Connection->Open(database_.connection_string());
  AddModifyView(page);
  EXPECT_NE(page.PageBuffer.find("resizable=0,width=0,height=0,left=' + y + ',top=' + x + "
                                 "',screenX=' + x + ',screenY=' + y;\r\n"),
            std::string::npos);
  EXPECT_NE(page.PageBuffer.find("<!-- AddModifyView End -->"), std::string::npos);
}

TEST_F(ItemFormTest, FormLeavesTheFramesHeightAlone) {
  std::string html = Visit().Link("~4/0~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_NE(html.find("width=620 height=<height></height> cellpadding=0"), std::string::npos);
}

TEST_F(ItemFormTest, FormHasTheTabsOfTheViewItReturnsTo) {
  std::string html = Visit().Link("~4/1~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_NE(html.find("<!-- AddModifyView End -->"), std::string::npos);
  EXPECT_NE(html.find("class=tabs bgcolor=#172676 nowrap><a class=tabs href=default.asp?WS=~1"),
            std::string::npos);
}

TEST_F(ItemFormTest, AnotherUsersItemIsNotLoadedByEditingTheLink) {
  long carols = AddItem({.owner = kCarol,
                         .date = DateSerial(2026, 12, 24),
                         .hour = 20,
                         .time_text = "20:35",
                         .heading = "Carol's secret",
                         .description = "Not for bob",
                         .urgent = true,
                         .complete = true});
  std::string form = ItemForm(EditForm(carols));
  ASSERT_FALSE(form.empty());
  EXPECT_EQ(form.find("secret"), std::string::npos);
  EXPECT_EQ(form.find("Not for bob"), std::string::npos);
  EXPECT_EQ(form.find("12/24/2026"), std::string::npos);
  EXPECT_EQ(form.find("checked"), std::string::npos);
  EXPECT_EQ(form.find("value=20 >20</option><option selected"), std::string::npos);
  EXPECT_EQ(form.find(kCarol), std::string::npos);
  // What the form shows instead: the link's date and hour, nothing else.
  EXPECT_NE(form.find("name=datestamp value=\"11/25/2026\""), std::string::npos);
  EXPECT_NE(form.find("value=\"\" >"), std::string::npos);
}

TEST_F(ItemFormTest, FormShowsNothingWithoutASignedKey) {
  std::string html = Visit().Link("~4/0~11/21/2026~14~0~" + std::string(kBob) + "~~~").Show();
  EXPECT_EQ(html.find("<!-- AddModifyView  Start -->"), std::string::npos);
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

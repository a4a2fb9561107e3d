// The item help through Show.

#include <gtest/gtest.h>

#include "tests/items/item_site.h"

namespace tidewell {
namespace {

using testing::Between;
using testing::MatchesGolden;

class ItemHelpTest : public testing::ItemSiteTest {};

TEST_F(ItemHelpTest, HelpExplainsEveryFieldOfTheForm) {
  std::string html = Visit().Link("~13/3~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_TRUE(
      MatchesGolden(Between(html, "<!-- HelpScreenItem  Start -->", "<!-- HelpScreenItem End -->"),
                    "item_help.html"));
}

TEST_F(ItemHelpTest, HelpFollowsThePagesColourAndImageFolder) {
  std::string html = Visit()
                         .Link("~13/3~11/21/2026~14~0~" + InLink(kBob) + "~~~")
                         .Configure([](ASPTidewell& tidewell) {
                           tidewell.SetTidewellColor("#336699");
                           tidewell.SetImagePath("art");
                         })
                         .Show();
  std::string help = Between(html, "<!-- HelpScreenItem  Start -->", "<!-- HelpScreenItem End -->");
  EXPECT_NE(help.find("<tr bgcolor=#336699>"), std::string::npos);
  EXPECT_NE(help.find("border=1 bordercolor=#336699>"), std::string::npos);
  EXPECT_NE(help.find("<img src=art/icon_help.gif width=30 height=30"), std::string::npos);
}

TEST_F(ItemHelpTest, HelpHasTheTabsOfTheViewItReturnsTo) {
  std::string html = Visit().Link("~13/2~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  EXPECT_NE(html.find("<!-- HelpScreenItem End -->"), std::string::npos);
  EXPECT_NE(html.find("class=tabs bgcolor=#172676 nowrap><a class=tabs href=default.asp?WS=~2/n~"),
            std::string::npos);
}

TEST_F(ItemHelpTest, FormsHelpIconLeadsToTheHelp) {
  std::string form = Visit().Link("~4/1~11/21/2026~14~0~" + InLink(kBob) + "~~~").Show();
  std::string help_link = testing::LinkTitled(form, "Show me help for this page.");
  std::vector<std::string> fields = testing::LinkFields(help_link);
  ASSERT_GE(fields.size(), 8u);
  EXPECT_EQ(fields[1], "13/1");
  std::string help = Visit().Link(help_link.substr(help_link.find("WS=") + 3)).Show();
  EXPECT_NE(help.find("&nbsp;<b>Help On Item Information.</b>"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

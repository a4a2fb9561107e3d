#include "frame/markup.h"

#include <gtest/gtest.h>

#include "page/page.h"

namespace tidewell {
namespace {

TEST(EscapeHtml, MarkupCharactersBecomeEntities) {
  EXPECT_EQ(EscapeHtml("R&D <b>\"Lab\"</b>"), "R&amp;D &lt;b&gt;&quot;Lab&quot;&lt;/b&gt;");
}

TEST(EscapeHtml, OrdinaryTextAndUtf8PassUnchanged) {
  EXPECT_EQ(EscapeHtml("Zoë O'Hara 12:00"), "Zoë O'Hara 12:00");
  EXPECT_EQ(EscapeHtml(""), "");
}

TEST(TextOption, PlainAndPreselected) {
  EXPECT_EQ(TextOption("07", "07", false), "<option class=text value=07 >07</option>");
  EXPECT_EQ(TextOption("3", "Crew", true), "<option selected class=text value=3 >Crew</option>");
}

TEST(ReplaceHeight, ReplacesEveryPlaceholderInTheWholePage) {
  Page page;
  page.PageBuffer = "<table height=<height></height>>x<td height=<height></height>>";
  ReplaceHeight(page, 558);
  EXPECT_EQ(page.PageBuffer, "<table height=558>x<td height=558>");
}

TEST(ReplaceHeight, MatchesTheCaseExactly) {
  Page page;
  page.PageBuffer = "<HEIGHT></HEIGHT><height></height>";
  ReplaceHeight(page, 7);
  EXPECT_EQ(page.PageBuffer, "<HEIGHT></HEIGHT>7");
}

TEST(ByBrowser, NavigatorAndOperaHaveTheirOwnValues) {
  Page page;
  for (long kind : {browsers::kExplorer, browsers::kNetscape}) {
    page.BrowserKind = kind;
    EXPECT_EQ(ByBrowser(page, 558, 557, 561), 558);
  }
  page.BrowserKind = browsers::kNavigator;
  EXPECT_EQ(ByBrowser(page, 558, 557, 561), 557);
  page.BrowserKind = browsers::kOpera;
  EXPECT_EQ(ByBrowser(page, 558, 557, 561), 561);
}

TEST(AppendTitleBar, SpacedFirstCellAndTheOpeningTdAfterTheTitle) {
  Page page;
  page.props.TidewellColor = "#123456";
  AppendTitleBar(page, "Some Title.", TitleCell::kSpaced);
  EXPECT_EQ(page.PageBuffer,
            "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0>"
            "<tr bgcolor=#123456><td align=center valign=middle width=60 >&nbsp;</td>"
            "<td class=mwdname align=left valign=middle width=550>&nbsp;<b>Some Title.</b>"
            "<td></tr></table>");
}

TEST(AppendTitleBar, PlainFirstCell) {
  Page page;
  AppendTitleBar(page, "T", TitleCell::kPlain);
  EXPECT_NE(page.PageBuffer.find("<td align=center valign=middle width=60>&nbsp;</td>"),
            std::string::npos);
}

TEST(AppendValidator, OneLinePerPieceEndedByCrLfAndOneBefore) {
  Page page;
  AppendValidator(page, {{"heading", "Heading"}});
  EXPECT_EQ(page.PageBuffer,
            "\r\n<script language=javascript>\r\n<!--\r\nfunction validator(theForm)\r\n{\r\n"
            "if (theForm.heading.value == \"\")\r\n{\r\n"
            "alert('Please enter a value in the Heading field.');\r\ntheForm.heading.focus();\r\n"
            "return (false);\r\n}\r\nreturn (true);\r\n}\r\n//-->\r\n</script>\r\n");
}

TEST(SettleFrameHeight, LeftoverPlaceholdersBecomeTheFormScreensHeight) {
  EXPECT_EQ(SettleFrameHeight("<table width=620 height=<height></height> border=0>"
                              "<td height=<height></height>>"),
            "<table width=620 height=545 border=0><td height=545>");
  EXPECT_EQ(SettleFrameHeight("<table height=558 border=0>"), "<table height=558 border=0>");
  EXPECT_EQ(SettleFrameHeight("<HEIGHT></HEIGHT>"), "<HEIGHT></HEIGHT>");
}

}  // namespace
}  // namespace tidewell

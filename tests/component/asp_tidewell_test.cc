#include "component/asp_tidewell.h"

#include <gtest/gtest.h>

#include "runtime/automation_error.h"
#include "tests/component/fake_request.h"

namespace tidewell {
namespace {

TEST(ImagePath, FolderWithoutSlashGetsOne) {
  ASPTidewell c;
  c.SetImagePath("images");
  EXPECT_EQ(c.ImagePath(), "images/");
}

TEST(ImagePath, FolderWithSlashStaysAsItIs) {
  ASPTidewell c;
  c.SetImagePath("images/");
  EXPECT_EQ(c.ImagePath(), "images/");
}

TEST(ImagePath, EmptyStaysEmpty) {
  ASPTidewell c;
  c.SetImagePath("");
  EXPECT_EQ(c.ImagePath(), "");
}

TEST(ClassInitialize, SetsTheDefaults) {
  ASPTidewell c;
  EXPECT_FALSE(c.Visible());
  EXPECT_EQ(c.Position(), "");
  EXPECT_TRUE(c.HexQueryString());
  EXPECT_EQ(c.DataServer(), ASPDataServer::Access);
  EXPECT_EQ(c.DefaultStartHour(), -1);
  EXPECT_EQ(c.HighlightDeltaDaysColor(), "#efefef");
  EXPECT_EQ(c.HighlightTodaysDateColor(), "#dee7f7");
  EXPECT_EQ(c.HighlightTodaysTimeColor(), "#dee7f7");
  EXPECT_EQ(c.TimeViewHeadingColor(), "#ffffff");
  EXPECT_EQ(c.TimeViewDescriptionColor(), "#ffffff");
  EXPECT_EQ(c.TimeViewSelectedItemColor(), "#dee7f7");
  EXPECT_EQ(c.TimeViewColumnColor(), "#a5c1e7");
  EXPECT_EQ(c.CompletedItemColor(), "#adadad");
  EXPECT_EQ(c.TidewellColor(), "#172676");
  EXPECT_FALSE(c.CompletedItemCrossOut());
  EXPECT_EQ(c.ImagePath(), "");
}

TEST(OnStartPage, PropertiesSetAfterItKeepTheirValues) {
  testing::FakeVisit visit;
  ASPTidewell& c = visit.Start();
  c.SetTidewellColor("#000000");
  c.SetDefaultStartHour(7);
  c.SetVisible(true);
  EXPECT_EQ(c.TidewellColor(), "#000000");
  EXPECT_EQ(c.DefaultStartHour(), 7);
  EXPECT_TRUE(c.Visible());
}

TEST(OnStartPage, ResetsOnlyTheDefaultsSetBeforeIt) {
  testing::FakeVisit visit;
  visit.component.SetTidewellColor("#000000");
  visit.component.SetHexQueryString(false);
  visit.component.SetTimeViewColumnColor("red");
  visit.component.SetVisible(true);
  visit.component.SetConnectionString("Provider=SQLite;Data Source=x");
  visit.Start();
  EXPECT_EQ(visit.component.TidewellColor(), "#172676");
  EXPECT_TRUE(visit.component.HexQueryString());
  EXPECT_EQ(visit.component.TimeViewColumnColor(), "#a5c1e7");
  EXPECT_TRUE(visit.component.Visible());
  EXPECT_EQ(visit.component.ConnectionString(), "Provider=SQLite;Data Source=x");
}

TEST(OnStartPage, ContextWithoutObjectsRaises) {
  ASPTidewell c;
  ScriptingContext empty;
  EXPECT_THROW(c.OnStartPage(empty), AutomationError);
}

TEST(AutoLogin, ReturnsEmptyWhateverItsArguments) {
  ASPTidewell c;
  EXPECT_EQ(c.AutoLogin("alice", "secret", true), "");
  EXPECT_EQ(c.AutoLogin("", "", false), "");
  EXPECT_EQ(c.AutoLogin("o'brien", "x~y", true), "");
}

TEST(AutoLogin, RemembersItsArguments) {
  ASPTidewell c;
  c.AutoLogin("alice", "secret", true);
  EXPECT_TRUE(c.page().AutoLoginEnabled);
  EXPECT_EQ(c.page().AutoLoginUserName, "alice");
  EXPECT_EQ(c.page().AutoLoginPassword, "secret");
  EXPECT_TRUE(c.page().AutoLoginReadOnly);
}

TEST(Show, WritesThePageOnceAndReturnsEmpty) {
  testing::FakeVisit visit;
  ASPTidewell& c = visit.Start();
  Variant result = c.Show();
  EXPECT_TRUE(result.IsEmpty());
  // The response takes the page over; the component keeps no copy.
  EXPECT_EQ(visit.response.body().rfind("<div id=ws_vis style=\"display:none\"><div id=ws_pos >", 0),
            0u);
  EXPECT_EQ(visit.response.body().substr(visit.response.body().size() - 12), "</div></div>");
  EXPECT_TRUE(c.page().PageBuffer.empty());
}

TEST(ViewSource, ReturnsThePageWithoutWritingIt) {
  testing::FakeVisit visit;
  std::string html = visit.Start().ViewSource();
  EXPECT_EQ(visit.response.body(), "");
  EXPECT_EQ(html, visit.component.page().PageBuffer);
  EXPECT_EQ(html.rfind("<div id=ws_vis style=\"display:none\"><div id=ws_pos >", 0), 0u);
  EXPECT_EQ(html.substr(html.size() - 12), "</div></div>");
}

TEST(RunWithinCOM, BindsWithoutResettingDefaults) {
  AspRequest request;
  BufferedResponse response;
  ASPTidewell c;
  c.SetTidewellColor("#123456");
  EXPECT_TRUE(c.RunWithinCOM(&request, &response).IsEmpty());
  EXPECT_EQ(c.TidewellColor(), "#123456");
  c.Show();
  EXPECT_FALSE(response.body().empty());
}

TEST(OnEndPage, ReleasesTheObjects) {
  testing::FakeVisit visit;
  ASPTidewell& c = visit.Start();
  c.OnEndPage();
  EXPECT_THROW(c.Show(), AutomationError);
}

}  // namespace
}  // namespace tidewell

#include "component/asp_tidewell.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string_view>

#include "page/property_table.h"
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

// Every property written out by hand, in the type library's order, independently of the list
// the struct, the name table and the accessors are expanded from: its name, a value other
// than its default given by name, the same value given to its setter, what both read back,
// and its getter.
struct PropertyCase {
  std::string_view name;
  Variant by_name;
  std::function<void(ASPTidewell&)> set;
  Variant read_back;
  std::function<Variant(const ASPTidewell&)> get;
};

Variant Read(bool v) { return v; }
Variant Read(long v) { return v; }
Variant Read(const std::string& v) { return v; }
Variant Read(ASPDataServer v) { return static_cast<int>(v); }

#define PROPERTY_CASE(Name, by_name, set_value, read_back)                         \
  PropertyCase{#Name, by_name, [](ASPTidewell& c) { c.Set##Name(set_value); }, \
               read_back, [](const ASPTidewell& c) { return Read(c.Name()); }}

const std::vector<PropertyCase>& PropertyCases() {
  static const std::vector<PropertyCase> cases = {
      PROPERTY_CASE(Visible, "True", true, true),
      PROPERTY_CASE(Position, "absolute", "absolute", "absolute"),
      PROPERTY_CASE(HexQueryString, "0", false, false),
      PROPERTY_CASE(DataServer, "SQLServer", ASPDataServer::SQLServer, 1),
      PROPERTY_CASE(ConnectionString, "Provider=SQLite;Data Source=a",
                    "Provider=SQLite;Data Source=a", "Provider=SQLite;Data Source=a"),
      PROPERTY_CASE(AllowUserOwnDefaults, -1, true, true),
      PROPERTY_CASE(DefaultStartHour, "8", 8, 8),
      PROPERTY_CASE(Show12HourDay, true, true, true),
      PROPERTY_CASE(HighlightDeltaDays, true, true, true),
      PROPERTY_CASE(HighlightTodaysDate, true, true, true),
      PROPERTY_CASE(HighlightTodaysTime, true, true, true),
      PROPERTY_CASE(HighlightDeltaDaysColor, "#000001", "#000001", "#000001"),
      PROPERTY_CASE(HighlightTodaysDateColor, "#000002", "#000002", "#000002"),
      PROPERTY_CASE(HighlightTodaysTimeColor, "#000003", "#000003", "#000003"),
      PROPERTY_CASE(TimeViewHeadingColor, "#000004", "#000004", "#000004"),
      PROPERTY_CASE(TimeViewDescriptionColor, "#000005", "#000005", "#000005"),
      PROPERTY_CASE(TimeViewSelectedItemColor, "#000006", "#000006", "#000006"),
      PROPERTY_CASE(TimeViewColumnColor, "#000007", "#000007", "#000007"),
      PROPERTY_CASE(CompletedItemColor, "#000008", "#000008", "#000008"),
      PROPERTY_CASE(CompletedItemCrossOut, true, true, true),
      PROPERTY_CASE(TidewellColor, "#000009", "#000009", "#000009"),
      // Both ways in keep the folder ending in "/".
      PROPERTY_CASE(ImagePath, "art", "art", "art/"),
  };
  return cases;
}

#undef PROPERTY_CASE

// How many lines the property list has, counted from the list itself.
constexpr int kListedProperties = 0
#define TIDEWELL_PROPERTY(kind, Name, default_value, at_start) +1
#include "page/property_list.h"
#undef TIDEWELL_PROPERTY
    ;

TEST(Properties, NameTableListsEveryPropertyOnceInTypeLibraryOrder) {
  std::vector<std::string_view> expected;
  for (const PropertyCase& p : PropertyCases()) expected.push_back(p.name);
  EXPECT_EQ(PropertyNames(), expected);
  EXPECT_EQ(PropertyNames().size(), static_cast<size_t>(kListedProperties));
}

// Whatever is set, by name or by setter, reads back the same by name and by getter, and
// changes no other property: the struct member, the table entry and the accessors of each
// name are one and the same.
TEST(Properties, EachNameRoundTripsThroughTheTableAndItsAccessors) {
  const Properties defaults;
  for (const PropertyCase& p : PropertyCases()) {
    SCOPED_TRACE(p.name);
    ASSERT_NE(GetProperty(defaults, p.name), p.read_back) << "the case's value is the default";

    ASPTidewell by_name;
    LetProperty(by_name.properties(), p.name, p.by_name);
    EXPECT_EQ(GetProperty(by_name.properties(), p.name), p.read_back);
    EXPECT_EQ(p.get(by_name), p.read_back);

    ASPTidewell by_setter;
    p.set(by_setter);
    EXPECT_EQ(GetProperty(by_setter.properties(), p.name), p.read_back);
    EXPECT_EQ(p.get(by_setter), p.read_back);

    for (std::string_view other : PropertyNames()) {
      if (other == p.name) continue;
      EXPECT_EQ(GetProperty(by_name.properties(), other), GetProperty(defaults, other)) << other;
      EXPECT_EQ(GetProperty(by_setter.properties(), other), GetProperty(defaults, other)) << other;
    }
  }
}

TEST(OnStartPage, ResetsTheStartHourTheColoursAndTheHexSettingAndKeepsTheRest) {
  const std::set<std::string_view> reset = {
      "HexQueryString",          "DefaultStartHour",         "HighlightDeltaDaysColor",
      "HighlightTodaysDateColor", "HighlightTodaysTimeColor", "TimeViewHeadingColor",
      "TimeViewDescriptionColor", "TimeViewSelectedItemColor", "TimeViewColumnColor",
      "CompletedItemColor",       "TidewellColor"};
  const Properties defaults;
  testing::FakeVisit visit;
  for (const PropertyCase& p : PropertyCases()) p.set(visit.component);
  visit.Start();
  for (const PropertyCase& p : PropertyCases()) {
    Variant expected = reset.contains(p.name) ? GetProperty(defaults, p.name) : p.read_back;
    EXPECT_EQ(GetProperty(visit.component.properties(), p.name), expected) << p.name;
  }
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

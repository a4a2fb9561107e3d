// Adding, updating and deleting items through Show, against a seeded SQLite database that is
// read back afterwards.

#include "items/item_updates.h"

#include <gtest/gtest.h>

#include <map>

#include "page/page.h"
#include "runtime/regional_settings.h"
#include "tests/items/item_site.h"

namespace tidewell {
namespace {

using testing::SiteVisit;
using testing::StoredItem;

class ItemUpdatesTest : public testing::ItemSiteTest {
 protected:
  // The item form's post as a browser sends it, the boxes only when checked; the link is the
  // form's action ("4/" + the view it returns to).
  SiteVisit Post(const std::string& f1, const std::string& key, long item_id = 0) {
    SiteVisit visit = Visit();
    visit.Link("~" + f1 + "~11/21/2026~14~" + std::to_string(item_id) + "~" + InLink(key) + "~~~")
        .Configure([](ASPTidewell& tidewell) { tidewell.SetDefaultStartHour(8); });
    return visit;
  }
  // The fields as the form posts them, `changes` replacing or adding some ("urgent" and
  // "complete" are sent only when checked, as a browser sends boxes).
  static void FillForm(SiteVisit& visit, const std::string& owner, const std::string& action,
                       std::map<std::string, std::string> changes = {}) {
    std::map<std::string, std::string> fields = {{"ownerkey", owner},
                                                 {"datestamp", "11/25/2026"},
                                                 {"timestamp", "10"},
                                                 {"timetext", "30"},
                                                 {"heading", "Harbour meeting"},
                                                 {"description", "Bring the charts"},
                                                 {"submit", action == "a" ? "Add" : "Update"},
                                                 {"action", action}};
    for (auto& [name, value] : changes) fields[name] = value;
    for (auto& [name, value] : fields) visit.Post(name, value);
  }
  long AddCarolsItem() {
    return AddItem({.owner = kCarol,
                    .date = DateSerial(2026, 11, 25),
                    .hour = 9,
                    .time_text = "09:15",
                    .heading = "Carol's round",
                    .description = "Hers alone",
                    .urgent = true});
  }
  long AddBobsItem() {
    return AddItem({.owner = kBob,
                    .date = DateSerial(2026, 11, 25),
                    .hour = 9,
                    .time_text = "09:15",
                    .heading = "Harbour",
                    .description = "Charts",
                    .urgent = true});
  }
  static void ExpectSame(const StoredItem& a, const StoredItem& b) {
    EXPECT_EQ(a.id, b.id);
    EXPECT_EQ(a.owner, b.owner);
    EXPECT_EQ(a.date, b.date);
    EXPECT_EQ(a.hour, b.hour);
    EXPECT_EQ(a.time_text, b.time_text);
    EXPECT_EQ(a.heading, b.heading);
    EXPECT_EQ(a.description, b.description);
    EXPECT_EQ(a.urgent, b.urgent);
    EXPECT_EQ(a.complete, b.complete);
  }
};

// --- Add ---

TEST_F(ItemUpdatesTest, AddStoresThePostedFields) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a",
           {{"heading", "  Harbour meeting  "}, {"description", " Bring the charts "}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].owner, kBob);
  EXPECT_EQ(items[0].date, DateSerial(2026, 11, 25));
  EXPECT_EQ(items[0].hour, 10);
  EXPECT_EQ(items[0].time_text, "10:30");
  EXPECT_EQ(items[0].heading, "Harbour meeting");
  EXPECT_EQ(items[0].description, "Bring the charts");
}

TEST_F(ItemUpdatesTest, AddWithBothBoxesUncheckedStoresFalseThroughTheColumnDefaults) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a");
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_FALSE(items[0].urgent);
  EXPECT_FALSE(items[0].complete);
}

TEST_F(ItemUpdatesTest, AddWithBothBoxesCheckedStoresTrue) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a", {{"urgent", "on"}, {"complete", "on"}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_TRUE(items[0].urgent);
  EXPECT_TRUE(items[0].complete);
}

TEST_F(ItemUpdatesTest, HeadingOfBlanksOnlyIsStoredEmpty) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a", {{"heading", "     "}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].heading, "");
}

TEST_F(ItemUpdatesTest, QuotesInPostedTextAreStoredAsTyped) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a",
           {{"heading", "Bob's \"big\" day"}, {"description", "'; DROP TABLE Items; --"}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].heading, "Bob's \"big\" day");
  EXPECT_EQ(items[0].description, "'; DROP TABLE Items; --");
}

TEST_F(ItemUpdatesTest, AddGoesOnToTheViewTheFormCameFromOnThePostedDate) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a");
  std::string html = visit.Show();
  const Page& page = visit.page();
  EXPECT_EQ(page.Screen, screens::kMonthView);
  EXPECT_EQ(page.CurrentDate, DateSerial(2026, 11, 25));
  EXPECT_EQ(page.CurrentHour, 8);  // DefaultStartHour, for any view but the time view
  EXPECT_NE(html.find("<!-- MonthView  Start -->"), std::string::npos);
}

TEST_F(ItemUpdatesTest, AddFromTheDayViewGoesBackToTheDayViewAtTheStartHour) {
  SiteVisit visit = Post("4/2", kBob);
  FillForm(visit, kBob, "a");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kDayView);
  EXPECT_EQ(visit.page().CurrentHour, 8);
}

TEST_F(ItemUpdatesTest, AddFromTheTimeViewShowsThePostedHour) {
  SiteVisit visit = Post("4/3", kBob);
  FillForm(visit, kBob, "a");
  visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kTimeView);
  EXPECT_EQ(visit.page().CurrentHour, 10);
  EXPECT_EQ(visit.page().CurrentDate, DateSerial(2026, 11, 25));
}

TEST_F(ItemUpdatesTest, AddFromAScreenThatIsNoViewGoesToTheTimeViewAtThePostedHour) {
  SiteVisit visit = Post("4/13", kBob);
  FillForm(visit, kBob, "a");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kTimeView);
  EXPECT_EQ(visit.page().CurrentHour, 10);
  EXPECT_NE(html.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_EQ(Items().size(), 1u);
}

TEST_F(ItemUpdatesTest, DayFirstSettingsReadThePostedDateDayFirst) {
  ScopedRegionalSettings british("en-GB");
  SiteVisit visit = Visit();
  visit.Link("~4/0~21/11/2026~14~0~" + InLink(kBob) + "~~~");
  FillForm(visit, kBob, "a", {{"datestamp", "05/11/2026"}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].date, DateSerial(2026, 11, 5));
}

TEST_F(ItemUpdatesTest, InvalidDateWritesNothingAndDrawsTheFormAgain) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a", {{"datestamp", "2/30/2026"}});
  std::string html = visit.Show();
  EXPECT_TRUE(Items().empty());
  const Page& page = visit.page();
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kInvalidDate);
  EXPECT_EQ(page.Screen, screens::kItemForm);
  EXPECT_NE(html.find("<font color=#b22222><b>You have entered an invalid date, please choose "
                      "another date.</b></font><br><br>Owner:<br>"),
            std::string::npos);
}

TEST_F(ItemUpdatesTest, EmptyDateIsRefusedLikeAnyOtherNonDate) {
  long id = AddBobsItem();
  SiteVisit visit = Post("4/3", kBob, id);
  FillForm(visit, kBob, "u", {{"datestamp", ""}});
  visit.Show();
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kInvalidDate);
  EXPECT_EQ(Items().at(0).heading, "Harbour");
}

// --- Owners ---

TEST_F(ItemUpdatesTest, PostedOwnerOutsideTheFormsChoiceKeepsTheItemInTheCalendarShown) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kCarol, "a");
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].owner, kBob);
}

TEST_F(ItemUpdatesTest, AdministratorGivesANewItemToTheUserHeChose) {
  SiteVisit visit = Visit();
  visit.Link("~4/0~11/21/2026~14~0~" + InLink(kAnn) + "~~" + InLink(kAnn) + "~");
  FillForm(visit, kCarol, "a");
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].owner, kCarol);
}

TEST_F(ItemUpdatesTest, AdministratorCannotGiveAnItemToAKeyThatNamesNobody) {
  SiteVisit visit = Visit();
  visit.Link("~4/0~11/21/2026~14~0~" + InLink(kAnn) + "~~" + InLink(kAnn) + "~");
  FillForm(visit, "0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e0e", "a");
  visit.Show();
  EXPECT_EQ(Items().at(0).owner, kAnn);
}

TEST_F(ItemUpdatesTest, OwnerMayBeChangedOnUpdateOnlyInTheAdministratorContext) {
  long id = AddBobsItem();
  SiteVisit visit = Post("4/3", kBob, id);
  FillForm(visit, kDave, "u");
  visit.Show();
  EXPECT_EQ(Items().at(0).owner, kBob);
}

// --- Update ---

TEST_F(ItemUpdatesTest, UpdateChangesTheOwnItemAndItsBoxesBothWays) {
  long id = AddBobsItem();  // urgent, not complete
  SiteVisit visit = Post("4/3", kBob, id);
  FillForm(visit, kBob, "u", {{"complete", "on"}, {"heading", " Harbour moved "}});
  visit.Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].id, id);
  EXPECT_EQ(items[0].date, DateSerial(2026, 11, 25));
  EXPECT_EQ(items[0].hour, 10);
  EXPECT_EQ(items[0].time_text, "10:30");
  EXPECT_EQ(items[0].heading, "Harbour moved");
  EXPECT_EQ(items[0].description, "Bring the charts");
  EXPECT_FALSE(items[0].urgent);
  EXPECT_TRUE(items[0].complete);
}

TEST_F(ItemUpdatesTest, UpdateShowsTheTimeViewAtThePostedHour) {
  long id = AddBobsItem();
  SiteVisit visit = Post("4/0", kBob, id);
  FillForm(visit, kBob, "u");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Screen, screens::kTimeView);
  EXPECT_EQ(visit.page().CurrentHour, 10);
  // The date shown stays the link's.
  EXPECT_EQ(visit.page().CurrentDate, DateSerial(2026, 11, 21));
  EXPECT_NE(html.find("<!-- TimeView  Start -->"), std::string::npos);
}

TEST_F(ItemUpdatesTest, UpdatingAnotherUsersItemByEditingTheRequestChangesNothing) {
  long carols = AddCarolsItem();
  StoredItem before = Items().at(0);
  SiteVisit visit = Post("4/3", kBob, carols);
  FillForm(visit, kBob, "u", {{"complete", "on"}});
  visit.Show();
  auto after = Items();
  ASSERT_EQ(after.size(), 1u);
  ExpectSame(after[0], before);
  EXPECT_FALSE(visit.page().Error.Raised());  // and nothing is said
}

TEST_F(ItemUpdatesTest, UpdateOfAnItemThatIsGoneWritesNothing) {
  SiteVisit visit = Post("4/3", kBob, 77);
  FillForm(visit, kBob, "u");
  visit.Show();
  EXPECT_TRUE(Items().empty());
  EXPECT_FALSE(visit.page().Error.Raised());
}

// --- Delete ---

TEST_F(ItemUpdatesTest, DeletionLinkRemovesTheOwnItem) {
  long id = AddBobsItem();
  long carols = AddCarolsItem();
  std::string html =
      Visit().Link("~3~11/25/2026~9~" + std::to_string(id) + "d~" + InLink(kBob) + "~~~").Show();
  auto items = Items();
  ASSERT_EQ(items.size(), 1u);
  EXPECT_EQ(items[0].id, carols);
  EXPECT_NE(html.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_EQ(html.find("Harbour"), std::string::npos);
}

TEST_F(ItemUpdatesTest, DeletingAnotherUsersItemByEditingTheRequestChangesNothing) {
  long carols = AddCarolsItem();
  StoredItem before = Items().at(0);
  std::string html =
      Visit()
          .Link("~3~11/25/2026~9~" + std::to_string(carols) + "d~" + InLink(kBob) + "~~~")
          .Show();
  auto after = Items();
  ASSERT_EQ(after.size(), 1u);
  ExpectSame(after[0], before);
}

TEST_F(ItemUpdatesTest, DeletionLinkWithoutASignedKeyChangesNothing) {
  long id = AddBobsItem();
  std::string html =
      Visit().Link("~3~11/25/2026~9~" + std::to_string(id) + "d~" + kBob + "~~~").Show();
  EXPECT_EQ(Items().size(), 1u);
  EXPECT_NE(html.find("<!-- LoginScreen  Start -->"), std::string::npos);
}

TEST_F(ItemUpdatesTest, PostWithoutASignedKeyWritesNothing) {
  SiteVisit visit = Visit();
  visit.Link(std::string("~4/0~11/21/2026~14~0~") + kBob + "~~~");
  FillForm(visit, kBob, "a");
  visit.Show();
  EXPECT_TRUE(Items().empty());
}

// --- Failures ---

TEST_F(ItemUpdatesTest, HourThatIsNoNumberBecomesTheDatabaseErrorScreen) {
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a", {{"timestamp", "ten"}});
  std::string html = visit.Show();
  EXPECT_TRUE(Items().empty());
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kDatabaseRefused);
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_NE(html.find("<font color=#b22222><b>The following error was presented when trying to "
                      "connect to the database.</b></font><br><br>Error Number: 13<br>Type "
                      "mismatch"),
            std::string::npos);
}

TEST_F(ItemUpdatesTest, FailedWriteBecomesTheDPErrorScreen) {
  database_.Execute("DROP TABLE Items");
  SiteVisit visit = Post("4/0", kBob);
  FillForm(visit, kBob, "a");
  std::string html = visit.Show();
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kDatabaseRefused);
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
  EXPECT_NE(html.find("<!-- ErrorScreen Start -->"), std::string::npos);
  EXPECT_NE(html.find("<b>Access Database:</b>"), std::string::npos);
  EXPECT_EQ(html.find("<!-- AddModifyView  Start -->"), std::string::npos);
}

TEST_F(ItemUpdatesTest, FailedDeletionBecomesTheDPErrorScreen) {
  database_.Execute("DROP TABLE Items");
  SiteVisit visit = Visit();
  visit.Link("~3~11/25/2026~9~5d~" + InLink(kBob) + "~~~").Show();
  EXPECT_EQ(visit.page().Error.Kind, ErrorKind::kDatabaseRefused);
  EXPECT_EQ(visit.page().Screen, screens::kErrorScreen);
}

TEST_F(ItemUpdatesTest, FormThatCannotReadItsItemShowsTheErrorScreen) {
  database_.Execute("DROP TABLE Items");
  std::string html = Visit().Link("~4~11/25/2026~9~5~" + InLink(kBob) + "~~~").Show();
  EXPECT_EQ(html.find("<!-- AddModifyView  Start -->"), std::string::npos);
  EXPECT_NE(html.find("<!-- ErrorScreen Start -->"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

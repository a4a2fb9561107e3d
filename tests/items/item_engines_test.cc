// The item updates on both engines: the same writes, the same owner condition, the flags
// through the column defaults on add and both ways on update.

#include <gtest/gtest.h>

#include <memory>

#include "data/recordset.h"
#include "data/statement.h"
#include "items/item_updates.h"
#include "page/asp_objects.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/cast.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

using testing::cast::kBob;
using testing::cast::kCarol;

template <class Engine>
class ItemUpdatesOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    page_.props.DataServer = Engine::kDialect;
    page_.props.DefaultStartHour = 8;
    page_.request = &request_;
    page_.UserKey = kBob;
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.Screen = screens::kItemForm;
    page_.ReturnView = screens::kTimeView;
    page_.Connection = std::make_shared<ado::Connection>();
    page_.Connection->Open(engine_.connection_string);
  }
  void TearDown() override {
    if (page_.Connection) page_.Connection->Close();
  }

  void Posted(bool urgent, bool complete, const char* heading = "Harbour") {
    request_.Form = {{"ownerkey", kBob}, {"datestamp", "11/25/2026"}, {"timestamp", "10"},
                     {"timetext", "30"}, {"heading", heading},        {"description", "Charts"},
                     {"action", "a"}};
    if (urgent) request_.Form.Add("urgent", "on");
    if (complete) request_.Form.Add("complete", "on");
  }

  long AddCarolsItem() {
    return testing::Seeder(*page_.Connection)
        .AddItem({.owner = kCarol,
                  .date = DateSerial(2026, 11, 25),
                  .heading = "Carol's",
                  .description = std::nullopt,
                  .urgent = true});
  }

  // "heading|hour|urgent|complete|owner" of item `id`, or "" when it is gone.
  std::string Row(long id) {
    Recordset rs;
    rs.Open(Statement("SELECT * FROM Items WHERE ItemID = ").Number(id), *page_.Connection);
    if (rs.Eof()) return "";
    return CStr(rs.Fields("Heading").Value()) + "|" + CStr(rs.Fields("TimeStamp").Value()) + "|" +
           (CBool(rs.Fields("Urgent").Value()) ? "urgent" : "-") + "|" +
           (CBool(rs.Fields("Complete").Value()) ? "complete" : "-") + "|" +
           (CStr(rs.Fields("OwnerKey").Value()) == kBob ? "bob" : "carol");
  }
  long LastItem() {
    Recordset rs;
    rs.Open(Statement("SELECT ItemID FROM Items ORDER BY ItemID DESC"), *page_.Connection);
    return rs.Eof() ? 0 : CLng(rs.Fields("ItemID").Value());
  }

  Engine engine_;
  AspRequest request_;
  Page page_;
};

TYPED_TEST_SUITE(ItemUpdatesOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(ItemUpdatesOnEngine, AddLeavesUncheckedBoxesToTheColumnDefaults) {
  this->Posted(false, false);
  ProcessItemAction(this->page_, "a");
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Row(this->LastItem()), "Harbour|10|-|-|bob");
}

TYPED_TEST(ItemUpdatesOnEngine, AddStoresCheckedBoxesAsTrue) {
  this->Posted(true, true);
  ProcessItemAction(this->page_, "a");
  EXPECT_EQ(this->Row(this->LastItem()), "Harbour|10|urgent|complete|bob");
}

TYPED_TEST(ItemUpdatesOnEngine, UpdateWritesBothBoxesEitherWay) {
  this->Posted(true, false);
  ProcessItemAction(this->page_, "a");
  long id = this->LastItem();
  this->page_.ItemId = id;
  this->Posted(false, true, "Harbour moved");
  ProcessItemAction(this->page_, "u");
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Row(id), "Harbour moved|10|-|complete|bob");
}

TYPED_TEST(ItemUpdatesOnEngine, AnotherUsersItemIsNeitherChangedDeletedNorLoaded) {
  long carols = this->AddCarolsItem();
  const std::string before = this->Row(carols);
  this->page_.ItemId = carols;
  this->Posted(false, true, "Taken over");
  ProcessItemAction(this->page_, "u");
  ProcessItemAction(this->page_, "d");
  ItemFormValues values;
  values.heading = "untouched";
  EXPECT_FALSE(LoadItemForEdit(this->page_, carols, values));
  EXPECT_EQ(values.heading, "untouched");
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_EQ(this->Row(carols), before);
}

TYPED_TEST(ItemUpdatesOnEngine, OwnItemIsLoadedAndDeleted) {
  this->Posted(true, false);
  ProcessItemAction(this->page_, "a");
  long id = this->LastItem();
  ItemFormValues values;
  ASSERT_TRUE(LoadItemForEdit(this->page_, id, values));
  EXPECT_EQ(values.owner_key, kBob);
  EXPECT_EQ(values.date, "11/25/2026");
  EXPECT_EQ(values.hour, 10);
  EXPECT_EQ(values.time_text, "10:30");
  EXPECT_EQ(values.heading, "Harbour");
  EXPECT_EQ(values.description, "Charts");
  EXPECT_EQ(values.urgent, "checked");
  EXPECT_EQ(values.complete, "");
  this->page_.ItemId = id;
  ProcessItemAction(this->page_, "d");
  EXPECT_EQ(this->Row(id), "");
}

}  // namespace
}  // namespace tidewell

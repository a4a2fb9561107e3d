// The item lists on both engines: each reads its own dialect, and the two dialects differ
// only in how a date is delimited.

#include <gtest/gtest.h>

#include <memory>

#include "data/connection.h"
#include "data/dialect_translation.h"
#include "data/session.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"
#include "views/item_list.h"
#include "views/item_list_statements.h"

namespace tidewell {
namespace {

std::string Delimited(std::string text, char from, char to) {
  for (char& c : text) {
    if (c == from) c = to;
  }
  return text;
}

TEST(ItemListDialects, UnderSqlServerEveryDateIsQuotedAndNothingElseChanges) {
  for (long mode : {list_modes::kMonthCell, list_modes::kWeekRow, list_modes::kDayRow}) {
    for (long group : {0L, 7L}) {
      const ListOwner owner{"k1", group};
      const std::string access = DayListStatement(mode, "11/3/2026", 14, owner,
                                                  ExpandSortCode("", mode), ASPDataServer::Access)
                                     .CheckedText();
      const std::string sql_server =
          DayListStatement(mode, "11/3/2026", 14, owner, ExpandSortCode("", mode),
                           ASPDataServer::SQLServer)
              .CheckedText();
      EXPECT_NE(access.find("#11/3/2026#"), std::string::npos);
      EXPECT_EQ(sql_server, Delimited(access, '#', '\'')) << mode << " " << group;
    }
  }
  const std::string access =
      TimeTableStatement("11/3/2026", 9, {"k1", 0}, "TimeText DESC", ASPDataServer::Access)
          .CheckedText();
  EXPECT_EQ(TimeTableStatement("11/3/2026", 9, {"k1", 0}, "TimeText DESC", ASPDataServer::SQLServer)
                .CheckedText(),
            Delimited(access, '#', '\''));
}

template <class Engine>
class ItemListOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    testing::Seeder data(engine_.connection_string, testing::PasswordHashing::kOncePerProcess);
    const long crew = data.AddGroup("Crew");
    bob_ = data.AddUser({.name = "bob", .group = crew, .initials = "BB"});
    const std::string carol = data.AddUser({.name = "carol", .group = crew, .initials = "CC"});
    data.AddItem({.owner = bob_,
                  .date = DateSerial(2026, 11, 3),
                  .hour = 9,
                  .time_text = "09:15",
                  .heading = "Standup",
                  .description = "Daily",
                  .urgent = true});
    data.AddItem({.owner = carol,
                  .date = DateSerial(2026, 11, 3),
                  .hour = 9,
                  .time_text = "09:30",
                  .heading = "Rounds"});
    page_.props.HexQueryString = false;
    page_.ScriptName = "default.asp?";
    page_.UserKey = bob_;
    page_.Connection = std::make_shared<ado::Connection>();
    page_.Connection->Open(engine_.connection_string);
  }
  void TearDown() override {
    if (page_.Connection) page_.Connection->Close();
  }

  std::string List(long mode, ASPDataServer dialect) {
    page_.props.DataServer = dialect;
    std::string date = "11/3/2026";
    return BuildItemList(page_, mode, date, 9);
  }

  Engine engine_;
  std::string bob_;
  Page page_;
};

TYPED_TEST_SUITE(ItemListOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(ItemListOnEngine, EveryListReadsTheItemsInTheEnginesDialect) {
  for (long mode : {list_modes::kMonthCell, list_modes::kWeekRow, list_modes::kDayRow,
                    list_modes::kTimeTable}) {
    std::string list = this->List(mode, TypeParam::kDialect);
    EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
    EXPECT_NE(list.find("Standup"), std::string::npos) << mode << " " << list;
    EXPECT_EQ(list.find("Rounds"), std::string::npos) << mode;
  }
  EXPECT_NE(this->List(list_modes::kTimeTable, TypeParam::kDialect)
                .find("<td class=text align=left colspan=4 >Daily</td>"),
            std::string::npos);
}

TYPED_TEST(ItemListOnEngine, TheWholeGroupIsReadInTheEnginesDialect) {
  this->page_.User.ShowAllGroupUsers = true;
  std::string table = this->List(list_modes::kTimeTable, TypeParam::kDialect);
  EXPECT_FALSE(this->page_.Error.Raised()) << this->page_.Error.Text;
  EXPECT_NE(table.find(">Standup<"), std::string::npos);
  EXPECT_NE(table.find(">Rounds<"), std::string::npos);
  EXPECT_NE(table.find(">Read Only<"), std::string::npos);
}

TYPED_TEST(ItemListOnEngine, TheOtherDialectFailsAsTheDataServerError) {
  std::string list = this->List(list_modes::kMonthCell, TypeParam::kOtherDialect);
  EXPECT_EQ(list, "&nbsp;");
  EXPECT_TRUE(this->page_.Error.Raised());
  EXPECT_EQ(this->page_.Error.Kind, ErrorKind::kDataRead);
  EXPECT_EQ(this->page_.Screen, screens::kErrorScreen);
}

// On SQLite a view reads every column its lists show from the index on owner and date alone,
// for one user and for a group: no item's row is looked up.
TEST(ItemListOnSqlite, TheViewsStatementReadsTheListsIndexAlone) {
  testing::SqliteEngine engine;
  engine.Start();
  ado::Connection connection;
  connection.Open(engine.connection_string);
  std::vector<ListCell> month;
  for (int day = 1; day <= 30; ++day) month.push_back({DateSerial(2026, 11, day), std::nullopt});
  for (const ListOwner& owner : {ListOwner{"k1", 0}, ListOwner{"k1", 7}}) {
    const ado::SqliteStatement statement = ado::ParameterizedAccessForSqlite(
        ViewListStatement(month, owner, ExpandSortCode("", list_modes::kMonthCell),
                          ASPDataServer::Access)
            .CheckedText(),
        [](std::string_view column) { return column == "DateStamp"; });
    const ado::Rows plan =
        connection.session().RunBound("EXPLAIN QUERY PLAN " + statement.text, statement.values);
    std::string details;
    for (const auto& row : plan.values) details += CStr(row.back()) + "\n";
    EXPECT_NE(details.find("SEARCH Items USING COVERING INDEX Items_OwnerKey_DateStamp_Lists"),
              std::string::npos)
        << details;
  }
  connection.Close();
}

}  // namespace
}  // namespace tidewell

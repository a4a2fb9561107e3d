// The statements of the item lists, word for word, in both dialects.

#include "views/item_list_statements.h"

#include <gtest/gtest.h>

#include <vector>

#include "data/database_error.h"
#include "data/dialect_translation.h"
#include "data/postgres_rows_per_key.h"
#include "data/sqlite_rows_per_key.h"
#include "runtime/dates.h"
#include "views/item_list.h"

namespace tidewell {
namespace {

using ado::Statement;

constexpr const char* kColumns =
    "ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM Items INNER JOIN "
    "Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ";
constexpr const char* kDefaultDaySort = "TimeStamp, Initials, Urgent, Heading ASC";
constexpr const char* kDefaultOtherSort = "UserName, Initials, TimeStamp, Urgent, Heading ASC";

const ListOwner kOwn{"k1", 0};
const ListOwner kGroup{"k1", 7};

std::string Text(const Statement& statement) {
  return statement.CheckedText();
}

TEST(DayListStatement, MonthCellOfOwnItemsInTheAccessDialect) {
  EXPECT_EQ(Text(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kOwn, kDefaultDaySort,
                                  ASPDataServer::Access)),
            std::string("SELECT TOP 6 ") + kColumns +
                "#11/3/2026# AND Items.OwnerKey = 'k1' ORDER BY TimeStamp, Initials, Urgent, "
                "Heading ASC, ItemID");
}

TEST(DayListStatement, MonthCellOfTheGroupInTheAccessDialect) {
  EXPECT_EQ(
      Text(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kGroup, kDefaultDaySort,
                            ASPDataServer::Access)),
      std::string("SELECT TOP 6 ") + kColumns +
          "#11/3/2026# AND GroupID = 7 ORDER BY TimeStamp, Initials, Urgent, Heading ASC, ItemID");
}

TEST(DayListStatement, MonthCellInTheSqlServerDialect) {
  EXPECT_EQ(Text(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kOwn, kDefaultDaySort,
                                  ASPDataServer::SQLServer)),
            std::string("SELECT TOP 6 ") + kColumns +
                "'11/3/2026' AND Items.OwnerKey = 'k1' ORDER BY TimeStamp, Initials, Urgent, "
                "Heading ASC, ItemID");
  EXPECT_EQ(
      Text(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kGroup, kDefaultDaySort,
                            ASPDataServer::SQLServer)),
      std::string("SELECT TOP 6 ") + kColumns +
          "'11/3/2026' AND GroupID = 7 ORDER BY TimeStamp, Initials, Urgent, Heading ASC, ItemID");
}

TEST(DayListStatement, WeekRowFetchesFive) {
  EXPECT_EQ(Text(DayListStatement(list_modes::kWeekRow, "1/2/2026", 5, kOwn, kDefaultDaySort,
                                  ASPDataServer::Access)),
            std::string("SELECT TOP 5 ") + kColumns +
                "#1/2/2026# AND Items.OwnerKey = 'k1' ORDER BY TimeStamp, Initials, Urgent, "
                "Heading ASC, ItemID");
}

TEST(DayListStatement, DayRowFetchesThreeOfOneHour) {
  EXPECT_EQ(Text(DayListStatement(list_modes::kDayRow, "1/2/2026", 14, kOwn, kDefaultDaySort,
                                  ASPDataServer::Access)),
            std::string("SELECT TOP 3 ") + kColumns +
                "#1/2/2026# AND TimeStamp = 14 AND Items.OwnerKey = 'k1' ORDER BY TimeStamp, "
                "Initials, Urgent, Heading ASC, ItemID");
  EXPECT_EQ(Text(DayListStatement(list_modes::kDayRow, "1/2/2026", 14, kGroup, kDefaultDaySort,
                                  ASPDataServer::SQLServer)),
            std::string("SELECT TOP 3 ") + kColumns +
                "'1/2/2026' AND TimeStamp = 14 AND GroupID = 7 ORDER BY TimeStamp, Initials, "
                "Urgent, Heading ASC, ItemID");
}

TEST(TimeTableStatement, ReadsEveryItemOfTheHourWithItsOwner) {
  EXPECT_EQ(
      Text(TimeTableStatement("11/3/2026", 9, kOwn, kDefaultOtherSort, ASPDataServer::Access)),
      "SELECT Items.*, Users.Initials, Users.UserName FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE DateStamp = #11/3/2026# AND TimeStamp = 9 AND "
      "Items.OwnerKey = 'k1' ORDER BY UserName, Initials, TimeStamp, Urgent, Heading ASC, ItemID");
  EXPECT_EQ(
      Text(TimeTableStatement("11/3/2026", 9, kGroup, "TimeText DESC", ASPDataServer::SQLServer)),
      "SELECT Items.*, Users.Initials, Users.UserName FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE DateStamp = '11/3/2026' AND TimeStamp = 9 AND "
      "GroupID = 7 ORDER BY TimeText DESC, ItemID");
}

const std::string kViewColumns =
    "SELECT ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete, DateStamp FROM "
    "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE ";

TEST(ViewListStatement, ReadsEveryDayOfARangeOfWholeDaysAsTheRange) {
  const std::vector<ListCell> days = {{DateSerial(2026, 11, 4), std::nullopt},
                                      {DateSerial(2026, 11, 3), std::nullopt},
                                      {DateSerial(2026, 11, 5), std::nullopt}};
  EXPECT_EQ(Text(ViewListStatement(days, kOwn, kDefaultDaySort, ASPDataServer::Access)),
            kViewColumns +
                "DateStamp >= #11/3/2026# AND DateStamp <= #11/5/2026# AND Items.OwnerKey = 'k1' "
                "ORDER BY DateStamp, TimeStamp, Initials, Urgent, Heading ASC, ItemID");
}

TEST(ViewListStatement, JoinsTheCellsConditionsAndSortsAsTheirLists) {
  const std::vector<ListCell> days = {{DateSerial(2026, 11, 3), std::nullopt},
                                      {DateSerial(2026, 11, 5), std::nullopt}};
  const std::string& columns = kViewColumns;
  EXPECT_EQ(Text(ViewListStatement(days, kOwn, kDefaultDaySort, ASPDataServer::Access)),
            columns +
                "DateStamp >= #11/3/2026# AND DateStamp <= #11/5/2026# AND ((DateStamp = "
                "#11/3/2026#) OR (DateStamp = #11/5/2026#)) AND Items.OwnerKey = 'k1' ORDER BY "
                "DateStamp, TimeStamp, Initials, Urgent, Heading ASC, ItemID");
  const std::vector<ListCell> hours = {
      {DateSerial(2026, 11, 3), 22}, {DateSerial(2026, 11, 3), 23}, {DateSerial(2026, 11, 4), 0}};
  EXPECT_EQ(Text(ViewListStatement(hours, kGroup, "Heading DESC", ASPDataServer::SQLServer)),
            columns +
                "DateStamp >= '11/3/2026' AND DateStamp <= '11/4/2026' AND ((DateStamp = "
                "'11/3/2026' AND (TimeStamp = 22 OR TimeStamp = 23)) OR (DateStamp = '11/4/2026' "
                "AND (TimeStamp = 0))) AND GroupID = 7 ORDER BY DateStamp, TimeStamp, Heading "
                "DESC, ItemID");
}

// A crowded view has either engine read each cell's first rows itself (KeepPerKeyForPostgres,
// KeepPerKeyForSqlite), which needs every column the view sorts by in its list: so for the day
// lists' default and every order a header asks for, over days and over hours, on both engines.
TEST(ViewListStatement, EveryOrderOfTheViewsCanBeKeptPerCellOnEitherEngine) {
  const std::vector<ListCell> days = {{DateSerial(2026, 11, 3), std::nullopt},
                                      {DateSerial(2026, 11, 4), std::nullopt}};
  const std::vector<ListCell> hours = {{DateSerial(2026, 11, 3), 9}, {DateSerial(2026, 11, 3), 10}};
  const ado::RowsPerKey by_day{{"DateStamp"}, 6};
  const ado::RowsPerKey by_hour{{"DateStamp", "TimeStamp"}, 3};
  std::vector<std::string> sorts = {kDefaultDaySort};
  for (const char* code : {"U*A", "U*D", "T*A", "T*D", "I*A", "I*D", "H*A", "H*D"}) {
    sorts.push_back(ExpandSortCode(code, list_modes::kDayRow));
  }
  const auto is_date = [](std::string_view column) { return column == "DateStamp"; };
  for (const std::string& sort : sorts) {
    for (const auto& [cells, per_key] : {std::pair{days, by_day}, std::pair{hours, by_hour}}) {
      const std::string postgres = ado::TranslateSqlServerForPostgres(
          Text(ViewListStatement(cells, kGroup, sort, ASPDataServer::SQLServer)));
      EXPECT_TRUE(ado::KeepPerKeyForPostgres(postgres, per_key)) << sort;
      const ado::SqliteStatement sqlite = ado::ParameterizedAccessForSqlite(
          Text(ViewListStatement(cells, kOwn, sort, ASPDataServer::Access)), is_date);
      EXPECT_TRUE(ado::KeepPerKeyForSqlite(sqlite.text, per_key, sqlite.values.size(), 2)) << sort;
    }
  }
}

TEST(IsNamedSort, NamesTheDefaultsAndTheHeadersOrdersOnly) {
  EXPECT_TRUE(IsNamedSort(kDefaultDaySort));
  EXPECT_TRUE(IsNamedSort(kDefaultOtherSort));
  for (const char* code : {"U*A", "U*D", "T*A", "T*D", "I*A", "I*D", "H*A", "H*D"}) {
    EXPECT_TRUE(IsNamedSort(ExpandSortCode(code, list_modes::kMonthCell))) << code;
  }
  EXPECT_FALSE(IsNamedSort("2"));
  EXPECT_FALSE(IsNamedSort("X DESC"));
}

TEST(GroupScopeStatement, AsksForTheUsersGroup) {
  EXPECT_EQ(Text(GroupScopeStatement("k1")), "SELECT GroupID FROM Users WHERE OwnerKey = 'k1'");
}

TEST(ExpandSortCode, WithoutACodeTheDayListsSortByTimeAndTheOthersByUser) {
  for (long mode : {list_modes::kMonthCell, list_modes::kWeekRow, list_modes::kDayRow}) {
    EXPECT_EQ(ExpandSortCode("", mode), kDefaultDaySort) << mode;
  }
  EXPECT_EQ(ExpandSortCode("", list_modes::kTimeTable), kDefaultOtherSort);
}

TEST(ExpandSortCode, TheHeadersCodesNameAColumnAndADirection) {
  EXPECT_EQ(ExpandSortCode("T*D", list_modes::kTimeTable), "TimeText DESC");
  EXPECT_EQ(ExpandSortCode("T*A", list_modes::kTimeTable), "TimeText ASC");
  EXPECT_EQ(ExpandSortCode("U*A", list_modes::kTimeTable), "Urgent ASC");
  EXPECT_EQ(ExpandSortCode("U*D", list_modes::kMonthCell), "Urgent DESC");
  EXPECT_EQ(ExpandSortCode("I*D", list_modes::kWeekRow), "Initials DESC");
  EXPECT_EQ(ExpandSortCode("H*A", list_modes::kDayRow), "Heading ASC");
}

// The rules are plain text replacement, so a code nobody's header made expands as it falls.
TEST(ExpandSortCode, ReplacementIsPlainText) {
  EXPECT_EQ(ExpandSortCode("A", list_modes::kTimeTable), "ASC");
  EXPECT_EQ(ExpandSortCode("HA*H", list_modes::kTimeTable), "HeadingASC Heading");
  EXPECT_EQ(ExpandSortCode("X*D", list_modes::kTimeTable), "X DESC");
}

TEST(DayListStatement, AnOrderNoHeaderMakesIsRefused) {
  for (const char* sort :
       {"X DESC", "HeadingASC Heading", "TimeText DESC; DELETE FROM Items", "Password ASC"}) {
    Statement statement =
        DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kOwn, sort, ASPDataServer::Access);
    EXPECT_TRUE(statement.refused()) << sort;
    EXPECT_THROW(statement.CheckedText(), ado::DatabaseError) << sort;
  }
}

// A column's position is what the engine reads ORDER BY 2 as; such an order stays possible.
TEST(DayListStatement, AnOrderByPositionPasses) {
  EXPECT_EQ(Text(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, kOwn, "2",
                                  ASPDataServer::Access)),
            std::string("SELECT TOP 6 ") + kColumns +
                "#11/3/2026# AND Items.OwnerKey = 'k1' ORDER BY 2, ItemID");
}

TEST(DayListStatement, AKeyWithAQuoteIsRefused) {
  EXPECT_TRUE(DayListStatement(list_modes::kMonthCell, "11/3/2026", 0, {"x' OR '1'='1", 0},
                               kDefaultDaySort, ASPDataServer::Access)
                  .refused());
}

}  // namespace
}  // namespace tidewell

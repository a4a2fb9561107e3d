// The calendar's reading statements, in each engine's dialect, against both providers.

#include <gtest/gtest.h>

#include <optional>

#include "data/dialect_translation.h"
#include "data/postgres_rows_per_key.h"
#include "tests/data/conformance_fixture.h"

namespace tidewell::testing {
namespace {

template <class Engine>
class Reads : public CalendarDatabase<Engine> {};

TYPED_TEST_SUITE(Reads, Engines, EngineNames);

TYPED_TEST(Reads, LoginFindsTheUserByNameAndPassword) {
  Recordset rs;
  rs.Open(this->LoginStatement("alice", "secret"), this->connection_);
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields("OwnerKey").Value(), Variant("k1"));
  EXPECT_EQ(rs.Fields("DefaultView").Value(), Variant(0));
  EXPECT_EQ(rs.Fields("Initials").Value(), Variant("AC"));
  EXPECT_EQ(rs.Fields("Options").Value(), Variant("0+8+0+0+0"));
  EXPECT_EQ(rs.RecordCount(), 1);
  rs.MoveNext();
  EXPECT_TRUE(rs.Eof());
}

TYPED_TEST(Reads, LoginWithAWrongPasswordFindsNothing) {
  EXPECT_TRUE(this->Column(this->LoginStatement("alice", "wrong"), "OwnerKey").empty());
}

TYPED_TEST(Reads, NamesCompareWithoutRegardToCaseButPasswordsExactly) {
  EXPECT_EQ(this->Column(this->LoginStatement("ALICE", "secret"), "OwnerKey"),
            std::vector<std::string>{"k1"});
  EXPECT_TRUE(this->Column(this->LoginStatement("alice", "SECRET"), "OwnerKey").empty());
}

// A quote the statement's text opens and never closes is the engine's to refuse; it is not
// read as a value that ends one character early.
TYPED_TEST(Reads, AQuoteLeftOpenFailsTheStatement) {
  this->AddItem("k1", kNov3, 9, "one");
  Recordset rs;
  EXPECT_THROW(
      rs.Open(Statement("SELECT Heading FROM Items WHERE Heading = 'onex"), this->connection_),
      DatabaseError);
}

TYPED_TEST(Reads, ColumnNamesIgnoreCase) {
  Recordset rs;
  rs.Open(Statement("SELECT UserName, OwnerKey FROM Users WHERE UserName = ").Text("bob"),
          this->connection_);
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields("Username").Value(), Variant("bob"));
  EXPECT_EQ(rs.Fields("USERNAME").Value(), Variant("bob"));
  EXPECT_EQ(rs.Fields("ownerkey").Value(), Variant("k2"));
}

TYPED_TEST(Reads, CurrentUserJoinsTheGroup) {
  Recordset rs;
  rs.Open(Statement("SELECT Users.Username, Users.Password, Users.Initials, Users.DefaultView, "
                    "Users.Options, Users.Administrator, Groups.GroupID, Groups.GroupName FROM "
                    "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE OwnerKey = ")
              .Text("k1"),
          this->connection_);
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields("GroupName").Value(), Variant("Harbour"));
  EXPECT_EQ(rs.Fields("GroupID").Value(), Variant(this->group_));
  EXPECT_EQ(rs.Fields("Administrator").Value(), Variant(true));
  EXPECT_EQ(rs.Fields("Username").Value(), Variant("alice"));
}

TYPED_TEST(Reads, TrueOfTheDialectFindsAdministrators) {
  auto administrators = [&](ASPDataServer dialect) {
    return this->Column(
        Statement("SELECT OwnerKey FROM Users Where Administrator = ").TrueValue(dialect),
        "OwnerKey");
  };
  EXPECT_EQ(administrators(TypeParam::kDialect), std::vector<std::string>{"k1"});
  // The other engine's true is no flag value here, as it was not on the original engines.
  EXPECT_TRUE(administrators(TypeParam::kOtherDialect).empty());
}

TYPED_TEST(Reads, FalseFlagsAreFalse) {
  Recordset rs;
  rs.Open(Statement("SELECT Administrator FROM Users WHERE OwnerKey = ").Text("k2"),
          this->connection_);
  EXPECT_EQ(rs.Fields("Administrator").Value(), Variant(false));
}

TYPED_TEST(Reads, TopLimitsTheDayListInItsOrder) {
  for (long hour = 8; hour < 16; ++hour)
    this->AddItem("k1", kNov3, hour, "Item " + std::to_string(hour));
  this->AddItem("k1", kNov4, 7, "Next day");
  this->AddItem("k2", kNov3, 7, "Bob's");
  auto hours = this->Column(
      this->DayList("SELECT TOP 6", kNov3, "k1", "TimeStamp, Initials, Urgent, Heading ASC"),
      "TimeStamp");
  EXPECT_EQ(hours, (std::vector<std::string>{"8", "9", "10", "11", "12", "13"}));
  auto descending =
      this->Column(this->DayList("SELECT TOP 3", kNov3, "k1", "TimeText DESC"), "TimeText");
  EXPECT_EQ(descending, (std::vector<std::string>{"15:00", "14:00", "13:00"}));
}

TYPED_TEST(Reads, RecordCountIsTheNumberOfRowsRead) {
  for (long hour = 8; hour < 11; ++hour) this->AddItem("k1", kNov3, hour, "Item");
  Recordset rs;
  rs.Open(this->DayList("SELECT TOP 5", kNov3, "k1", "TimeStamp ASC"), this->connection_);
  EXPECT_EQ(rs.RecordCount(), 3);
}

TYPED_TEST(Reads, HourListByGroup) {
  this->AddItem("k1", kNov3, 9, "Alice at nine");
  this->AddItem("k2", kNov3, 9, "Bob at nine");
  this->AddItem("k2", kNov3, 10, "Bob at ten");
  auto headings = this->Column(
      Statement(
          "SELECT TOP 3 ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM "
          "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ")
          .DateValue(kNov3, TypeParam::kDialect)
          .Add(" AND TimeStamp = ")
          .Number(9)
          .Add(" AND GroupID = ")
          .Number(this->group_)
          .Add(" ORDER BY Initials ASC"),
      "Heading");
  EXPECT_EQ(headings, (std::vector<std::string>{"Alice at nine", "Bob at nine"}));
}

TYPED_TEST(Reads, SearchMatchesHeadingsWithoutRegardToCaseWithinTheDates) {
  this->AddItem("k2", DateSerial(2026, 11, 20), 9, "Budget meeting");
  this->AddItem("k1", DateSerial(2026, 11, 2), 14, "Team Meeting", /*urgent=*/true);
  this->AddItem("k1", DateSerial(2026, 11, 2), 10, "Lunch");
  this->AddItem("k1", DateSerial(2026, 12, 1), 9, "Meeting in December");
  Recordset rs;
  rs.Open(this->Search("%MEET%", DateSerial(2026, 11, 1), DateSerial(2026, 11, 30)),
          this->connection_);
  std::vector<std::string> found;
  for (; !rs.Eof(); rs.MoveNext()) {
    found.push_back(CStr(rs.Fields("UserName").Value()) + " " + CStr(rs.Fields("Heading").Value()));
    EXPECT_EQ(rs.Fields("GroupID").Value(), Variant(this->group_));
  }
  EXPECT_EQ(found, (std::vector<std::string>{"alice Team Meeting", "bob Budget meeting"}));
}

TYPED_TEST(Reads, RangeEndsAreIncluded) {
  this->AddItem("k1", DateSerial(2026, 11, 1), 9, "First");
  this->AddItem("k1", DateSerial(2026, 11, 30), 9, "Last");
  auto headings =
      this->Column(this->Search("%", DateSerial(2026, 11, 1), DateSerial(2026, 11, 30)), "Heading");
  EXPECT_EQ(headings, (std::vector<std::string>{"First", "Last"}));
}

TYPED_TEST(Reads, ValuesComeBackWithTheirTypes) {
  long id = this->AddItem("k1", kNov3, 9, "Typed", /*urgent=*/true);
  Recordset rs;
  rs.Open(Statement("SELECT * FROM Items WHERE ItemID = ").Number(id), this->connection_);
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields("DateStamp").Value(), Variant(kNov3));
  EXPECT_EQ(rs.Fields("TimeStamp").Value(), Variant(9));
  EXPECT_EQ(rs.Fields("TimeText").Value(), Variant("09:00"));
  EXPECT_EQ(rs.Fields("Urgent").Value(), Variant(true));
  EXPECT_EQ(rs.Fields("Complete").Value(), Variant(false));
  EXPECT_EQ(rs.Fields("ItemID").Value(), Variant(id));
}

TYPED_TEST(Reads, TheOtherDialectsDateFails) {
  this->AddItem("k1", kNov3, 9, "Item");
  try {
    this->Column(Statement("SELECT Heading FROM Items WHERE DateStamp = ")
                     .DateValue(kNov3, TypeParam::kOtherDialect),
                 "Heading");
    FAIL() << "the other dialect's date was accepted";
  } catch (const DatabaseError& e) {
    if (TypeParam::kDialect == ASPDataServer::Access) {
      EXPECT_EQ(e.number(), error_numbers::kTypeMismatch);
      EXPECT_STREQ(e.what(), "Data type mismatch in criteria expression.");
    } else {
      EXPECT_EQ(e.number(), error_numbers::kErrorsInCommand);
      EXPECT_STREQ(e.what(), "syntax error at or near \"#\"");
    }
  }
}

TYPED_TEST(Reads, ReadingPastTheLastRowFails) {
  Recordset rs;
  rs.Open(this->LoginStatement("nobody", "x"), this->connection_);
  EXPECT_TRUE(rs.Eof());
  EXPECT_EQ(rs.RecordCount(), 0);
  try {
    rs.Fields("OwnerKey").Value();
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kNoCurrentRecord);
  }
  EXPECT_THROW(rs.MoveNext(), DatabaseError);
}

TYPED_TEST(Reads, UnknownFieldFails) {
  Recordset rs;
  rs.Open(this->LoginStatement("alice", "secret"), this->connection_);
  try {
    rs.Fields("Nickname");
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kItemNotFound);
  }
}

TYPED_TEST(Reads, TableOpenedByNameReadsItsRowsWhenAsked) {
  Recordset rs;
  rs.Open(Statement("Groups"), this->connection_, ado::adOpenStatic, ado::adLockReadOnly);
  EXPECT_EQ(rs.State(), ado::adStateOpen);
  EXPECT_EQ(rs.RecordCount(), 1);
  EXPECT_EQ(rs.Fields("GroupName").Value(), Variant("Harbour"));
  rs.Close();
  EXPECT_EQ(rs.State(), ado::adStateClosed);
}

TYPED_TEST(Reads, ClosedConnectionGoesBackToThePool) {
  // A temporary table lives as long as the engine's session: finding it again after Close
  // and Open shows the session was kept, not reconnected.
  this->connection_.Execute(Statement("CREATE TEMPORARY TABLE PoolMarker (Mark INTEGER)"));
  this->connection_.Close();
  EXPECT_EQ(this->connection_.State(), ado::adStateClosed);
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_NO_THROW(this->Column(Statement("SELECT Mark FROM PoolMarker"), "Mark"));
}

// A statement that keeps the first rows of each group gets exactly those, in order, on both
// engines, and an unknown key column fails the statement.
TYPED_TEST(Reads, KeepPerKeyKeepsTheFirstRowsOfEachGroup) {
  const Date nov4 = DateSerial(2026, 11, 4);
  for (const char* heading : {"a", "b", "c", "d"}) this->AddItem("k1", kNov3, 9, heading);
  for (const char* heading : {"e", "f"}) this->AddItem("k1", kNov3, 10, heading);
  this->AddItem("k1", nov4, 9, "g");
  const auto by = [](std::vector<std::string> columns, long rows) {
    return Statement(
               "SELECT Heading, DateStamp, TimeStamp FROM Items ORDER BY DateStamp, "
               "TimeStamp, Heading")
        .KeepPerKey({std::move(columns), rows});
  };
  EXPECT_EQ(this->Column(by({"DateStamp"}, 3), "Heading"),
            (std::vector<std::string>{"a", "b", "c", "g"}));
  EXPECT_EQ(this->Column(by({"datestamp", "TIMESTAMP"}, 2), "Heading"),
            (std::vector<std::string>{"a", "b", "e", "f", "g"}));
  EXPECT_EQ(this->Column(by({"DateStamp"}, 0), "Heading"), std::vector<std::string>{});
  EXPECT_THROW(this->Column(by({"Initials"}, 2), "Heading"), DatabaseError);
}

// The items of two days for the group, as a view reads its cells: by day, hour, initials,
// urgency and heading, and by ItemID among items alike in all of those.
Statement TwoDaysOfTheGroup(ASPDataServer dialect, long group) {
  return Statement(
             "SELECT ItemID, Heading, TimeStamp, Urgent, Initials, DateStamp FROM Items INNER "
             "JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp >= ")
      .DateValue(kNov3, dialect)
      .Add(" AND DateStamp <= ")
      .DateValue(kNov4, dialect)
      .Add(" AND GroupID = ")
      .Number(group)
      .Add(" ORDER BY DateStamp, TimeStamp, Initials, Urgent, Heading ASC, ItemID");
}

std::vector<std::string> Texts(std::initializer_list<long> ids) {
  std::vector<std::string> texts;
  for (long id : ids) texts.push_back(std::to_string(id));
  return texts;
}

// A day with many more items than are kept: the engine keeps its first items in the
// statement's order, items alike in every sorted column in ItemID order. The day is crowded
// enough that either session rewrites the statement from its second run on, for the engine to
// keep each key's first rows itself (PerKeyReadings, CrowdedKeyReadings); both runs read the
// same rows.
TYPED_TEST(Reads, KeepPerKeyKeepsTheFirstRowsOfACrowdedKeyInTheStatementsOrder) {
  const long early = this->AddItem("k2", kNov3, 8, "Early");
  std::vector<long> alice;  // AC: before BO at the same hour
  for (long long i = 0; i < ado::PerKeyReadings::kCrowded / 2 + 8; ++i) {
    this->AddItem("k2", kNov3, 9, "Same");
    alice.push_back(this->AddItem("k1", kNov3, 9, "Same"));
  }
  const long late = this->AddItem("k1", kNov3, 10, "Late");
  const long next_day_later = this->AddItem("k2", kNov4, 9, "Next");
  const long next_day = this->AddItem("k1", kNov4, 8, "Next");
  this->AddItem("k1", DateSerial(2026, 11, 2), 9, "Before the range");

  for (int run = 0; run < 2; ++run) {
    const long long kept_before = this->connection_.session().Counts().kept_per_key;
    EXPECT_EQ(
        this->Column(
            TwoDaysOfTheGroup(TypeParam::kDialect, this->group_).KeepPerKey({{"DateStamp"}, 6}),
            "ItemID"),
        Texts({early, alice[0], alice[1], alice[2], alice[3], alice[4], next_day, next_day_later}))
        << run;
    EXPECT_EQ(this->Column(TwoDaysOfTheGroup(TypeParam::kDialect, this->group_)
                               .KeepPerKey({{"DateStamp", "TimeStamp"}, 3}),
                           "ItemID"),
              Texts({early, alice[0], alice[1], alice[2], late, next_day, next_day_later}))
        << run;
    // PostgreSQL's session knows the text crowded once the first statement ran; SQLite's knows
    // each key by its columns.
    const long long kept_as_second = TypeParam::kDialect == ASPDataServer::SQLServer ? 1 : 0;
    EXPECT_EQ(this->connection_.session().Counts().kept_per_key - kept_before,
              run == 0 ? kept_as_second : 2);
  }

  // PostgreSQL keeps them itself: its rows before the session counts any.
  if constexpr (TypeParam::kDialect == ASPDataServer::SQLServer) {
    const std::optional<std::string> kept =
        ado::KeepPerKeyForPostgres(ado::TranslateSqlServerForPostgres(
                                       TwoDaysOfTheGroup(TypeParam::kDialect, this->group_).text()),
                                   {{"DateStamp"}, 6});
    ASSERT_TRUE(kept);
    EXPECT_EQ(
        this->Column(Statement(kept->c_str()), "ItemID"),
        Texts({early, alice[0], alice[1], alice[2], alice[3], alice[4], next_day, next_day_later}));
  }
}

// Rows whose key holds a null are one run of their own wherever the engine sorts nulls, and
// are kept as reading every row and counting keeps them.
TYPED_TEST(Reads, KeepPerKeyCountsRowsWithANullInTheKeyAsOneRun) {
  for (int i = 0; i < 5; ++i) {
    const long untimed = this->AddItem(i % 2 ? "k1" : "k2", kNov3, 9, "Untimed");
    this->connection_.Execute(
        Statement("UPDATE Items SET TimeStamp = NULL WHERE ItemID = ").Number(untimed));
    this->AddItem("k1", kNov3, 9, "Timed");
    this->AddItem("k2", kNov4, 9 + i, "Next");
  }
  // Every row read, then the first two of each run of equal days and hours.
  std::vector<std::string> ids, keys;
  Recordset rs;
  rs.Open(TwoDaysOfTheGroup(TypeParam::kDialect, this->group_), this->connection_);
  for (; !rs.Eof(); rs.MoveNext()) {
    const Variant& hour = rs.Fields("TimeStamp").Value();
    ids.push_back(CStr(rs.Fields("ItemID").Value()));
    keys.push_back(CStr(rs.Fields("DateStamp").Value()) + " " + (hour.IsNull() ? "-" : CStr(hour)));
  }
  rs.Close();
  ASSERT_EQ(ids.size(), 15u);
  std::vector<std::string> expected;
  for (size_t i = 0, run = 0; i < ids.size(); ++i) {
    run = i > 0 && keys[i] == keys[i - 1] ? run + 1 : 1;
    if (run <= 2) expected.push_back(ids[i]);
  }
  ASSERT_EQ(expected.size(), 9u);  // two untimed, two at nine, five hours of the next day
  EXPECT_EQ(this->Column(TwoDaysOfTheGroup(TypeParam::kDialect, this->group_)
                             .KeepPerKey({{"DateStamp", "TimeStamp"}, 2}),
                         "ItemID"),
            expected);
}

}  // namespace
}  // namespace tidewell::testing

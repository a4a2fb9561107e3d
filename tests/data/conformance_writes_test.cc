// The calendar's writes (AddNew/Update, Execute) against both providers.

#include <gtest/gtest.h>

#include "tests/data/conformance_fixture.h"

namespace tidewell::testing {
namespace {

template <class Engine>
class Writes : public CalendarDatabase<Engine> {};

TYPED_TEST_SUITE(Writes, Engines, EngineNames);

TYPED_TEST(Writes, AddNewTakesTheKeyTheEngineGenerates) {
  long first = this->AddItem("k1", kNov3, 9, "One");
  long second = this->AddItem("k1", kNov3, 10, "Two");
  EXPECT_GT(first, 0);
  EXPECT_GT(second, first);
  EXPECT_EQ(this->Column(Statement("SELECT Heading FROM Items WHERE ItemID = ").Number(second),
                         "Heading"),
            std::vector<std::string>{"Two"});
}

TYPED_TEST(Writes, RecordCountOfATableCountsAnAddedRowOnce) {
  this->AddItem("k1", kNov3, 9, "One");
  this->AddItem("k1", kNov3, 10, "Two");
  Recordset rs;
  rs.Open(Statement("Items"), this->connection_, ado::adOpenKeyset, ado::adLockOptimistic);
  rs.AddNew();
  rs.Fields("OwnerKey").SetValue("k1");
  rs.Fields("Heading").SetValue("Three");
  rs.Update();
  EXPECT_EQ(rs.RecordCount(), 3);
}

TYPED_TEST(Writes, AddNewLeavesUnassignedFlagsFalse) {
  long id = this->AddItem("k1", kNov3, 9, "Plain");
  Recordset rs;
  rs.Open(Statement("SELECT Urgent, Complete FROM Items WHERE ItemID = ").Number(id),
          this->connection_);
  EXPECT_EQ(rs.Fields("Urgent").Value(), Variant(false));
  EXPECT_EQ(rs.Fields("Complete").Value(), Variant(false));
}

TYPED_TEST(Writes, UpdateWritesTheSelectedRow) {
  Recordset rs;
  rs.Open(Statement("SELECT * FROM Users WHERE OwnerKey = ").Text("k2"), this->connection_,
          ado::adOpenDynamic, ado::adLockOptimistic);
  ASSERT_FALSE(rs.Eof());
  rs.Fields("Initials").SetValue("BB");
  rs.Fields("Options").SetValue("1+9+1+0+0");
  EXPECT_EQ(rs.Fields("Initials").Value(), Variant("BB"));
  rs.Update();
  rs.Close();
  EXPECT_EQ(this->Column(Statement("SELECT Initials FROM Users WHERE OwnerKey = ").Text("k2"),
                         "Initials"),
            std::vector<std::string>{"BB"});
  EXPECT_EQ(this->Column(Statement("SELECT Initials FROM Users WHERE OwnerKey = ").Text("k1"),
                         "Initials"),
            std::vector<std::string>{"AC"});
}

TYPED_TEST(Writes, AssignedValuesTakeTheColumnsType) {
  long id = this->AddItem("k1", kNov3, 9, "Moved");
  Recordset rs;
  rs.Open(Statement("SELECT * FROM Items WHERE ItemID = ").Number(id), this->connection_,
          ado::adOpenDynamic, ado::adLockOptimistic);
  rs.Fields("DateStamp").SetValue("11/5/2026");  // date text in the regional settings' form
  rs.Fields("Complete").SetValue(-1L);
  rs.Update();
  EXPECT_EQ(rs.Fields("DateStamp").Value(), Variant(DateSerial(2026, 11, 5)));
  rs.Close();
  rs.Open(Statement("SELECT DateStamp, Complete FROM Items WHERE ItemID = ").Number(id),
          this->connection_);
  EXPECT_EQ(rs.Fields("DateStamp").Value(), Variant(DateSerial(2026, 11, 5)));
  EXPECT_EQ(rs.Fields("Complete").Value(), Variant(true));
}

TYPED_TEST(Writes, ExecuteDeletesAndCountsTheRows) {
  long kept = this->AddItem("k1", kNov3, 9, "Kept");
  long gone = this->AddItem("k1", kNov3, 10, "Gone");
  long affected = this->connection_.Execute(Statement("DELETE FROM Items WHERE ItemID = ")
                                                .Number(gone)
                                                .Add(" AND OwnerKey = ")
                                                .Text("k1"));
  EXPECT_EQ(affected, 1);
  EXPECT_EQ(this->Column(Statement("SELECT ItemID FROM Items"), "ItemID"),
            std::vector<std::string>{std::to_string(kept)});
  EXPECT_EQ(this->connection_.Execute(
                Statement("DELETE FROM Groups WHERE GroupID = ").Number(this->group_)),
            1);
}

TYPED_TEST(Writes, UniqueGroupNameRefusesASecondInsert) {
  for (const char* name : {"Harbour", "HARBOUR"}) {
    try {
      this->connection_.Execute(
          Statement("INSERT INTO Groups (GroupName) VALUES (").Text(name).Add(")"));
      ADD_FAILURE() << name << " was inserted twice";
    } catch (const DatabaseError& e) {
      EXPECT_EQ(e.number(), error_numbers::kIntegrityViolation) << e.what();
    }
  }
  EXPECT_EQ(this->Column(Statement("SELECT GroupName FROM Groups"), "GroupName"),
            std::vector<std::string>{"Harbour"});
}

TYPED_TEST(Writes, QuotedValuesAreNeverRewritten) {
  const std::string odd = "#11/3/2026# SELECT TOP 2 [x] -- not a comment";
  long id = this->AddItem("k1", kNov3, 9, odd);
  this->connection_.Execute(
      Statement("INSERT INTO Groups (GroupName) VALUES (").Text(odd).Add(")"));
  EXPECT_EQ(
      this->Column(Statement("SELECT ItemID FROM Items WHERE Heading = ").Text(odd), "ItemID"),
      std::vector<std::string>{std::to_string(id)});
  EXPECT_EQ(this->Column(Statement("SELECT GroupName FROM Groups WHERE GroupName = ").Text(odd),
                         "GroupName"),
            std::vector<std::string>{odd});
}

TYPED_TEST(Writes, StaticRecordsetRefusesChanges) {
  Recordset rs;
  rs.Open(Statement("SELECT * FROM Users"), this->connection_, ado::adOpenStatic,
          ado::adLockReadOnly);
  try {
    rs.AddNew();
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kNotUpdatable);
  }
  EXPECT_THROW(rs.Fields("Initials").SetValue("XX"), DatabaseError);
}

TYPED_TEST(Writes, RolledBackChangesAreGone) {
  this->connection_.BeginTrans();
  this->AddItem("k1", kNov3, 9, "Undone");
  this->connection_.RollbackTrans();
  EXPECT_TRUE(this->Column(Statement("SELECT ItemID FROM Items"), "ItemID").empty());
}

}  // namespace
}  // namespace tidewell::testing

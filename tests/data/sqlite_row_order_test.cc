// The SQLite session puts the rows of a statement that keeps the first rows of each key in
// order itself. SQLite's own ORDER BY is the reference: the same statement is run both ways,
// over values of every storage class, and must give the same rows in the same order.

#include "data/sqlite_row_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "data/connection_string.h"
#include "data/per_key_select.h"
#include "data/sqlite_rows_per_key.h"
#include "data/sqlite_session.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"

namespace tidewell::ado {
namespace {

StoredValue Integer(sqlite3_int64 value) {
  return {.type = SQLITE_INTEGER, .integer = value, .real = 0, .bytes = {}};
}
StoredValue Real(double value) {
  return {.type = SQLITE_FLOAT, .integer = 0, .real = value, .bytes = {}};
}
StoredValue Text(std::string_view bytes) {
  return {.type = SQLITE_TEXT, .integer = 0, .real = 0, .bytes = bytes};
}
StoredValue Blob(std::string_view bytes) {
  return {.type = SQLITE_BLOB, .integer = 0, .real = 0, .bytes = bytes};
}

TEST(CompareStored, PutsNullsThenNumbersThenTextsThenBlobs) {
  const StoredValue null;
  EXPECT_LT(CompareStored(null, Integer(-5), Collation::kBinary), 0);
  EXPECT_LT(CompareStored(Real(1e300), Text(""), Collation::kBinary), 0);
  EXPECT_LT(CompareStored(Text("zzz"), Blob(""), Collation::kBinary), 0);
  EXPECT_EQ(CompareStored(null, null, Collation::kNoCase), 0);
}

TEST(CompareStored, ComparesWholeAndFractionalNumbersByValue) {
  EXPECT_LT(CompareStored(Integer(2), Real(2.5), Collation::kBinary), 0);
  EXPECT_EQ(CompareStored(Integer(3), Real(3.0), Collation::kBinary), 0);
  EXPECT_LT(CompareStored(Integer(-1), Integer(0), Collation::kBinary), 0);
  // 2^53 + 1 has no double of its own: it is still greater than 2^53.
  EXPECT_GT(CompareStored(Integer(9007199254740993), Real(9007199254740992.0), Collation::kBinary),
            0);
}

TEST(CompareStored, NoCaseFoldsOnlyTheLettersAToZ) {
  EXPECT_EQ(CompareStored(Text("Apple"), Text("aPPLE"), Collation::kNoCase), 0);
  EXPECT_LT(CompareStored(Text("a"), Text("B"), Collation::kNoCase), 0);
  EXPECT_GT(CompareStored(Text("a"), Text("B"), Collation::kBinary), 0);
  EXPECT_NE(CompareStored(Text("\xC3\xA9"), Text("\xC3\x89"), Collation::kNoCase), 0);
  EXPECT_LT(CompareStored(Text("ab"), Text("ABC"), Collation::kNoCase), 0);
  EXPECT_GT(CompareStored(Text(std::string_view("a\0b", 3)), Text("a"), Collation::kNoCase), 0);
}

TEST(UnorderedText, IsTheStatementWithoutItsOrder) {
  const std::optional<PerKeySelect> select = PerKeySelectOf(
      "SELECT ItemID, Heading, DateStamp FROM Items WHERE DateStamp >= ? ORDER BY DateStamp, "
      "Heading DESC, ItemID ASC",
      {{"DateStamp"}, 6});
  ASSERT_TRUE(select);
  EXPECT_EQ(UnorderedText(*select),
            "SELECT ItemID, Heading, DateStamp FROM Items WHERE DateStamp >= ?");
  ASSERT_EQ(select->order_terms.size(), 3u);
  EXPECT_FALSE(select->order_terms[0].Descending());
  EXPECT_TRUE(select->order_terms[1].Descending());
  EXPECT_EQ(select->order_terms[2].direction, "ASC");
}

// RowsToSort against std::stable_sort over the same keys, for rows that come sorted, reversed,
// in a few runs (as a view's rows read along an index for each owner do) and at random; many
// rows are level in every term, and those keep the order they came in.
TEST(RowsToSort, PutsRowsInOrderHoweverTheyCome) {
  const std::vector<SortColumn> order = {{.column = 0, .collation = Collation::kBinary},
                                         {.column = 1, .collation = Collation::kNoCase},
                                         {.column = 2, .descending = true}};
  const char* const texts[] = {"a", "B", "b", "C", "ab", ""};
  std::mt19937 random(20261124);
  auto any = [&random](size_t count) { return random() % count; };
  for (int shape = 0; shape < 4; ++shape) {
    for (int trial = 0; trial < 25; ++trial) {
      std::vector<std::vector<StoredValue>> rows;
      const size_t count = 1 + any(120);
      for (size_t i = 0; i < count; ++i) {
        rows.push_back({Integer(static_cast<sqlite3_int64>(any(6))), Text(texts[any(6)]),
                        Integer(static_cast<sqlite3_int64>(any(3)))});
      }
      auto less = [&order](const std::vector<StoredValue>& a, const std::vector<StoredValue>& b) {
        for (const SortColumn& term : order) {
          const auto c = static_cast<size_t>(term.column);
          const int compared = CompareStored(a[c], b[c], term.collation);
          if (compared != 0) return term.descending ? compared > 0 : compared < 0;
        }
        return false;
      };
      if (shape == 0) std::stable_sort(rows.begin(), rows.end(), less);
      if (shape == 1) {
        std::stable_sort(rows.begin(), rows.end(), less);
        std::reverse(rows.begin(), rows.end());
      }
      if (shape == 2) {  // a few runs, each in order
        size_t start = 0;
        while (start < rows.size()) {
          const size_t end = std::min(rows.size(), start + 1 + any(40));
          std::stable_sort(rows.begin() + static_cast<std::ptrdiff_t>(start),
                           rows.begin() + static_cast<std::ptrdiff_t>(end), less);
          start = end;
        }
      }
      RowsToSort to_sort(order);
      for (size_t i = 0; i < rows.size(); ++i)
        to_sort.Add(rows[i], {Variant(static_cast<long>(i))});
      std::vector<size_t> expected(rows.size());
      std::iota(expected.begin(), expected.end(), 0);
      std::stable_sort(expected.begin(), expected.end(),
                       [&](size_t a, size_t b) { return less(rows[a], rows[b]); });
      const std::vector<size_t> sorted = to_sort.Sorted();
      ASSERT_EQ(sorted, expected) << "shape " << shape << ", trial " << trial;
      for (size_t i = 0; i < sorted.size(); ++i) {
        EXPECT_EQ(to_sort.Values(sorted[i]).at(0).AsLong(), static_cast<long>(sorted[i]));
        EXPECT_EQ(
            CompareStored(to_sort.Stored(sorted[i], 1), rows[sorted[i]][1], Collation::kBinary), 0);
      }
    }
  }
}

// Values of every storage class, with the cases and lengths that tell the collations apart.
const char* const kValues[] = {
    "NULL",
    "-1",
    "0",
    "1",
    "2",
    "9007199254740993",
    "0.5",
    "2.0",
    "-1.5",
    "'a'",
    "'A'",
    "'b'",
    "'B'",
    "'ab'",
    "'Ab'",
    "'aB '",
    "''",
    "'é'",
    "'É'",
    "'10'",
    "'9'",
    "X'61'",
    "X''",
    "CAST(X'610062' AS TEXT)",
    "CAST(X'6100' AS TEXT)",
};

class SqliteRowOrder : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string path = folder_.path() + "/order.db";
    CreateSqliteDatabaseFile(path);
    session_ = OpenSqliteSession(ParseConnectionString("Provider=SQLite;Data Source=" + path));
    session_->RunBound(
        "CREATE TABLE Mixed (ID INTEGER PRIMARY KEY, Grp TEXT, Plain, Folded COLLATE NOCASE, "
        "Flag BOOLEAN, Trimmed TEXT COLLATE RTRIM)",
        {});
    std::mt19937 random(20261124);
    auto any = [&random](size_t count) { return random() % count; };
    const size_t values = std::size(kValues);
    for (int row = 0; row < 400; ++row) {
      const char* group = kValues[any(4) == 0 ? 0 : 9 + any(4)];  // a few groups, and nulls
      session_->RunBound("INSERT INTO Mixed (Grp, Plain, Folded, Flag, Trimmed) VALUES (" +
                             std::string(group) + ", " + kValues[any(values)] + ", " +
                             kValues[any(values)] + ", " + (any(2) ? "-1" : "0") + ", " +
                             kValues[any(values)] + ")",
                         {});
    }
  }

  std::vector<std::string> Ids(const Rows& rows) {
    std::vector<std::string> ids;
    for (const auto& row : rows.values) ids.push_back(CStr(row.at(0)));
    return ids;
  }

  testing::TempFolder folder_;
  std::unique_ptr<Session> session_;
};

TEST_F(SqliteRowOrder, EveryOrderOfEveryKindOfValueIsSQLitesOwn) {
  const char* const orders[] = {
      "Plain, ID",
      "Plain DESC, ID",
      "Folded, ID",
      "Folded DESC, ID DESC",
      "Flag, Folded, ID",
      "Flag DESC, Plain, ID",
      "Folded, Plain DESC, ID",
      "Mixed.Plain, ID",
  };
  for (const char* order : orders) {
    const std::string statement =
        std::string("SELECT ID, Grp, Plain, Folded, Flag FROM Mixed ORDER BY Grp, ") + order;
    const Rows by_sqlite = session_->Run(statement);
    // Once a run passed over many rows of a key, the next has SQLite keep them itself.
    for (long rows : {1000L, 3L}) {
      const RowsPerKey per_key{{"Grp"}, rows};
      const long long sorted_before = session_->Counts().sorted_by_session;
      const Rows by_session = session_->Run(statement, per_key);
      EXPECT_EQ(session_->Counts().sorted_by_session, sorted_before + 1) << statement;
      EXPECT_EQ(Ids(by_session), Ids(KeepPerKey(by_sqlite, per_key))) << statement << ", " << rows;
      EXPECT_TRUE(by_session.values == KeepPerKey(by_sqlite, per_key).values) << statement;
    }
  }
}

// A run as written that probes a statement known to be crowded is sorted by SQLite, so that
// the crowded keys' rows are passed over unread.
TEST_F(SqliteRowOrder, AProbeOfACrowdedStatementIsLeftToSQLite) {
  const std::string statement = "SELECT ID, Grp, Folded FROM Mixed ORDER BY Grp, Folded, ID";
  const RowsPerKey per_key{{"Grp"}, 2};
  const Rows by_sqlite = session_->Run(statement);
  session_->Run(statement, per_key);  // finds the groups crowded
  const StatementCounts before = session_->Counts();
  for (int run = 0; run < CrowdedKeyReadings::kProbeInterval; ++run) {
    EXPECT_EQ(Ids(session_->Run(statement, per_key)), Ids(KeepPerKey(by_sqlite, per_key))) << run;
  }
  const StatementCounts after = session_->Counts();
  EXPECT_EQ(after.sorted_by_session, before.sorted_by_session);
  EXPECT_EQ(after.kept_per_key - before.kept_per_key, CrowdedKeyReadings::kProbeInterval - 1);
}

TEST_F(SqliteRowOrder, AnOrderItDoesNotKnowIsLeftToSQLite) {
  for (const char* statement : {
           // A collation other than BINARY and NOCASE.
           "SELECT ID, Grp, Trimmed FROM Mixed ORDER BY Grp, Trimmed, ID",
           // An expression.
           "SELECT ID, Grp, Plain FROM Mixed ORDER BY Grp, Plain || 'x', ID",
           // A column given a collation of its own.
           "SELECT ID, Grp, Plain FROM Mixed ORDER BY Grp, Plain COLLATE NOCASE, ID",
       }) {
    const RowsPerKey per_key{{"Grp"}, 2};
    const Rows by_sqlite = session_->Run(statement);
    const long long sorted_before = session_->Counts().sorted_by_session;
    const Rows kept = session_->Run(statement, per_key);
    EXPECT_EQ(session_->Counts().sorted_by_session, sorted_before) << statement;
    EXPECT_EQ(Ids(kept), Ids(KeepPerKey(by_sqlite, per_key))) << statement;
  }
}

TEST_F(SqliteRowOrder, AStatementThatFailsAsWrittenFailsAlike) {
  // The ORDER BY's "Grp" could be either table's; without its ORDER BY the statement would
  // run.
  const std::string statement =
      "SELECT Mixed.ID, Mixed.Grp FROM Mixed INNER JOIN Mixed AS Other ON Mixed.ID = Other.ID "
      "ORDER BY Grp, Mixed.ID";
  EXPECT_THROW(session_->Run(statement, {{"Grp"}, 2}), DatabaseError);
}

}  // namespace
}  // namespace tidewell::ado

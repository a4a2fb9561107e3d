// The rewrite that has PostgreSQL keep the first rows of each key itself: the text it makes,
// and the statements it leaves as they are (what the engine returns for both is checked on
// the engine in the conformance reads).

#include "data/postgres_rows_per_key.h"

#include <gtest/gtest.h>

namespace tidewell::ado {
namespace {

constexpr const char* kViewStatement =
    "SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users ON Items.OwnerKey = "
    "Users.OwnerKey WHERE DateStamp >= '10/25/2026' AND GroupID = 1 ORDER BY DateStamp, "
    "Heading ASC, ItemID";

TEST(KeepPerKeyForPostgres, ReadsEachKeysFirstRowsThroughALimitAndTheNullKeysAfter) {
  EXPECT_EQ(KeepPerKeyForPostgres(kViewStatement, {{"DateStamp"}, 6}),
            "SELECT tidewell_kept.* FROM (SELECT DISTINCT DateStamp FROM Items INNER JOIN Users "
            "ON Items.OwnerKey = Users.OwnerKey WHERE (DateStamp >= '10/25/2026' AND GroupID = 1) "
            "AND DateStamp IS NOT NULL) AS tidewell_keys CROSS JOIN LATERAL (SELECT ItemID, "
            "Heading, DateStamp FROM Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey "
            "WHERE (DateStamp >= '10/25/2026' AND GroupID = 1) AND DateStamp = "
            "tidewell_keys.DateStamp ORDER BY DateStamp, Heading ASC, ItemID LIMIT 6) AS "
            "tidewell_kept UNION ALL SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users "
            "ON Items.OwnerKey = Users.OwnerKey WHERE (DateStamp >= '10/25/2026' AND GroupID = 1) "
            "AND (DateStamp IS NULL) ORDER BY DateStamp, Heading ASC, ItemID");
}

// The last ORDER BY names the columns as the rows carry them, with their directions.
TEST(KeepPerKeyForPostgres, TwoKeysWithoutAConditionAndAQualifiedKey) {
  EXPECT_EQ(KeepPerKeyForPostgres("SELECT Heading, Items.DateStamp, TimeStamp FROM Items ORDER BY "
                                  "Items.DateStamp ASC, timestamp, Items.Heading DESC",
                                  {{"datestamp", "TimeStamp"}, 2}),
            "SELECT tidewell_kept.* FROM (SELECT DISTINCT Items.DateStamp, TimeStamp FROM Items "
            "WHERE Items.DateStamp IS NOT NULL AND TimeStamp IS NOT NULL) AS tidewell_keys CROSS "
            "JOIN LATERAL (SELECT Heading, Items.DateStamp, TimeStamp FROM Items WHERE "
            "Items.DateStamp = tidewell_keys.datestamp AND TimeStamp = tidewell_keys.TimeStamp "
            "ORDER BY Items.DateStamp ASC, timestamp, Items.Heading DESC LIMIT 2) AS "
            "tidewell_kept UNION ALL SELECT Heading, Items.DateStamp, TimeStamp FROM Items WHERE "
            "(Items.DateStamp IS NULL OR TimeStamp IS NULL) ORDER BY DateStamp ASC, timestamp, "
            "Heading DESC");
}

TEST(KeepPerKeyForPostgres, ANegativeCountLimitsToNone) {
  const std::optional<std::string> text =
      KeepPerKeyForPostgres(kViewStatement, {{"DateStamp"}, -3});
  ASSERT_TRUE(text);
  EXPECT_NE(text->find(" LIMIT 0)"), std::string::npos);
}

// Statements whose rows a wrapper could change, or whose keys it cannot name, run as written.
TEST(KeepPerKeyForPostgres, LeavesOtherShapesAlone) {
  const auto unchanged = [](const char* statement, RowsPerKey per_key) {
    return !KeepPerKeyForPostgres(statement, per_key).has_value();
  };
  const RowsPerKey by_day{{"DateStamp"}, 3};
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items", by_day));  // no order
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Heading FROM Items ORDER BY Heading, DateStamp", by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items ORDER BY DateStamp DESC", by_day));
  EXPECT_TRUE(unchanged("SELECT DISTINCT DateStamp FROM Items ORDER BY DateStamp", by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items ORDER BY DateStamp LIMIT 6", by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, COUNT(*) FROM Items GROUP BY DateStamp ORDER BY "
                "DateStamp",
                by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp FROM Items UNION ALL SELECT DateStamp FROM Items "
                "ORDER BY DateStamp",
                by_day));
  EXPECT_TRUE(unchanged("SELECT * FROM Items ORDER BY DateStamp", by_day));
  EXPECT_TRUE(unchanged("SELECT Items.* FROM Items ORDER BY DateStamp", by_day));
  EXPECT_TRUE(unchanged("SELECT ItemID AS DateStamp FROM Items ORDER BY DateStamp", by_day));
  // The rows kept are sorted again by the columns they carry: every term of the order must be
  // one of them, named plainly, and the list must name its items as the tables do.
  EXPECT_TRUE(unchanged("SELECT DateStamp, Heading FROM Items ORDER BY DateStamp, 2", by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp, Heading AS h FROM Items ORDER BY DateStamp, h", by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Heading FROM Items ORDER BY DateStamp, UserName", by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Heading FROM Items ORDER BY DateStamp, lower(Heading)", by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Heading FROM Items ORDER BY DateStamp, Heading NULLS "
                "FIRST",
                by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Items.Heading FROM Items ORDER BY DateStamp, "
                "Users.Heading",
                by_day));
  EXPECT_TRUE(
      unchanged("SELECT DateStamp, Items.Heading, Users.Heading FROM Items ORDER BY "
                "DateStamp, Heading",
                by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp, Users.DateStamp FROM Items ORDER BY DateStamp", by_day));
  EXPECT_TRUE(unchanged("SELECT Heading FROM Items ORDER BY DateStamp", by_day));  // not listed
  EXPECT_TRUE(unchanged("UPDATE Items SET Heading = 'x'", by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items ORDER BY DateStamp; SELECT 1", by_day));
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items ORDER BY DateStamp", {{}, 3}));
  EXPECT_TRUE(unchanged("SELECT DateStamp FROM Items ORDER BY DateStamp", {{"Date-Stamp"}, 3}));
}

// Parentheses hide what they hold: a subquery's ORDER BY or LIMIT is not the statement's.
TEST(KeepPerKeyForPostgres, LooksOnlyAtTheStatementsOwnClauses) {
  const std::optional<std::string> text = KeepPerKeyForPostgres(
      "SELECT DateStamp, (SELECT MAX(Heading) FROM Items AS i ORDER BY 1 LIMIT 1) FROM Items "
      "WHERE ItemID IN (SELECT ItemID FROM Items WHERE Urgent = 1) ORDER BY DateStamp",
      {{"DateStamp"}, 2});
  ASSERT_TRUE(text);
  EXPECT_NE(text->find("WHERE (ItemID IN (SELECT ItemID FROM Items WHERE Urgent = 1)) AND "
                       "DateStamp = tidewell_keys.DateStamp ORDER BY DateStamp LIMIT 2)"),
            std::string::npos);
}

// A statement runs as written until one run passes over many rows, then rewritten, with one run
// in kProbeInterval as written again to see whether it still does.
TEST(PerKeyReadings, RewritesAStatementAfterARunThatPassedOverManyRows) {
  PerKeyReadings readings;
  const std::string month = "SELECT ... November", other = "SELECT ... December";
  EXPECT_FALSE(readings.Rewrite(month));
  readings.PassedOver(month, PerKeyReadings::kCrowded - 1);
  EXPECT_FALSE(readings.Rewrite(month));
  readings.PassedOver(month, PerKeyReadings::kCrowded);
  for (int run = 1; run < PerKeyReadings::kProbeInterval; ++run) {
    EXPECT_TRUE(readings.Rewrite(month)) << run;
  }
  EXPECT_FALSE(readings.Rewrite(month));  // the probe, as written
  EXPECT_FALSE(readings.Rewrite(other));
  readings.PassedOver(month, 0);  // no longer crowded
  EXPECT_FALSE(readings.Rewrite(month));
}

TEST(PerKeyReadings, AProbeThatIsStillCrowdedKeepsTheRewrite) {
  PerKeyReadings readings;
  readings.PassedOver("s", 5000);
  for (int run = 1; run < PerKeyReadings::kProbeInterval; ++run) readings.Rewrite("s");
  EXPECT_FALSE(readings.Rewrite("s"));
  readings.PassedOver("s", 5000);
  EXPECT_TRUE(readings.Rewrite("s"));
}

}  // namespace
}  // namespace tidewell::ado

// The rewrite that has SQLite keep the first rows of each crowded key itself: the text it
// makes, the statements it leaves as they are, and how a session learns which keys are crowded
// (what the engine returns is checked on the engine in the conformance reads and the views'
// equivalence tests).

#include "data/sqlite_rows_per_key.h"

#include <gtest/gtest.h>

namespace tidewell::ado {
namespace {

constexpr const char* kViewStatement =
    "SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users ON Items.OwnerKey = "
    "Users.OwnerKey WHERE DateStamp >= ? AND DateStamp <= ? AND GroupID = ? ORDER BY DateStamp, "
    "Heading DESC, ItemID";

TEST(KeepPerKeyForSqlite, ReadsEachCrowdedKeyThroughALimitAndEveryOtherKeyAsWritten) {
  EXPECT_EQ(
      KeepPerKeyForSqlite(kViewStatement, {{"DateStamp"}, 6}, 3, 2),
      "SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users ON Items.OwnerKey = "
      "Users.OwnerKey WHERE (DateStamp >= ?1 AND DateStamp <= ?2 AND GroupID = ?3) AND NOT "
      "(+DateStamp IS ?4) AND NOT (+DateStamp IS ?5)"
      " UNION ALL SELECT * FROM (SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE (DateStamp >= ?1 AND DateStamp <= ?2 AND GroupID = "
      "?3) AND +DateStamp IS ?4 ORDER BY DateStamp, Heading DESC, ItemID LIMIT 6)"
      " UNION ALL SELECT * FROM (SELECT ItemID, Heading, DateStamp FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE (DateStamp >= ?1 AND DateStamp <= ?2 AND GroupID = "
      "?3) AND +DateStamp IS ?5 ORDER BY DateStamp, Heading DESC, ItemID LIMIT 6)"
      " ORDER BY DateStamp, Heading DESC, ItemID");
}

TEST(KeepPerKeyForSqlite, BindsEachKeysColumnsInTurnAfterTheStatementsValues) {
  EXPECT_EQ(KeepPerKeyForSqlite("SELECT Heading, Items.DateStamp, TimeStamp FROM Items ORDER BY "
                                "Items.DateStamp, TimeStamp, Heading",
                                {{"DateStamp", "TimeStamp"}, 3}, 0, 2),
            "SELECT Heading, Items.DateStamp, TimeStamp FROM Items WHERE NOT (+Items.DateStamp IS "
            "?1 AND +TimeStamp IS ?2) AND NOT (+Items.DateStamp IS ?3 AND +TimeStamp IS ?4)"
            " UNION ALL SELECT * FROM (SELECT Heading, Items.DateStamp, TimeStamp FROM Items WHERE "
            "+Items.DateStamp IS ?1 AND +TimeStamp IS ?2 ORDER BY Items.DateStamp, TimeStamp, "
            "Heading LIMIT 3)"
            " UNION ALL SELECT * FROM (SELECT Heading, Items.DateStamp, TimeStamp FROM Items WHERE "
            "+Items.DateStamp IS ?3 AND +TimeStamp IS ?4 ORDER BY Items.DateStamp, TimeStamp, "
            "Heading LIMIT 3)"
            " ORDER BY DateStamp, TimeStamp, Heading");
}

TEST(KeepPerKeyForSqlite, LeavesAStatementAsWrittenWithoutCrowdedKeysOrWithOtherParameters) {
  EXPECT_FALSE(KeepPerKeyForSqlite(kViewStatement, {{"DateStamp"}, 6}, 3, 0));
  EXPECT_FALSE(KeepPerKeyForSqlite(kViewStatement, {{"DateStamp"}, 6}, 2, 1));
  EXPECT_FALSE(KeepPerKeyForSqlite(kViewStatement, {{"DateStamp"}, 6}, 4, 1));
  EXPECT_FALSE(
      KeepPerKeyForSqlite("SELECT Heading, DateStamp FROM Items WHERE DateStamp = ?1 "
                          "ORDER BY DateStamp, Heading",
                          {{"DateStamp"}, 6}, 1, 1));
  // A shape the rewrite does not take, and a key the order does not start with.
  EXPECT_FALSE(
      KeepPerKeyForSqlite("SELECT DISTINCT Heading, DateStamp FROM Items ORDER BY "
                          "DateStamp, Heading",
                          {{"DateStamp"}, 6}, 0, 1));
  EXPECT_FALSE(KeepPerKeyForSqlite(kViewStatement, {{"Heading"}, 6}, 3, 1));
  EXPECT_FALSE(KeepPerKeyForSqlite(kViewStatement, {{}, 6}, 3, 1));
}

TEST(KeepPerKeyForSqlite, ANegativeCountLimitsToNone) {
  const std::optional<std::string> text =
      KeepPerKeyForSqlite(kViewStatement, {{"DateStamp"}, -3}, 3, 1);
  ASSERT_TRUE(text);
  EXPECT_NE(text->find(" LIMIT 0)"), std::string::npos);
}

// A quoted "?" is a value, not a parameter.
TEST(KeepPerKeyForSqlite, NumbersOnlyTheParametersOutsideQuotes) {
  const std::optional<std::string> text = KeepPerKeyForSqlite(
      "SELECT Heading, DateStamp FROM Items WHERE Heading <> '?' AND OwnerKey = ? ORDER BY "
      "DateStamp, Heading",
      {{"DateStamp"}, 6}, 1, 1);
  ASSERT_TRUE(text);
  EXPECT_NE(text->find("WHERE (Heading <> '?' AND OwnerKey = ?1) AND NOT (+DateStamp IS ?2)"),
            std::string::npos)
      << *text;
}

CrowdedKey Key(const std::string& day) {
  return {.runs_key = day, .values = {Variant(day)}};
}

std::vector<std::string> RunsKeys(const std::vector<CrowdedKey>* keys) {
  std::vector<std::string> found;
  if (keys) {
    for (const CrowdedKey& key : *keys) found.push_back(key.runs_key);
  }
  return found;
}

const RowsPerKey kByDay{{"DateStamp"}, 7};

// A statement runs as written until a run finds crowded keys; then those are read on their own,
// with one run in kProbeInterval as written again to find the keys crowded now.
TEST(CrowdedKeyReadings, ReadsTheKeysARunAsWrittenFoundCrowdedUntilTheNextProbe) {
  CrowdedKeyReadings readings;
  const std::string month = "SELECT ... November";
  EXPECT_EQ(readings.ForRun(month, kByDay), nullptr);
  readings.Found(month, kByDay, /*ran_as_written=*/true, {});
  EXPECT_EQ(readings.ForRun(month, kByDay), nullptr);
  EXPECT_FALSE(readings.KnowsCrowdedKeys(month, kByDay));
  readings.Found(month, kByDay, /*ran_as_written=*/true, {Key("25"), Key("26")});
  EXPECT_TRUE(readings.KnowsCrowdedKeys(month, kByDay));
  for (int run = 1; run < CrowdedKeyReadings::kProbeInterval; ++run) {
    EXPECT_EQ(RunsKeys(readings.ForRun(month, kByDay)), (std::vector<std::string>{"25", "26"}))
        << run;
    readings.Found(month, kByDay, /*ran_as_written=*/false, {});
  }
  EXPECT_EQ(readings.ForRun(month, kByDay), nullptr);  // the probe, as written
  EXPECT_TRUE(readings.KnowsCrowdedKeys(month, kByDay));
  readings.Found(month, kByDay, /*ran_as_written=*/true, {Key("26")});
  EXPECT_EQ(RunsKeys(readings.ForRun(month, kByDay)), std::vector<std::string>{"26"});
  EXPECT_EQ(readings.ForRun("SELECT ... December", kByDay), nullptr);
}

// A key a rewritten run finds crowded among the keys it read as written joins the others, once.
TEST(CrowdedKeyReadings, ARewrittenRunAddsTheKeysItFindsCrowded) {
  CrowdedKeyReadings readings;
  readings.Found("s", kByDay, /*ran_as_written=*/true, {Key("25")});
  ASSERT_NE(readings.ForRun("s", kByDay), nullptr);
  readings.Found("s", kByDay, /*ran_as_written=*/false, {Key("27"), Key("25")});
  EXPECT_EQ(RunsKeys(readings.ForRun("s", kByDay)), (std::vector<std::string>{"25", "27"}));
}

TEST(CrowdedKeyReadings, RemembersAtMostSoManyKeysOfAStatement) {
  CrowdedKeyReadings readings;
  std::vector<CrowdedKey> found;
  for (size_t k = 0; k < CrowdedKeyReadings::kKeysPerStatement + 5; ++k) {
    found.push_back(Key(std::to_string(k)));
  }
  readings.Found("s", kByDay, /*ran_as_written=*/true, found);
  EXPECT_EQ(RunsKeys(readings.ForRun("s", kByDay)).size(), CrowdedKeyReadings::kKeysPerStatement);
}

// The same text may be read by other key columns: each has keys of its own.
TEST(CrowdedKeyReadings, KeysFoundByOtherColumnsAreKeptApart) {
  CrowdedKeyReadings readings;
  const RowsPerKey by_hour{{"DateStamp", "TimeStamp"}, 4};
  readings.Found("s", kByDay, /*ran_as_written=*/true, {Key("25")});
  EXPECT_EQ(readings.ForRun("s", by_hour), nullptr);
  readings.Found("s", by_hour, /*ran_as_written=*/true,
                 {{.runs_key = "25 10", .values = {Variant("25"), Variant(10L)}}});
  EXPECT_EQ(RunsKeys(readings.ForRun("s", by_hour)), std::vector<std::string>{"25 10"});
  EXPECT_EQ(RunsKeys(readings.ForRun("s", kByDay)), std::vector<std::string>{"25"});
  readings.Found("s", kByDay, /*ran_as_written=*/true, {});
  EXPECT_EQ(readings.ForRun("s", kByDay), nullptr);
  EXPECT_EQ(RunsKeys(readings.ForRun("s", by_hour)), std::vector<std::string>{"25 10"});
}

}  // namespace
}  // namespace tidewell::ado

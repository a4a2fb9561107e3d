// Schema versions on both engines: what a database says its version is, and the migration of
// a database made before versions were recorded, all of it or none.

#include "data/schema_migrations.h"

#include <gtest/gtest.h>

#include "data/recordset.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"
#include "tests/data/version_one_schema.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

template <class Engine>
class SchemaVersions : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_.Open(engine_.connection_string);
  }

  void Run(const char* statement) { connection_.Execute(Statement(statement)); }

  // The recorded version row, "" when there is none.
  std::string RecordedVersion() {
    Recordset rs;
    rs.Open(Statement("SELECT Value FROM TidewellSettings WHERE Name = 'SchemaVersion'"),
            connection_);
    return rs.Eof() ? "" : CStrOrBlank(rs.Fields("Value").Value());
  }

  long Count(const char* statement) {
    Recordset rs;
    rs.Open(Statement(statement), connection_);
    return CLng(rs.Fields(size_t{0}).Value());
  }

  Engine engine_;
  ado::Connection connection_;
};

TYPED_TEST_SUITE(SchemaVersions, testing::Engines, testing::EngineNames);

TYPED_TEST(SchemaVersions, ANewDatabaseRecordsTheCurrentVersion) {
  EXPECT_EQ(this->RecordedVersion(), std::to_string(kSchemaVersion));
  EXPECT_EQ(ReadSchemaVersion(this->connection_), kSchemaVersion);
}

// On SQLite the items' index on owner and date holds the day lists' columns; PostgreSQL keeps
// the narrow one (a heading may be longer than an index entry may be).
TYPED_TEST(SchemaVersions, TheItemsAreIndexedByOwnerAndDateForTheEngine) {
  const bool sqlite = TypeParam::kDialect == ASPDataServer::Access;
  const char* indexes = sqlite ? "SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND "
                                 "name = 'Items_OwnerKey_DateStamp_Lists'"
                               : "SELECT COUNT(*) FROM pg_indexes WHERE "
                                 "indexname = 'items_ownerkey_datestamp'";
  EXPECT_EQ(this->Count(indexes), 1);
  testing::RemakeAsVersionOne(this->connection_);
  this->connection_.Close();
  MigrateSchema(this->engine_.connection_string);
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->Count(indexes), 1);
  if (sqlite) {
    EXPECT_EQ(this->Count("SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND name LIKE "
                          "'Items_OwnerKey%' AND name <> 'Items_OwnerKey_DateStamp_Lists'"),
              0);
  }
}

TYPED_TEST(SchemaVersions, VersionOneTablesWithoutARecordReadAsVersionOne) {
  testing::RemakeAsVersionOne(this->connection_);
  EXPECT_EQ(this->RecordedVersion(), "");
  EXPECT_EQ(ReadSchemaVersion(this->connection_), 1);
}

// Tables from before the site's own tables: some of version 1 is missing.
TYPED_TEST(SchemaVersions, TablesLackingPartOfVersionOneReadAsVersionZero) {
  testing::RemakeAsVersionOne(this->connection_);
  this->Run("DROP INDEX LoginFailures_FailedAt");
  EXPECT_EQ(ReadSchemaVersion(this->connection_), 0);
}

TYPED_TEST(SchemaVersions, ADatabaseWithoutTheCalendarsTablesHasNoVersion) {
  for (const char* table : {"Groups", "Users", "Items", "TidewellSettings", "LoginFailures"}) {
    this->connection_.Execute(Statement("DROP TABLE ").Add(table));
  }
  EXPECT_EQ(ReadSchemaVersion(this->connection_), std::nullopt);
  this->connection_.Close();
  EXPECT_THROW(MigrateSchema(this->engine_.connection_string), SchemaError);
}

TYPED_TEST(SchemaVersions, MigrateTakesVersionOneToTheCurrentOneKeepingTheDataThenDoesNothing) {
  testing::RemakeAsVersionOne(this->connection_);
  this->Run("INSERT INTO Users (OwnerKey, Username) VALUES ('k1', 'Bob')");
  this->Run("INSERT INTO Items (OwnerKey, Heading) VALUES ('k1', 'Tide')");
  this->connection_.Close();

  MigrationReport first = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(first.from, 1);
  EXPECT_EQ(first.to, 5);
  EXPECT_EQ(first.steps,
            (std::vector<std::string>{
                "schema version 1 → 2: the database records its schema version in "
                "TidewellSettings",
                "schema version 2 → 3: added TidewellFeedTokens (each account's private feed "
                "address) and TidewellImportedEvents (the events `tidewell import` made items "
                "of)",
                "schema version 3 → 4: the items' index on their owner also holds their date "
                "(Items_OwnerKey_DateStamp)",
                "schema version 4 → 5: on SQLite, the items' index on owner and date also holds "
                "what the day lists show (Items_OwnerKey_DateStamp_Lists)"}));
  EXPECT_EQ(first.warning, "");

  MigrationReport second = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(second.from, 5);
  EXPECT_TRUE(second.steps.empty());
  EXPECT_EQ(second.warning, "");

  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->RecordedVersion(), "5");
  EXPECT_EQ(this->Count("SELECT COUNT(*) FROM TidewellSettings WHERE Name = 'SchemaVersion'"), 1);
  EXPECT_EQ(this->Count("SELECT COUNT(*) FROM Users"), 1);
  EXPECT_EQ(this->Count("SELECT COUNT(*) FROM Items"), 1);
}

// A database of version 2 gets the feed tokens table: one row per account, tokens unique.
TYPED_TEST(SchemaVersions, MigrateFromVersionTwoAddsTheFeedTokensTable) {
  this->Run("DROP TABLE TidewellFeedTokens");
  this->Run("DROP TABLE TidewellImportedEvents");
  this->Run("UPDATE TidewellSettings SET Value = '2' WHERE Name = 'SchemaVersion'");
  this->connection_.Close();

  MigrationReport report = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(report.from, 2);
  EXPECT_EQ(report.steps.front(),
            "schema version 2 → 3: added TidewellFeedTokens (each "
            "account's private feed address) and TidewellImportedEvents "
            "(the events `tidewell import` made items of)");
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->RecordedVersion(), "5");
  this->Run(
      "INSERT INTO TidewellFeedTokens (OwnerKey, Token, CreatedAt, BodyChangedAt) "
      "VALUES ('k1', '0123456789abcdef0123456789abcdef', 1, 1)");
  EXPECT_EQ(this->Count("SELECT COUNT(*) FROM TidewellFeedTokens WHERE BodyHash = ''"), 1);
  for (const char* clash :
       {"INSERT INTO TidewellFeedTokens (OwnerKey, Token, CreatedAt, "
        "BodyChangedAt) VALUES ('k2', '0123456789abcdef0123456789abcdef', 1, 1)",
        "INSERT INTO TidewellFeedTokens (OwnerKey, Token, CreatedAt, "
        "BodyChangedAt) VALUES ('k1', 'ffffffffffffffffffffffffffffffff', 1, 1)"}) {
    try {
      this->Run(clash);
      ADD_FAILURE() << "stored: " << clash;
    } catch (const ado::DatabaseError& error) {
      EXPECT_EQ(error.number(), ado::error_numbers::kIntegrityViolation) << error.what();
    }
  }
}

// What servers before versions did at start is the first step of the list.
TYPED_TEST(SchemaVersions, MigrateTakesVersionZeroThroughEveryStep) {
  testing::RemakeAsVersionOne(this->connection_);
  this->Run("DROP TABLE TidewellSettings");
  this->Run("DROP TABLE LoginFailures");
  this->Run("DROP INDEX Users_Username_Unique");
  this->Run("CREATE INDEX Users_Username ON Users (Username)");
  this->connection_.Close();

  MigrationReport report = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(report.from, 0);
  ASSERT_EQ(report.steps.size(), 5u);
  EXPECT_EQ(report.steps[0].rfind("schema version 0 → 1: added the site's own tables", 0), 0u)
      << report.steps[0];
  EXPECT_EQ(report.steps[1].rfind("schema version 1 → 2: ", 0), 0u) << report.steps[1];
  EXPECT_EQ(report.steps[2].rfind("schema version 2 → 3: ", 0), 0u) << report.steps[2];
  EXPECT_EQ(report.steps[3].rfind("schema version 3 → 4: ", 0), 0u) << report.steps[3];
  EXPECT_EQ(report.steps[4].rfind("schema version 4 → 5: ", 0), 0u) << report.steps[4];
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->RecordedVersion(), "5");
  EXPECT_TRUE(this->connection_.TableExists("LoginFailures"));
  EXPECT_TRUE(this->connection_.TableExists("TidewellFeedTokens"));
  this->connection_.Close();
  EXPECT_TRUE(MigrateSchema(this->engine_.connection_string).steps.empty());
}

// A step that fails (here the throttle's table, which a view of that name stands in the way
// of) leaves the database as it was: the site's settings table made by the same step before
// it is gone again and no version is recorded.
TYPED_TEST(SchemaVersions, AFailingStepRollsTheWholeMigrationBack) {
  testing::RemakeAsVersionOne(this->connection_);
  this->Run("DROP TABLE TidewellSettings");
  this->Run("DROP TABLE LoginFailures");
  this->Run("CREATE VIEW LoginFailures AS SELECT OwnerKey AS Token FROM Users");
  this->connection_.Close();

  EXPECT_THROW(MigrateSchema(this->engine_.connection_string), SchemaError);

  this->connection_.Open(this->engine_.connection_string);
  EXPECT_FALSE(this->connection_.TableExists("TidewellSettings"));
  EXPECT_EQ(ReadSchemaVersion(this->connection_), 0);
}

TYPED_TEST(SchemaVersions, MigrateRefusesADatabaseANewerTidewellUpgraded) {
  this->Run("UPDATE TidewellSettings SET Value = '6' WHERE Name = 'SchemaVersion'");
  this->connection_.Close();
  try {
    MigrateSchema(this->engine_.connection_string);
    ADD_FAILURE() << "a version 6 database was migrated";
  } catch (const SchemaError& error) {
    EXPECT_EQ(std::string(error.what()),
              "The database was upgraded by a newer tidewell (version 6); this one knows up to "
              "5: run the newer tidewell.");
  }
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->RecordedVersion(), "6");
}

// The rest of the migration still comes, so that the administrator can sign in and rename;
// a later migrate makes the names unique.
TYPED_TEST(SchemaVersions, MigrateNamesAccountsThatShareANameAndMakesNamesUniqueOnceTheyDoNot) {
  testing::RemakeAsVersionOne(this->connection_);
  this->Run("DROP INDEX Users_Username_Unique");
  this->Run("CREATE INDEX Users_Username ON Users (Username)");
  this->Run("INSERT INTO Users (OwnerKey, Username) VALUES ('k1', 'Bob')");
  this->Run("INSERT INTO Users (OwnerKey, Username) VALUES ('k2', 'bob')");
  this->connection_.Close();

  MigrationReport report = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(report.to, 5);
  EXPECT_NE(report.warning.find("more than one account is named \""), std::string::npos)
      << report.warning;
  EXPECT_EQ(SharedNamesWarning(this->engine_.connection_string), report.warning);
  this->connection_.Open(this->engine_.connection_string);
  EXPECT_EQ(this->RecordedVersion(), "5");

  this->Run("UPDATE Users SET Username = 'Bobby' WHERE OwnerKey = 'k2'");
  this->connection_.Close();
  MigrationReport again = MigrateSchema(this->engine_.connection_string);
  EXPECT_EQ(again.steps, std::vector<std::string>{"schema version 5: made user names unique"});
  EXPECT_EQ(again.warning, "");
  EXPECT_EQ(SharedNamesWarning(this->engine_.connection_string), "");
  this->connection_.Open(this->engine_.connection_string);
  try {
    this->Run("INSERT INTO Users (OwnerKey, Username) VALUES ('k3', 'BOB')");
    ADD_FAILURE() << "a second Bob was stored";
  } catch (const ado::DatabaseError& error) {
    EXPECT_EQ(error.number(), ado::error_numbers::kIntegrityViolation) << error.what();
  }
}

}  // namespace
}  // namespace tidewell

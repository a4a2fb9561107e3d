#include "data/schema.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cctype>
#include <filesystem>
#include <set>

#include "data/recordset.h"
#include "tests/data/engines.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;
using Outcome = EmbeddedDatabaseReport::Outcome;

bool Exists(const std::string& path) {
  return std::filesystem::exists(path);
}

template <class Engine>
class Schema : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_.Open(engine_.connection_string);
  }

  // The names of the indexes on the three tables, as the engine's catalogue lists them.
  std::set<std::string> IndexNames() {
    Recordset rs;
    if (TypeParam::kDialect == ASPDataServer::Access) {
      // Without the indexes that keys and unique rules bring along (they have no statement).
      rs.Open(Statement("SELECT name FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL"),
              connection_);
    } else {
      // Without the indexes that keys and unique rules bring along.
      rs.Open(Statement(
                  "SELECT indexname AS name FROM pg_indexes WHERE tablename IN ('groups', 'users', "
                  "'items', 'tidewellsettings', 'loginfailures') "
                  "AND indexname NOT IN (SELECT conname FROM pg_constraint)"),
              connection_);
    }
    std::set<std::string> names;
    for (; !rs.Eof(); rs.MoveNext()) {
      std::string name = rs.Fields("name").Value().AsString();
      for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      names.insert(name);
    }
    return names;
  }

  using TypeParam = Engine;
  Engine engine_;
  ado::Connection connection_;
};

TYPED_TEST_SUITE(Schema, testing::Engines, testing::EngineNames);

TYPED_TEST(Schema, CreatesTheThreeTables) {
  for (const char* table : {"Groups", "Users", "Items"})
    EXPECT_TRUE(this->connection_.TableExists(table)) << table;
}

TYPED_TEST(Schema, CreatesTheSitesOwnTablesWithTheAccountsLockRow) {
  for (const char* table : {"TidewellSettings", "LoginFailures"})
    EXPECT_TRUE(this->connection_.TableExists(table)) << table;
  Recordset rs;
  rs.Open(Statement("SELECT Name FROM TidewellSettings WHERE Name = 'AccountsLock'"),
          this->connection_);
  ASSERT_FALSE(rs.Eof());
  EXPECT_EQ(rs.Fields("Name").Value().AsString(), "AccountsLock");
}

TYPED_TEST(Schema, IndexesServeTheItemListsTheLoginAndTheThrottle) {
  // SQLite's index by owner and date holds the lists' columns too (schema version 5).
  const std::string by_owner_and_date = TypeParam::kDialect == ASPDataServer::Access
                                            ? "items_ownerkey_datestamp_lists"
                                            : "items_ownerkey_datestamp";
  EXPECT_EQ(this->IndexNames(),
            (std::set<std::string>{"items_datestamp_ownerkey", by_owner_and_date,
                                   "users_username_unique", "users_groupid",
                                   "loginfailures_subject", "loginfailures_failedat"}));
}

TYPED_TEST(Schema, UserNamesAreUniqueWithoutRegardToCase) {
  this->connection_.Execute(
      Statement("INSERT INTO Users (OwnerKey, Username) VALUES ('k1', 'Bob')"));
  for (const char* name : {"Bob", "bob", "BOB"}) {
    try {
      this->connection_.Execute(
          Statement("INSERT INTO Users (OwnerKey, Username) VALUES ('k2', ").Text(name).Add(")"));
      ADD_FAILURE() << name << " was stored beside Bob";
    } catch (const ado::DatabaseError& error) {
      EXPECT_EQ(error.number(), ado::error_numbers::kIntegrityViolation) << error.what();
    }
  }
  this->connection_.Execute(
      Statement("INSERT INTO Users (OwnerKey, Username) VALUES ('k3', 'Bobby')"));
}

TYPED_TEST(Schema, RefusesWhenTheTablesExistAndChangesNothing) {
  this->connection_.Execute(
      Statement("INSERT INTO Groups (GroupName) VALUES (").Text("Kept").Add(")"));
  try {
    CreateSchema(this->engine_.connection_string);
    FAIL();
  } catch (const SchemaError& e) {
    EXPECT_STREQ(e.what(),
                 "The database already has a table named Groups: the tables are created only in an "
                 "empty database. Nothing was changed.");
  }
  Recordset rs;
  rs.Open(Statement("SELECT GroupName FROM Groups"), this->connection_);
  EXPECT_EQ(rs.RecordCount(), 1);
}

TEST(CreateSchema, SqliteFileInAMissingFolderIsReported) {
  try {
    CreateSchema("Provider=SQLite;Data Source=/nonexistent-tidewell-folder/calendar.db");
    FAIL();
  } catch (const SchemaError& e) {
    EXPECT_STREQ(
        e.what(),
        "Could not create the tables: Could not create the database file "
        "/nonexistent-tidewell-folder/calendar.db: No such file or directory (error -2147467259)");
  }
}

TEST(CreateSchema, UnknownProviderIsReported) {
  EXPECT_THROW(CreateSchema("Provider=Oracle;Data Source=x"), SchemaError);
}

TEST(PrepareEmbeddedDatabase, CreatesAMissingFileWithTheTables) {
  testing::TempFolder folder;
  std::string path = folder.path() + "/tidewell.db";
  std::string connection_string = "Provider=SQLite;Data Source=" + path;
  EmbeddedDatabaseReport report = PrepareEmbeddedDatabase(connection_string);
  EXPECT_EQ(report.outcome, Outcome::kCreated);
  EXPECT_EQ(report.message, "Created the database " + path + " with the calendar's tables.");
  ASSERT_TRUE(Exists(path));
  ado::Connection connection;
  connection.Open(connection_string);
  EXPECT_TRUE(connection.TableExists("Items"));
}

TEST(PrepareEmbeddedDatabase, TheFileAndItsCompanionsAreTheOwnersAlone) {
  testing::TempFolder folder;
  std::string path = folder.path() + "/tidewell.db";
  ASSERT_EQ(PrepareEmbeddedDatabase("Provider=SQLite;Data Source=" + path).outcome,
            Outcome::kCreated);
  // The write-ahead log and the shared memory exist while a connection is open.
  ado::Connection connection;
  connection.Open("Provider=SQLite;Data Source=" + path);
  connection.Execute(Statement("INSERT INTO Groups (GroupName) VALUES ('Crew')"));
  for (const std::string& file : {path, path + "-wal", path + "-shm"}) {
    struct stat info;
    ASSERT_EQ(::stat(file.c_str(), &info), 0) << file;
    EXPECT_EQ(info.st_mode & 0077, 0u) << file;
  }
}

TEST(PrepareEmbeddedDatabase, UsesAnExistingFileAsItIs) {
  testing::TempFolder folder;
  std::string connection_string = "Provider=SQLite;Data Source=" + folder.path() + "/tidewell.db";
  ASSERT_EQ(PrepareEmbeddedDatabase(connection_string).outcome, Outcome::kCreated);
  EXPECT_EQ(PrepareEmbeddedDatabase(connection_string).outcome, Outcome::kExisting);
}

TEST(PrepareEmbeddedDatabase, MissingFolderIsReportedNotThrown) {
  EmbeddedDatabaseReport report;
  EXPECT_NO_THROW(report = PrepareEmbeddedDatabase(
                      "Provider=SQLite;Data Source=/nonexistent-tidewell-folder/x.db"));
  EXPECT_EQ(report.outcome, Outcome::kFailed);
  EXPECT_NE(report.message.find("No such file or directory"), std::string::npos) << report.message;
  EXPECT_FALSE(Exists("/nonexistent-tidewell-folder"));
}

TEST(PrepareEmbeddedDatabase, OtherEnginesAndMemoryAreNotEmbedded) {
  EXPECT_EQ(PrepareEmbeddedDatabase("Provider=PostgreSQL;host=/tmp").outcome,
            Outcome::kNotEmbedded);
  EXPECT_EQ(PrepareEmbeddedDatabase("Provider=SQLite;Data Source=:memory:").outcome,
            Outcome::kNotEmbedded);
}

TEST(PrepareEmbeddedDatabase, UnusableConnectionStringIsReported) {
  EmbeddedDatabaseReport report = PrepareEmbeddedDatabase("");
  EXPECT_EQ(report.outcome, Outcome::kFailed);
  EXPECT_FALSE(report.message.empty());
}

}  // namespace
}  // namespace tidewell

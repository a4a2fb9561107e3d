#include "data/schema_migrations.h"

#include <cctype>
#include <charconv>

#include "data/connection.h"
#include "data/database_error.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "data/transaction.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

constexpr const char* kVersionSetting = "SchemaVersion";
constexpr const char* kUniqueNamesIndex = "Users_Username_Unique";

// One step of the ordered list: what brings a database of version `to - 1` to `to`. A step
// may add to the warning instead of failing, when what it leaves out does not keep the site
// from running (see MakeNamesUnique).
struct MigrationStep {
  int to;
  const char* what;  // for the report, after "schema version N → M: "
  void (*apply)(ado::Connection& connection, std::string& warning);
};

// Tables of the site's own that the screens never read: settings such as the link secret and
// the schema version, and the login failures the throttle counts.
struct SiteTable {
  const char* name;
  ado::Statement create;
};

const std::vector<SiteTable>& SqliteSiteTables() {
  static const std::vector<SiteTable> tables = {
      {"TidewellSettings", ado::Statement("CREATE TABLE TidewellSettings ("
                                          "Name TEXT NOT NULL PRIMARY KEY, "
                                          "Value TEXT NOT NULL)")},
      {"LoginFailures", ado::Statement("CREATE TABLE LoginFailures ("
                                       "Token TEXT NOT NULL PRIMARY KEY, "
                                       "Subject TEXT NOT NULL, "
                                       "FailedAt INTEGER NOT NULL)")},
  };
  return tables;
}

const std::vector<SiteTable>& PostgresSiteTables() {
  static const std::vector<SiteTable> tables = {
      {"TidewellSettings", ado::Statement("CREATE TABLE TidewellSettings ("
                                          "Name text NOT NULL PRIMARY KEY, "
                                          "Value text NOT NULL)")},
      {"LoginFailures", ado::Statement("CREATE TABLE LoginFailures ("
                                       "Token text NOT NULL PRIMARY KEY, "
                                       "Subject text NOT NULL, "
                                       "FailedAt bigint NOT NULL)")},
  };
  return tables;
}

// The login failures are counted by subject and time and expire by time. The accounts lock is
// a row that the transactions which must not overlap (making the first administrator) update
// first. Written so that a database that has part of them already gets the rest.
const std::vector<ado::Statement>& ThrottleIndexesAndLock() {
  static const std::vector<ado::Statement> statements = {
      ado::Statement("CREATE INDEX IF NOT EXISTS LoginFailures_Subject "
                     "ON LoginFailures (Subject, FailedAt)"),
      ado::Statement("CREATE INDEX IF NOT EXISTS LoginFailures_FailedAt "
                     "ON LoginFailures (FailedAt)"),
      ado::Statement("INSERT INTO TidewellSettings (Name, Value) VALUES ('AccountsLock', '') "
                     "ON CONFLICT DO NOTHING"),
  };
  return statements;
}

// The login looks names up through a unique index which, over a column that ignores case on
// both engines, also keeps two accounts from sharing a name in any spelling however close
// together they are made. It replaces the plain index of earlier versions.
const std::vector<ado::Statement>& UniqueNames() {
  static const std::vector<ado::Statement> statements = {
      ado::Statement("CREATE UNIQUE INDEX IF NOT EXISTS Users_Username_Unique ON Users (Username)"),
      ado::Statement("DROP INDEX IF EXISTS Users_Username"),
  };
  return statements;
}

bool IsSqlite(const ado::Connection& connection) {
  return connection.Provider() == "SQLite";
}

bool HasRow(ado::Connection& connection, const ado::Statement& statement) {
  ado::Recordset rs;
  rs.Open(statement, connection);
  return !rs.Eof();
}

bool IndexExists(ado::Connection& connection, std::string_view name) {
  if (IsSqlite(connection)) {
    return HasRow(connection, ado::Statement("SELECT name FROM sqlite_master WHERE type = 'index' "
                                             "AND name = ")
                                  .Text(name)
                                  .Add(" COLLATE NOCASE"));
  }
  // PostgreSQL keeps unquoted names in lower case.
  std::string lower(name);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return HasRow(connection,
                ado::Statement("SELECT indexname FROM pg_indexes WHERE indexname = ").Text(lower));
}

// The names more than one account has (without regard to case), as a list for a message.
std::string SharedNames(ado::Connection& connection) {
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT Username FROM Users GROUP BY Username HAVING COUNT(*) > 1"),
          connection);
  std::string names;
  for (; !rs.Eof(); rs.MoveNext()) {
    names += (names.empty() ? "\"" : ", \"") + CStrOrBlank(rs.Fields("Username").Value()) + "\"";
  }
  return names;
}

std::string SharedNamesText(const std::string& names) {
  return "user names are not yet kept unique: more than one account is named " + names +
         ". Rename or delete all but one of each in the administrator options, then run "
         "`tidewell migrate` again to make names unique.";
}

// Leaves the index out while accounts share a name, so that the site still runs and its
// administrator can sign in and rename them; everything else of the migration goes ahead.
void MakeNamesUnique(ado::Connection& connection, std::string& warning) {
  if (std::string shared = SharedNames(connection); !shared.empty()) {
    warning = SharedNamesText(shared);
    return;
  }
  for (const ado::Statement& statement : UniqueNames()) connection.Execute(statement);
}

// Version 1: what servers before versions added at start to the three calendar tables.
void AddSiteTablesThrottleAndUniqueNames(ado::Connection& connection, std::string& warning) {
  for (const SiteTable& table : IsSqlite(connection) ? SqliteSiteTables() : PostgresSiteTables()) {
    if (!connection.TableExists(table.name)) connection.Execute(table.create);
  }
  for (const ado::Statement& statement : ThrottleIndexesAndLock()) connection.Execute(statement);
  MakeNamesUnique(connection, warning);
}

// Version 2 changes no table: from it on the database says which version it is, which the
// recording after the last step writes.
void RecordTheVersionFromNowOn(ado::Connection&, std::string&) {}

// Version 3: the tables of the calendar's exchange with other calendar programs.
void AddFeedTables(ado::Connection& connection, std::string&) {
  const SqlEngine engine = IsSqlite(connection) ? SqlEngine::kSqlite : SqlEngine::kPostgres;
  connection.Execute(FeedTokensTable(engine));
  connection.Execute(ImportedEventsTable(engine));
}

// Version 4: the views read a range of days of each owner, and the index on the owner alone
// led the engine, before it had statistics, to read every item the owner ever had.
void IndexItemsByOwnerAndDate(ado::Connection& connection, std::string&) {
  connection.Execute(ado::Statement("DROP INDEX IF EXISTS Items_OwnerKey"));
  connection.Execute(ado::Statement(
      "CREATE INDEX IF NOT EXISTS Items_OwnerKey_DateStamp ON Items (OwnerKey, DateStamp)"));
}

// Version 5, on SQLite: the index on owner and date holds every column the day lists show, so
// that a view reads its items from the index alone instead of looking up each item's row (a
// busy month view costs a twelfth less). PostgreSQL keeps the narrow index: it refuses an index
// entry past a few kilobytes, and a heading may be longer.
void IndexTheListsColumns(ado::Connection& connection, std::string&) {
  if (!IsSqlite(connection)) return;
  connection.Execute(
      ado::Statement("CREATE INDEX IF NOT EXISTS Items_OwnerKey_DateStamp_Lists ON Items "
                     "(OwnerKey, DateStamp, TimeStamp, TimeText, Heading, Urgent, Complete)"));
  connection.Execute(ado::Statement("DROP INDEX IF EXISTS Items_OwnerKey_DateStamp"));
}

const std::vector<MigrationStep>& Steps() {
  static const std::vector<MigrationStep> steps = {
      {1,
       "added the site's own tables that were missing (TidewellSettings, LoginFailures), the "
       "login throttle's indexes, the accounts lock row and the unique index on user names",
       AddSiteTablesThrottleAndUniqueNames},
      {2, "the database records its schema version in TidewellSettings", RecordTheVersionFromNowOn},
      {3,
       "added TidewellFeedTokens (each account's private feed address) and "
       "TidewellImportedEvents (the events `tidewell import` made items of)",
       AddFeedTables},
      {4, "the items' index on their owner also holds their date (Items_OwnerKey_DateStamp)",
       IndexItemsByOwnerAndDate},
      {5,
       "on SQLite, the items' index on owner and date also holds what the day lists show "
       "(Items_OwnerKey_DateStamp_Lists)",
       IndexTheListsColumns},
  };
  return steps;
}

void RecordVersion(ado::Connection& connection, int version) {
  connection.Execute(
      ado::Statement("DELETE FROM TidewellSettings WHERE Name = ").Text(kVersionSetting));
  connection.Execute(ado::Statement("INSERT INTO TidewellSettings (Name, Value) VALUES (")
                         .Text(kVersionSetting)
                         .Add(", ")
                         .Text(std::to_string(version))
                         .Add(")"));
}

std::optional<int> RecordedVersion(ado::Connection& connection) {
  if (!connection.TableExists("TidewellSettings")) return std::nullopt;
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT Value FROM TidewellSettings WHERE Name = ").Text(kVersionSetting),
          connection);
  if (rs.Eof()) return std::nullopt;
  const std::string text = CStrOrBlank(rs.Fields("Value").Value());
  int version = 0;
  auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), version);
  if (error != std::errc() || end != text.data() + text.size() || version < 1) {
    throw SchemaError("The database's schema version \"" + text + "\" is no version number.");
  }
  return version;
}

// Everything CreateSchema made before versions were recorded, beyond the calendar's tables.
bool HasEverythingOfVersionOne(ado::Connection& connection) {
  for (const char* table : {"TidewellSettings", "LoginFailures"}) {
    if (!connection.TableExists(table)) return false;
  }
  for (const char* index : {"Items_DateStamp_OwnerKey", "Items_OwnerKey", "Users_GroupID",
                            kUniqueNamesIndex, "LoginFailures_Subject", "LoginFailures_FailedAt"}) {
    if (!IndexExists(connection, index)) return false;
  }
  return HasRow(connection,
                ado::Statement("SELECT Name FROM TidewellSettings WHERE Name = 'AccountsLock'"));
}

std::string Describe(const ado::DatabaseError& error) {
  return error.description() + " (error " + std::to_string(error.number()) + ")";
}

}  // namespace

ado::Statement FeedTokensTable(SqlEngine engine) {
  // The token is the whole secret of a feed address, so it is unique and looked up through
  // its own index. BodyHash and BodyChangedAt are the feed's last body as any server served
  // it: a server that serves a body of another hash records it and the time, so that every
  // server answers the same Last-Modified for the same body.
  if (engine == SqlEngine::kSqlite) {
    return ado::Statement(
        "CREATE TABLE TidewellFeedTokens ("
        "OwnerKey TEXT NOT NULL PRIMARY KEY, "
        "Token TEXT NOT NULL UNIQUE, "
        "CreatedAt INTEGER NOT NULL, "
        "BodyHash TEXT NOT NULL DEFAULT '', "
        "BodyChangedAt INTEGER NOT NULL)");
  }
  return ado::Statement(
      "CREATE TABLE TidewellFeedTokens ("
      "OwnerKey text NOT NULL PRIMARY KEY, "
      "Token text NOT NULL UNIQUE, "
      "CreatedAt bigint NOT NULL, "
      "BodyHash text NOT NULL DEFAULT '', "
      "BodyChangedAt bigint NOT NULL)");
}

ado::Statement ImportedEventsTable(SqlEngine engine) {
  // The key is what makes a second import of the same file add nothing: an account gets at
  // most one item of each instance of each event.
  if (engine == SqlEngine::kSqlite) {
    return ado::Statement(
        "CREATE TABLE TidewellImportedEvents ("
        "OwnerKey TEXT NOT NULL, "
        "Uid TEXT NOT NULL, "
        "InstanceStart TEXT NOT NULL, "
        "ItemID INTEGER NOT NULL, "
        "PRIMARY KEY (OwnerKey, Uid, InstanceStart))");
  }
  return ado::Statement(
      "CREATE TABLE TidewellImportedEvents ("
      "OwnerKey text NOT NULL, "
      "Uid text NOT NULL, "
      "InstanceStart text NOT NULL, "
      "ItemID integer NOT NULL, "
      "PRIMARY KEY (OwnerKey, Uid, InstanceStart))");
}

std::optional<int> ReadSchemaVersion(ado::Connection& connection) {
  for (const char* table : {"Groups", "Users", "Items"}) {
    if (!connection.TableExists(table)) return std::nullopt;
  }
  if (std::optional<int> recorded = RecordedVersion(connection)) return recorded;
  return HasEverythingOfVersionOne(connection) ? 1 : 0;
}

std::optional<int> ReadSchemaVersion(const std::string& connection_string) {
  ado::Connection connection;
  connection.Open(connection_string);
  return ReadSchemaVersion(connection);
}

MigrationReport MigrateSchema(const std::string& connection_string) {
  MigrationReport report;
  ado::Connection connection;
  try {
    connection.Open(connection_string);
    InOneTransaction(connection, [&] {
      std::optional<int> version = ReadSchemaVersion(connection);
      if (!version) {
        throw SchemaError(
            "The database has none of the calendar's tables: create them with `tidewell "
            "init-db`.");
      }
      if (*version > kSchemaVersion) {
        throw SchemaError("The database was upgraded by a newer tidewell (version " +
                          std::to_string(*version) + "); this one knows up to " +
                          std::to_string(kSchemaVersion) + ": run the newer tidewell.");
      }
      report.from = *version;
      report.to = kSchemaVersion;
      const std::string current = std::to_string(kSchemaVersion);
      if (*version == kSchemaVersion) {
        if (IndexExists(connection, kUniqueNamesIndex)) return;
        MakeNamesUnique(connection, report.warning);
        if (report.warning.empty()) {
          report.steps.push_back("schema version " + current + ": made user names unique");
        }
        return;
      }
      for (const MigrationStep& step : Steps()) {
        if (step.to <= *version) continue;
        step.apply(connection, report.warning);
        report.steps.push_back("schema version " + std::to_string(step.to - 1) + " → " +
                               std::to_string(step.to) + ": " + step.what);
      }
      RecordVersion(connection, kSchemaVersion);
    });
  } catch (const ado::DatabaseError& error) {
    throw SchemaError("Could not migrate the database, nothing was changed: " + Describe(error));
  }
  return report;
}

std::string SharedNamesWarning(const std::string& connection_string) {
  ado::Connection connection;
  connection.Open(connection_string);
  if (IndexExists(connection, kUniqueNamesIndex)) return "";
  const std::string shared = SharedNames(connection);
  return shared.empty() ? "user names are not yet kept unique: run `tidewell migrate` to make "
                          "them unique."
                        : SharedNamesText(shared);
}

void CompleteNewSchema(ado::Connection& connection) {
  std::string warning;  // a new database has no accounts to share a name
  for (const MigrationStep& step : Steps()) step.apply(connection, warning);
  RecordVersion(connection, kSchemaVersion);
}

}  // namespace tidewell

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/schema.h"
#include "data/statement.h"

namespace tidewell {

namespace ado {
class Connection;
}

// The schema versions of the calendar's database. The version is kept as the row
// 'SchemaVersion' of TidewellSettings, beside the link secret: a database made by CreateSchema
// carries it from the start, and MigrateSchema writes it in the same transaction as the steps
// that bring an older database up to date.
//   0  tables made before versions were recorded that lack part of version 1
//   1  the tables, indexes and accounts lock row that init-db made before versions were
//      recorded (a database of those with no version row reads as version 1)
//   2  the same, and the version recorded in the database
//   3  and TidewellFeedTokens: each account's feed token (see FeedTokensTable), and
//      TidewellImportedEvents: the events imported into items (see ImportedEventsTable)
//   4  the items' index on OwnerKey replaced by one on (OwnerKey, DateStamp)
inline constexpr int kSchemaVersion = 5;  // the version this tidewell makes and needs

enum class SqlEngine { kSqlite, kPostgres };

// The table of feed tokens, one row per account:
//   OwnerKey       the account (Users.OwnerKey), the key
//   Token          32 lower-case hex digits of random, unique: the secret part of the address
//   CreatedAt      Unix seconds when the token was made
//   BodyHash       the hash of the last feed body served for it ('' before the first)
//   BodyChangedAt  Unix seconds when a body of that hash was first served: Last-Modified
// Made by the step to version 3.
ado::Statement FeedTokensTable(SqlEngine engine);

// The events `tidewell import` made items of, one row per item it made:
//   OwnerKey       the account the item was made for (Users.OwnerKey)
//   Uid            the event's UID (or the one derived from its content when it has none)
//   InstanceStart  which instance of the event: its RECURRENCE-ID, or the start of the
//                  instance the recurrence gave, as iCalendar text (UTC "20261124T080000Z",
//                  a floating "20261124T090000" or a date "20261124")
//   ItemID         the item made (it may since have been deleted through the screens)
// Keyed on the first three. Made by the step to version 3.
ado::Statement ImportedEventsTable(SqlEngine engine);

// The database's schema version: the recorded one, else, for the calendar's tables with no
// record, 1 when they have everything version 1 has and 0 when they do not. nullopt when the
// database has none of the calendar's tables. Throws ado::DatabaseError, or SchemaError when
// the recorded version is no number.
std::optional<int> ReadSchemaVersion(ado::Connection& connection);
std::optional<int> ReadSchemaVersion(const std::string& connection_string);

// What MigrateSchema did.
struct MigrationReport {
  int from = 0;  // the version found
  int to = 0;    // the version the database has now
  // One line per step taken, "schema version 1 → 2: ...", in order; empty when there was
  // nothing to do.
  std::vector<std::string> steps;
  // When accounts share a name the unique index on user names cannot be made: the rest is
  // done, and this names the accounts (a later migrate makes the index once they are renamed).
  std::string warning;
};

// Brings the database up to kSchemaVersion in one transaction: every step after its version,
// in order, then the new version recorded, or nothing at all when any step fails. A database
// of the current version is left as it is (apart from the unique index on user names, made
// when an earlier migrate had to leave it out). Throws SchemaError, having changed nothing,
// when a step fails, the database has no calendar tables, or its version is newer than this
// tidewell knows.
MigrationReport MigrateSchema(const std::string& connection_string);

// The warning MigrateSchema gave about accounts that share a name, for a database of the
// current version whose user names are not unique yet; "" when they are. Throws
// ado::DatabaseError.
std::string SharedNamesWarning(const std::string& connection_string);

// Runs every step on the calendar's tables just made and records the current version, inside
// the caller's transaction: how CreateSchema makes a new database, so that a new database and
// a migrated one are the same.
void CompleteNewSchema(ado::Connection& connection);

}  // namespace tidewell

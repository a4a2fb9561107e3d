#pragma once

#include <stdexcept>
#include <string>

namespace tidewell {

// Why CreateSchema did nothing or stopped; the message says what to do about it.
class SchemaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Creates the calendar's three tables and the site's own on the database the connection string
// names (SQLite or PostgreSQL), in one transaction:
//   Groups (GroupID generated key, GroupName unique without regard to case)
//   Users  (OwnerKey key, Username, Password, Initials, DefaultView, Options,
//           Administrator flag defaulting to false, GroupID)
//   Items  (ItemID generated key, OwnerKey, DateStamp date, TimeStamp hour, TimeText,
//           Heading, Description, Urgent and Complete flags defaulting to false)
//   TidewellSettings (Name key, Value): the link secret, the accounts lock row, the schema
//                    version (see schema_migrations.h)
//   LoginFailures (Token key, Subject, FailedAt Unix seconds): what the login throttle counts
//   TidewellFeedTokens (OwnerKey key, Token unique, ...): the accounts' feed addresses (see
//                      FeedTokensTable in schema_migrations.h)
// with indexes for the item lists (Items by DateStamp and OwnerKey, and by OwnerKey and
// DateStamp), the group screens (Users by GroupID), the login (a unique index on
// Users.Username, without regard to case) and the throttle, at the current schema version,
// recorded. A SQLite file that does not exist yet is
// created (its folder must exist). Refuses, changing nothing, when any of the tables exists
// already. Throws SchemaError.
void CreateSchema(const std::string& connection_string);

// What PrepareEmbeddedDatabase found or did.
struct EmbeddedDatabaseReport {
  enum class Outcome {
    kNotEmbedded,  // the connection string names no SQLite file (another engine, or
                   // an in-memory database): nothing to do
    kExisting,     // the file is there; it is used as it is
    kCreated,      // the file was created with the three tables
    kFailed,       // the file could not be created, or the connection string cannot be
                   // used; `message` says why
  };
  Outcome outcome;
  std::string message;
};

// Run by the server at start: when the connection string names a SQLite file that does not
// exist yet, creates it with the schema. Never throws: a failure (a missing or read-only
// folder, say) is reported, and the requests then show the error screen.
EmbeddedDatabaseReport PrepareEmbeddedDatabase(const std::string& connection_string);

}  // namespace tidewell

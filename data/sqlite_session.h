#pragma once

#include <memory>
#include <string>

#include "data/connection_string.h"
#include "data/session.h"

namespace tidewell::ado {

// The embedded engine: "Provider=SQLite;Data Source=PATH". It speaks the Access dialect the
// Jet engine spoke (see dialect_translation.h): dates are stored as ISO text and read back as
// Date values, true is stored as -1, text columns declared COLLATE NOCASE compare names
// without regard to case. The database file must exist (SQLiteDatabaseFile creates one);
// sessions run in WAL mode with a busy timeout, so that concurrent requests wait for each
// other instead of failing, and keep their prepared statements for reuse.
std::unique_ptr<Session> OpenSqliteSession(const ConnectionSettings& settings);

// The file a SQLite connection string names; throws DatabaseError (kInvalidArgument) when
// it names none.
std::string SqliteDataSource(const ConnectionSettings& settings);

// Creates an empty database file at `path`. Throws DatabaseError (E_FAIL) naming the reason
// when it cannot, e.g. when the folder is missing or read-only.
void CreateSqliteDatabaseFile(const std::string& path);

}  // namespace tidewell::ado

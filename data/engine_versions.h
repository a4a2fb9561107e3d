#pragma once

#include <string>

namespace tidewell::ado {

// The versions of the engines' client libraries this process runs with: what the dynamic
// linker loaded, which may be newer than the headers the build saw.

// SQLite's own text, e.g. "3.40.1".
std::string SqliteLibraryVersion();

// libpq's, as major.minor from PQlibVersion, e.g. "15.8".
std::string PostgresLibraryVersion();

}  // namespace tidewell::ado

#include "data/engine_versions.h"

#include <libpq-fe.h>
#include <sqlite3.h>

namespace tidewell::ado {

std::string SqliteLibraryVersion() {
  return sqlite3_libversion();
}

std::string PostgresLibraryVersion() {
  // Since version 10 the number is major * 10000 + minor.
  const int version = PQlibVersion();
  return std::to_string(version / 10000) + "." + std::to_string(version % 10000);
}

}  // namespace tidewell::ado

// tidewell version (and tidewell --version): this build's version and the database libraries'.

#include <cstdio>

#include "data/engine_versions.h"
#include "host/commands.h"

namespace tidewell {
namespace {

constexpr const char* kVersionUsage =
    "Usage: tidewell version   (or tidewell --version)\n"
    "\n"
    "Prints \"tidewell X.Y.Z\", then the versions of the SQLite and libpq libraries the\n"
    "binary runs with.\n";

}  // namespace

int VersionCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kVersionUsage, stdout), 0;
  args.Expect({"help"});
  // TIDEWELL_VERSION is the project's VERSION in CMakeLists.txt.
  std::printf("tidewell %s\nSQLite %s\nlibpq %s\n", TIDEWELL_VERSION,
              ado::SqliteLibraryVersion().c_str(), ado::PostgresLibraryVersion().c_str());
  return 0;
}

}  // namespace tidewell

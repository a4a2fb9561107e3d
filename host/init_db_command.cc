// tidewell init-db: the calendar's tables on an empty database.

#include <cstdio>
#include <string>

#include "data/schema.h"
#include "data/schema_migrations.h"
#include "host/commands.h"
#include "host/site_setup.h"

namespace tidewell {
namespace {

constexpr const char* kInitDbUsage =
    "Usage: tidewell init-db (--connection STRING | --config FILE)\n"
    "\n"
    "Creates the tables Groups, Users and Items, with their keys and indexes, and the site's\n"
    "own TidewellSettings, LoginFailures, TidewellFeedTokens and TidewellImportedEvents on an\n"
    "empty database, at the current schema version, recorded in TidewellSettings. Refuses\n"
    "when any of them exists already.\n"
    "\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\" or\n"
    "                       \"Provider=PostgreSQL;host=db.example;dbname=tidewell\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n";

}  // namespace

int InitDbCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kInitDbUsage, stdout), 0;
  args.Expect({"connection", "config", "help"});
  const std::string connection = ConnectionFrom(args);
  CreateSchema(connection);
  // Made here rather than by the first server, so that servers started together agree at once.
  SiteLinkSecret(connection);
  std::puts(std::string(
      "tidewell init-db: created the tables Groups, Users and Items, and the site's own "
      "TidewellSettings (with a new link secret), LoginFailures, TidewellFeedTokens and "
      "TidewellImportedEvents, at schema version " +
      std::to_string(kSchemaVersion)).c_str());
  return 0;
}

}  // namespace tidewell

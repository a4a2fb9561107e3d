// tidewell migrate: an older database brought up to this tidewell's schema version.

#include <cstdio>
#include <string>

#include "data/schema_migrations.h"
#include "host/commands.h"

namespace tidewell {
namespace {

constexpr const char* kMigrateUsage =
    "Usage: tidewell migrate (--connection STRING | --config FILE)\n"
    "\n"
    "Brings a database made by an earlier tidewell up to this one's schema version, in one\n"
    "transaction: every step or none. Prints each step it took; says so and changes nothing\n"
    "when the database is current already. Refuses a database a newer tidewell upgraded.\n"
    "Stop every server of the site and take a backup first (see `tidewell backup`).\n"
    "\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\" or\n"
    "                       \"Provider=PostgreSQL;host=db.example;dbname=tidewell\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n";

}  // namespace

int MigrateCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kMigrateUsage, stdout), 0;
  args.Expect({"connection", "config", "help"});
  const MigrationReport report = MigrateSchema(ConnectionFrom(args));
  for (const std::string& step : report.steps) std::printf("tidewell migrate: %s\n", step.c_str());
  if (!report.warning.empty()) {
    std::fprintf(stderr, "tidewell migrate: warning: %s\n", report.warning.c_str());
  }
  if (report.steps.empty() && report.warning.empty()) {
    std::printf("tidewell migrate: the database is at schema version %d already; nothing to do\n",
                report.to);
  }
  return 0;
}

}  // namespace tidewell

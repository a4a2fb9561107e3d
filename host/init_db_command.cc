// tidewell init-db: the calendar's tables on an empty database.

#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>

#include "data/schema.h"
#include "host/commands.h"
#include "host/site_setup.h"

namespace tidewell {
namespace {

constexpr const char* kInitDbUsage =
    "Usage: tidewell init-db (--connection STRING | --config FILE)\n"
    "\n"
    "Creates the tables Groups, Users and Items, with their keys and indexes, on an empty\n"
    "database. Refuses when any of them exists already.\n"
    "\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\" or\n"
    "                       \"Provider=PostgreSQL;host=db.example;dbname=tidewell\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n";

}  // namespace

std::string ConnectionStringFrom(const Arguments& args) {
  if (std::optional<std::string> connection = args.Get("connection")) return *connection;
  if (args.Has("config")) return ConfigFrom(args).pages.front().PropertyValue("ConnectionString");
  throw std::invalid_argument("give --connection STRING or --config FILE");
}

int InitDbCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kInitDbUsage, stdout), 0;
  args.Expect({"connection", "config", "help"});
  const std::string connection = ConnectionStringFrom(args);
  CreateSchema(connection);
  // Made here rather than by the first server, so that servers started together agree at once.
  SiteLinkSecret(connection);
  std::puts(
      "tidewell init-db: created the tables Groups, Users and Items, and the site's own "
      "TidewellSettings (with a new link secret) and LoginFailures");
  return 0;
}

}  // namespace tidewell

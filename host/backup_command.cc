// tidewell backup: a consistent copy of the embedded database, taken while servers run.

#include <cstdio>
#include <stdexcept>
#include <string>

#include "data/connection_string.h"
#include "data/sqlite_backup.h"
#include "data/sqlite_session.h"
#include "host/commands.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

constexpr const char* kBackupUsage =
    "Usage: tidewell backup --to FILE (--connection STRING | --config FILE) [--force]\n"
    "\n"
    "Copies the SQLite database while servers go on using it (SQLite's online backup), checks\n"
    "the copy with PRAGMA integrity_check and only then puts it at FILE, readable by its\n"
    "owner only. Prints the file, its size and the users and items it holds. To restore,\n"
    "stop the servers and copy the file back over the database.\n"
    "\n"
    "  --to FILE            where the copy goes; an existing FILE is refused\n"
    "  --force              replace an existing FILE\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n"
    "\n"
    "A PostgreSQL database is backed up with PostgreSQL's own pg_dump.\n";

constexpr const char* kUsePgDump =
    "a PostgreSQL database is backed up with PostgreSQL's own tools, not with tidewell "
    "backup: e.g. pg_dump -Fc -h db.example -U tidewell -f tidewell.dump tidewell (restore "
    "with pg_restore -d tidewell tidewell.dump into an empty database)";

}  // namespace

int BackupCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0, {"help", "force"});
  if (args.Has("help")) return std::fputs(kBackupUsage, stdout), 0;
  args.Expect({"to", "force", "connection", "config", "help"});
  const std::string connection = ConnectionFrom(args);
  const ado::ConnectionSettings settings = ado::ParseConnectionString(connection);
  if (EqualsIgnoringCase(settings.provider, "PostgreSQL")) {
    throw std::invalid_argument(kUsePgDump);
  }
  if (!EqualsIgnoringCase(settings.provider, "SQLite")) {
    throw std::invalid_argument("backup copies SQLite databases; the connection string names "
                                "the provider \"" + settings.provider + "\"");
  }
  const std::optional<std::string> to = args.Get("to");
  if (!to || to->empty()) throw std::invalid_argument("give --to FILE");
  const std::string source = ado::SqliteDataSource(settings);
  if (source == ":memory:") throw std::invalid_argument("an in-memory database has no file");
  const SqliteBackupReport report = BackupSqliteDatabase(source, *to, args.Has("force"));
  std::printf("tidewell backup: %s, %lld bytes, %lld user%s, %lld item%s\n", report.file.c_str(),
              report.bytes, report.users, report.users == 1 ? "" : "s", report.items,
              report.items == 1 ? "" : "s");
  return 0;
}

}  // namespace tidewell

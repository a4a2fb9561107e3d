#include "data/sqlite_backup.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>

namespace tidewell {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kFirstStepPages = 64;
constexpr int kBusyWaitMs = 20;
// How long the copy may wait for a busy source, and how long it may take in all, before it
// gives up rather than hang a cron job.
constexpr auto kBusyPatience = std::chrono::seconds(30);
constexpr auto kWholeCopyLimit = std::chrono::minutes(10);

// A database handle closed when the scope ends.
struct Database {
  sqlite3* db = nullptr;
  ~Database() { sqlite3_close_v2(db); }
};

// A temporary file removed when the scope ends unless it was kept (renamed into place).
struct TemporaryFile {
  std::string path;
  bool kept = false;
  ~TemporaryFile() {
    if (kept || path.empty()) return;
    ::unlink(path.c_str());
    ::unlink((path + "-journal").c_str());
  }
};

std::string ErrorOf(sqlite3* db) {
  return db ? sqlite3_errmsg(db) : "out of memory";
}

void Open(Database& database, const std::string& path, int flags, const char* role) {
  if (sqlite3_open_v2(path.c_str(), &database.db, flags, nullptr) != SQLITE_OK) {
    throw BackupError(std::string("Could not open the ") + role + " " + path + ": " +
                      ErrorOf(database.db));
  }
  sqlite3_busy_timeout(database.db, 1000);
}

// The one value a statement answers as text; throws BackupError when it fails.
std::string SingleValue(sqlite3* db, const char* sql) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK) {
    throw BackupError(std::string("The copy cannot answer \"") + sql + "\": " + ErrorOf(db));
  }
  std::string value;
  if (sqlite3_step(statement) == SQLITE_ROW) {
    const unsigned char* text = sqlite3_column_text(statement, 0);
    value = text ? reinterpret_cast<const char*>(text) : "";
  }
  sqlite3_finalize(statement);
  return value;
}

// Copies every page of `source` into `copy`. sqlite3_backup_step starts over by itself when
// another connection wrote to the source between two steps; each time that is seen the step
// grows, until one step copies the whole database under one read (which, in WAL mode, does
// not keep the servers from writing).
void CopyPages(sqlite3* source, sqlite3* copy) {
  sqlite3_backup* backup = sqlite3_backup_init(copy, "main", source, "main");
  if (backup == nullptr) throw BackupError("Could not start the backup: " + ErrorOf(copy));
  const auto started = Clock::now();
  auto busy_since = started;
  int step_pages = kFirstStepPages;
  int copied_before = 0;
  int code = SQLITE_OK;
  while (true) {
    code = sqlite3_backup_step(backup, step_pages);
    if (code == SQLITE_DONE) break;
    const auto now = Clock::now();
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED) {
      if (now - busy_since > kBusyPatience || now - started > kWholeCopyLimit) break;
      sqlite3_sleep(kBusyWaitMs);
      continue;
    }
    if (code != SQLITE_OK || now - started > kWholeCopyLimit) break;
    busy_since = now;
    const int copied = sqlite3_backup_pagecount(backup) - sqlite3_backup_remaining(backup);
    if (copied < copied_before) step_pages *= 2;  // started over: a server wrote meanwhile
    copied_before = copied;
  }
  sqlite3_backup_finish(backup);
  if (code != SQLITE_DONE) {
    throw BackupError(code == SQLITE_BUSY || code == SQLITE_LOCKED || code == SQLITE_OK
                          ? std::string("The database stayed busy; no copy was made.")
                          : "The copy failed: " + std::string(sqlite3_errstr(code)));
  }
}

// The copy stands alone (no -wal file beside it) and answers "ok" to the integrity check.
void CheckCopy(sqlite3* copy) {
  if (sqlite3_exec(copy, "PRAGMA journal_mode = DELETE", nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw BackupError("Could not finish the copy: " + ErrorOf(copy));
  }
  if (std::string answer = SingleValue(copy, "PRAGMA integrity_check"); answer != "ok") {
    throw BackupError("The copy failed its integrity check (" + answer + "); it was removed.");
  }
}

// Puts the checked copy in place: replacing an existing file only when allowed, and never one
// that appeared since the start.
void PutInPlace(TemporaryFile& temporary, const std::string& target, bool overwrite) {
  if (overwrite) {
    if (::rename(temporary.path.c_str(), target.c_str()) != 0) {
      throw BackupError("Could not rename the copy to " + target + ": " + std::strerror(errno));
    }
  } else {
    if (::link(temporary.path.c_str(), target.c_str()) != 0) {
      throw BackupError(errno == EEXIST ? target + " exists: give --force to replace it."
                                        : "Could not put the copy at " + target + ": " +
                                              std::strerror(errno));
    }
    ::unlink(temporary.path.c_str());
  }
  temporary.kept = true;
}

}  // namespace

SqliteBackupReport BackupSqliteDatabase(const std::string& source, const std::string& target,
                                        bool overwrite) {
  struct stat info;
  if (::stat(source.c_str(), &info) != 0) {
    throw BackupError("There is no database file " + source + ".");
  }
  if (!overwrite && ::stat(target.c_str(), &info) == 0) {
    throw BackupError(target + " exists: give --force to replace it.");
  }
  const std::filesystem::path target_path(target);
  const std::filesystem::path folder =
      target_path.has_parent_path() ? target_path.parent_path() : std::filesystem::path(".");
  TemporaryFile temporary;
  {
    std::string pattern = (folder / ("." + target_path.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(pattern.data());  // mode 0600, as the database itself
    if (fd < 0) {
      throw BackupError("Could not create a file in " + folder.string() + ": " +
                        std::strerror(errno));
    }
    ::close(fd);
    temporary.path = pattern;
  }

  SqliteBackupReport report;
  {
    Database from;
    Open(from, source, SQLITE_OPEN_READWRITE, "database");  // only read: the copy
    Database copy;
    Open(copy, temporary.path, SQLITE_OPEN_READWRITE, "copy");
    CopyPages(from.db, copy.db);
    CheckCopy(copy.db);
    report.users = std::stoll(SingleValue(copy.db, "SELECT count(*) FROM Users"));
    report.items = std::stoll(SingleValue(copy.db, "SELECT count(*) FROM Items"));
  }
  PutInPlace(temporary, target, overwrite);
  report.file = target;
  report.bytes = ::stat(target.c_str(), &info) == 0 ? static_cast<long long>(info.st_size) : 0;
  return report;
}

}  // namespace tidewell

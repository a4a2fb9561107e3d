#pragma once

#include <stdexcept>
#include <string>

namespace tidewell {

// Why BackupSqliteDatabase made no copy; the message says what to do about it.
class BackupError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What BackupSqliteDatabase copied.
struct SqliteBackupReport {
  std::string file;
  long long bytes = 0;
  long long users = 0;  // rows of Users in the copy
  long long items = 0;  // rows of Items in the copy
};

// Copies the SQLite database at `source` to `target` with SQLite's online backup, so that the
// copy is consistent while servers go on reading and writing the source: pages are copied in
// steps, waiting briefly whenever the source is busy, and the copy starts over when a server
// wrote in between (with larger steps each time, so that it ends). The copy is made in a
// temporary file beside `target`, readable by its owner only, checked with
// PRAGMA integrity_check, and only then renamed to `target`. An existing `target` is replaced
// only when `overwrite`. Throws BackupError, leaving no temporary file behind.
SqliteBackupReport BackupSqliteDatabase(const std::string& source, const std::string& target,
                                        bool overwrite);

}  // namespace tidewell

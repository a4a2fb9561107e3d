#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection_string.h"
#include "data/rows_per_key.h"
#include "runtime/variant.h"

namespace tidewell::ado {

// What a column holds, as far as reading and writing values cares.
enum class ColumnKind { kOther, kText, kInteger, kFloat, kBoolean, kDate };

// A statement's answer: its columns and, fully read, its rows; and how many rows a write
// touched.
struct Rows {
  std::vector<std::string> names;
  std::vector<ColumnKind> kinds;
  std::vector<std::vector<Variant>> values;
  long affected = 0;
};

// What a session did since it opened: statements it had the engine prepare, and statements
// it ran (prepared, reused or sent as text). A statement of a shape the session has run
// before is run without being prepared again.
struct StatementCounts {
  long long prepared = 0;
  long long run = 0;
  // Runs of a statement that keeps the first rows of each key which the engine kept itself
  // (rewritten for crowded keys) rather than the session passing over the rest.
  long long kept_per_key = 0;
  // Runs of such a statement whose rows the session put in order itself (SQLite).
  long long sorted_by_session = 0;
};

// One open conversation with a database engine: what a provider offers the Connection and
// Recordset. Sessions outlive requests in a pool (see AcquireSession); one thread uses a
// session at a time. Every failure is a DatabaseError with the engine's own message.
class Session {
 public:
  virtual ~Session() = default;

  // Runs one statement written in the provider's dialect: the provider rewrites what its
  // engine spells differently (TOP, date literals) and reads every row.
  virtual Rows Run(std::string_view statement) = 0;
  // The same, keeping only the rows `per_key` keeps; the providers pass over the others
  // unread.
  virtual Rows Run(std::string_view statement, const RowsPerKey& per_key);

  // Runs text in the engine's own language with bound values; value n (from 1) stands where
  // Parameter(n) is written. The Recordset writes rows back with it.
  virtual Rows RunBound(std::string_view native_text, const std::vector<Variant>& values) = 0;
  virtual std::string Parameter(int n) const = 0;

  // The columns of the table's primary key, in key order ({} for an unknown table).
  virtual std::vector<std::string> KeyColumns(std::string_view table) = 0;
  virtual bool TableExists(std::string_view table) = 0;

  // False once the link to the engine broke: the pool then drops the session.
  virtual bool Reusable() const { return true; }
  // Whether the session may go back to the pool when its holder is done with it. It is checked
  // with Reusable again before it is handed out, so a provider may leave out here what costs a
  // call to the system.
  virtual bool Returnable() const { return Reusable(); }

  virtual StatementCounts Counts() const { return {}; }
};

// The rows of `rows` that `per_key` keeps, for a provider that read them all.
Rows KeepPerKey(Rows rows, const RowsPerKey& per_key);

// Opens a new session for the settings; throws DatabaseError when the engine refuses.
using SessionFactory = std::function<std::unique_ptr<Session>(const ConnectionSettings&)>;

// Makes a provider available under `name` (matched without regard to case). SQLite and
// PostgreSQL are built in; tests add engine doubles.
void RegisterProvider(const std::string& name, SessionFactory factory);

// A session for the connection string: an idle one from the string's pool when there is one,
// otherwise a new one from the provider the string names. A pool holds at most "Max Pool
// Size" sessions at once (16 unless the connection string says otherwise), handed out and
// idle together; when all are in use the call waits for one to come back, up to "Pool
// Timeout" seconds (5 unless the string says otherwise), and then fails with E_FAIL. Both
// keys are the pool's and never reach the provider. `provider` receives the provider's
// registered name. Throws DatabaseError.
std::unique_ptr<Session> AcquireSession(const std::string& connection_string,
                                        std::string* provider);

// Gives a session back to the connection string's pool, or closes it when it is no longer
// reusable. Every session AcquireSession handed out comes back here, a null one (closed by
// its holder) included, so that the pool may open another in its place.
void ReleaseSession(const std::string& connection_string, std::unique_ptr<Session> session);

// The sessions of every pool together, as they stand: handed out to requests, open but idle,
// and requests waiting for one because their pool is full. A snapshot for monitoring.
struct PoolStats {
  size_t in_use = 0;
  size_t idle = 0;
  size_t waiting = 0;
};
PoolStats PoolStatistics();

// Closes every idle pooled session, e.g. before a database is dropped or at shutdown.
void ClosePooledSessions();

}  // namespace tidewell::ado

#include "data/sqlite_session.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <iterator>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>

#include "data/database_error.h"
#include "data/dialect_translation.h"
#include "data/iso_dates.h"
#include "data/per_key_select.h"
#include "data/rows_per_key.h"
#include "data/sqlite_row_order.h"
#include "data/sqlite_rows_per_key.h"

namespace tidewell::ado {
namespace {

constexpr int kBusyTimeoutMs = 10000;
constexpr size_t kStatementCacheSize = 64;
constexpr size_t kTranslationCacheSize = 256;

bool FileExists(const std::string& path) {
  struct stat info;
  return ::stat(path.c_str(), &info) == 0;
}

// "unable to open database file (Permission denied)": the engine's message and, where the
// operating system gave one, its reason. Never the path: the text may reach a page.
std::string OpenFailureText(sqlite3* db) {
  std::string text = db ? sqlite3_errmsg(db) : "out of memory";
  int system_error = db ? sqlite3_system_errno(db) : 0;
  if (system_error != 0) text += std::string(" (") + std::strerror(system_error) + ")";
  return text;
}

long ErrorNumberOf(int code) {
  switch (code & 0xff) {
    case SQLITE_ERROR:
      return error_numbers::kErrorsInCommand;
    case SQLITE_MISMATCH:
      return error_numbers::kTypeMismatch;
    case SQLITE_CONSTRAINT:
      return error_numbers::kIntegrityViolation;
    default:
      return error_numbers::kFail;
  }
}

ColumnKind KindOfDeclaredType(const char* declared) {
  if (declared == nullptr) return ColumnKind::kOther;
  std::string type;
  for (const char* c = declared; *c; ++c) type += static_cast<char>(std::toupper(*c));
  if (type.find("BOOL") != std::string::npos) return ColumnKind::kBoolean;
  if (type.find("DATE") != std::string::npos || type.find("TIME") != std::string::npos) {
    return ColumnKind::kDate;
  }
  if (type.find("INT") != std::string::npos) return ColumnKind::kInteger;
  if (type.find("CHAR") != std::string::npos || type.find("TEXT") != std::string::npos ||
      type.find("CLOB") != std::string::npos) {
    return ColumnKind::kText;
  }
  if (type.find("REAL") != std::string::npos || type.find("FLOA") != std::string::npos ||
      type.find("DOUB") != std::string::npos) {
    return ColumnKind::kFloat;
  }
  return ColumnKind::kOther;
}

// A whole number as the run time holds it: in 32 bits, or past them in floating point.
void AppendInteger(std::vector<Variant>& row, sqlite3_int64 value) {
  if (value >= std::numeric_limits<int32_t>::min() &&
      value <= std::numeric_limits<int32_t>::max()) {
    row.emplace_back(static_cast<long>(value));
  } else {
    row.emplace_back(static_cast<double>(value));
  }
}

// Appends a column's value from what StoredValueOf read, as `kind` reads it, made in its place
// in the row. A flag stored as anything but a whole number is read again through the column's
// sqlite3_value (column `column` of `stmt`), as SQLite converts it; no other kind touches the
// statement. With kText, the value as the table holds it, to bind it back: a whole number as
// a whole number (or as the same number in floating point past 32 bits), a text as a text.
void AppendColumn(std::vector<Variant>& row, const StoredValue& stored, ColumnKind kind,
                  sqlite3_stmt* stmt, int column) {
  if (stored.type == SQLITE_NULL) {
    row.emplace_back(Null{});
  } else if (kind == ColumnKind::kBoolean) {
    row.emplace_back(stored.type == SQLITE_INTEGER
                         ? stored.integer != 0
                         : sqlite3_value_int64(sqlite3_column_value(stmt, column)) != 0);
  } else if (stored.type == SQLITE_INTEGER) {
    AppendInteger(row, stored.integer);
  } else if (stored.type == SQLITE_FLOAT) {
    row.emplace_back(stored.real);
  } else if (std::optional<Date> date;
             kind == ColumnKind::kDate && (date = ParseIsoDate(stored.bytes))) {
    row.emplace_back(*date);
  } else {
    row.emplace_back(stored.bytes);
  }
}

// Adds a key column's value to a KeyRuns key, read as the table stores it.
void AppendKeyPart(std::string& key, const StoredValue& value) {
  switch (value.type) {
    case SQLITE_NULL:
      return KeyRuns::NextKeyPart(key, nullptr, 0);
    case SQLITE_INTEGER: {
      char digits[24];
      const auto written = std::to_chars(std::begin(digits), std::end(digits), value.integer);
      return KeyRuns::NextKeyPart(key, digits, static_cast<size_t>(written.ptr - digits));
    }
    case SQLITE_FLOAT: {
      const std::string number = std::to_string(value.real);
      return KeyRuns::NextKeyPart(key, number.data(), number.size());
    }
    default:
      return KeyRuns::NextKeyPart(key, value.bytes.data(), value.bytes.size());
  }
}

// Every column of the current row, each read once through its sqlite3_value (the
// sqlite3_column_* calls check the connection's state on each call, some thousands of times
// for a month view): `stored` receives them as stored, their bytes valid until the statement
// steps on, and the row is read from them.
std::vector<Variant> ReadRow(sqlite3_stmt* stmt, const std::vector<ColumnKind>& kinds,
                             std::vector<StoredValue>& stored) {
  stored.resize(kinds.size());
  for (size_t c = 0; c < kinds.size(); ++c) {
    stored[c] = StoredValueOf(sqlite3_column_value(stmt, static_cast<int>(c)));
  }
  std::vector<Variant> row;
  row.reserve(kinds.size());
  for (size_t c = 0; c < kinds.size(); ++c) {
    AppendColumn(row, stored[c], kinds[c], stmt, static_cast<int>(c));
  }
  return row;
}

// The file a session has open, to notice when the path names another file (or none) by the
// time the session would go back to the pool.
struct FileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const FileIdentity&) const = default;
};

std::optional<FileIdentity> IdentityOf(const std::string& path) {
  struct stat info;
  if (::stat(path.c_str(), &info) != 0) return std::nullopt;
  return FileIdentity{info.st_dev, info.st_ino};
}

// SQLite lets one connection write a file at a time; the others poll for the lock with
// growing sleeps, so that under a burst of item posts some writers waited most of a second
// while others wrote many times. Writers of one file in this process take turns here
// instead, in the order they came. A turn runs from a session's first write to the end of its
// transaction (a write outside a transaction is one of its own). Other processes on the file
// still meet SQLite's own lock and busy wait. A turn not had within the busy timeout is gone
// without, and SQLite decides as before.
std::timed_mutex& WriterTurnOf(const std::string& path) {
  static std::mutex guard;
  static std::map<std::string, std::unique_ptr<std::timed_mutex>> turns;
  std::lock_guard lock(guard);
  std::unique_ptr<std::timed_mutex>& turn = turns[path];
  if (!turn) turn = std::make_unique<std::timed_mutex>();
  return *turn;
}

// How a session reads a statement's rows.
struct Reading {
  std::optional<long> row_limit;               // at most this many (the "TOP n" of the statement)
  const RowsPerKey* per_key = nullptr;         // only the first rows of each key when given
  std::vector<CrowdedKey>* crowded = nullptr;  // the keys per_key passed over many rows of
  // Put in this order here, when given: the statement itself leaves its rows in none.
  const std::vector<SortColumn>* order = nullptr;
};

// Whether KeyRuns keeps the row whose key columns (k from 0, in per_key's order) read
// stored_of(k); a key it passed over kCrowded rows of is noted in reading.crowded.
template <typename StoredOf>
bool KeepRow(KeyRuns& runs, const Reading& reading, std::string& key, StoredOf stored_of) {
  key.clear();
  const size_t keys = runs.key_columns().size();
  for (size_t k = 0; k < keys; ++k) AppendKeyPart(key, stored_of(k));
  if (runs.Keep(key)) return true;
  if (reading.crowded && runs.PassedOverInRun() == CrowdedKeyReadings::kCrowded) {
    std::vector<Variant> values;
    for (size_t k = 0; k < keys; ++k) {
      AppendColumn(values, stored_of(k), ColumnKind::kText, nullptr, 0);
    }
    reading.crowded->push_back({key, std::move(values)});
  }
  return false;
}

class SqliteSession : public Session {
 public:
  SqliteSession(sqlite3* db, std::string path) : db_(db), path_(std::move(path)) {
    if (path_ != ":memory:") {
      file_ = IdentityOf(path_);
      writer_turn_ = std::unique_lock(WriterTurnOf(path_), std::defer_lock);
    }
  }
  ~SqliteSession() override {
    for (auto& [text, cached] : statements_) sqlite3_finalize(cached.stmt);
    sqlite3_close_v2(db_);
  }

  // Statements are run with their values bound (ParameterizedAccessForSqlite), so that the
  // statements of a page that differ only in a date or a key share one prepared statement. A
  // page runs the same statements again and again (a month view some forty day lists, each
  // one again on the next visit), and reading each word by word every time cost more than
  // running it: the translation of a text that prepared well is kept and used again.
  Rows Run(std::string_view statement) override { return RunTranslated(statement, nullptr); }

  Rows Run(std::string_view statement, const RowsPerKey& per_key) override {
    return RunTranslated(statement, &per_key);
  }

  Rows RunBound(std::string_view native_text, const std::vector<Variant>& values) override {
    return Step(Prepared(std::string(native_text)), values);
  }

  std::string Parameter(int n) const override { return "?" + std::to_string(n); }

  StatementCounts Counts() const override { return counts_; }

  // A session inside a transaction, or on a file that was removed or replaced since the
  // session opened it, is not served again.
  bool Reusable() const override { return Returnable() && (!file_ || IdentityOf(path_) == file_); }

  // The file is looked at when the session is handed out again: once a request, not twice.
  bool Returnable() const override { return sqlite3_get_autocommit(db_) != 0; }

  std::vector<std::string> KeyColumns(std::string_view table) override {
    Rows rows = RunBound("SELECT name FROM pragma_table_info(?1) WHERE pk > 0 ORDER BY pk",
                         {Variant(table)});
    std::vector<std::string> keys;
    for (const auto& row : rows.values) keys.push_back(row[0].AsString());
    return keys;
  }

  bool TableExists(std::string_view table) override {
    return !RunBound(
                "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE",
                {Variant(table)})
                .values.empty();
  }

 private:
  [[noreturn]] void RaiseEngineError(int code) {
    throw DatabaseError(ErrorNumberOf(code), sqlite3_errmsg(db_));
  }

  // A prepared statement for the text: from the cache, or prepared now and cached.
  sqlite3_stmt* Prepared(const std::string& text) {
    if (auto found = statements_.find(text); found != statements_.end()) {
      recent_.splice(recent_.begin(), recent_, found->second.position);
      return found->second.stmt;
    }
    sqlite3_stmt* stmt = nullptr;
    const char* tail = nullptr;
    int code = sqlite3_prepare_v3(db_, text.c_str(), static_cast<int>(text.size()),
                                  SQLITE_PREPARE_PERSISTENT, &stmt, &tail);
    if (code != SQLITE_OK) RaiseEngineError(code);
    if (stmt == nullptr) {
      throw DatabaseError(error_numbers::kErrorsInCommand, "The statement is empty.");
    }
    if (tail != nullptr &&
        std::string_view(tail).find_first_not_of(" \t\r\n;") != std::string_view::npos) {
      sqlite3_finalize(stmt);
      throw DatabaseError(error_numbers::kErrorsInCommand,
                          "Characters found after end of SQL statement.");
    }
    Remember(text, stmt);
    ++counts_.prepared;
    return stmt;
  }

  void Remember(const std::string& text, sqlite3_stmt* stmt) {
    if (statements_.size() >= kStatementCacheSize) {
      auto oldest = statements_.find(recent_.back());
      columns_.erase(oldest->second.stmt);
      sqlite3_finalize(oldest->second.stmt);
      statements_.erase(oldest);
      recent_.pop_back();
    }
    recent_.push_front(text);
    statements_[text] = {stmt, recent_.begin()};
  }

  void Bind(sqlite3_stmt* stmt, int index, const Variant& value) {
    int code = SQLITE_OK;
    switch (value.type()) {
      case Variant::Type::kEmpty:
      case Variant::Type::kNull:
        code = sqlite3_bind_null(stmt, index);
        break;
      // Jet kept true as -1, and the Access dialect compares flags with -1.
      case Variant::Type::kBoolean:
        code = sqlite3_bind_int(stmt, index, value.AsBoolean() ? -1 : 0);
        break;
      case Variant::Type::kLong:
        code = sqlite3_bind_int64(stmt, index, value.AsLong());
        break;
      case Variant::Type::kDouble:
        code = sqlite3_bind_double(stmt, index, value.AsDouble());
        break;
      case Variant::Type::kString:
        code = sqlite3_bind_text(stmt, index, value.AsString().data(),
                                 static_cast<int>(value.AsString().size()), SQLITE_TRANSIENT);
        break;
      case Variant::Type::kDate: {
        std::string text = IsoDateText(value.AsDate());
        code = sqlite3_bind_text(stmt, index, text.data(), static_cast<int>(text.size()),
                                 SQLITE_TRANSIENT);
        break;
      }
    }
    if (code != SQLITE_OK) RaiseEngineError(code);
  }

  // The names and kinds of a prepared statement's columns, read once for each statement.
  struct Columns {
    std::vector<std::string> names;
    std::vector<ColumnKind> kinds;
  };
  const Columns& ColumnsOf(sqlite3_stmt* stmt) {
    const size_t count = static_cast<size_t>(sqlite3_column_count(stmt));
    if (auto found = columns_.find(stmt);
        found != columns_.end() && found->second.names.size() == count) {
      return found->second;
    }
    Columns described;
    described.names.reserve(count);
    described.kinds.reserve(count);
    for (int c = 0; c < static_cast<int>(count); ++c) {
      described.names.emplace_back(sqlite3_column_name(stmt, c));
      described.kinds.push_back(KindOfDeclaredType(sqlite3_column_decltype(stmt, c)));
    }
    return columns_[stmt] = std::move(described);
  }

  // The translation of an Access text, kept once it prepared well.
  const SqliteStatement& Translation(std::string_view statement) {
    if (auto found = translations_.find(statement); found != translations_.end()) {
      return found->second;
    }
    SqliteStatement translated = ParameterizedAccessForSqlite(
        statement, [this](std::string_view column) { return IsDateColumn(column); });
    Prepared(translated.text);
    if (translations_.size() >= kTranslationCacheSize) translations_.clear();
    return translations_.emplace(std::string(statement), std::move(translated)).first->second;
  }

  Rows RunTranslated(std::string_view statement, const RowsPerKey* per_key) {
    const SqliteStatement& known = Translation(statement);
    if (per_key) return RunPerKey(statement, known, *per_key);
    return Step(Prepared(known.text), known.values, {.row_limit = known.row_limit});
  }

  // A statement that keeps the first rows of each key has SQLite keep them itself for the keys
  // that were crowded (CrowdedKeyReadings): sorting every row of a crowded day, only for the
  // session to pass over all but a few of them, cost more than all the rest of the page.
  Rows RunPerKey(std::string_view statement, const SqliteStatement& known,
                 const RowsPerKey& per_key) {
    std::vector<CrowdedKey> found;
    Reading reading{.row_limit = known.row_limit, .per_key = &per_key, .crowded = &found};
    const std::vector<CrowdedKey>* crowded = crowded_keys_.ForRun(statement, per_key);
    std::optional<std::string> kept;
    if (crowded) {
      kept = KeepPerKeyForSqlite(known.text, per_key, known.values.size(), crowded->size());
    }
    if (!kept) {
      // Prepared as written all the same, so that it fails as it was written to. A probe of a
      // statement known to be crowded is left to SQLite's sort, after which the session passes
      // over the crowded keys' rows unread; sorting here reads every row.
      sqlite3_stmt* stmt = Prepared(known.text);
      const SortedHere* sorted = crowded_keys_.KnowsCrowdedKeys(statement, per_key)
                                     ? nullptr
                                     : SortedHereOf(known.text, per_key);
      if (sorted) {
        stmt = Prepared(sorted->unordered_text);
        reading.order = &sorted->order;
        ++counts_.sorted_by_session;
      }
      Rows rows = Step(stmt, known.values, reading);
      crowded_keys_.Found(statement, per_key, /*ran_as_written=*/true, std::move(found));
      return rows;
    }
    std::vector<Variant> values = known.values;
    for (const CrowdedKey& key : *crowded) {
      values.insert(values.end(), key.values.begin(), key.values.end());
    }
    Rows rows = Step(Prepared(*kept), values, reading);
    ++counts_.kept_per_key;
    crowded_keys_.Found(statement, per_key, /*ran_as_written=*/false, std::move(found));
    return rows;
  }

  // A statement that keeps the first rows of each key, read without its ORDER BY and put in
  // order here (sqlite_row_order.h), with what that takes.
  struct SortedHere {
    std::string unordered_text;
    std::vector<SortColumn> order;
  };
  struct SortingPlan {
    std::vector<std::string> key_columns;  // of the per_key it was made for
    std::optional<SortedHere> sorted;      // nullopt: SQLite sorts, as written
  };

  // How to sort the translated statement read with per_key: here, or by SQLite when the
  // statement's shape (PerKeySelectOf) or an order term's column or collation is one this
  // session does not know to sort by. Made once per statement.
  const SortedHere* SortedHereOf(const std::string& translated, const RowsPerKey& per_key) {
    auto found = sorting_plans_.find(translated);
    if (found == sorting_plans_.end() || found->second.key_columns != per_key.columns) {
      if (sorting_plans_.size() >= kTranslationCacheSize) sorting_plans_.clear();
      found = sorting_plans_.insert_or_assign(translated, PlanSorting(translated, per_key)).first;
    }
    return found->second.sorted ? &*found->second.sorted : nullptr;
  }

  SortingPlan PlanSorting(const std::string& translated, const RowsPerKey& per_key) {
    SortingPlan plan{.key_columns = per_key.columns, .sorted = std::nullopt};
    const std::optional<PerKeySelect> select = PerKeySelectOf(translated, per_key);
    if (!select) return plan;
    SortedHere sorted{.unordered_text = UnorderedText(*select), .order = {}};
    sqlite3_stmt* stmt = nullptr;
    try {
      stmt = Prepared(sorted.unordered_text);
    } catch (const DatabaseError&) {
      return plan;  // as written, where the statement's own failure shows
    }
    std::optional<std::vector<SortColumn>> order = SortColumnsOf(db_, stmt, select->order_terms);
    if (!order) return plan;
    sorted.order = std::move(*order);
    plan.sorted = std::move(sorted);
    return plan;
  }

  // Runs the statement and reads its rows as `reading` says.
  Rows Step(sqlite3_stmt* stmt, const std::vector<Variant>& values, const Reading& reading = {}) {
    if (!sqlite3_stmt_readonly(stmt)) TakeWriterTurn();
    struct ResetOnExit {
      SqliteSession* session;
      sqlite3_stmt* stmt;
      ~ResetOnExit() {
        sqlite3_reset(stmt);
        sqlite3_clear_bindings(stmt);
        session->EndWriterTurnOutsideTransactions();
      }
    } reset{this, stmt};
    ++counts_.run;
    for (size_t i = 0; i < values.size(); ++i) Bind(stmt, static_cast<int>(i + 1), values[i]);
    Rows rows;
    const Columns& described = ColumnsOf(stmt);
    rows.names = described.names;
    rows.kinds = described.kinds;
    const std::optional<long> row_limit = reading.row_limit;
    if (row_limit) rows.values.reserve(static_cast<size_t>(std::clamp(*row_limit, 0L, 64L)));
    std::optional<KeyRuns> runs;
    if (reading.per_key) runs.emplace(*reading.per_key, rows.names);
    std::optional<RowsToSort> to_sort;
    if (reading.order) to_sort.emplace(*reading.order);
    std::string key;
    std::vector<StoredValue> stored;  // the current row's columns
    int code = SQLITE_DONE;
    while ((!row_limit || static_cast<long>(rows.values.size()) < *row_limit) &&
           (code = sqlite3_step(stmt)) == SQLITE_ROW) {
      if (to_sort) {
        std::vector<Variant> values = ReadRow(stmt, rows.kinds, stored);  // fills `stored`
        to_sort->Add(stored, std::move(values));
        continue;
      }
      if (runs && !KeepRow(*runs, reading, key, [&](size_t k) {
            return StoredValueOf(sqlite3_column_value(stmt, runs->key_columns()[k]));
          })) {
        continue;
      }
      rows.values.push_back(ReadRow(stmt, rows.kinds, stored));
    }
    if (code != SQLITE_DONE && code != SQLITE_ROW) RaiseEngineError(sqlite3_extended_errcode(db_));
    // The order's first terms are the keys' columns (PerKeySelectOf), key k the term k.
    if (to_sort) {
      for (size_t row : to_sort->Sorted()) {
        if (runs &&
            !KeepRow(*runs, reading, key, [&](size_t k) { return to_sort->Stored(row, k); })) {
          continue;
        }
        rows.values.push_back(std::move(to_sort->Values(row)));
      }
    }
    if (!sqlite3_stmt_readonly(stmt)) rows.affected = static_cast<long>(sqlite3_changes(db_));
    return rows;
  }

  void TakeWriterTurn() {
    if (writer_turn_.mutex() && !writer_turn_.owns_lock()) {
      (void)writer_turn_.try_lock_for(std::chrono::milliseconds(kBusyTimeoutMs));
    }
  }

  void EndWriterTurnOutsideTransactions() {
    if (writer_turn_.owns_lock() && sqlite3_get_autocommit(db_) != 0) writer_turn_.unlock();
  }

  // Whether a column of that name is declared as a date in any table. The answer comes from
  // the schema as last read; a name it does not know sends the session back to the schema
  // when that changed since (another session may have created the tables).
  bool IsDateColumn(std::string_view column) {
    std::string key = Lower(column);
    if (!date_columns_.contains(key) && SchemaVersion() != schema_version_) LoadColumnKinds();
    auto found = date_columns_.find(key);
    return found != date_columns_.end() && found->second;
  }

  long SchemaVersion() { return RunBound("PRAGMA schema_version", {}).values.at(0).at(0).AsLong(); }

  void LoadColumnKinds() {
    schema_version_ = SchemaVersion();
    translations_.clear();  // they were checked against the columns as they were
    sorting_plans_.clear();
    columns_.clear();
    date_columns_.clear();
    Rows rows = RunBound(
        "SELECT p.name, p.type FROM sqlite_master AS m, pragma_table_info(m.name) AS p "
        "WHERE m.type = 'table'",
        {});
    for (const auto& row : rows.values) {
      std::string type = row[1].IsNull() ? "" : row[1].AsString();
      bool is_date = KindOfDeclaredType(type.c_str()) == ColumnKind::kDate;
      date_columns_[Lower(row[0].AsString())] |= is_date;
    }
  }

  sqlite3* db_;
  std::string path_;
  std::optional<FileIdentity> file_;
  std::unique_lock<std::timed_mutex> writer_turn_;  // of the file, held while this session writes
  struct CachedStatement {
    sqlite3_stmt* stmt;
    std::list<std::string>::iterator position;  // in recent_
  };
  std::unordered_map<std::string, CachedStatement> statements_;
  std::list<std::string> recent_;  // most recently used first
  // Keyed by the Access text; looked up with a string_view, so a hit copies nothing.
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  std::unordered_map<sqlite3_stmt*, Columns> columns_;
  std::unordered_map<std::string, SqliteStatement, TextHash, std::equal_to<>> translations_;
  std::unordered_map<std::string, SortingPlan, TextHash, std::equal_to<>> sorting_plans_;
  std::map<std::string, bool> date_columns_;
  CrowdedKeyReadings crowded_keys_;
  long schema_version_ = -1;
  StatementCounts counts_;
};

// SQLite keeps counts of its memory for sqlite3_status, under a lock taken on every one of
// its allocations. Nothing here reads them, so they are switched off before the library's
// first use (the call is refused, harmlessly, once the library has started).
void StartSqlite() {
  static const int configured = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  (void)configured;
}

[[noreturn]] void RaiseOpenFailure(sqlite3* db, const std::string& text) {
  sqlite3_close_v2(db);
  throw DatabaseError(error_numbers::kFail, text);
}

// Settings every session runs with; then a read, because SQLite opens files lazily and a
// file that is no database, or a folder where the journal cannot be written, shows only then.
void PrepareSession(sqlite3* db) {
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  sqlite3_extended_result_codes(db, 1);
  const char* setup =
      "PRAGMA journal_mode = WAL;"
      "SELECT count(*) FROM sqlite_master;";
  if (sqlite3_exec(db, setup, nullptr, nullptr, nullptr) != SQLITE_OK) {
    RaiseOpenFailure(db, OpenFailureText(db));
  }
  if (sqlite3_db_readonly(db, "main") == 1) {
    RaiseOpenFailure(db,
                     "The database file is read-only: the server needs write access to it "
                     "and to its folder.");
  }
}

}  // namespace

std::string SqliteDataSource(const ConnectionSettings& settings) {
  std::optional<std::string> path = settings.Get("Data Source");
  if (!path) path = settings.Get("DataSource");
  if (!path || path->empty()) {
    throw DatabaseError(error_numbers::kInvalidArgument,
                        "The connection string names no Data Source for the SQLite provider.");
  }
  return *path;
}

std::unique_ptr<Session> OpenSqliteSession(const ConnectionSettings& settings) {
  std::string path = SqliteDataSource(settings);
  bool in_memory = path == ":memory:";
  if (!in_memory && !FileExists(path)) {
    throw DatabaseError(error_numbers::kFail,
                        "Could not find the database file named in the connection string.");
  }
  StartSqlite();
  sqlite3* db = nullptr;
  int code =
      sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (code != SQLITE_OK) RaiseOpenFailure(db, OpenFailureText(db));
  PrepareSession(db);
  return std::make_unique<SqliteSession>(db, path);
}

void CreateSqliteDatabaseFile(const std::string& path) {
  StartSqlite();
  // The file holds password hashes and the site's link secret: readable by its owner only.
  // SQLite gives the WAL and shared-memory files it makes beside it the same permissions.
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (fd < 0) {
    throw DatabaseError(error_numbers::kFail,
                        "Could not create the database file " + path + ": " + std::strerror(errno));
  }
  ::close(fd);
  sqlite3* db = nullptr;
  int code = sqlite3_open_v2(
      path.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  // SQLite creates the file at the first write; WAL mode is such a write and is wanted anyway.
  if (code == SQLITE_OK)
    code = sqlite3_exec(db, "PRAGMA journal_mode = WAL;", nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    std::string reason =
        std::strerror(db && sqlite3_system_errno(db) ? sqlite3_system_errno(db) : EIO);
    sqlite3_close_v2(db);
    throw DatabaseError(error_numbers::kFail,
                        "Could not create the database file " + path + ": " + reason);
  }
  sqlite3_close_v2(db);
}

}  // namespace tidewell::ado

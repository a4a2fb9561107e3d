#include "data/postgres_session.h"

#include <libpq-fe.h>
#include <poll.h>

#include <cstdio>
#include <cstdlib>
#include <limits>
#include <list>
#include <optional>
#include <set>
#include <unordered_map>

#include "data/database_error.h"
#include "data/dialect_translation.h"
#include "data/iso_dates.h"
#include "data/postgres_rows_per_key.h"
#include "data/postgres_statement.h"
#include "data/rows_per_key.h"

namespace tidewell::ado {
namespace {

// Type OIDs of the built-in types the component meets (pg_type.h).
constexpr Oid kBoolOid = 16, kInt8Oid = 20, kInt2Oid = 21, kInt4Oid = 23;
constexpr Oid kFloat4Oid = 700, kFloat8Oid = 701, kNumericOid = 1700;
constexpr Oid kDateOid = 1082, kTimestampOid = 1114, kTimestampTzOid = 1184;

// Prepared statements a session keeps; the least recently used one goes when another comes.
constexpr size_t kPreparedStatementsPerSession = 64;

Oid OidOf(LiteralType type) {
  switch (type) {
    case LiteralType::kInteger:
      return kInt4Oid;
    case LiteralType::kBigint:
      return kInt8Oid;
    case LiteralType::kUntyped:
      break;
  }
  return 0;  // the engine infers it from the context, as for a quoted literal
}

// Settings every session runs with: dates read month first (the SQL Server dialect) and
// written as ISO text, backslashes in quoted values taken literally.
constexpr const char* kSessionSetup =
    "SET DateStyle = 'ISO, MDY'; SET standard_conforming_strings = on; "
    "SET client_min_messages = warning";

ColumnKind KindOfType(Oid type) {
  switch (type) {
    case kBoolOid:
    case kInt2Oid:
      return ColumnKind::kBoolean;  // the schema keeps flags, and only flags, in smallint
    case kInt8Oid:
    case kInt4Oid:
      return ColumnKind::kInteger;
    case kFloat4Oid:
    case kFloat8Oid:
    case kNumericOid:
      return ColumnKind::kFloat;
    case kDateOid:
    case kTimestampOid:
    case kTimestampTzOid:
      return ColumnKind::kDate;
    default:
      return ColumnKind::kText;
  }
}

Variant ReadValue(const char* text, Oid type) {
  switch (KindOfType(type)) {
    case ColumnKind::kBoolean:
      return Variant(type == kBoolOid ? text[0] == 't' : std::strtol(text, nullptr, 10) != 0);
    case ColumnKind::kInteger: {
      long long value = std::strtoll(text, nullptr, 10);
      if (value >= std::numeric_limits<int32_t>::min() &&
          value <= std::numeric_limits<int32_t>::max()) {
        return Variant(static_cast<long>(value));
      }
      return Variant(static_cast<double>(value));
    }
    case ColumnKind::kFloat:
      return Variant(std::strtod(text, nullptr));
    case ColumnKind::kDate:
      if (std::optional<Date> date = ParseIsoDate(text)) return Variant(*date);
      return Variant(text);
    default:
      return Variant(text);
  }
}

std::optional<std::string> ParameterText(const Variant& value) {
  switch (value.type()) {
    case Variant::Type::kEmpty:
    case Variant::Type::kNull:
      return std::nullopt;
    // SQL Server kept true as 1, and the SQL Server dialect compares flags with 1.
    case Variant::Type::kBoolean:
      return value.AsBoolean() ? "1" : "0";
    case Variant::Type::kLong:
      return std::to_string(value.AsLong());
    case Variant::Type::kDouble: {
      char text[40];
      std::snprintf(text, sizeof text, "%.17g", value.AsDouble());
      return text;
    }
    case Variant::Type::kString:
      return value.AsString();
    case Variant::Type::kDate:
      return IsoDateText(value.AsDate());
  }
  return std::nullopt;
}

long ErrorNumberOf(std::string_view sqlstate) {
  if (sqlstate.starts_with("42")) return error_numbers::kErrorsInCommand;
  if (sqlstate.starts_with("22")) return error_numbers::kTypeMismatch;
  if (sqlstate.starts_with("23")) return error_numbers::kIntegrityViolation;
  return error_numbers::kFail;
}

// libpq's message on one line, without the socket path or host it begins with and without
// the severity: "Connection refused. Is the server running on that host and accepting TCP/IP
// connections?"
std::string ConnectionFailureText(PGconn* conn) {
  std::string text = conn ? PQerrorMessage(conn) : "out of memory";
  if (text.starts_with("connection to server")) {
    size_t failed = text.find("failed: ");
    if (failed != std::string::npos) text = text.substr(failed + 8);
  }
  std::string line;
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string part = text.substr(start, end - start);
    start = end + 1;
    part.erase(0, part.find_first_not_of(" \t"));
    for (const char* severity : {"FATAL:", "ERROR:"}) {
      if (part.starts_with(severity))
        part.erase(0, part.find_first_not_of(' ', std::string(severity).size()));
    }
    if (part.empty()) continue;
    if (!line.empty())
      line += std::string(".?!:").find(line.back()) == std::string::npos ? ". " : " ";
    line += part;
  }
  return line;
}

// Which of a result's rows the session reads.
struct RowsWanted {
  const RowsPerKey* per_key = nullptr;  // only the first rows of each key when given
  long long* passed_over = nullptr;     // counts the rows per_key passed over, when given
};

struct ResultDeleter {
  void operator()(PGresult* result) const { PQclear(result); }
};
using Result = std::unique_ptr<PGresult, ResultDeleter>;

class PostgresSession : public Session {
 public:
  explicit PostgresSession(PGconn* conn) : conn_(conn) {}
  ~PostgresSession() override { PQfinish(conn_); }

  Rows Run(std::string_view statement) override { return RunShaped(statement, nullptr); }

  Rows Run(std::string_view statement, const RowsPerKey& per_key) override {
    return RunShaped(statement, &per_key);
  }

  Rows RunBound(std::string_view native_text, const std::vector<Variant>& values) override {
    std::vector<std::optional<std::string>> texts;
    for (const Variant& value : values) texts.push_back(ParameterText(value));
    if (!CanPrepare(native_text)) return Execute(std::string(native_text), texts);
    return ExecutePrepared(std::string(native_text), texts,
                           std::vector<Oid>(texts.size(), /*inferred=*/0));
  }

  StatementCounts Counts() const override { return counts_; }

  std::string Parameter(int n) const override { return "$" + std::to_string(n); }

  std::vector<std::string> KeyColumns(std::string_view table) override {
    Rows rows = RunBound(
        "SELECT a.attname::text FROM pg_index AS i JOIN pg_attribute AS a "
        "ON a.attrelid = i.indrelid AND a.attnum = ANY(i.indkey) "
        "WHERE i.indrelid = to_regclass($1) AND i.indisprimary ORDER BY a.attnum",
        {Variant(table)});
    std::vector<std::string> keys;
    for (const auto& row : rows.values) keys.push_back(row[0].AsString());
    return keys;
  }

  bool TableExists(std::string_view table) override {
    Rows rows = RunBound("SELECT to_regclass($1) IS NOT NULL", {Variant(table)});
    return rows.values.at(0).at(0).AsBoolean();
  }

  // libpq learns that the server ended the connection (a restart, an administrator's
  // pg_terminate_backend) only when it reads from the socket. Between requests the server has
  // nothing to say to a session: anything waiting on its socket, the goodbye or the closed
  // end, means it is no longer one to hand to a request.
  bool Reusable() const override {
    if (PQstatus(conn_) != CONNECTION_OK || PQtransactionStatus(conn_) != PQTRANS_IDLE) {
      return false;
    }
    pollfd socket{PQsocket(conn_), POLLIN, 0};
    return ::poll(&socket, 1, /*timeout=*/0) == 0;
  }

 private:
  // A statement that keeps the first rows of each key has the engine keep them once its keys
  // are crowded: sorting and sending every row of a crowded day for the session to pass over
  // cost more than the rest of the page (see PerKeyReadings).
  Rows RunShaped(std::string_view statement, const RowsPerKey* per_key) {
    const std::string translated = TranslateSqlServerForPostgres(statement);
    if (!per_key) return RunTranslated(translated, {});
    if (per_key_readings_.Rewrite(translated)) {
      if (std::optional<std::string> kept = KeepPerKeyForPostgres(translated, *per_key)) {
        Rows rows = RunTranslated(*kept, {.per_key = per_key});
        ++counts_.kept_per_key;
        return rows;
      }
    }
    long long passed_over = 0;
    Rows rows = RunTranslated(translated, {.per_key = per_key, .passed_over = &passed_over});
    per_key_readings_.PassedOver(translated, passed_over);
    return rows;
  }

  // A statement sent with its text, parsed and planned for this one run.
  // Statements that differ only in their values (a day of a month view, a user) share one
  // statement the engine parsed and planned once for this session: the values are taken out
  // of the text (ShapePostgresStatement) and sent as parameters.
  Rows RunTranslated(const std::string& translated, const RowsWanted& wanted) {
    PostgresStatement shaped = ShapePostgresStatement(translated);
    if (!shaped.preparable) return Execute(shaped.shape, {}, wanted);
    std::vector<std::optional<std::string>> values;
    std::vector<Oid> types;
    values.reserve(shaped.parameters.size());
    types.reserve(shaped.parameters.size());
    for (PostgresParameter& parameter : shaped.parameters) {
      values.emplace_back(std::move(parameter.value));
      types.push_back(OidOf(parameter.type));
    }
    return ExecutePrepared(shaped.shape, values, types, wanted);
  }

  Rows Execute(const std::string& text, const std::vector<std::optional<std::string>>& values,
               const RowsWanted& wanted = {}) {
    std::vector<const char*> pointers = PointersTo(values);
    ++counts_.run;
    Result result(PQexecParams(conn_, text.c_str(), static_cast<int>(pointers.size()), nullptr,
                               pointers.data(), nullptr, nullptr, 0));
    if (!Succeeded(result.get())) RaiseError(result.get());
    return ReadRows(result.get(), wanted);
  }

  // A statement run as the session's prepared statement for its text and parameter types,
  // prepared first when the session has none.
  Rows ExecutePrepared(const std::string& shape,
                       const std::vector<std::optional<std::string>>& values,
                       const std::vector<Oid>& types, const RowsWanted& wanted = {}) {
    std::string key = shape;
    key += '\0';
    for (Oid type : types) key += std::to_string(type) + ",";
    const std::string& name = PreparedName(key, shape, types);
    std::vector<const char*> pointers = PointersTo(values);
    ++counts_.run;
    Result result(PQexecPrepared(conn_, name.c_str(), static_cast<int>(pointers.size()),
                                 pointers.data(), nullptr, nullptr, 0));
    if (Succeeded(result.get())) return ReadRows(result.get(), wanted);
    // The engine may have let the statement go (DISCARD ALL), or a table it reads changed its
    // columns. Outside a transaction the statement is prepared anew and run once more; inside
    // one the transaction is already failed, so the error stands.
    const char* sqlstate = result ? PQresultErrorField(result.get(), PG_DIAG_SQLSTATE) : nullptr;
    const char* message =
        result ? PQresultErrorField(result.get(), PG_DIAG_MESSAGE_PRIMARY) : nullptr;
    const std::string_view state = sqlstate ? sqlstate : "";
    const bool gone = state == "26000";
    const bool reshaped = state == "0A000" && message &&
                          std::string_view(message).starts_with("cached plan must not change");
    if ((gone || reshaped) && PQstatus(conn_) == CONNECTION_OK) {
      Forget(key);
      if (PQtransactionStatus(conn_) == PQTRANS_IDLE) {
        const std::string& again = PreparedName(key, shape, types);
        ++counts_.run;
        result.reset(PQexecPrepared(conn_, again.c_str(), static_cast<int>(pointers.size()),
                                    pointers.data(), nullptr, nullptr, 0));
        if (Succeeded(result.get())) return ReadRows(result.get(), wanted);
      }
    }
    RaiseError(result.get());
  }

  // The name of the session's prepared statement for `key`, prepared now when there is none.
  const std::string& PreparedName(const std::string& key, const std::string& shape,
                                  const std::vector<Oid>& types) {
    if (auto found = prepared_.find(key); found != prepared_.end()) {
      recent_.splice(recent_.begin(), recent_, found->second.position);
      return found->second.name;
    }
    if (prepared_.size() >= kPreparedStatementsPerSession) Forget(recent_.back());
    std::string name = "tidewell_" + std::to_string(++last_name_);
    Result result(PQprepare(conn_, name.c_str(), shape.c_str(), static_cast<int>(types.size()),
                            types.data()));
    if (!Succeeded(result.get())) RaiseError(result.get());
    ++counts_.prepared;
    recent_.push_front(key);
    return prepared_.emplace(key, PreparedStatement{std::move(name), recent_.begin()})
        .first->second.name;
  }

  // Lets the engine drop the prepared statement for `key` and forgets it.
  void Forget(const std::string& key) {
    auto found = prepared_.find(key);
    if (found == prepared_.end()) return;
    // Inside a failed transaction DEALLOCATE fails too: the name then stays on the server
    // until the session closes, unused, and does no harm.
    if (PQstatus(conn_) == CONNECTION_OK) {
      Result ignored(PQexec(conn_, ("DEALLOCATE " + found->second.name).c_str()));
    }
    recent_.erase(found->second.position);
    prepared_.erase(found);
  }

  static std::vector<const char*> PointersTo(
      const std::vector<std::optional<std::string>>& values) {
    std::vector<const char*> pointers;
    pointers.reserve(values.size());
    for (const auto& value : values) pointers.push_back(value ? value->c_str() : nullptr);
    return pointers;
  }

  static bool Succeeded(const PGresult* result) {
    ExecStatusType status = result ? PQresultStatus(result) : PGRES_FATAL_ERROR;
    return status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK;
  }

  [[noreturn]] void RaiseError(const PGresult* result) {
    const char* sqlstate = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    const char* message = result ? PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY) : nullptr;
    if (PQstatus(conn_) != CONNECTION_OK || message == nullptr) {
      // The statements this session prepared went with the link; the pool drops the session.
      prepared_.clear();
      recent_.clear();
      throw DatabaseError(error_numbers::kFail, ConnectionFailureText(conn_));
    }
    throw DatabaseError(ErrorNumberOf(sqlstate ? sqlstate : ""), message);
  }

  // The rows of the result, only those `per_key` keeps when it is given (after the engine kept
  // them too, when the statement was rewritten: the session's count is the guarantee).
  static Rows ReadRows(const PGresult* result, const RowsWanted& wanted) {
    Rows rows;
    const int columns = PQnfields(result);
    for (int c = 0; c < columns; ++c) {
      rows.names.emplace_back(PQfname(result, c));
      rows.kinds.push_back(KindOfType(PQftype(result, c)));
    }
    std::optional<KeyRuns> runs;
    if (wanted.per_key) runs.emplace(*wanted.per_key, rows.names);
    std::string key;
    for (int r = 0; r < PQntuples(result); ++r) {
      if (runs) {
        key.clear();
        for (int c : runs->key_columns()) {
          KeyRuns::NextKeyPart(key, PQgetisnull(result, r, c) ? nullptr : PQgetvalue(result, r, c),
                               static_cast<size_t>(PQgetlength(result, r, c)));
        }
        if (!runs->Keep(key)) {
          if (wanted.passed_over) ++*wanted.passed_over;
          continue;
        }
      }
      std::vector<Variant>& row = rows.values.emplace_back();
      for (int c = 0; c < columns; ++c) {
        row.push_back(PQgetisnull(result, r, c)
                          ? Variant(Null{})
                          : ReadValue(PQgetvalue(result, r, c), PQftype(result, c)));
      }
    }
    rows.affected = std::atol(PQcmdTuples(const_cast<PGresult*>(result)));
    return rows;
  }

  PGconn* conn_;
  struct PreparedStatement {
    std::string name;
    std::list<std::string>::iterator position;  // in recent_
  };
  std::unordered_map<std::string, PreparedStatement> prepared_;  // by shape and types
  std::list<std::string> recent_;                                // keys, most recently used first
  long long last_name_ = 0;
  PerKeyReadings per_key_readings_;
  StatementCounts counts_;
};

// The keywords libpq understands; anything else in the connection string is a mistake in it.
bool IsLibpqKeyword(const std::string& key) {
  static const std::set<std::string> keywords = [] {
    std::set<std::string> names;
    PQconninfoOption* options = PQconndefaults();
    for (PQconninfoOption* o = options; o && o->keyword; ++o) names.insert(o->keyword);
    PQconninfoFree(options);
    return names;
  }();
  return keywords.contains(key);
}

[[noreturn]] void RaiseUnreadable(const std::string& reason) {
  throw DatabaseError(error_numbers::kInvalidArgument, reason);
}

// libpq's keyword and value lists for the settings. Our defaults come first: libpq takes the
// last value a keyword is given, and a URI's own parameters are expanded where the URI stands.
void CollectSettings(const ConnectionSettings& settings, std::vector<std::string>& keys,
                     std::vector<std::string>& values) {
  keys = {"connect_timeout", "client_encoding", "application_name"};
  values = {"10", "UTF8", "tidewell"};
  if (!settings.uri.empty()) {
    char* error = nullptr;
    PQconninfoOption* parsed = PQconninfoParse(settings.uri.c_str(), &error);
    if (parsed == nullptr) {
      std::string reason = error ? error : "the URI cannot be read";
      PQfreemem(error);
      while (!reason.empty() && (reason.back() == '\n' || reason.back() == ' ')) reason.pop_back();
      RaiseUnreadable(reason);
    }
    PQconninfoFree(parsed);
    keys.push_back("dbname");  // expanded by libpq: a URI stands in the dbname setting
    values.push_back(settings.uri);
  }
  for (const auto& [key, value] : settings.settings) {
    if (!IsLibpqKeyword(key)) RaiseUnreadable("invalid connection option \"" + key + "\"");
    keys.push_back(key);
    values.push_back(value);
  }
}

}  // namespace

std::unique_ptr<Session> OpenPostgresSession(const ConnectionSettings& settings) {
  std::vector<std::string> keys, values;
  CollectSettings(settings, keys, values);
  std::vector<const char*> key_pointers, value_pointers;
  for (size_t i = 0; i < keys.size(); ++i) {
    key_pointers.push_back(keys[i].c_str());
    value_pointers.push_back(values[i].c_str());
  }
  key_pointers.push_back(nullptr);
  value_pointers.push_back(nullptr);
  PGconn* conn = PQconnectdbParams(key_pointers.data(), value_pointers.data(), /*expand_dbname=*/1);
  if (conn == nullptr || PQstatus(conn) != CONNECTION_OK) {
    std::string text = ConnectionFailureText(conn);
    PQfinish(conn);
    throw DatabaseError(error_numbers::kFail, text);
  }
  Result setup(PQexec(conn, kSessionSetup));
  if (!setup || PQresultStatus(setup.get()) != PGRES_COMMAND_OK) {
    std::string text = ConnectionFailureText(conn);
    PQfinish(conn);
    throw DatabaseError(error_numbers::kFail, text);
  }
  return std::make_unique<PostgresSession>(conn);
}

}  // namespace tidewell::ado

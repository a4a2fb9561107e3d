#include "data/recordset.h"

#include <cctype>

#include "data/database_error.h"
#include "data/dialect_translation.h"
#include "data/statement.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell::ado {
namespace {

[[noreturn]] void Raise(long number, const char* description) {
  throw DatabaseError(number, description);
}

[[noreturn]] void RaiseNoBaseTable() {
  Raise(error_numbers::kFail, "Insufficient base table information for updating or refreshing.");
}

// Names spliced into write-back statements are the engine's own column names and the table
// the statement read; anything but a plain name is refused rather than quoted.
bool IsPlainName(std::string_view name) {
  if (name.empty() || std::isdigit(static_cast<unsigned char>(name[0]))) return false;
  for (char c : name) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return false;
  }
  return true;
}

std::vector<Token> SignificantTokens(std::string_view text) {
  std::vector<Token> tokens;
  for (const Token& token : Tokenize(text)) {
    if (token.kind != TokenKind::kSpace) tokens.push_back(token);
  }
  return tokens;
}

std::string_view NameOf(const Token& token) {
  if (token.kind == TokenKind::kQuotedName) return token.text.substr(1, token.text.size() - 2);
  return token.text;
}

// A source that is just a table's name: "Items" or "[Items]".
std::optional<std::string> TableNameSource(std::string_view source) {
  // A statement has blanks between its words, a table's name none: most sources are told
  // apart without reading them word by word.
  const size_t first = source.find_first_not_of(" \t\r\n");
  const size_t last = source.find_last_not_of(" \t\r\n");
  if (first == std::string_view::npos ||
      source.substr(first, last - first + 1).find_first_of(" \t\r\n") != std::string_view::npos)
    return std::nullopt;
  std::vector<Token> tokens = SignificantTokens(source);
  if (tokens.size() != 1) return std::nullopt;
  if (tokens[0].kind != TokenKind::kWord && tokens[0].kind != TokenKind::kQuotedName)
    return std::nullopt;
  std::string_view name = NameOf(tokens[0]);
  if (!IsPlainName(name) || EqualsIgnoringCase(name, "SELECT")) return std::nullopt;
  return std::string(name);
}

// The table of "SELECT ... FROM Table [WHERE|ORDER|GROUP ...]", or "" when the statement
// reads more than one table (a join, a list) or is no such SELECT.
std::string SingleTableOf(std::string_view statement) {
  std::vector<Token> tokens = SignificantTokens(statement);
  if (tokens.empty() || !EqualsIgnoringCase(tokens[0].text, "SELECT")) return "";
  int depth = 0;
  for (size_t i = 1; i + 1 < tokens.size(); ++i) {
    if (tokens[i].text == "(") ++depth;
    if (tokens[i].text == ")") --depth;
    if (depth != 0 || !EqualsIgnoringCase(tokens[i].text, "FROM")) continue;
    std::string_view table = NameOf(tokens[i + 1]);
    if (!IsPlainName(table)) return "";
    if (i + 2 == tokens.size()) return std::string(table);
    std::string_view after = tokens[i + 2].text;
    for (const char* ending : {"WHERE", "ORDER", "GROUP", ";"}) {
      if (EqualsIgnoringCase(after, ending)) return std::string(table);
    }
    return "";
  }
  return "";
}

std::optional<size_t> FindName(const std::vector<std::string>& names, std::string_view name) {
  // Callers mostly write a column's name as the statement did: that is found without folding.
  for (size_t i = 0; i < names.size(); ++i) {
    if (names[i] == name) return i;
  }
  for (size_t i = 0; i < names.size(); ++i) {
    if (EqualsIgnoringCase(names[i], name)) return i;
  }
  return std::nullopt;
}

}  // namespace

const std::string& Field::Name() const {
  return recordset_->names_[column_];
}
const Variant& Field::Value() const {
  return recordset_->ValueOf(column_);
}
void Field::SetValue(Variant value) {
  recordset_->Assign(column_, std::move(value));
}

void Recordset::Open(const Statement& source, Connection& connection, CursorType cursor,
                     LockType lock) {
  if (open_) Raise(error_numbers::kObjectOpen, "Operation is not allowed when the object is open.");
  const std::string& text = source.CheckedText();
  Session& session = connection.session();
  Rows answer;
  if (std::optional<std::string> table = TableNameSource(text)) {
    table_ = *table;
    answer = session.RunBound("SELECT * FROM " + table_ + " LIMIT 0", {});
    rows_deferred_ = true;
  } else {
    answer = source.rows_per_key() ? session.Run(text, *source.rows_per_key()) : session.Run(text);
    // Only a recordset that writes back needs the table it read; the item lists open some
    // forty read-only ones a page and are spared reading their statements once more.
    table_ = lock == adLockReadOnly ? "" : SingleTableOf(text);
    rows_deferred_ = false;
  }
  names_ = std::move(answer.names);
  kinds_ = std::move(answer.kinds);
  rows_ = std::move(answer.values);
  connection_ = &connection;
  cursor_ = cursor;
  lock_ = lock;
  current_ = 0;
  added_row_.reset();
  rows_added_ = 0;
  editing_ = Editing::kNone;
  assigned_.clear();
  open_ = true;
}

bool Recordset::Eof() {
  RequireOpen();
  if (added_row_) return false;
  return AtEnd();
}

void Recordset::MoveNext() {
  RequireOpen();
  if (editing_ != Editing::kNone) Update();  // moving on saves the row, as in ADO
  if (added_row_) {
    // Past a row this recordset added there is nothing more to show.
    added_row_.reset();
    rows_deferred_ = false;
    current_ = rows_.size();
    return;
  }
  if (AtEnd()) {
    Raise(error_numbers::kNoCurrentRecord,
          "Either BOF or EOF is True, or the current record has been deleted. Requested "
          "operation requires a current record.");
  }
  ++current_;
}

Field Recordset::Fields(std::string_view name) {
  RequireOpen();
  std::optional<size_t> column = FindName(names_, name);
  if (!column) {
    Raise(error_numbers::kItemNotFound,
          "Item cannot be found in the collection corresponding to the requested name or ordinal.");
  }
  return Field(this, *column);
}

Field Recordset::Fields(size_t index) {
  RequireOpen();
  if (index >= names_.size()) {
    Raise(error_numbers::kItemNotFound,
          "Item cannot be found in the collection corresponding to the requested name or ordinal.");
  }
  return Field(this, index);
}

long Recordset::RecordCount() {
  RequireOpen();
  if (cursor_ != adOpenStatic && cursor_ != adOpenKeyset) return -1;
  LoadDeferredRows();
  return static_cast<long>(rows_.size()) + rows_added_;
}

void Recordset::AddNew() {
  RequireOpen();
  RequireUpdatable();
  if (editing_ != Editing::kNone) Update();
  added_row_ = std::vector<Variant>(names_.size());
  editing_ = Editing::kAdding;
  assigned_.assign(names_.size(), std::nullopt);
}

void Recordset::Update() {
  RequireOpen();
  if (editing_ == Editing::kNone) return;
  RequireUpdatable();
  if (editing_ == Editing::kAdding) {
    InsertNewRow();
  } else {
    UpdateCurrentRow();
  }
  editing_ = Editing::kNone;
  assigned_.clear();
}

void Recordset::Close() {
  RequireOpen();
  open_ = false;
  connection_ = nullptr;
  table_.clear();
  names_.clear();
  kinds_.clear();
  rows_.clear();
  added_row_.reset();
  editing_ = Editing::kNone;
  assigned_.clear();
}

void Recordset::RequireOpen() const {
  if (!open_)
    Raise(error_numbers::kObjectClosed, "Operation is not allowed when the object is closed.");
}

void Recordset::RequireUpdatable() const {
  if (lock_ == adLockReadOnly) {
    Raise(error_numbers::kNotUpdatable,
          "Current Recordset does not support updating. This may be a limitation of the "
          "provider, or of the selected locktype.");
  }
}

void Recordset::LoadDeferredRows() {
  if (!rows_deferred_) return;
  rows_ = connection_->session().RunBound("SELECT * FROM " + table_, {}).values;
  rows_deferred_ = false;
  rows_added_ = 0;  // the rows read now include the ones added before
}

bool Recordset::AtEnd() {
  LoadDeferredRows();
  return current_ >= rows_.size();
}

std::vector<Variant>& Recordset::CurrentRow() {
  if (added_row_) return *added_row_;
  if (AtEnd()) {
    Raise(error_numbers::kNoCurrentRecord,
          "Either BOF or EOF is True, or the current record has been deleted. Requested "
          "operation requires a current record.");
  }
  return rows_[current_];
}

const Variant& Recordset::ValueOf(size_t column) {
  // A value of a row as read, unassigned, first: a view reads some thousands.
  if (open_ && !added_row_ && !rows_deferred_ && current_ < rows_.size() &&
      (column >= assigned_.size() || !assigned_[column])) {
    return rows_[current_][column];
  }
  RequireOpen();
  if (column < assigned_.size() && assigned_[column]) return *assigned_[column];
  return CurrentRow()[column];
}

void Recordset::Assign(size_t column, Variant value) {
  RequireOpen();
  RequireUpdatable();
  CurrentRow();  // there must be a row to change
  if (editing_ == Editing::kNone) {
    editing_ = Editing::kChanging;
    assigned_.assign(names_.size(), std::nullopt);
  }
  assigned_[column] = CoercedForColumn(column, value);
}

// Values take the column's type when assigned, as ADO converted them: a date column takes
// date text in the regional settings' form, a flag anything CBool reads.
Variant Recordset::CoercedForColumn(size_t column, const Variant& value) const {
  if (value.IsEmpty() || value.IsNull()) return value;
  try {
    switch (kinds_[column]) {
      case ColumnKind::kDate:
        return value.type() == Variant::Type::kDate ? value : Variant(CDate(value));
      case ColumnKind::kBoolean:
        return value.type() == Variant::Type::kBoolean ? value : Variant(CBool(value));
      case ColumnKind::kInteger:
        return value.type() == Variant::Type::kString ? Variant(static_cast<long>(CLng(value)))
                                                      : value;
      default:
        return value;
    }
  } catch (const AutomationError&) {
    Raise(error_numbers::kErrorsOccurred,
          "Multiple-step operation generated errors. Check each status value.");
  }
}

void Recordset::InsertNewRow() {
  if (table_.empty()) RaiseNoBaseTable();
  Session& session = connection_->session();
  std::string columns, parameters;
  std::vector<Variant> values;
  for (size_t i = 0; i < names_.size(); ++i) {
    if (!assigned_[i]) continue;
    if (!IsPlainName(names_[i])) RaiseNoBaseTable();
    values.push_back(*assigned_[i]);
    columns += (columns.empty() ? "" : ", ") + names_[i];
    parameters +=
        (parameters.empty() ? "" : ", ") + session.Parameter(static_cast<int>(values.size()));
  }
  std::string text =
      "INSERT INTO " + table_ +
      (values.empty() ? " DEFAULT VALUES" : " (" + columns + ") VALUES (" + parameters + ")") +
      " RETURNING *";
  Rows answer = session.RunBound(text, values);
  added_row_ = RowFromAnswer(answer, *added_row_);
  ++rows_added_;
}

void Recordset::UpdateCurrentRow() {
  if (table_.empty()) RaiseNoBaseTable();
  Session& session = connection_->session();
  std::vector<Variant>& row = CurrentRow();
  std::string assignments, condition;
  std::vector<Variant> values;
  for (size_t i = 0; i < names_.size(); ++i) {
    if (!assigned_[i]) continue;
    if (!IsPlainName(names_[i])) RaiseNoBaseTable();
    values.push_back(*assigned_[i]);
    assignments += (assignments.empty() ? "" : ", ") + names_[i] + " = " +
                   session.Parameter(static_cast<int>(values.size()));
  }
  std::vector<std::string> keys = session.KeyColumns(table_);
  if (keys.empty()) {
    Raise(error_numbers::kFail, "Insufficient key column information for updating or refreshing.");
  }
  for (const std::string& key : keys) {
    std::optional<size_t> column = FindName(names_, key);
    if (!column || !IsPlainName(key)) {
      Raise(error_numbers::kFail,
            "Insufficient key column information for updating or refreshing.");
    }
    values.push_back(row[*column]);
    condition += (condition.empty() ? "" : " AND ") + key + " = " +
                 session.Parameter(static_cast<int>(values.size()));
  }
  Rows answer = session.RunBound(
      "UPDATE " + table_ + " SET " + assignments + " WHERE " + condition + " RETURNING *", values);
  if (answer.values.empty()) {
    Raise(error_numbers::kRowNotFound,
          "Row cannot be located for updating. Some values may have been changed since it was "
          "last read.");
  }
  row = RowFromAnswer(answer, row);
}

// The row as the engine wrote it, in the recordset's columns; columns the answer lacks keep
// their values.
std::vector<Variant> Recordset::RowFromAnswer(const Rows& answer, std::vector<Variant> row) const {
  if (answer.values.empty()) return row;
  for (size_t i = 0; i < names_.size(); ++i) {
    if (std::optional<size_t> j = FindName(answer.names, names_[i])) row[i] = answer.values[0][*j];
  }
  return row;
}

}  // namespace tidewell::ado

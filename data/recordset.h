#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "data/session.h"
#include "runtime/variant.h"

namespace tidewell::ado {

class Statement;

// ADO's cursor and lock types, with their ADO values.
enum CursorType { adOpenForwardOnly = 0, adOpenKeyset = 1, adOpenDynamic = 2, adOpenStatic = 3 };
enum LockType {
  adLockReadOnly = 1,
  adLockPessimistic = 2,
  adLockOptimistic = 3,
  adLockBatchOptimistic = 4
};

class Recordset;

// One column of the current row: Fields("Heading").Value(). Reading a field at EOF, or
// assigning one on a read-only recordset, throws DatabaseError as ADO did.
class Field {
 public:
  const std::string& Name() const;
  const Variant& Value() const;
  void SetValue(Variant value);

 private:
  friend class Recordset;
  Field(Recordset* recordset, size_t column) : recordset_(recordset), column_(column) {}
  Recordset* recordset_;
  size_t column_;
};

// ADO's Recordset, opened on a statement or on a table's name.
//
// Every row is read when the recordset opens; a recordset opened on a table's name reads the
// table's rows only when they are first asked for, so that opening "Items" to add a row
// costs nothing. A recordset with a lock type other than adLockReadOnly writes back: AddNew
// starts a new row, assignments to its fields (or to the current row's) are kept, and Update
// writes the assigned fields with bound values (an INSERT, or an UPDATE of the row found by
// the table's primary key, which the statement must select) and reads the row back, so that
// keys the engine generated are there afterwards. A statement that can be written back reads
// one table: "SELECT ... FROM Table [WHERE ...]".
class Recordset {
 public:
  Recordset() = default;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Open(Source, ActiveConnection, CursorType, LockType, -1).
  void Open(const Statement& source, Connection& connection, CursorType cursor = adOpenStatic,
            LockType lock = adLockReadOnly);
  // ADO's EOF (a macro of the C library has the name).
  bool Eof();
  void MoveNext();
  Field Fields(std::string_view name);
  Field Fields(size_t index);
  size_t FieldCount() const { return names_.size(); }
  // The number of rows for static and keyset cursors; -1 for the others, as ADO answered.
  long RecordCount();
  void AddNew();
  void Update();
  void Close();
  ObjectState State() const { return open_ ? adStateOpen : adStateClosed; }

 private:
  friend class Field;
  enum class Editing { kNone, kChanging, kAdding };

  void RequireOpen() const;
  void RequireUpdatable() const;
  void LoadDeferredRows();
  bool AtEnd();
  const Variant& ValueOf(size_t column);
  void Assign(size_t column, Variant value);
  std::vector<Variant>& CurrentRow();
  void InsertNewRow();
  void UpdateCurrentRow();
  std::vector<Variant> RowFromAnswer(const Rows& answer, std::vector<Variant> row) const;
  Variant CoercedForColumn(size_t column, const Variant& value) const;

  bool open_ = false;
  Connection* connection_ = nullptr;
  CursorType cursor_ = adOpenStatic;
  LockType lock_ = adLockReadOnly;
  std::string table_;           // the one table the source reads, "" when it reads more
  bool rows_deferred_ = false;  // opened on a table's name and not read yet
  std::vector<std::string> names_;
  std::vector<ColumnKind> kinds_;
  std::vector<std::vector<Variant>> rows_;
  size_t current_ = 0;
  std::optional<std::vector<Variant>> added_row_;  // a row AddNew started, current while set
  long rows_added_ = 0;
  Editing editing_ = Editing::kNone;
  std::vector<std::optional<Variant>> assigned_;
};

}  // namespace tidewell::ado

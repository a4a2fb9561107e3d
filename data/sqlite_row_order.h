#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/per_key_select.h"
#include "runtime/variant.h"

namespace tidewell::ado {

// A value as SQLite stores it and as its ORDER BY compares it: the storage class, and the
// number or the bytes. The bytes belong to whoever the value was read from.
struct StoredValue {
  int type = SQLITE_NULL;
  sqlite3_int64 integer = 0;
  double real = 0;
  std::string_view bytes;
};

// The value as it stands; for a column of the current row, its bytes last until the statement
// steps on.
StoredValue StoredValueOf(sqlite3_value* value);

// The collations whose order is known here; a column of any other is left to SQLite to sort.
enum class Collation { kBinary, kNoCase };

// Less than, equal to or greater than 0 as SQLite's ORDER BY puts `a` before, level with or
// after `b` (ascending): nulls first, then numbers by their value, then texts by the
// collation, then blobs by their bytes.
int CompareStored(const StoredValue& a, const StoredValue& b, Collation collation);

// An ORDER BY term resolved against a prepared statement: the column it sorts by, with the
// column's collation, and its direction.
struct SortColumn {
  int column = 0;
  Collation collation = Collation::kBinary;
  bool descending = false;
};

// The terms resolved, when each names exactly one column of the statement and that column is
// a table's column declared BINARY or NOCASE (or with no collation, which is BINARY); nullopt
// otherwise.
std::optional<std::vector<SortColumn>> SortColumnsOf(sqlite3* db, sqlite3_stmt* stmt,
                                                     const std::vector<RowOrderTerm>& terms);

// A statement's rows gathered to be put in order here rather than by SQLite: for a few
// hundred rows, SQLite's sorter, which writes each row out as a record and reads it back,
// cost as much again as reading them. Each row keeps its values and a copy of the stored
// values of its sort columns.
class RowsToSort {
 public:
  explicit RowsToSort(const std::vector<SortColumn>& order);

  // Adds a row: `values` as the answer gives them, `columns` every one of the statement's
  // columns as stored, of which the sort columns are kept.
  void Add(const std::vector<StoredValue>& columns, std::vector<Variant> values);
  // After the last row: the rows' positions, first to last in the order; rows level in every
  // term keep the order they came in.
  std::vector<size_t> Sorted();
  // The stored value of sort term `term` in row `row`.
  const StoredValue& Stored(size_t row, size_t term) const {
    return keys_[row * order_.size() + term];
  }
  std::vector<Variant>& Values(size_t row) { return rows_[row]; }

 private:
  // Where a sort column's bytes are copied as its row is added: blocks that never move, so
  // the keys can point into them from the start.
  std::string_view KeepBytes(std::string_view bytes);

  const std::vector<SortColumn>& order_;
  std::vector<std::vector<Variant>> rows_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* block_free_ = nullptr;
  size_t block_left_ = 0;
  std::vector<StoredValue> keys_;  // order_.size() for each row
};

}  // namespace tidewell::ado

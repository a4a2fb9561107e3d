#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell::ado {

// A TOP n for each group of a statement's rows: at most `rows` rows of each run of rows alike
// in `columns`, which the statement sorts by first (ascending). The providers pass over the
// rest without reading them, and PostgreSQL's has the engine keep only those rows itself
// (postgres_rows_per_key.h), so that a statement that reads many lists at once (a month of
// day lists) costs no more for a crowded day than each list's own TOP n did.
struct RowsPerKey {
  std::vector<std::string> columns;
  long rows = 0;
};

// Counts the rows of each run while a provider reads them.
class KeyRuns {
 public:
  // `names` are the statement's columns; a key column it lacks throws DatabaseError.
  KeyRuns(const RowsPerKey& per_key, const std::vector<std::string>& names);

  // The positions of the key columns among the statement's.
  const std::vector<int>& key_columns() const { return key_columns_; }

  // Whether the next row, whose key columns read `key` (their texts, each ended by
  // NextKeyPart), is kept: false once its run has `rows` rows already.
  bool Keep(const std::string& key);
  // How many rows of the current run were not kept so far.
  long PassedOverInRun() const { return run_rows_ > rows_ ? run_rows_ - rows_ : 0; }

  // Adds one key column's text (null as no text at all) to `key`.
  static void NextKeyPart(std::string& key, const char* text, size_t size);

 private:
  long rows_;
  std::vector<int> key_columns_;
  std::string run_key_;
  long run_rows_ = 0;
  bool started_ = false;
};

}  // namespace tidewell::ado

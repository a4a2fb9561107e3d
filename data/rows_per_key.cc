#include "data/rows_per_key.h"

#include <strings.h>

#include <charconv>
#include <iterator>

#include "data/database_error.h"
#include "data/session.h"
#include "runtime/conversions.h"

namespace tidewell::ado {

KeyRuns::KeyRuns(const RowsPerKey& per_key, const std::vector<std::string>& names)
    : rows_(per_key.rows) {
  for (const std::string& column : per_key.columns) {
    int found = -1;
    for (size_t c = 0; c < names.size() && found < 0; ++c) {
      if (strcasecmp(names[c].c_str(), column.c_str()) == 0) found = static_cast<int>(c);
    }
    if (found < 0) {
      throw DatabaseError(error_numbers::kFail,
                          "The statement has no column " + column + " to count its rows by.");
    }
    key_columns_.push_back(found);
  }
}

bool KeyRuns::Keep(const std::string& key) {
  if (!started_ || key != run_key_) {
    started_ = true;
    run_key_ = key;
    run_rows_ = 0;
  }
  return ++run_rows_ <= rows_;
}

void KeyRuns::NextKeyPart(std::string& key, const char* text, size_t size) {
  // A length before each part keeps ("ab", "c") and ("a", "bc") apart; a null has none.
  if (text == nullptr) {
    key += "N;";
    return;
  }
  char digits[24];
  const auto written = std::to_chars(std::begin(digits), std::end(digits), size);
  key.append(digits, written.ptr);
  key += ':';
  key.append(text, size);
}

Rows KeepPerKey(Rows rows, const RowsPerKey& per_key) {
  KeyRuns runs(per_key, rows.names);
  std::vector<std::vector<Variant>> kept;
  for (std::vector<Variant>& row : rows.values) {
    std::string key;
    for (int column : runs.key_columns()) {
      const Variant& value = row[static_cast<size_t>(column)];
      const std::string text = value.IsNull() ? "" : CStr(value);
      KeyRuns::NextKeyPart(key, value.IsNull() ? nullptr : text.data(), text.size());
    }
    if (runs.Keep(key)) kept.push_back(std::move(row));
  }
  rows.values = std::move(kept);
  return rows;
}

Rows Session::Run(std::string_view statement, const RowsPerKey& per_key) {
  return KeepPerKey(Run(statement), per_key);
}

}  // namespace tidewell::ado

#include "data/sqlite_row_order.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "runtime/strings.h"

namespace tidewell::ado {
namespace {

// The storage classes in the order SQLite sorts them.
int ClassRank(int type) {
  switch (type) {
    case SQLITE_NULL:
      return 0;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      return 1;
    case SQLITE_TEXT:
      return 2;
    default:
      return 3;
  }
}

template <typename Number>
int CompareValues(Number a, Number b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

// An integer against a real as SQLite compares them: in a long double, which holds every
// 64-bit integer exactly on this platform.
int CompareNumbers(const StoredValue& a, const StoredValue& b) {
  if (a.type == SQLITE_INTEGER && b.type == SQLITE_INTEGER) {
    return CompareValues(a.integer, b.integer);
  }
  const long double x = a.type == SQLITE_INTEGER ? static_cast<long double>(a.integer) : a.real;
  const long double y = b.type == SQLITE_INTEGER ? static_cast<long double>(b.integer) : b.real;
  return CompareValues(x, y);
}

// BINARY: the bytes, then the length.
int CompareBytes(std::string_view a, std::string_view b) {
  const size_t shared = std::min(a.size(), b.size());
  if (shared > 0) {
    if (const int order = std::memcmp(a.data(), b.data(), shared); order != 0) return order;
  }
  return CompareValues(a.size(), b.size());
}

unsigned char FoldedAscii(unsigned char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c - 'A' + 'a') : c;
}

// NOCASE: the bytes with only A to Z folded to lower case, up to the shorter length (or a
// zero byte, where SQLite's comparison stops), then the length.
int CompareNoCase(std::string_view a, std::string_view b) {
  const size_t shared = std::min(a.size(), b.size());
  for (size_t i = 0; i < shared; ++i) {
    const unsigned char x = FoldedAscii(static_cast<unsigned char>(a[i]));
    const unsigned char y = FoldedAscii(static_cast<unsigned char>(b[i]));
    if (x != y) return x - y;
    if (x == '\0') break;
  }
  return CompareValues(a.size(), b.size());
}

int CompareTexts(std::string_view a, std::string_view b, Collation collation) {
  return collation == Collation::kNoCase ? CompareNoCase(a, b) : CompareBytes(a, b);
}

}  // namespace

StoredValue StoredValueOf(sqlite3_value* value) {
  StoredValue stored;
  stored.type = sqlite3_value_type(value);
  switch (stored.type) {
    case SQLITE_INTEGER:
      stored.integer = sqlite3_value_int64(value);
      break;
    case SQLITE_FLOAT:
      stored.real = sqlite3_value_double(value);
      break;
    case SQLITE_TEXT: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
      if (text) stored.bytes = {text, static_cast<size_t>(sqlite3_value_bytes(value))};
      break;
    }
    case SQLITE_BLOB: {
      const auto* blob = static_cast<const char*>(sqlite3_value_blob(value));
      if (blob) stored.bytes = {blob, static_cast<size_t>(sqlite3_value_bytes(value))};
      break;
    }
    default:
      break;
  }
  return stored;
}

int CompareStored(const StoredValue& a, const StoredValue& b, Collation collation) {
  // Most comparisons are of two values of one type.
  if (a.type == b.type) {
    switch (a.type) {
      case SQLITE_INTEGER:
        return CompareValues(a.integer, b.integer);
      case SQLITE_TEXT:
        return CompareTexts(a.bytes, b.bytes, collation);
      default:
        break;
    }
  }
  const int rank = ClassRank(a.type);
  if (rank != ClassRank(b.type)) return rank < ClassRank(b.type) ? -1 : 1;
  switch (rank) {
    case 0:
      return 0;
    case 1:
      return CompareNumbers(a, b);
    case 2:
      return CompareTexts(a.bytes, b.bytes, collation);
    default:
      return CompareBytes(a.bytes, b.bytes);
  }
}

std::optional<std::vector<SortColumn>> SortColumnsOf(sqlite3* db, sqlite3_stmt* stmt,
                                                     const std::vector<RowOrderTerm>& terms) {
  const int count = sqlite3_column_count(stmt);
  std::vector<SortColumn> columns;
  for (const RowOrderTerm& term : terms) {
    std::optional<int> named;
    for (int c = 0; c < count; ++c) {
      if (!EqualsIgnoringCase(sqlite3_column_name(stmt, c), term.name)) continue;
      if (named) return std::nullopt;
      named = c;
    }
    if (!named) return std::nullopt;
    const char* database = sqlite3_column_database_name(stmt, *named);
    const char* table = sqlite3_column_table_name(stmt, *named);
    const char* origin = sqlite3_column_origin_name(stmt, *named);
    const char* collation = nullptr;
    if (!database || !table || !origin ||
        sqlite3_table_column_metadata(db, database, table, origin, nullptr, &collation, nullptr,
                                      nullptr, nullptr) != SQLITE_OK) {
      return std::nullopt;
    }
    SortColumn column{.column = *named, .descending = term.Descending()};
    if (collation == nullptr || EqualsIgnoringCase(collation, "BINARY")) {
      column.collation = Collation::kBinary;
    } else if (EqualsIgnoringCase(collation, "NOCASE")) {
      column.collation = Collation::kNoCase;
    } else {
      return std::nullopt;
    }
    columns.push_back(column);
  }
  return columns;
}

RowsToSort::RowsToSort(const std::vector<SortColumn>& order) : order_(order) {
  // Room for a busy month at once: growing moves every row and key added so far.
  constexpr size_t kRows = 256;
  rows_.reserve(kRows);
  keys_.reserve(kRows * order_.size());
}

std::string_view RowsToSort::KeepBytes(std::string_view bytes) {
  if (bytes.empty()) return {};
  if (bytes.size() > block_left_) {
    constexpr size_t kBlock = 8192;
    block_left_ = std::max(kBlock, bytes.size());
    blocks_.push_back(std::make_unique_for_overwrite<char[]>(block_left_));
    block_free_ = blocks_.back().get();
  }
  char* kept = block_free_;
  std::memcpy(kept, bytes.data(), bytes.size());
  block_free_ += bytes.size();
  block_left_ -= bytes.size();
  return {kept, bytes.size()};
}

void RowsToSort::Add(const std::vector<StoredValue>& columns, std::vector<Variant> values) {
  for (const SortColumn& term : order_) {
    const StoredValue& value = columns[static_cast<size_t>(term.column)];
    keys_.push_back({value.type, value.integer, value.real, KeepBytes(value.bytes)});
  }
  rows_.push_back(std::move(values));
}

std::vector<size_t> RowsToSort::Sorted() {
  const size_t terms = order_.size();
  auto before = [this, terms](size_t a, size_t b) {
    const StoredValue* x = &keys_[a * terms];
    const StoredValue* y = &keys_[b * terms];
    for (size_t term = 0; term < terms; ++term) {
      const int order = CompareStored(x[term], y[term], order_[term].collation);
      if (order != 0) return order_[term].descending ? order > 0 : order < 0;
    }
    return a < b;
  };
  // The rows mostly come in a few runs already in order (a view reads each owner's items along
  // an index by day): the runs are found and merged, which takes a fraction of the comparisons
  // a sort from scratch makes. Rows in no order at all make runs of one, merged as by a merge
  // sort.
  std::vector<size_t> positions(rows_.size());
  std::iota(positions.begin(), positions.end(), 0);
  std::vector<size_t> run_starts;
  for (size_t row = 0; row < positions.size(); ++row) {
    if (row == 0 || before(row, row - 1)) run_starts.push_back(row);
  }
  std::vector<size_t> merged(positions.size());
  while (run_starts.size() > 1) {
    std::vector<size_t> merged_starts;
    for (size_t run = 0; run < run_starts.size(); run += 2) {
      const size_t start = run_starts[run];
      const size_t middle = run + 1 < run_starts.size() ? run_starts[run + 1] : positions.size();
      const size_t end = run + 2 < run_starts.size() ? run_starts[run + 2] : positions.size();
      std::merge(positions.begin() + static_cast<std::ptrdiff_t>(start),
                 positions.begin() + static_cast<std::ptrdiff_t>(middle),
                 positions.begin() + static_cast<std::ptrdiff_t>(middle),
                 positions.begin() + static_cast<std::ptrdiff_t>(end),
                 merged.begin() + static_cast<std::ptrdiff_t>(start), before);
      merged_starts.push_back(start);
    }
    positions.swap(merged);
    run_starts = std::move(merged_starts);
  }
  return positions;
}

}  // namespace tidewell::ado

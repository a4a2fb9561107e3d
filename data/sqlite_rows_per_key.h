#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "data/rows_per_key.h"
#include "runtime/variant.h"

namespace tidewell::ado {

// A key whose run of rows was crowded: the values of its key columns as the table stores them
// (to bind them back), and the key as KeyRuns tells keys apart.
struct CrowdedKey {
  std::string runs_key;
  std::vector<Variant> values;
};

// A statement in SQLite's words with its values taken out as `parameters` plain "?"
// (ParameterizedAccessForSqlite), rewritten so that SQLite itself keeps at most
// `per_key.rows` rows of each of `crowded_keys` keys, while the rows of every other key are
// read as before. SQLite has no LATERAL, so the crowded keys are named: for
//
//   SELECT list FROM tables WHERE condition ORDER BY keys, rest
//
// it makes
//
//   SELECT list FROM tables WHERE (condition) AND NOT (+keys IS key 1) AND NOT (+keys IS key 2)
//   UNION ALL SELECT * FROM (SELECT list FROM tables WHERE (condition) AND +keys IS key 1
//                            ORDER BY keys, rest LIMIT n)
//   UNION ALL ... (the same for key 2)
//   ORDER BY the same order, by the columns the rows carry
//
// where each crowded key's top-n sort keeps n rows of it instead of sorting them all. The
// statement's values become ?1 to ?parameters, wherever the rewrite repeats them; key k's
// columns (from 0, in per_key.columns' order) are bound to the parameters after those, one
// key after the other. Whatever values are bound, the arms split the statement's rows between
// them (IS treats a null as a value), so the rows read are the statement's own in its order,
// each crowded key's cut to its first n.
// A statement of another shape (per_key_select.h) gives nullopt, as does one whose "?" do not
// number `parameters`: the session runs it as written.
std::optional<std::string> KeepPerKeyForSqlite(std::string_view translated,
                                               const RowsPerKey& per_key, size_t parameters,
                                               size_t crowded_keys);

// Which keys of a statement's rows were crowded, for the session to have SQLite keep their first
// rows itself. A crowded key costs the statement a sort of all its rows, where the statement
// has only a few to keep (a day with thousands of items in a month view that shows six), while
// reading a key on its own costs more than its share of one sort of a few rows. So a statement
// runs as written until a run passes over many rows of one key; from then on those keys, and any
// a later run finds crowded too, are read on their own, and one run in kProbeInterval runs as
// written again, to find which keys are crowded now.
class CrowdedKeyReadings {
 public:
  // Rows of one key passed over in one run from which on the key is read on its own.
  static constexpr long kCrowded = 64;
  static constexpr int kProbeInterval = 64;
  // Keys remembered at most for one statement: past it a run finds no more.
  static constexpr size_t kKeysPerStatement = 64;

  // The keys to read on their own in this run of `statement`, valid until the next call; null
  // for a run as written.
  const std::vector<CrowdedKey>* ForRun(std::string_view statement, const RowsPerKey& per_key);
  // Whether crowded keys of `statement` are known: a run as written is then a probe.
  bool KnowsCrowdedKeys(std::string_view statement, const RowsPerKey& per_key);
  // After the run: the keys it found crowded. They are added to the keys the run read on its own,
  // or replace every key known when it ran as written.
  void Found(std::string_view statement, const RowsPerKey& per_key, bool ran_as_written,
             std::vector<CrowdedKey> found);

 private:
  // Statements remembered at most; past it they are all forgotten, to run as written again.
  static constexpr size_t kStatements = 256;
  // What is known of a statement read by one set of key columns (one text may be read by
  // several).
  struct Readings {
    std::vector<std::string> key_columns;
    std::vector<CrowdedKey> keys;
    int runs_since_probe = 0;
  };
  Readings* Find(std::string_view statement, const RowsPerKey& per_key);
  Readings& Add(std::string_view statement, const RowsPerKey& per_key);
  void Forget(std::string_view statement, const RowsPerKey& per_key);

  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
  };
  std::unordered_map<std::string, std::vector<Readings>, TextHash, std::equal_to<>> statements_;
};

}  // namespace tidewell::ado

#include "data/sqlite_rows_per_key.h"

#include <algorithm>

#include "data/dialect_translation.h"
#include "data/per_key_select.h"

namespace tidewell::ado {
namespace {

// The statement with its plain "?" numbered ?1, ?2, ... in order, so that a clause the
// rewrite repeats still reads the same values; nullopt unless there are `parameters` of them,
// all plain.
std::optional<std::string> NumberParameters(std::string_view statement, size_t parameters) {
  const std::vector<Token> tokens = Tokenize(statement);
  std::string numbered;
  size_t count = 0;
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].text != "?") {
      numbered += tokens[i].text;
      continue;
    }
    if (i + 1 < tokens.size() && tokens[i + 1].kind == TokenKind::kNumber) return std::nullopt;
    numbered += "?" + std::to_string(++count);
  }
  if (count != parameters) return std::nullopt;
  return numbered;
}

// "+DateStamp IS ?7 AND +TimeStamp IS ?8": the rows of the crowded key whose values are bound
// from parameter `first` on. The "+" keeps SQLite from reading the key through an index of its
// own: the statement's plan (its owners' items of the range, say) stays, and the key only
// filters what it reads, where an index on the key alone would have every row it reads looked
// up in the other tables. It also takes the column's affinity away, which the values, bound as
// stored, do not need.
std::string KeyIs(const std::vector<KeyColumn>& keys, size_t first) {
  std::string condition;
  for (size_t k = 0; k < keys.size(); ++k) {
    if (k > 0) condition += " AND ";
    condition += "+" + keys[k].expression + " IS ?" + std::to_string(first + k);
  }
  return condition;
}

}  // namespace

std::optional<std::string> KeepPerKeyForSqlite(std::string_view translated,
                                               const RowsPerKey& per_key, size_t parameters,
                                               size_t crowded_keys) {
  if (crowded_keys == 0) return std::nullopt;
  const std::optional<std::string> numbered = NumberParameters(translated, parameters);
  if (!numbered) return std::nullopt;
  const std::optional<PerKeySelect> select = PerKeySelectOf(*numbered, per_key);
  if (!select) return std::nullopt;
  const std::string from = " FROM " + select->tables + " WHERE " +
                           (select->condition ? "(" + *select->condition + ") AND " : "");
  const std::string limit = std::to_string(std::max(per_key.rows, 0L));
  std::string other_keys, crowded_arms;
  for (size_t k = 0; k < crowded_keys; ++k) {
    const std::string key_is = KeyIs(select->keys, parameters + 1 + k * select->keys.size());
    other_keys += (k > 0 ? " AND NOT (" : "NOT (") + key_is + ")";
    // The LIMIT stands right over the key's ORDER BY: SQLite then keeps only the first rows
    // while it reads the key's, rather than sorting them all.
    crowded_arms += " UNION ALL SELECT * FROM (SELECT " + select->list + from + key_is +
                    " ORDER BY " + select->order + " LIMIT " + limit + ")";
  }
  return "SELECT " + select->list + from + other_keys + crowded_arms + " ORDER BY " +
         OrderOfRows(*select);
}

const std::vector<CrowdedKey>* CrowdedKeyReadings::ForRun(std::string_view statement,
                                                          const RowsPerKey& per_key) {
  Readings* readings = Find(statement, per_key);
  if (!readings) return nullptr;
  if (++readings->runs_since_probe < kProbeInterval) return &readings->keys;
  readings->runs_since_probe = 0;
  return nullptr;
}

bool CrowdedKeyReadings::KnowsCrowdedKeys(std::string_view statement, const RowsPerKey& per_key) {
  return Find(statement, per_key) != nullptr;
}

void CrowdedKeyReadings::Found(std::string_view statement, const RowsPerKey& per_key,
                               bool ran_as_written, std::vector<CrowdedKey> found) {
  Readings* readings = Find(statement, per_key);
  if (ran_as_written) {
    if (found.empty()) return Forget(statement, per_key);
    if (!readings) readings = &Add(statement, per_key);
    readings->keys.clear();
  }
  if (!readings) return;  // forgotten while it ran
  std::vector<CrowdedKey>& keys = readings->keys;
  for (CrowdedKey& key : found) {
    const bool listed = std::any_of(keys.begin(), keys.end(), [&](const CrowdedKey& other) {
      return other.runs_key == key.runs_key;
    });
    if (!listed && keys.size() < kKeysPerStatement) keys.push_back(std::move(key));
  }
}

CrowdedKeyReadings::Readings* CrowdedKeyReadings::Find(std::string_view statement,
                                                       const RowsPerKey& per_key) {
  const auto found = statements_.find(statement);
  if (found == statements_.end()) return nullptr;
  for (Readings& readings : found->second) {
    if (readings.key_columns == per_key.columns) return &readings;
  }
  return nullptr;
}

CrowdedKeyReadings::Readings& CrowdedKeyReadings::Add(std::string_view statement,
                                                      const RowsPerKey& per_key) {
  auto found = statements_.find(statement);
  if (found == statements_.end()) {
    if (statements_.size() >= kStatements) statements_.clear();
    found = statements_.emplace(std::string(statement), std::vector<Readings>{}).first;
  }
  Readings& readings = found->second.emplace_back();
  readings.key_columns = per_key.columns;
  return readings;
}

void CrowdedKeyReadings::Forget(std::string_view statement, const RowsPerKey& per_key) {
  const auto found = statements_.find(statement);
  if (found == statements_.end()) return;
  std::erase_if(found->second,
                [&](const Readings& readings) { return readings.key_columns == per_key.columns; });
  if (found->second.empty()) statements_.erase(found);
}

}  // namespace tidewell::ado

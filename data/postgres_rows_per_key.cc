#include "data/postgres_rows_per_key.h"

#include <algorithm>

#include "data/per_key_select.h"

namespace tidewell::ado {

std::optional<std::string> KeepPerKeyForPostgres(std::string_view translated,
                                                 const RowsPerKey& per_key) {
  const std::optional<PerKeySelect> select = PerKeySelectOf(translated, per_key);
  if (!select) return std::nullopt;
  const std::string& list = select->list;
  const std::string& tables = select->tables;
  // The statement's own condition, then the key's.
  const std::string where =
      " WHERE " + (select->condition ? "(" + *select->condition + ") AND " : "");
  std::string all_keys, no_null_key, key_matches, a_null_key;
  for (const KeyColumn& key : select->keys) {
    const bool first = all_keys.empty();
    all_keys += (first ? "" : ", ") + key.expression;
    no_null_key += (first ? "" : " AND ") + key.expression + " IS NOT NULL";
    key_matches += (first ? "" : " AND ") + key.expression + " = tidewell_keys." + key.name;
    a_null_key += (first ? "" : " OR ") + key.expression + " IS NULL";
  }
  const std::string limit = std::to_string(std::max(per_key.rows, 0L));
  // The LIMIT stands right over the key's ORDER BY, so the engine keeps a top-n sort of the
  // key's rows rather than sorting them all; the rows kept are few, and the last ORDER BY
  // sorts them again in the statement's order, by the columns as the rows carry them.
  return "SELECT tidewell_kept.* FROM (SELECT DISTINCT " + all_keys + " FROM " + tables + where +
         no_null_key + ") AS tidewell_keys CROSS JOIN LATERAL (SELECT " + list + " FROM " + tables +
         where + key_matches + " ORDER BY " + select->order + " LIMIT " + limit +
         ") AS tidewell_kept UNION ALL SELECT " + list + " FROM " + tables + where + "(" +
         a_null_key + ") ORDER BY " + OrderOfRows(*select);
}

bool PerKeyReadings::Rewrite(const std::string& translated) {
  const auto found = rewritten_runs_.find(translated);
  if (found == rewritten_runs_.end()) return false;
  if (++found->second < kProbeInterval) return true;
  found->second = 0;
  return false;
}

void PerKeyReadings::PassedOver(const std::string& translated, long long rows) {
  if (rows < kCrowded) {
    rewritten_runs_.erase(translated);
    return;
  }
  if (rewritten_runs_.size() >= kStatements && !rewritten_runs_.contains(translated)) {
    rewritten_runs_.clear();
  }
  rewritten_runs_[translated] = 0;
}

}  // namespace tidewell::ado

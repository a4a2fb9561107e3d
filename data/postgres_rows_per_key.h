#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "data/rows_per_key.h"

namespace tidewell::ado {

// A statement already in PostgreSQL's words (after TranslateSqlServerForPostgres), rewritten
// so that the engine itself keeps at most `per_key.rows` rows of each key instead of sorting
// and sending every row for the session to pass over. For
//
//   SELECT list FROM tables WHERE condition ORDER BY keys, rest
//
// it reads the keys the condition selects, and for each the statement's own first rows
// (a LATERAL subquery with its ORDER BY and a LIMIT, a top-n sort over that key's rows
// alone, found through the index on the key), with the rows whose key holds a null, which no
// key equals. The rows kept are sorted again by the statement's ORDER BY, read as the columns
// the rows carry, so they come back in the statement's order with the statement's columns.
//
// Only the shape PerKeySelectOf takes apart is rewritten (per_key_select.h); anything else
// gives nullopt: the session runs the statement as written and passes over the extra rows
// itself, as it does after the rewrite too.
std::optional<std::string> KeepPerKeyForPostgres(std::string_view translated,
                                                 const RowsPerKey& per_key);

// When a session rewrites a statement with KeepPerKeyForPostgres. The rewritten statement
// reads each key on its own, which costs more than one sort of the whole statement while the
// keys hold few rows (a month of a few items a day: twice the time) and far less once one key
// holds hundreds (a day with thousands of items: a fifth). So a statement's text runs as
// written until a run passed over many rows, then rewritten; one run in kProbeInterval runs
// as written again, to see whether its keys are still crowded.
class PerKeyReadings {
 public:
  // Rows passed over in one run from which on the statement is rewritten.
  static constexpr long long kCrowded = 256;
  static constexpr int kProbeInterval = 64;

  // Whether to rewrite this run of the statement.
  bool Rewrite(const std::string& translated);
  // After a run as written: how many rows the session passed over.
  void PassedOver(const std::string& translated, long long rows);

 private:
  // Statements remembered at most; past it they are all forgotten, to run as written again.
  static constexpr size_t kStatements = 256;
  std::unordered_map<std::string, int> rewritten_runs_;  // of the crowded statements
};

}  // namespace tidewell::ado

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/rows_per_key.h"

namespace tidewell::ado {

// A key column as the statement names it: the list's item ("Items.DateStamp") and the name
// the rows carry it under ("DateStamp").
struct KeyColumn {
  std::string expression;
  std::string name;
};

// A term of the ORDER BY as the rows carry its column: "Items.Heading DESC" is {"Heading",
// "DESC"}; the direction as written, "" when none is.
struct RowOrderTerm {
  std::string name;
  std::string direction;
  bool Descending() const;
};

// A statement taken apart for a provider to rewrite it so that the engine itself keeps at
// most a few rows of each key (postgres_rows_per_key.h, sqlite_rows_per_key.h): the clauses
// of "SELECT list FROM tables [WHERE condition] ORDER BY order", each as written without the
// blanks at its ends.
struct PerKeySelect {
  std::string list;
  std::string tables;
  std::optional<std::string> condition;
  std::string order;
  // The ORDER BY term by term as it reads the statement's rows: each term the name the rows
  // carry its column under, with its direction.
  std::vector<RowOrderTerm> order_terms;
  std::vector<KeyColumn> keys;  // in the order of per_key.columns
};

// The statement's clauses, when it has the one shape the rewrites take: a SELECT without
// DISTINCT, GROUP BY, HAVING, LIMIT, OFFSET or set operations, whose list names each key
// column plainly (DateStamp or Items.DateStamp, no "*") and gives no item a name of its own
// (AS), and whose ORDER BY starts with exactly those columns, ascending, in the keys' order,
// and otherwise names only columns the list holds once, each plainly with an optional
// direction. Anything else gives nullopt, and the statement runs as written.
std::optional<PerKeySelect> PerKeySelectOf(std::string_view statement, const RowsPerKey& per_key);

// The ORDER BY for a query over the statement's rows ("a, b DESC"): order_terms written out.
std::string OrderOfRows(const PerKeySelect& select);

// "SELECT list FROM tables [WHERE condition]": the statement's rows in no particular order.
std::string UnorderedText(const PerKeySelect& select);

}  // namespace tidewell::ado

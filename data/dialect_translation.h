#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "runtime/variant.h"

namespace tidewell::ado {

// Statement text as a run of tokens. Translation works on tokens, never on raw text, so a
// quoted value is one token and nothing inside it is ever rewritten.
enum class TokenKind {
  kSpace,        // blanks and comments
  kWord,         // a name or key word
  kNumber,       // 12, 1.5
  kText,         // 'quoted value' (quotes included; '' inside stands for one quote)
  kQuotedName,   // "name", [name] or `name`
  kDateLiteral,  // #11/3/2026#
  kOperator,     // = <> != < > <= >=
  kOther,        // any other single character: ( ) , . * ; - + and a lone #
};

struct Token {
  TokenKind kind;
  std::string_view text;
};

std::vector<Token> Tokenize(std::string_view statement);

// Access dialect (what the Jet engine accepted) to SQLite:
// - "SELECT [DISTINCT] TOP n ..." becomes "SELECT [DISTINCT] ... LIMIT n";
// - #m/d/yyyy# date literals become 'yyyy-mm-dd', the form dates are stored in;
// - a column of a date type compared with a quoted text fails as Jet failed, with
//   "Data type mismatch in criteria expression." (`is_date_column` answers for a column name).
// A malformed date literal fails as a syntax error. Throws DatabaseError.
std::string TranslateAccessForSqlite(std::string_view statement,
                                     const std::function<bool(std::string_view)>& is_date_column);

// What the SQLite session prepares and runs for a statement in the Access dialect.
struct SqliteStatement {
  std::string text;               // in SQLite's words, values taken out as "?"
  std::vector<Variant> values;    // for the "?" in order
  std::optional<long> row_limit;  // "TOP n": read no more than n rows
};

// TranslateAccessForSqlite, made for running rather than reading:
// - "TOP n" is taken out and n goes to row_limit, for the session to stop reading after n
//   rows: for the few rows a day list sorts, SQLite's plain sort is cheaper than the top-n
//   index a LIMIT makes it keep;
// - in a SELECT, INSERT, UPDATE or DELETE, every quoted value and date literal, and every
//   whole number right after a comparison, becomes a parameter with its value listed, so that
//   statements differing only in their values (one a day of a month view, one a user) share
//   one prepared statement. The values compare exactly as the literals did.
// Throws DatabaseError as TranslateAccessForSqlite does.
SqliteStatement ParameterizedAccessForSqlite(
    std::string_view statement, const std::function<bool(std::string_view)>& is_date_column);

// SQL Server dialect to PostgreSQL: TOP n becomes LIMIT n and [bracketed] names lose their
// brackets. Quoted m/d/yyyy dates need nothing: the session reads dates month first. A "#"
// outside a quoted value fails as a syntax error, as it did on SQL Server. Throws
// DatabaseError.
std::string TranslateSqlServerForPostgres(std::string_view statement);

}  // namespace tidewell::ado

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell::ado {

// The type a value taken out of a statement is sent with, chosen so that the engine reads
// the parameter exactly as it read the literal: a quoted text is of no type until its
// context gives it one (a date column makes it a date, read month first), and a whole
// number is an integer or, past an integer's range, a bigint.
enum class LiteralType { kUntyped, kInteger, kBigint };

struct PostgresParameter {
  std::string value;  // as the engine reads it: the text inside the quotes, or the digits
  LiteralType type;
};

// A statement as the PostgreSQL session prepares it.
struct PostgresStatement {
  // False for statements that cannot be prepared (anything but SELECT, INSERT, UPDATE and
  // DELETE, or text that already holds "$" placeholders): they run as written.
  bool preparable = false;
  std::string shape;                           // the text with $1, $2, ... for the values
  std::vector<PostgresParameter> parameters;   // for $1, $2, ... in order
};

// Takes the values out of a statement already in PostgreSQL's words (after
// TranslateSqlServerForPostgres), so that statements that differ only in their values (one
// a day of a month view, one a user) share one prepared statement:
// - a quoted text becomes a parameter where an expression may stand (after an operator, a
//   "(" or ",", or LIKE, AND, OR, NOT, IN, BETWEEN, SELECT, WHEN, THEN, ELSE); after any
//   other word ("DATE '...'", "E'...'") it stays a literal;
// - a whole number, with its minus sign, becomes a parameter after a comparison operator and
//   as an item of a VALUES or IN list. Elsewhere it stays: "LIMIT 6" keeps its plan, "ORDER
//   BY 1" names a column, "varchar(20)" a length.
// The values then compare, convert and fail exactly as the literals did.
PostgresStatement ShapePostgresStatement(std::string_view translated);

// Whether the extended protocol can prepare the statement: a SELECT, INSERT, UPDATE or DELETE.
bool CanPrepare(std::string_view statement);

}  // namespace tidewell::ado

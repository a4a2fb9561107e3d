#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "data/dialect.h"
#include "data/rows_per_key.h"
#include "runtime/variant.h"

namespace tidewell::ado {

// The one way statement text is built. Fixed text goes in with the constructor and Add;
// every value goes in through Text, Number, DateValue or TrueValue, so that every spliced
// value passes the same guard:
//
//   Statement("SELECT OwnerKey FROM Users WHERE Username = ").Text(name)
//       .Add(" AND Password = ").Text(password)
//
// gives exactly the text the statement always had: values are spliced as they are, text
// between single quotes, numbers in decimal. What the original could not survive is refused
// instead: a text value holding a single quote (it would end the quoted value early) or a
// value spliced without quotes that is not a plain integer. A refused statement keeps
// building, but running it (Connection::Execute, Recordset::Open) fails with a
// DatabaseError before any engine sees its text, the same path a statement the engine
// rejected takes.
class Statement {
 public:
  // Fixed text only: values never come in this way.
  explicit Statement(const char* fixed_text);
  Statement(const std::string&) = delete;

  Statement& Add(const char* fixed_text);
  Statement& Add(const std::string&) = delete;

  // 'value'
  Statement& Text(std::string_view value);
  // A whole number in decimal.
  Statement& Number(long long value);
  // Text that must be a plain integer: an optional "-" and digits, nothing else.
  Statement& Number(std::string_view value);
  // The date part as m/d/yyyy, between "#" for Access and "'" for SQL Server.
  Statement& DateValue(Date value, ASPDataServer dialect);
  // Date text exactly as the caller has it, between the same delimiters. Only digits and "/"
  // may stand there; any other text is refused. The item lists splice a date they could not
  // read this way, so that the engine, not the builder, says what is wrong with it.
  Statement& DateText(std::string_view text, ASPDataServer dialect);
  // True as the dialect compares it: -1 for Access, 1 for SQL Server.
  Statement& TrueValue(ASPDataServer dialect);

  // Reads only the first rows of each group the statement sorts by first (a TOP n per
  // group), which Recordset::Open asks the provider for.
  Statement& KeepPerKey(RowsPerKey per_key);
  const std::optional<RowsPerKey>& rows_per_key() const { return rows_per_key_; }

  // The statement as built (with refused values left out).
  const std::string& text() const { return text_; }
  bool refused() const { return !refusal_.empty(); }
  // The text to hand to an engine; throws the DatabaseError when a value was refused.
  const std::string& CheckedText() const;

 private:
  void Refuse(std::string reason);

  std::string text_;
  std::string refusal_;
  std::optional<RowsPerKey> rows_per_key_;
};

// m/d/yyyy, as the statements splice dates whatever the regional settings.
std::string StatementDateText(Date value);

}  // namespace tidewell::ado

#pragma once

#include <stdexcept>
#include <string>

namespace tidewell::ado {

// The numbers ADO reported its errors with (HRESULTs, shown in decimal as pages always showed
// them). E_FAIL means the engine was reached but refused; most others that the connection
// could not be made at all, or that a statement or recordset was refused.
namespace error_numbers {
// E_FAIL: the engine was reached but refused (missing file, permissions, server down, login).
inline constexpr long kFail = -2147467259;
// The connection string names no provider, or one that does not exist.
inline constexpr long kProviderNotFound = -2146824582;
// The connection string or an argument cannot be read.
inline constexpr long kInvalidArgument = -2146825287;
// Fields("name") names no column of the recordset.
inline constexpr long kItemNotFound = -2146825023;
// The recordset is at EOF, so there is no current row to read or change.
inline constexpr long kNoCurrentRecord = -2146825267;
// The recordset is read-only (or the operation needs what the cursor does not offer).
inline constexpr long kNotUpdatable = -2146825037;
// The object is closed, or open when it must not be.
inline constexpr long kObjectClosed = -2146824584;
inline constexpr long kObjectOpen = -2146824583;
// The engine refused the statement's text: syntax, unknown names, a refused spliced value.
inline constexpr long kErrorsInCommand = -2147217900;
// A value does not suit its column ("Data type mismatch in criteria expression.").
inline constexpr long kTypeMismatch = -2147217913;
// A key or unique rule refused the row.
inline constexpr long kIntegrityViolation = -2147217873;
// A value assigned to a field could not be converted to the column's type.
inline constexpr long kErrorsOccurred = -2147217887;
// The row to update is gone.
inline constexpr long kRowNotFound = -2147217864;
}  // namespace error_numbers

// A database error as ADO raised it: the number above and the provider's own description.
// Every failure of the data layer is one of these; the data layer knows nothing of pages or
// screens, and its callers decide what a failure shows.
class DatabaseError : public std::runtime_error {
 public:
  DatabaseError(long number, const std::string& description)
      : std::runtime_error(description), number_(number) {}

  long number() const { return number_; }
  // E_FAIL: the engine was reached and refused, rather than never reached.
  bool engine_refused() const { return number_ == error_numbers::kFail; }
  std::string description() const { return what(); }

 private:
  long number_;
};

}  // namespace tidewell::ado

#pragma once

#include <stdexcept>
#include <string>

namespace tidewell {

// A run-time error that ends the request, as the automation run time raised it: a Visual Basic
// error number (13 for a type mismatch) and its text. The host answers it with HTTP 400.
class AutomationError : public std::runtime_error {
 public:
  AutomationError(long number, const std::string& text)
      : std::runtime_error(text), number_(number) {}

  long number() const { return number_; }
  // The HRESULT the automation layer reported for it: FACILITY_CONTROL errors 0x800A0000 + n.
  long hresult() const { return static_cast<long>(static_cast<int>(0x800A0000u | number_)); }

 private:
  long number_;
};

namespace errors {
inline constexpr long kSubscriptOutOfRange = 9;
inline constexpr long kOverflow = 6;
inline constexpr long kTypeMismatch = 13;
inline constexpr long kInvalidUseOfNull = 94;
inline constexpr long kInvalidProcedureCall = 5;
}  // namespace errors

[[noreturn]] void RaiseTypeMismatch();
[[noreturn]] void RaiseOverflow();
[[noreturn]] void RaiseInvalidUseOfNull();
[[noreturn]] void RaiseSubscriptOutOfRange();
[[noreturn]] void RaiseInvalidProcedureCall();

}  // namespace tidewell

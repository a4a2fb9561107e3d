#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

// The run time's conversion functions. Each fails the way the run time failed: an
// AutomationError with the Visual Basic number and text ("Type mismatch", "Overflow",
// "Invalid use of Null").

std::string CStr(const Variant& v);
int32_t CLng(const Variant& v);
double CDbl(const Variant& v);
bool CBool(const Variant& v);
Date CDate(const Variant& v);

// The same for a column that may hold Null (never written) or nothing: it reads as "", 0 or
// false instead of failing.
std::string CStrOrBlank(const Variant& v);
int32_t CLngOrZero(const Variant& v);
bool CBoolOrFalse(const Variant& v);

bool IsNumeric(const Variant& v);
bool IsDate(const Variant& v);

// Text read as a number the way the run time read it: blanks around it, a sign, a decimal
// point, an exponent, or "&H" / "&O" followed by hexadecimal or octal digits.
std::optional<double> ParseNumericText(std::string_view text);

// Trim drops leading and trailing blanks (spaces only, as the run time's Trim did).
std::string Trim(std::string_view s);
std::string LTrim(std::string_view s);
std::string RTrim(std::string_view s);

// Format(n, "00"): at least two digits.
std::string FormatTwoDigits(long n);

}  // namespace tidewell

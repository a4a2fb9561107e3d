#include "runtime/conversions.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "runtime/automation_error.h"
#include "runtime/date_text.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

// "&HFF", "&O17": up to four digits make a 16-bit value, more a 32-bit one, both signed.
std::optional<double> ParseRadixText(std::string_view digits, int radix) {
  if (digits.empty() || digits.size() > (radix == 16 ? 8u : 11u)) return std::nullopt;
  uint64_t value = 0;
  for (char c : digits) {
    int d = std::isdigit(static_cast<unsigned char>(c)) ? c - '0'
            : std::isxdigit(static_cast<unsigned char>(c))
                ? std::tolower(static_cast<unsigned char>(c)) - 'a' + 10
                : 99;
    if (d >= radix) return std::nullopt;
    value = value * static_cast<unsigned>(radix) + static_cast<unsigned>(d);
  }
  if (value > 0xFFFFFFFFu) return std::nullopt;
  bool short_form = radix == 16 ? digits.size() <= 4 : value <= 0xFFFF;
  if (short_form) return static_cast<double>(static_cast<int16_t>(static_cast<uint16_t>(value)));
  return static_cast<double>(static_cast<int32_t>(static_cast<uint32_t>(value)));
}

std::string DoubleText(double d) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15G", d);
  return buffer;  // fifteen significant digits, as the run time wrote a Double
}

int32_t RoundToLong(double d) {
  if (std::isnan(d) || d >= 2147483647.5 || d < -2147483648.5) RaiseOverflow();
  return static_cast<int32_t>(std::nearbyint(d));  // banker's rounding, as CLng
}

}  // namespace

std::optional<double> ParseNumericText(std::string_view text) {
  std::string t = Trim(text);
  if (t.empty()) return std::nullopt;
  if (t.size() > 2 && t[0] == '&') {
    char kind = static_cast<char>(std::toupper(static_cast<unsigned char>(t[1])));
    if (kind == 'H') return ParseRadixText(std::string_view(t).substr(2), 16);
    if (kind == 'O') return ParseRadixText(std::string_view(t).substr(2), 8);
    return std::nullopt;
  }
  // Digits with an optional sign, point and exponent; strtod also takes "inf", "nan" and hex
  // floats, which the run time did not, so the characters are checked first.
  for (char c : t) {
    if (!std::isdigit(static_cast<unsigned char>(c)) && c != '+' && c != '-' && c != '.' &&
        c != 'e' && c != 'E')
      return std::nullopt;
  }
  char* end = nullptr;
  double value = std::strtod(t.c_str(), &end);
  if (end != t.c_str() + t.size()) return std::nullopt;
  return value;
}

std::string CStr(const Variant& v) {
  switch (v.type()) {
    case Variant::Type::kEmpty:
      return "";
    case Variant::Type::kNull:
      RaiseInvalidUseOfNull();
    case Variant::Type::kBoolean:
      return v.AsBoolean() ? "True" : "False";
    case Variant::Type::kLong:
      return std::to_string(v.AsLong());
    case Variant::Type::kDouble:
      return DoubleText(v.AsDouble());
    case Variant::Type::kString:
      return v.AsString();
    case Variant::Type::kDate:
      return DateToText(v.AsDate());
  }
  return "";
}

double CDbl(const Variant& v) {
  switch (v.type()) {
    case Variant::Type::kEmpty:
      return 0;
    case Variant::Type::kNull:
      RaiseInvalidUseOfNull();
    case Variant::Type::kBoolean:
      return v.AsBoolean() ? -1 : 0;
    case Variant::Type::kLong:
      return v.AsLong();
    case Variant::Type::kDouble:
      return v.AsDouble();
    case Variant::Type::kDate:
      return v.AsDate().serial;
    case Variant::Type::kString:
      if (auto n = ParseNumericText(v.AsString())) return *n;
      RaiseTypeMismatch();
  }
  return 0;
}

int32_t CLng(const Variant& v) {
  if (v.type() == Variant::Type::kLong) return v.AsLong();
  return RoundToLong(CDbl(v));
}

bool CBool(const Variant& v) {
  if (v.type() == Variant::Type::kBoolean) return v.AsBoolean();
  if (v.type() == Variant::Type::kString) {
    if (EqualsIgnoringCase(Trim(v.AsString()), "True")) return true;
    if (EqualsIgnoringCase(Trim(v.AsString()), "False")) return false;
  }
  return CDbl(v) != 0;
}

Date CDate(const Variant& v) {
  switch (v.type()) {
    case Variant::Type::kDate:
      return v.AsDate();
    case Variant::Type::kNull:
      RaiseInvalidUseOfNull();
    case Variant::Type::kString:
      if (auto d = ParseDateText(v.AsString())) return *d;
      RaiseTypeMismatch();
    default:
      return Date{CDbl(v)};
  }
}

bool IsNumeric(const Variant& v) {
  switch (v.type()) {
    case Variant::Type::kEmpty:
    case Variant::Type::kBoolean:
    case Variant::Type::kLong:
    case Variant::Type::kDouble:
      return true;
    case Variant::Type::kString:
      return ParseNumericText(v.AsString()).has_value();
    default:
      return false;
  }
}

bool IsDate(const Variant& v) {
  if (v.type() == Variant::Type::kDate) return true;
  if (v.type() != Variant::Type::kString) return false;
  return ParseDateText(v.AsString()).has_value();
}

std::string LTrim(std::string_view s) {
  size_t start = s.find_first_not_of(' ');
  return start == std::string_view::npos ? "" : std::string(s.substr(start));
}

std::string RTrim(std::string_view s) {
  size_t end = s.find_last_not_of(' ');
  return end == std::string_view::npos ? "" : std::string(s.substr(0, end + 1));
}

std::string Trim(std::string_view s) {
  return LTrim(RTrim(s));
}

std::string FormatTwoDigits(long n) {
  if (n >= 0 && n < 100) {
    // The common case, written without the C library's format machinery: the calendar writes
    // a day number or an hour with every cell and row.
    return {static_cast<char>('0' + n / 10), static_cast<char>('0' + n % 10)};
  }
  char buffer[24];
  std::snprintf(buffer, sizeof buffer, "%02ld", n);
  return buffer;
}

std::string CStrOrBlank(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? "" : CStr(v);
}
int32_t CLngOrZero(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? 0 : CLng(v);
}
bool CBoolOrFalse(const Variant& v) {
  return v.IsNull() || v.IsEmpty() ? false : CBool(v);
}

}  // namespace tidewell

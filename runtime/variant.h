#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace tidewell {

// A point in time as the automation run time kept it: days since 30 December 1899, with the
// time of day as the fraction. Whole numbers are midnight.
struct Date {
  double serial = 0;
  friend bool operator==(const Date&, const Date&) = default;
};

struct Empty {
  friend bool operator==(const Empty&, const Empty&) = default;
};
struct Null {
  friend bool operator==(const Null&, const Null&) = default;
};

// The automation run time's Variant, reduced to the subtypes this component meets.
// Conversions between them live in conversions.h and follow the run time's rules.
class Variant {
 public:
  enum class Type { kEmpty, kNull, kBoolean, kLong, kDouble, kString, kDate };

  Variant() = default;
  Variant(Null) : value_(Null{}) {}
  Variant(bool b) : value_(b) {}
  Variant(int n) : value_(static_cast<int32_t>(n)) {}
  Variant(long n) : value_(static_cast<int32_t>(n)) {}
  Variant(double d) : value_(d) {}
  Variant(std::string s) : value_(std::move(s)) {}
  Variant(const char* s) : value_(std::in_place_type<std::string>, s) {}
  Variant(std::string_view s) : value_(std::in_place_type<std::string>, s) {}
  Variant(Date d) : value_(d) {}

  Type type() const { return static_cast<Type>(value_.index()); }
  bool IsEmpty() const { return type() == Type::kEmpty; }
  bool IsNull() const { return type() == Type::kNull; }

  // Direct access to the held value; the caller has checked type() first.
  bool AsBoolean() const { return std::get<bool>(value_); }
  int32_t AsLong() const { return std::get<int32_t>(value_); }
  double AsDouble() const { return std::get<double>(value_); }
  const std::string& AsString() const { return std::get<std::string>(value_); }
  Date AsDate() const { return std::get<Date>(value_); }

  friend bool operator==(const Variant&, const Variant&) = default;

 private:
  std::variant<Empty, Null, bool, int32_t, double, std::string, Date> value_;
};

}  // namespace tidewell

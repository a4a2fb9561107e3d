#include "data/statement.h"

#include <cctype>
#include <cstring>
#include <utility>

#include "data/database_error.h"
#include "runtime/dates.h"

namespace tidewell::ado {
namespace {

bool IsPlainInteger(std::string_view value) {
  if (!value.empty() && value.front() == '-') value.remove_prefix(1);
  if (value.empty() || value.size() > 18) return false;
  for (char c : value) {
    if (!std::isdigit(static_cast<unsigned char>(c))) return false;
  }
  return true;
}

}  // namespace

Statement::Statement(const char* fixed_text) {
  // Room for the values and clauses that follow, so that the text is not moved as it grows.
  const size_t length = std::strlen(fixed_text);
  text_.reserve(length + 128);
  text_.append(fixed_text, length);
}

Statement& Statement::KeepPerKey(RowsPerKey per_key) {
  rows_per_key_ = std::move(per_key);
  return *this;
}

Statement& Statement::Add(const char* fixed_text) {
  text_ += fixed_text;
  return *this;
}

Statement& Statement::Text(std::string_view value) {
  // A quote would close the value early and let the rest run as statement text; a NUL byte
  // would cut the statement short where the engine reads it.
  if (value.find('\'') != std::string_view::npos) {
    Refuse("A text value in the statement contains a single quote.");
    return *this;
  }
  if (value.find('\0') != std::string_view::npos) {
    Refuse("A text value in the statement contains a NUL character.");
    return *this;
  }
  text_ += '\'';
  text_ += value;
  text_ += '\'';
  return *this;
}

Statement& Statement::Number(long long value) {
  text_ += std::to_string(value);
  return *this;
}

Statement& Statement::Number(std::string_view value) {
  if (!IsPlainInteger(value)) {
    Refuse("A value placed in the statement without quotes is not a whole number.");
    return *this;
  }
  text_ += value;
  return *this;
}

Statement& Statement::DateValue(Date value, ASPDataServer dialect) {
  const char quote = dialect == ASPDataServer::Access ? '#' : '\'';
  text_ += quote;
  text_ += StatementDateText(value);
  text_ += quote;
  return *this;
}

Statement& Statement::DateText(std::string_view text, ASPDataServer dialect) {
  if (text.empty() || text.find_first_not_of("0123456789/") != std::string_view::npos) {
    Refuse("A date placed in the statement holds more than digits and \"/\".");
    return *this;
  }
  const char quote = dialect == ASPDataServer::Access ? '#' : '\'';
  text_ += quote;
  text_ += text;
  text_ += quote;
  return *this;
}

Statement& Statement::TrueValue(ASPDataServer dialect) {
  text_ += dialect == ASPDataServer::Access ? "-1" : "1";
  return *this;
}

const std::string& Statement::CheckedText() const {
  if (refused()) throw DatabaseError(error_numbers::kErrorsInCommand, refusal_);
  return text_;
}

void Statement::Refuse(std::string reason) {
  if (refusal_.empty()) refusal_ = std::move(reason);
}

std::string StatementDateText(Date value) {
  const YearMonthDay day = CalendarDay(value);
  return std::to_string(day.month) + "/" + std::to_string(day.day) + "/" +
         std::to_string(day.year);
}

}  // namespace tidewell::ado

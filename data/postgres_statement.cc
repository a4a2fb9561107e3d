#include "data/postgres_statement.h"

#include <array>
#include <vector>

#include "data/dialect_translation.h"
#include "runtime/strings.h"

namespace tidewell::ado {
namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

size_t PreviousSignificant(const std::vector<Token>& tokens, size_t i) {
  while (i-- > 0) {
    if (tokens[i].kind != TokenKind::kSpace) return i;
  }
  return kNone;
}

size_t NextSignificant(const std::vector<Token>& tokens, size_t i) {
  for (++i; i < tokens.size(); ++i) {
    if (tokens[i].kind != TokenKind::kSpace) return i;
  }
  return kNone;
}

bool IsWordIn(const Token& token, std::initializer_list<std::string_view> words) {
  if (token.kind != TokenKind::kWord) return false;
  for (std::string_view word : words) {
    if (EqualsIgnoringCase(token.text, word)) return true;
  }
  return false;
}

bool Is(const std::vector<Token>& tokens, size_t i, std::string_view text) {
  return i != kNone && i < tokens.size() && tokens[i].text == text;
}

// Statements the extended protocol can prepare.
bool Preparable(const std::vector<Token>& tokens) {
  const size_t first = NextSignificant(tokens, kNone);
  return first != kNone && IsWordIn(tokens[first], {"SELECT", "INSERT", "UPDATE", "DELETE"});
}

// Where an expression starts, so that a parameter reads as the literal did. After other
// words a quoted text is part of a typed literal (DATE '...', E'...') and must stay.
bool ExpressionMayStartAfter(const Token& token) {
  if (token.kind == TokenKind::kOperator) return true;
  if (token.text == "(" || token.text == ",") return true;
  return IsWordIn(token, {"LIKE", "ILIKE", "AND", "OR", "NOT", "IN", "BETWEEN", "SELECT", "WHEN",
                          "THEN", "ELSE"});
}

// The value of a quoted text: the quotes taken off, a doubled quote read as one. Backslashes
// are ordinary characters: the session runs with standard_conforming_strings on.
std::string QuotedValue(std::string_view quoted) {
  std::string value;
  const std::string_view inside = quoted.substr(1, quoted.size() - 2);
  for (size_t i = 0; i < inside.size(); ++i) {
    value += inside[i];
    if (inside[i] == '\'' && i + 1 < inside.size() && inside[i + 1] == '\'') ++i;
  }
  return value;
}

// The type the engine gives a whole number written with these digits, or kUntyped when the
// text is no whole number a bigint holds (1.5, a numeric of 19 digits): those stay literals.
LiteralType WholeNumberType(std::string_view digits) {
  if (digits.empty() || digits.size() > 18) return LiteralType::kUntyped;
  unsigned long long n = 0;
  for (char c : digits) {
    if (c < '0' || c > '9') return LiteralType::kUntyped;
    n = n * 10 + static_cast<unsigned long long>(c - '0');
  }
  // The engine reads the digits first and the minus sign after, as an operator on them, so
  // -2147483648 is a bigint as 2147483648 is.
  return n <= 2147483647ULL ? LiteralType::kInteger : LiteralType::kBigint;
}

}  // namespace

bool CanPrepare(std::string_view statement) {
  return Preparable(Tokenize(statement));
}

PostgresStatement ShapePostgresStatement(std::string_view translated) {
  PostgresStatement result;
  std::vector<Token> tokens = Tokenize(translated);
  if (!Preparable(tokens)) {
    result.shape = std::string(translated);
    return result;
  }
  // For each open "(": whether it opens a list of values (VALUES (...), IN (...)).
  std::vector<bool> value_lists;
  std::vector<std::string> replacements(tokens.size());
  std::vector<bool> dropped(tokens.size(), false);
  auto add_parameter = [&](size_t at, std::string value, LiteralType type) {
    result.parameters.push_back({std::move(value), type});
    replacements[at] = "$" + std::to_string(result.parameters.size());
  };

  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    const size_t before = PreviousSignificant(tokens, i);
    if (token.text == "$") {
      // Placeholders of its own: the text is not ours to number.
      result.shape = std::string(translated);
      result.parameters.clear();
      return result;
    }
    if (token.text == "(") {
      value_lists.push_back(before != kNone && IsWordIn(tokens[before], {"VALUES", "IN"}));
    } else if (token.text == ")") {
      if (!value_lists.empty()) value_lists.pop_back();
    } else if (token.kind == TokenKind::kText) {
      if (before != kNone && ExpressionMayStartAfter(tokens[before])) {
        add_parameter(i, QuotedValue(token.text), LiteralType::kUntyped);
      }
    } else if (token.kind == TokenKind::kNumber) {
      const LiteralType type = WholeNumberType(token.text);
      // A number run together with a word ("1e5") is no whole number.
      const bool stands_alone = i + 1 == tokens.size() || (tokens[i + 1].kind != TokenKind::kWord &&
                                                           tokens[i + 1].kind != TokenKind::kNumber);
      if (type == LiteralType::kUntyped || !stands_alone || before == kNone) continue;
      const bool negative = tokens[before].text == "-";
      const size_t context = negative ? PreviousSignificant(tokens, before) : before;
      if (context == kNone) continue;
      const bool after_comparison = tokens[context].kind == TokenKind::kOperator;
      const size_t after = NextSignificant(tokens, i);
      const bool list_item = !value_lists.empty() && value_lists.back() &&
                             (Is(tokens, context, "(") || Is(tokens, context, ",")) &&
                             (Is(tokens, after, ",") || Is(tokens, after, ")"));
      if (!after_comparison && !list_item) continue;
      if (negative) {
        for (size_t j = before; j < i; ++j) dropped[j] = true;  // the sign and any blank
      }
      add_parameter(i, (negative ? "-" : "") + std::string(token.text), type);
    }
  }

  result.preparable = true;
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (dropped[i]) continue;
    result.shape += replacements[i].empty() ? std::string(tokens[i].text) : replacements[i];
  }
  return result;
}

}  // namespace tidewell::ado

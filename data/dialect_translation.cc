#include "data/dialect_translation.h"

#include <cctype>
#include <charconv>
#include <optional>

#include "data/connection_string.h"
#include "data/database_error.h"
#include "data/iso_dates.h"

namespace tidewell::ado {
namespace {

bool IsWordStart(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool IsWordPart(char c) {
  return IsWordStart(c) || std::isdigit(static_cast<unsigned char>(c)) || c == '$';
}
bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// Length of the token that starts `rest` and its kind.
Token NextToken(std::string_view rest) {
  const char c = rest[0];
  auto until = [&](size_t from, std::string_view stop) {
    size_t end = rest.find(stop, from);
    return end == std::string_view::npos ? rest.size() : end + stop.size();
  };
  if (std::isspace(static_cast<unsigned char>(c))) {
    size_t n = 1;
    while (n < rest.size() && std::isspace(static_cast<unsigned char>(rest[n]))) ++n;
    return {TokenKind::kSpace, rest.substr(0, n)};
  }
  if (rest.starts_with("--")) return {TokenKind::kSpace, rest.substr(0, until(2, "\n"))};
  if (rest.starts_with("/*")) return {TokenKind::kSpace, rest.substr(0, until(2, "*/"))};
  if (c == '\'') {
    for (size_t n = 1; n < rest.size(); ++n) {
      if (rest[n] != '\'') continue;
      if (n + 1 < rest.size() && rest[n + 1] == '\'') {
        ++n;  // a doubled quote stands for one
        continue;
      }
      return {TokenKind::kText, rest.substr(0, n + 1)};
    }
    // A quote never closed is no value: the rest goes to the engine as written, which
    // refuses it.
    return {TokenKind::kOther, rest};
  }
  if (c == '"') return {TokenKind::kQuotedName, rest.substr(0, until(1, "\""))};
  if (c == '`') return {TokenKind::kQuotedName, rest.substr(0, until(1, "`"))};
  if (c == '[') return {TokenKind::kQuotedName, rest.substr(0, until(1, "]"))};
  if (c == '#') {
    size_t end = rest.find('#', 1);
    if (end == std::string_view::npos) return {TokenKind::kOther, rest.substr(0, 1)};
    return {TokenKind::kDateLiteral, rest.substr(0, end + 1)};
  }
  if (IsDigit(c) || (c == '.' && rest.size() > 1 && IsDigit(rest[1]))) {
    size_t n = 1;
    while (n < rest.size() && (IsDigit(rest[n]) || rest[n] == '.')) ++n;
    return {TokenKind::kNumber, rest.substr(0, n)};
  }
  if (IsWordStart(c)) {
    size_t n = 1;
    while (n < rest.size() && IsWordPart(rest[n])) ++n;
    return {TokenKind::kWord, rest.substr(0, n)};
  }
  for (std::string_view op : {"<>", "<=", ">=", "!=", "==", "=", "<", ">"}) {
    if (rest.starts_with(op)) return {TokenKind::kOperator, rest.substr(0, op.size())};
  }
  return {TokenKind::kOther, rest.substr(0, 1)};
}

bool IsWord(const Token& token, std::string_view word) {
  return token.kind == TokenKind::kWord && EqualsIgnoringCase(token.text, word);
}

// Index of the first token after `i` that is not blank, or tokens.size().
size_t NextSignificant(const std::vector<Token>& tokens, size_t i) {
  for (++i; i < tokens.size(); ++i) {
    if (tokens[i].kind != TokenKind::kSpace) return i;
  }
  return tokens.size();
}

// Index of the last token before `i` that is not blank, or npos.
size_t PreviousSignificant(const std::vector<Token>& tokens, size_t i) {
  while (i-- > 0) {
    if (tokens[i].kind != TokenKind::kSpace) return i;
  }
  return std::string_view::npos;
}

// Removes "TOP n" after the leading SELECT [DISTINCT|ALL] and returns n's text.
std::optional<std::string> TakeTopLimit(std::vector<Token>& tokens) {
  size_t i = NextSignificant(tokens, static_cast<size_t>(-1));
  if (i == tokens.size() || !IsWord(tokens[i], "SELECT")) return std::nullopt;
  i = NextSignificant(tokens, i);
  if (i < tokens.size() && (IsWord(tokens[i], "DISTINCT") || IsWord(tokens[i], "ALL"))) {
    i = NextSignificant(tokens, i);
  }
  if (i == tokens.size() || !IsWord(tokens[i], "TOP")) return std::nullopt;
  size_t number = NextSignificant(tokens, i);
  if (number == tokens.size() || tokens[number].kind != TokenKind::kNumber) return std::nullopt;
  std::string limit(tokens[number].text);
  size_t end = number + 1;
  if (end < tokens.size() && tokens[end].kind == TokenKind::kSpace) ++end;
  tokens.erase(tokens.begin() + static_cast<long>(i), tokens.begin() + static_cast<long>(end));
  return limit;
}

// Joins the tokens, with "LIMIT n" at the end of the statement (before a closing ";").
std::string Join(const std::vector<Token>& tokens, const std::optional<std::string>& limit,
                 const std::vector<std::string>& replacements) {
  std::string text;
  for (size_t i = 0; i < tokens.size(); ++i) {
    text += replacements[i].empty() ? std::string(tokens[i].text) : replacements[i];
  }
  if (!limit) return text;
  size_t end = text.find_last_not_of(" \t\r\n;");
  std::string tail = end == std::string::npos ? text : text.substr(end + 1);
  text.resize(end == std::string::npos ? 0 : end + 1);
  return text + " LIMIT " + *limit + tail;
}

// The column a comparison operand names: "DateStamp" or the last part of "Items.DateStamp".
std::optional<std::string_view> ColumnOperand(const std::vector<Token>& tokens, size_t i) {
  if (i >= tokens.size()) return std::nullopt;
  if (tokens[i].kind == TokenKind::kWord || tokens[i].kind == TokenKind::kQuotedName) {
    std::string_view name = tokens[i].text;
    if (tokens[i].kind == TokenKind::kQuotedName) name = name.substr(1, name.size() - 2);
    return name;
  }
  return std::nullopt;
}

// Jet refused a date column compared with quoted text; SQLite would compare the texts.
void RefuseDateComparedWithText(const std::vector<Token>& tokens,
                                const std::function<bool(std::string_view)>& is_date_column) {
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind != TokenKind::kOperator) continue;
    size_t left = PreviousSignificant(tokens, i);
    size_t right = NextSignificant(tokens, i);
    if (left == std::string_view::npos || right == tokens.size()) continue;
    std::optional<std::string_view> column;
    if (tokens[right].kind == TokenKind::kText) column = ColumnOperand(tokens, left);
    if (tokens[left].kind == TokenKind::kText) {
      // The column may be qualified: 'x' = Items.DateStamp.
      size_t last = right;
      while (last + 2 < tokens.size() && tokens[last + 1].text == "." &&
             tokens[last + 2].kind == TokenKind::kWord) {
        last += 2;
      }
      column = ColumnOperand(tokens, last);
    }
    if (column && is_date_column(*column)) {
      throw DatabaseError(error_numbers::kTypeMismatch,
                          "Data type mismatch in criteria expression.");
    }
  }
}

// Statements that may hold parameters: the ones that read and write rows.
bool TakesParameters(const std::vector<Token>& tokens) {
  size_t first = NextSignificant(tokens, static_cast<size_t>(-1));
  if (first == tokens.size()) return false;
  for (const char* word : {"SELECT", "INSERT", "UPDATE", "DELETE"}) {
    if (IsWord(tokens[first], word)) return true;
  }
  return false;
}

// The value of a quoted text: the quotes taken off, a doubled quote read as one.
std::string QuotedValue(std::string_view quoted) {
  std::string value;
  const std::string_view inside = quoted.substr(1, quoted.size() >= 2 ? quoted.size() - 2 : 0);
  for (size_t i = 0; i < inside.size(); ++i) {
    value += inside[i];
    if (inside[i] == '\'' && i + 1 < inside.size() && inside[i + 1] == '\'') ++i;
  }
  return value;
}

// A number written with digits alone that a Long holds; nothing for any other.
std::optional<long> WholeNumber(std::string_view text) {
  if (text.empty() || text.size() > 9) return std::nullopt;
  long n = 0;
  for (char c : text) {
    if (!IsDigit(c)) return std::nullopt;
    n = n * 10 + (c - '0');
  }
  return n;
}

std::string SqliteDateLiteral(std::string_view literal) {
  std::optional<Date> date = ParseStatementDate(literal.substr(1, literal.size() - 2));
  if (!date) {
    throw DatabaseError(error_numbers::kErrorsInCommand,
                        "Syntax error in date in query expression '" + std::string(literal) + "'.");
  }
  return "'" + IsoDateText(*date) + "'";
}

}  // namespace

std::vector<Token> Tokenize(std::string_view statement) {
  std::vector<Token> tokens;
  while (!statement.empty()) {
    Token token = NextToken(statement);
    tokens.push_back(token);
    statement.remove_prefix(token.text.size());
  }
  return tokens;
}

std::string TranslateAccessForSqlite(std::string_view statement,
                                     const std::function<bool(std::string_view)>& is_date_column) {
  std::vector<Token> tokens = Tokenize(statement);
  RefuseDateComparedWithText(tokens, is_date_column);
  std::optional<std::string> limit = TakeTopLimit(tokens);
  std::vector<std::string> replacements(tokens.size());
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::kDateLiteral)
      replacements[i] = SqliteDateLiteral(tokens[i].text);
  }
  return Join(tokens, limit, replacements);
}

SqliteStatement ParameterizedAccessForSqlite(
    std::string_view statement, const std::function<bool(std::string_view)>& is_date_column) {
  std::vector<Token> tokens = Tokenize(statement);
  RefuseDateComparedWithText(tokens, is_date_column);
  SqliteStatement result;
  std::optional<std::string> limit = TakeTopLimit(tokens);
  if (limit) {
    long n = 0;
    auto [end, error] = std::from_chars(limit->data(), limit->data() + limit->size(), n);
    // A limit that is no plain count stays in the text for the engine to judge.
    if (error == std::errc() && end == limit->data() + limit->size()) {
      result.row_limit = n;
      limit.reset();
    }
  }
  const bool takes_parameters = TakesParameters(tokens);
  std::vector<std::string> replacements(tokens.size());
  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (token.kind == TokenKind::kDateLiteral) {
      std::string literal = SqliteDateLiteral(token.text);
      if (!takes_parameters) {
        replacements[i] = std::move(literal);
        continue;
      }
      result.values.emplace_back(literal.substr(1, literal.size() - 2));
      replacements[i] = "?";
    } else if (takes_parameters && token.kind == TokenKind::kText) {
      result.values.emplace_back(QuotedValue(token.text));
      replacements[i] = "?";
    } else if (takes_parameters && token.kind == TokenKind::kNumber) {
      size_t before = PreviousSignificant(tokens, i);
      std::optional<long> number = WholeNumber(token.text);
      if (before != std::string_view::npos && tokens[before].kind == TokenKind::kOperator &&
          number) {
        result.values.emplace_back(*number);
        replacements[i] = "?";
      }
    }
  }
  result.text = Join(tokens, limit, replacements);
  return result;
}

std::string TranslateSqlServerForPostgres(std::string_view statement) {
  std::vector<Token> tokens = Tokenize(statement);
  std::optional<std::string> limit = TakeTopLimit(tokens);
  std::vector<std::string> replacements(tokens.size());
  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (token.kind == TokenKind::kDateLiteral || token.text == "#") {
      throw DatabaseError(error_numbers::kErrorsInCommand, "syntax error at or near \"#\"");
    }
    if (token.kind == TokenKind::kQuotedName && token.text.front() == '[') {
      replacements[i] = std::string(token.text.substr(1, token.text.size() - 2));
    }
  }
  return Join(tokens, limit, replacements);
}

}  // namespace tidewell::ado

#include "data/per_key_select.h"

#include <algorithm>
#include <cctype>

#include "data/dialect_translation.h"
#include "runtime/strings.h"

namespace tidewell::ado {
namespace {

using Tokens = std::vector<Token>;

// A run of tokens, from `begin` up to but not including `end`.
struct Span {
  size_t begin = 0;
  size_t end = 0;
};

// The clauses of a SELECT the rewrite takes apart: what stands between SELECT and FROM,
// FROM and WHERE (or ORDER BY), WHERE and ORDER BY, and after ORDER BY.
struct SelectParts {
  Span list;
  Span tables;
  std::optional<Span> condition;
  Span order;
};

bool IsWord(const Token& token, std::string_view word) {
  return token.kind == TokenKind::kWord && EqualsIgnoringCase(token.text, word);
}

bool IsWordIn(const Token& token, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return IsWord(token, word); });
}

size_t NextSignificant(const Tokens& tokens, size_t i) {
  while (i < tokens.size() && tokens[i].kind == TokenKind::kSpace) ++i;
  return i;
}

// The tokens of a span that are not blanks.
std::vector<Token> Significant(const Tokens& tokens, Span span) {
  std::vector<Token> kept;
  for (size_t i = span.begin; i < span.end; ++i) {
    if (tokens[i].kind != TokenKind::kSpace) kept.push_back(tokens[i]);
  }
  return kept;
}

// The span's text as written, without the blanks at its ends.
std::string TextOf(const Tokens& tokens, Span span) {
  while (span.begin < span.end && tokens[span.begin].kind == TokenKind::kSpace) ++span.begin;
  while (span.end > span.begin && tokens[span.end - 1].kind == TokenKind::kSpace) --span.end;
  std::string text;
  for (size_t i = span.begin; i < span.end; ++i) text += tokens[i].text;
  return text;
}

// The span cut at its commas outside parentheses: the items of a list or an ORDER BY.
std::vector<Span> Items(const Tokens& tokens, Span span) {
  std::vector<Span> items;
  size_t depth = 0, start = span.begin;
  for (size_t i = span.begin; i < span.end; ++i) {
    if (tokens[i].text == "(") ++depth;
    if (tokens[i].text == ")" && depth > 0) --depth;
    if (depth == 0 && tokens[i].text == ",") {
      items.push_back({start, i});
      start = i + 1;
    }
  }
  items.push_back({start, span.end});
  return items;
}

// The clauses of a plain "SELECT list FROM tables [WHERE condition] ORDER BY order", or
// nullopt for any statement of another shape, whose rows a wrapper might change.
std::optional<SelectParts> SplitSelect(const Tokens& tokens) {
  const size_t select = NextSignificant(tokens, 0);
  if (select == tokens.size() || !IsWord(tokens[select], "SELECT")) return std::nullopt;
  std::optional<size_t> from, where, order;
  size_t depth = 0;
  for (size_t i = select + 1; i < tokens.size(); ++i) {
    const Token& token = tokens[i];
    if (token.text == "(") ++depth;
    if (token.text == ")") {
      if (depth == 0) return std::nullopt;
      --depth;
    }
    if (depth > 0) continue;
    if (token.text == ";") return std::nullopt;
    if (IsWordIn(token, {"DISTINCT", "ALL", "TOP", "INTO", "GROUP", "HAVING", "WINDOW", "LIMIT",
                         "OFFSET", "FETCH", "FOR", "UNION", "INTERSECT", "EXCEPT"})) {
      return std::nullopt;
    }
    if (IsWord(token, "FROM") && !from) {
      from = i;
    } else if (IsWord(token, "WHERE")) {
      if (!from || where || order) return std::nullopt;
      where = i;
    } else if (IsWord(token, "ORDER")) {
      const size_t by = NextSignificant(tokens, i + 1);
      if (!from || order || by == tokens.size() || !IsWord(tokens[by], "BY")) return std::nullopt;
      order = i;
      i = by;
    }
  }
  if (!from || !order || depth != 0) return std::nullopt;
  SelectParts parts;
  parts.list = {select + 1, *from};
  parts.tables = {*from + 1, where ? *where : *order};
  if (where) parts.condition = Span{*where + 1, *order};
  parts.order = {NextSignificant(tokens, *order + 1) + 1, tokens.size()};
  return parts;
}

bool SameTokens(const std::vector<Token>& a, const std::vector<Token>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Token& x, const Token& y) {
    return x.kind == y.kind &&
           (x.kind == TokenKind::kWord ? EqualsIgnoringCase(x.text, y.text) : x.text == y.text);
  });
}

bool IsPlainName(std::string_view name) {
  if (name.empty() || !(std::isalpha(static_cast<unsigned char>(name[0])) || name[0] == '_')) {
    return false;
  }
  return std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
  });
}

// The list's items, each without its blanks.
std::vector<std::vector<Token>> ListItems(const Tokens& tokens, const SelectParts& parts) {
  std::vector<std::vector<Token>> items;
  for (Span item : Items(tokens, parts.list)) items.push_back(Significant(tokens, item));
  return items;
}

// A column named plainly: "Heading" or "Items.Heading".
bool IsPlainColumn(const std::vector<Token>& term) {
  return (term.size() == 1 && term[0].kind == TokenKind::kWord) ||
         (term.size() == 3 && term[0].kind == TokenKind::kWord && term[1].text == "." &&
          term[2].kind == TokenKind::kWord);
}

// The key columns as the list names them, when each is an item of its own that no other item
// shares a name with and the ORDER BY begins with them, ascending, in the keys' order.
std::optional<std::vector<KeyColumn>> KeyColumnsOf(const Tokens& tokens, const SelectParts& parts,
                                                   const std::vector<std::string>& keys) {
  const std::vector<std::vector<Token>> items = ListItems(tokens, parts);
  for (const std::vector<Token>& item : items) {
    if (item.empty() || item.back().text == "*") return std::nullopt;
  }
  const std::vector<Span> order = Items(tokens, parts.order);
  if (order.size() < keys.size()) return std::nullopt;
  std::vector<KeyColumn> columns;
  for (size_t k = 0; k < keys.size(); ++k) {
    const std::string& key = keys[k];
    if (!IsPlainName(key)) return std::nullopt;
    std::optional<std::vector<Token>> named;
    for (const std::vector<Token>& item : items) {
      if (!IsWord(item.back(), key)) continue;
      if (named || !IsPlainColumn(item)) return std::nullopt;  // two of that name, or an alias
      named = item;
    }
    if (!named) return std::nullopt;
    std::vector<Token> term = Significant(tokens, order[k]);
    if (!term.empty() && IsWord(term.back(), "ASC")) term.pop_back();
    const bool sorted = SameTokens(term, *named) || (term.size() == 1 && IsWord(term[0], key));
    if (!sorted) return std::nullopt;
    std::string expression;
    for (const Token& token : *named) expression += token.text;
    columns.push_back({std::move(expression), key});
  }
  return columns;
}

// The ORDER BY as it reads the statement's rows, for a query over those rows: each term a
// column of the list by the name the rows carry it under, with its direction. nullopt when a
// term is anything else (a position, an expression, NULLS FIRST, a column the list leaves out
// or names twice), or when the list gives an item a name of its own (AS).
std::optional<std::vector<RowOrderTerm>> OrderOfTheRows(const Tokens& tokens,
                                                        const SelectParts& parts) {
  size_t depth = 0;  // an AS inside parentheses names a subquery's table, not an item
  for (size_t i = parts.list.begin; i < parts.list.end; ++i) {
    if (tokens[i].text == "(") ++depth;
    if (tokens[i].text == ")" && depth > 0) --depth;
    if (depth == 0 && IsWord(tokens[i], "AS")) return std::nullopt;
  }
  const std::vector<std::vector<Token>> items = ListItems(tokens, parts);
  std::vector<RowOrderTerm> order;
  for (Span span : Items(tokens, parts.order)) {
    std::vector<Token> term = Significant(tokens, span);
    std::string direction;
    if (!term.empty() && IsWordIn(term.back(), {"ASC", "DESC"})) {
      direction = term.back().text;
      term.pop_back();
    }
    if (!IsPlainColumn(term)) return std::nullopt;
    const std::string name(term.back().text);
    // The list's item of that name: the same column when either names it without its table.
    size_t found = 0;
    for (const std::vector<Token>& item : items) {
      if (!IsPlainColumn(item) || !IsWord(item.back(), name)) continue;
      if (item.size() == 3 && term.size() == 3 && !SameTokens(item, term)) return std::nullopt;
      ++found;
    }
    if (found != 1) return std::nullopt;
    order.push_back({name, std::move(direction)});
  }
  return order;
}

}  // namespace

std::optional<PerKeySelect> PerKeySelectOf(std::string_view statement, const RowsPerKey& per_key) {
  if (per_key.columns.empty()) return std::nullopt;
  const Tokens tokens = Tokenize(statement);
  const std::optional<SelectParts> parts = SplitSelect(tokens);
  if (!parts) return std::nullopt;
  std::optional<std::vector<KeyColumn>> keys = KeyColumnsOf(tokens, *parts, per_key.columns);
  if (!keys) return std::nullopt;
  std::optional<std::vector<RowOrderTerm>> order_terms = OrderOfTheRows(tokens, *parts);
  if (!order_terms) return std::nullopt;
  PerKeySelect select;
  select.list = TextOf(tokens, parts->list);
  select.tables = TextOf(tokens, parts->tables);
  if (parts->condition) select.condition = TextOf(tokens, *parts->condition);
  select.order = TextOf(tokens, parts->order);
  select.order_terms = std::move(*order_terms);
  select.keys = std::move(*keys);
  return select;
}

std::string OrderOfRows(const PerKeySelect& select) {
  std::string order;
  for (const RowOrderTerm& term : select.order_terms) {
    if (!order.empty()) order += ", ";
    order += term.name;
    if (!term.direction.empty()) order += " " + term.direction;
  }
  return order;
}

bool RowOrderTerm::Descending() const {
  return EqualsIgnoringCase(direction, "DESC");
}

std::string UnorderedText(const PerKeySelect& select) {
  std::string text = "SELECT " + select.list + " FROM " + select.tables;
  if (select.condition) text += " WHERE " + *select.condition;
  return text;
}

}  // namespace tidewell::ado

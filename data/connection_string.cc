#include "data/connection_string.h"

#include <cctype>

#include "data/database_error.h"

namespace tidewell::ado {
namespace {

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return s;
}

[[noreturn]] void RaiseUnreadable(std::string_view part) {
  throw DatabaseError(error_numbers::kInvalidArgument,
                      "The connection string cannot be read near \"" + std::string(part) +
                          "\": settings are written Key=Value and separated by \";\".");
}

// Splits on ";" outside quoted values.
std::vector<std::string_view> SplitSettings(std::string_view text) {
  std::vector<std::string_view> parts;
  size_t start = 0;
  char quote = 0;
  bool after_equals = false;
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == ';') {
      parts.push_back(text.substr(start, i - start));
      start = i + 1;
      after_equals = false;
    } else if (c == '=') {
      after_equals = true;
    } else if ((c == '"' || c == '\'') && after_equals &&
               TrimBlanks(text.substr(start, i - start)).back() == '=') {
      quote = c;
    }
  }
  if (quote) RaiseUnreadable(text.substr(start));
  parts.push_back(text.substr(start));
  return parts;
}

std::string Unquote(std::string_view value) {
  value = TrimBlanks(value);
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  return std::string(value);
}

bool IsPostgresUri(std::string_view part) {
  return part.starts_with("postgresql://") || part.starts_with("postgres://");
}

}  // namespace

std::optional<std::string> ConnectionSettings::Get(std::string_view key) const {
  std::optional<std::string> found;
  for (const auto& [name, value] : settings) {
    if (EqualsIgnoringCase(name, key)) found = value;
  }
  return found;
}

ConnectionSettings ParseConnectionString(std::string_view text) {
  ConnectionSettings result;
  for (std::string_view raw : SplitSettings(text)) {
    std::string_view part = TrimBlanks(raw);
    if (part.empty()) continue;
    if (IsPostgresUri(part)) {
      if (!result.uri.empty()) RaiseUnreadable(part);
      result.uri = std::string(part);
      continue;
    }
    size_t equals = part.find('=');
    if (equals == std::string_view::npos || TrimBlanks(part.substr(0, equals)).empty()) {
      RaiseUnreadable(part);
    }
    std::string key(TrimBlanks(part.substr(0, equals)));
    std::string value = Unquote(part.substr(equals + 1));
    if (EqualsIgnoringCase(key, "Provider")) {
      result.provider = value;
    } else {
      result.settings.emplace_back(std::move(key), std::move(value));
    }
  }
  if (result.provider.empty()) {
    throw DatabaseError(error_numbers::kProviderNotFound,
                        "Provider cannot be found. The connection string names no Provider.");
  }
  return result;
}

}  // namespace tidewell::ado

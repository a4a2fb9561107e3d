#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/strings.h"

namespace tidewell::ado {

// A connection string read as ADO read it: "Key=Value" settings separated by ";", keys
// without regard to case, a value optionally in double or single quotes (so that it may hold
// a ";"). A postgresql:// (or postgres://) URI may stand among them in place of settings.
struct ConnectionSettings {
  std::string provider;                                       // the Provider setting as written
  std::vector<std::pair<std::string, std::string>> settings;  // the others, in order
  std::string uri;

  // The value of the last setting named `key`, if any.
  std::optional<std::string> Get(std::string_view key) const;
};

// Throws DatabaseError: kProviderNotFound when no provider is named (an empty string
// included), kInvalidArgument when the text is not in the Key=Value form.
ConnectionSettings ParseConnectionString(std::string_view text);

}  // namespace tidewell::ado

#pragma once

#include <string>
#include <string_view>

namespace tidewell {

namespace ado {
class Connection;
}

// The site's own settings kept in the database (the TidewellSettings table), so that every
// server of a site shares them with no configuration of its own.

// The stored value of `name`. When there is none yet, `value_if_missing` is stored first; of
// several servers that get there at once, one stores its value and all answer that one.
// Throws ado::DatabaseError.
std::string ReadOrStoreSetting(const std::string& connection_string, std::string_view name,
                               std::string_view value_if_missing);
// The same on a connection the caller holds open.
std::string ReadOrStoreSetting(ado::Connection& connection, std::string_view name,
                               std::string_view value_if_missing);

}  // namespace tidewell

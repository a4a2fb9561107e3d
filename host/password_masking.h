#pragma once

#include <string>
#include <string_view>

namespace tidewell {

// `text` with every password the connection string holds (Password, Pwd, a URI's user
// information) written as `mask`: for messages that may quote the string, and for showing
// the string itself. An unreadable connection string is masked whole.
std::string WithoutPasswords(std::string text, const std::string& connection_string,
                             std::string_view mask = "***");

}  // namespace tidewell

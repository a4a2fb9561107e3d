#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

struct Page;

// Login throttling, kept in the database so that every server of a site counts alike. Each
// attempt is written down first, under the account's name and under the client's address;
// an attempt whose subject already has too many written in the window is refused before any
// password is checked, and its own entries are removed again. A checked attempt that succeeds
// removes its entries; one that fails leaves them standing as failures. Counting after writing
// means that concurrent attempts can only be refused more, never admitted more: per subject at
// most its limit of passwords are checked in any window of kLoginWindowSeconds.
inline constexpr int kAccountFailureLimit = 5;   // per account name and window
inline constexpr int kAddressFailureLimit = 20;  // per client address and window
inline constexpr long kLoginWindowSeconds = 60;

// One attempt's entries, from AdmitLoginAttempt.
struct LoginAttempt {
  bool admitted = false;
  std::vector<std::string> entries;  // the random tokens written for this attempt
};

// Writes the attempt down for `user_name` and the request's REMOTE_ADDR (when it has one) and
// answers whether the password may be checked. Throws ado::DatabaseError.
LoginAttempt AdmitLoginAttempt(Page& page, std::string_view user_name);

// The attempt succeeded: its entries are no failures. Throws ado::DatabaseError.
void ForgetLoginAttempt(Page& page, const LoginAttempt& attempt);

}  // namespace tidewell

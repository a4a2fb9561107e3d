#pragma once

#include <string>

namespace tidewell {

// Replaces every password an earlier version kept as typed with its hash
// (accounts/password_hash.h), on the database the connection string names. Run by the server
// at start; rows that hold a hash already are left alone, so running it again changes
// nothing. Answers how many passwords it hashed. Throws ado::DatabaseError.
int HashPasswordsKeptAsTyped(const std::string& connection_string);

}  // namespace tidewell

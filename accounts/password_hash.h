#pragma once

#include <string>
#include <string_view>

namespace tidewell {

// How passwords are kept: Argon2id hashes in libsodium's self-describing text form
// ("$argon2id$v=19$m=19456,t=2,p=1$salt$hash"), never as typed.

// A new hash of `password` with a fresh random salt. Throws std::runtime_error when libsodium
// cannot hash (out of memory).
std::string HashPassword(std::string_view password);

// Whether `password` matches `stored`. A stored value that is no hash of ours matches nothing.
bool VerifyPassword(std::string_view stored, std::string_view password);

// Spends the time one VerifyPassword spends, and answers false: what a login for a name that
// has no account does, so that the answer's timing does not tell which names exist.
bool VerifyAgainstNoAccount(std::string_view password);

// Whether a stored value is a hash of ours (older databases kept passwords as typed).
bool IsPasswordHash(std::string_view stored);

// Whether a hash was made with weaker settings than today's and should be made anew when the
// password is next known.
bool NeedsRehash(std::string_view stored);

}  // namespace tidewell

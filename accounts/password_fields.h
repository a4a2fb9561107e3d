#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// The two password fields of the user and administrator options forms. They used to show the
// stored password; no page carries a password or a hash any more, so they show a stand-in
// instead: 15 characters (the fields' maxlength) derived from the stored hash with the site's
// secret. A post that sends the stand-in back leaves the password as it is, and the forms'
// validators, which want both fields filled and equal, pass without typing.

// The stand-in for an account whose stored hash is `stored`.
std::string PasswordStandIn(const Page& page, std::string_view stored);

// What to store for a posted password: the stored hash itself when the post sent its stand-in
// back, else a new hash of what was typed.
std::string PasswordToStore(const Page& page, std::string_view posted, std::string_view stored);

}  // namespace tidewell

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// Who may use the administrator screens (8, administrator options, and 10, group options)
// and their posted actions: a request that carries, as its UserKey or its AdminKey, the key
// of an account whose Administrator flag is set. Both keys have passed the link's key check
// (only this server signs them); whether the account is an administrator is read from the
// database each time, never taken from the link.

// Whether `key` names an account whose Administrator flag is set; false for an empty key. A
// failed read throws the DatabaseError.
bool IsAdministratorAccount(Page& page, std::string_view key);

// The key, UserKey first, of the administrator the request carries; nothing when neither key
// names an administrator. A failed read becomes the pending error (and the answer nothing).
std::optional<std::string> AdministratorOfRequest(Page& page);

// Run before the page is assembled. Screens 8 and 10 are drawn for an administrator's request
// only. The one exception is the form that makes the first administrator (FirstAdministratorMode:
// nobody signed in, "welcome" = "y"), drawn only while no account is an administrator. Any
// other request for them shows the login screen.
void GuardAdministratorScreens(Page& page);

}  // namespace tidewell

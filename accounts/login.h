#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// Who is working. Signing in leaves nothing on the server: the user's key travels, signed, in
// every link (page/link_keys.h), and every request loads the user it names again.
//
// Each reads through the request's open connection. A statement that fails becomes the
// request's pending error with the error screen (errors/database_errors.h), as any database
// trouble does.

// Where a login's name and password come from.
enum class LoginSource {
  kForm,       // the login form: throttled (accounts/login_throttle.h)
  kAutoLogin,  // the page's AutoLogin setting: the site's own configuration, not throttled
};

// Looks the name up and verifies the password against the stored hash (a name without an
// account costs the same time as a wrong password). On a match: Screen and ReturnView become
// the user's default view, CurrentHour his start hour (when his options hold one), the
// account's stamp is the page's, and the answer is his OwnerKey. Otherwise, and when the form
// has been tried too often for that name or from that address, "" and the pending "LA" error
// with the invalid-login notice the login screen shows.
std::string LoginUser(Page& page, std::string_view user_name, std::string_view password,
                      LoginSource source);

// Loads the account of UserKey into page.User, UserGroupId and the banner "Group: ... | User:
// ..." (names escaped). A key that names no account any more (deleted, or its group gone)
// signs out: UserKey "" and the login screen.
//
// An administrator's own key becomes AdminKey. For anybody else an AdminKey means an
// administrator is working on this calendar; it must pass the key check and name an account
// that is an administrator, otherwise the login screen follows (and a key of an account that
// is no administrator is dropped).
//
// When AllowUserOwnDefaults is on (and no new account is being made), the user's own start
// hour and highlight and 12-hour settings replace the page's.
void LoadCurrentUser(Page& page);

// Whether any account carries the administrator flag. While none does, visitors get the
// welcome screen that creates the first one. A statement that fails sets the pending error
// and answers false; callers look at the pending error before they offer the welcome screen.
bool AdministratorExists(Page& page);

}  // namespace tidewell

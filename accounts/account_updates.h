#pragma once

#include <string_view>

namespace tidewell {

struct Page;

// Storing the account forms and deleting accounts. Both write through the request's open
// connection; a statement that fails (a value with a single quote among them: it is refused
// before any engine sees it) becomes the pending kDatabaseRefused error with the error screen,
// and what the failing step would have written stays unwritten.

// Which form posted the account.
enum class AccountForm {
  // The administrator options screen: may change everything, and checks that the name is
  // nobody else's and that the initials are nobody else's in the chosen group.
  kAdministratorOptions,
  // The user's own options screen: password, default view, his own show-all choice, and the
  // display options when AllowUserOwnDefaults lets users keep their own.
  kUserOptions,
};

// Validates and stores the posted account form: "username", "initials", "groupid",
// "newgroup", "password" and "defaultview" from the form; "loadgroupdata",
// "userdefaultstarthour", "userhighlighttodaysdate", "userhighlighttodaystime",
// "usershow12hourday" and "welcome" from the whole request.
//
// The next screen is set first: the administrator options screen, or for the user's form the
// default view stored for him. From the administrator form:
//   - a name another account has (any account, in NewUserMode) is refused:
//     kUserNameTaken, "<br>There is already a user named: <name>, Please choose another.";
//   - when the account joins an existing group (no "newgroup"), initials another member of
//     that group has are refused: kInitialsTaken, and "<br>There is already a user with the
//     initials: <initials> in the group: <group>.<br>The user is: <name>." added to the
//     message. Both refusals may stand together (kUserNameAndInitialsTaken); nothing is
//     written then.
// In NewUserMode (administrator form only) a new account is added under a fresh key, which
// becomes UserKey; it is an administrator when the request carries "welcome" = "y". Otherwise
// the account UserKey names is changed. A "newgroup" is created by name (an insert that fails,
// as for a name that exists already, is passed over) and the account joins the group of that
// name. Users.Options becomes "loadgroupdata" and the four display options joined by "+"; the
// user's form stores "3" for a posted "0", "4" for any other value and the stored flag when
// none was posted, and the display options only under the condition above (else the flag
// alone). A stored start hour takes effect in this request (DefaultStartHour).
void ProcessAccount(Page& page, AccountForm form);

// Deletes the account `key` with all its items. An administrator who deleted another account
// is back on his own (UserKey = AdminKey). One who deleted his own account has every group
// deleted too, is signed out and sees the welcome screen.
void DeleteUser(Page& page, std::string_view key);

}  // namespace tidewell

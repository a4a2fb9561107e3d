#pragma once

namespace tidewell {

struct Page;

// The buttons of the administrator options screen, posted as "submit" to screen 8:
//   "Change User"       UserKey becomes the posted "ownerkey";
//   "Update"            the account form is stored (accounts/account_updates.h);
//   "New User"          NewUserMode: the screen shows an empty account form;
//   "Add New User"      a new account from the form; NewUserMode stays on only when it was
//                       refused, so that the form comes back with the message;
//   "Manage"            the group options screen;
//   "Delete This User"  the account UserKey names is deleted.
// Each runs only for an administrator's request, checked in the database first
// (accounts/administrator_check.h); an administrator whose link carried no AdminKey gets his
// own key there. The one exception is the first administrator's form (nobody signed in,
// "welcome" = "y"): its "Add New User" makes the account, an administrator, while no account
// is one yet, and any other of its posts is refused.
//
// Answers false when the post was refused: nothing was written, and the page shows the login
// screen (unless reading the database failed, which shows the error screen). Any other
// "submit" is no administrator action and answers true.
bool RunAdministratorAction(Page& page);

}  // namespace tidewell

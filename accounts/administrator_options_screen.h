#pragma once

namespace tidewell {

struct Page;

// Screen 8: the administrator's account editor, in one of three modes.
//
//   - Editing the account UserKey names: a head row with "New User", the list of every
//     account and "Change User"; the account's name, initials, group (with "Manage" and a
//     "New Group" field), show-all setting, display options, default view and password;
//     "Update", and "Delete This User" unless it is the administrator's own account. The
//     "(Administrator)" mark stands beside an administrator's own name.
//   - NewUserMode: the same form emptied for a new account (group none, show-all on, the
//     display options of the page), the password fields empty, and "Add New User".
//   - FirstAdministratorMode (from the welcome screen): no account list, a free text field
//     for the new group (required by the validator too), the "(Administrator)" mark, and
//     "welcome" = "y" posted with "Add New User".
//
// After a refused post (a pending error) the message stands in red above the form and the form
// shows what was posted, except the name when it was taken and the initials when they were
// (page/pending_error.h). User text is escaped. The page driver draws this screen only for an
// administrator's request (accounts/administrator_check.h).
void AdminOptionsView(Page& page);

}  // namespace tidewell

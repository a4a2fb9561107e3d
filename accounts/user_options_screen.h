#pragma once

namespace tidewell {

struct Page;

// Screen 7: the signed-in user's own account. Name, initials and group are shown as text
// (with the "(Administrator)" mark when the user key is the administrator key); the
// show-all-group-users setting is a select when the user may change it and the word "True" or
// "False" when it is locked. The display options (start hour and three switches) appear only
// when the page allows users their own defaults. The default view select and both password
// fields, pre-filled with the stored password, are always there. The form posts
// "action" = "u" back to screen 7, where the account processing stores it in its user form
// (accounts/account_updates.h). User text is escaped.
void UserOptionsView(Page& page);

}  // namespace tidewell

#pragma once

namespace tidewell {

struct Page;

// The group options screen's post (screen 10, "groupaction" non-empty), by the posted
// "submit":
//   "Back"    the administrator options screen follows; nothing else happens;
//   "Add"     a group named the posted "newgroup"; when the database refuses it (a group of
//             that name exists) kGroupNameTaken and the message
//             "<br>There is already a group named: " name;
//   "Update"  the group "groupid" takes the name "groupname"; its members keep their group id,
//             so they all follow. A refusal (a name in use) is a database error;
//   "Delete"  the group "rgroupid" is deleted (the screen offers only groups without members).
// An empty new name does nothing. These are administrator actions: each runs only when the
// request carries the key of an administrator, checked in the database first
// (accounts/administrator_check.h); an administrator whose link carried no AdminKey gets his
// own key there.
//
// Answers false when the post was refused: nothing was written, and the page shows the login
// screen (unless reading the database failed, which shows the error screen).
bool RunGroupAction(Page& page);

}  // namespace tidewell

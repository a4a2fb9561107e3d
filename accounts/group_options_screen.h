#pragma once

namespace tidewell {

struct Page;

// Screen 10: the administrator's group editor. Three rows: a new group's name and "Add"; the
// list of every group, the new name and "Update"; the groups no account belongs to and
// "Delete" (or, when every group has members, the grey notice "No Groups Unassigned" and no
// button). "Back" returns to the administrator options screen. The message of a refused
// "Add" stands in red above the rows. The form posts "groupaction" = "u" to screen 10
// (accounts/group_updates.h). The page driver draws this screen only for an administrator's
// request (accounts/administrator_check.h).
void GroupOptionsView(Page& page);

}  // namespace tidewell

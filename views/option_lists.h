#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// The option lists the item lists also build (item_list.h), for the forms' select boxes. Each
// answers "" when it has no entry. Database errors are left to the caller's trap.
//
// A user's entry is "<option " (or "<option selected ") + "class=admin" for an administrator,
// "class=text" for anyone else, + " value=" OwnerKey " >" GroupName " - " Username
// "</option>"; a group's is "<option class=text value=" GroupID " >" GroupName "</option>".
// Keys stand bare: a bare key opens no calendar (page/link_keys.h).

// Mode 4, the item form's owners: the current user alone, or every user while an
// administrator works on the calendar (the request carries his key); the current user's entry
// preselected.
std::string ItemOwnerOptions(Page& page);

// Mode 8, by the list's name: "Users" (every user, the current one preselected), "Groups"
// (every group, the current user's preselected) or "RedundantGroups" (the groups nobody
// belongs to). Any other name has no entries.
std::string UserOrGroupOptions(Page& page, std::string_view list_name);

// Mode 15, the search form's owners; the group or user entry whose value the form posted as
// "ownerkey" is preselected.
//   administrator:       "- Search All Users -" (never marked selected, even when the form
//                        posted "all"), "- Search Group <name> -" for every group, then every
//                        user;
//   whole-group user:    "- Search All Group Users -" (always marked selected, even when the
//                        form posted a member's key), then the users of his group (`group_id`);
//   anyone else:         himself.
std::string SearchOwnerOptions(Page& page, long group_id);

}  // namespace tidewell

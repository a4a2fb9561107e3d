#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// The forms' option lists, for their select boxes, each called by its own name with what it
// needs. Like the views' lists, a list reads through the request's connection, a failed
// statement becomes the request's pending kDataRead error (errors/database_errors.h), and a
// list without entries (or a failed one) is "&nbsp;".
//
// A user's entry is "<option " (or "<option selected ") + "class=admin" for an administrator,
// "class=text" for anyone else, + " value=" OwnerKey " >" GroupName " - " Username
// "</option>"; a group's is "<option class=text value=" GroupID " >" GroupName "</option>".
// Keys stand bare: a bare key opens no calendar (page/link_keys.h).

// The item form's owners: the current user alone, or every user while an administrator works
// on the calendar (the request carries his key); the current user's entry preselected.
std::string ItemOwnerList(Page& page);

// Every user, the current one preselected (the administrator options screen).
std::string UserList(Page& page);

// Every group, `selected_group` preselected.
std::string GroupList(Page& page, long selected_group);

// The groups nobody belongs to, none preselected.
std::string UnassignedGroupList(Page& page);

// The search form's owners; the group or user entry whose value the form posted as
// "ownerkey" is preselected.
//   administrator:       "- Search All Users -" (never marked selected, even when the form
//                        posted "all"), "- Search Group <name> -" for every group, then every
//                        user;
//   whole-group user:    "- Search All Group Users -" (always marked selected, even when the
//                        form posted a member's key), then the users of his group;
//   anyone else:         himself.
std::string SearchOwnerList(Page& page);

}  // namespace tidewell

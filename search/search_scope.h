#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// Whose calendars one search reads.
struct SearchOwner {
  enum class Kind {
    kEveryone,  // every calendar: "all" from an administrator
    kGroup,     // every member of one group; `value` is the GroupID as text
    kUser,      // one calendar; `value` is its OwnerKey
  };
  Kind kind = Kind::kUser;
  std::string value;
};

// The calendars a search posted with the owner value `posted` may read. A search reaches only
// what the searcher may already see:
//
//   administrator (the request carries his checked AdminKey): "all" is everyone, a numeric
//       value the group of that GroupID, any other value the user of that OwnerKey, each
//       taken as posted;
//   a user who sees his whole group: "all" is his group (UserGroupId); his own key, or the
//       key of another member of his group, that member;
//   anyone else: his own calendar.
//
// Whatever else is posted ("all" without the show-all option, a group's id, the key of a user
// of another group, text that is no key at all) searches the searcher's own calendar, UserKey.
// Checking a member's group reads the database; a failed read throws ado::DatabaseError.
SearchOwner SearchScope(Page& page, std::string_view posted);

}  // namespace tidewell

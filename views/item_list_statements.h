#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "data/statement.h"
#include "page/properties.h"
#include "runtime/variant.h"

namespace tidewell {

// The statements of the item lists (item_list.h), one place for each family.

// Whose items a list shows: the owner's own, or, when `group_id` is not 0, every item of the
// owner's group.
struct ListOwner {
  std::string_view owner_key;
  long group_id = 0;
};

// The group whose items a user's lists show: his group's when he has the show-all option,
// else none (0): his own items only. The views and the feeds alike decide by this.
inline long GroupScopeFor(bool show_all_group_users, long group_id) {
  return show_all_group_users ? group_id : 0;
}

// The group a user belongs to, read when his lists show the whole group:
// "SELECT GroupID FROM Users WHERE OwnerKey = '" + key + "'".
ado::Statement GroupScopeStatement(std::string_view owner_key);

// The ORDER BY text of a list. Without a code, the day lists (modes 0 to 2) sort by
// "TimeStamp, Initials, Urgent, Heading ASC" and every other list by
// "UserName, Initials, TimeStamp, Urgent, Heading ASC". A code is expanded by plain text
// replacement: every "A" becomes "ASC", then every "D" "DESC"; then the column letter the code
// starts with ("U" Urgent, "T" TimeText, "I" Initials, "H" Heading) is replaced wherever it
// stands; last every "*" becomes a blank. The time view's headers make the codes ("T*D" sorts
// by TimeText DESC), so the time column sorts on the text, not on the hour.
std::string ExpandSortCode(std::string_view code, long mode);

// Whether `sort` is one of the orders the lists name: the two defaults and the time view
// headers' orders. Any other order is a column's position that a hand-written link asked for.
bool IsNamedSort(std::string_view sort);

// Each list sorts by its order and then by ItemID, so that equal items keep one order.

// The items of one day for a month cell (mode 0, TOP 6) or a week row (mode 1, TOP 5), or of
// one hour of a day for a day view row (mode 2, TOP 3): one row more than the list shows, to
// tell that more exist. `date` is the m/d/yyyy text the list splices between the dialect's
// delimiters; `sort` an expanded sort order.
ado::Statement DayListStatement(long mode, std::string_view date, long hour, const ListOwner& owner,
                                std::string_view sort, ASPDataServer dialect);

// One cell of a view: a day of the month or week view, or one hour of a day in the day view.
struct ListCell {
  Date day;
  std::optional<long> hour;
};

// Whether the cells are hours of days (the day view) rather than days.
inline bool CellsAreHours(std::span<const ListCell> cells) {
  return !cells.empty() && cells.front().hour.has_value();
}

// The items of every cell of a view at once: the day lists' columns and DateStamp, for exactly
// the items the cells' own day list statements would select (their conditions joined by OR,
// within the range of their days),
// sorted by cell (DateStamp, and TimeStamp when the cells are hours) and within a cell as the
// cell's own statement sorts (`sort` must be a named sort, see IsNamedSort), without TOP: the
// view deals the rows out to its cells and cuts each list itself. The cells are all days or
// all hours.
ado::Statement ViewListStatement(std::span<const ListCell> cells, const ListOwner& owner,
                                 std::string_view sort, ASPDataServer dialect);

// Every item of one hour with its owner's initials and name, for the time view's table.
ado::Statement TimeTableStatement(std::string_view date, long hour, const ListOwner& owner,
                                  std::string_view sort, ASPDataServer dialect);

// Every item from the day `first` to the day `last` that the owner's lists show, with its
// description, sorted by day and within a day as the day lists sort: a user's feed.
ado::Statement FeedItemsStatement(Date first, Date last, const ListOwner& owner,
                                  ASPDataServer dialect);

// --- The option lists (option_lists.h) ---

// One user with his group's name, for the item form of a user working on his own calendar.
ado::Statement OneUserStatement(std::string_view owner_key);
// Every user with his group's name.
ado::Statement AllUsersStatement();
// The users of one group, for the search of a user who sees his whole group.
ado::Statement GroupUsersStatement(long group_id);
// Every user, as the administrator screen lists them.
ado::Statement AdministeredUsersStatement();
// Every group by name, for the group lists of the administrator screens.
ado::Statement GroupsStatement();
// Whether a group has members: "SELECT GroupID FROM Users WHERE GroupID = " + id.
ado::Statement GroupMembersStatement(long group_id);
// Every group by name, for the search list's group entries.
ado::Statement SearchGroupsStatement();

}  // namespace tidewell

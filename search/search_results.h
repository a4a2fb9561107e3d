#pragma once

#include <string_view>

#include "data/statement.h"
#include "page/properties.h"
#include "runtime/variant.h"
#include "search/search_scope.h"

namespace tidewell {

struct Page;

// The messages of a posted date that reads as no date (ErrorKind::kInvalidDate).
inline constexpr const char* kInvalidStartDate =
    "You have entered an invalid start date, please choose another date.";
inline constexpr const char* kInvalidEndDate =
    "You have entered an invalid end date, please choose another date.";

// What SearchResults holds when nothing matched (its wording has always been so).
inline constexpr const char* kNoSearchResults =
    "<font color=#b22222><b>No search results where found, please re-define your search "
    "critera.</b></font>";

// Runs the search the search screen posted ("startdate", "enddate", "ownerkey", "search") and
// leaves its result table in SearchResults, which the search screen draws below its form.
//
//   - A date that reads as no date stops the search: the pending kInvalidDate error with the start
//     or end date message above; the form shows it with the posted values.
//   - The owner is limited to what the searcher may see (search_scope.h).
//   - Matching rows make a table: a heading row "group - user" each time the trimmed user
//     name changes, and one row per item with its urgent mark, date, time and heading, the
//     heading linking to the time view of the item's date and hour in the searcher's own
//     calendar. Complete items take CompletedItemColor, struck through under
//     CompletedItemCrossOut. No row gives kNoSearchResults.
//   - A statement that fails (a search text holding a quote is refused before the engine)
//     becomes the request's pending database error and the error screen replaces the form.
void ProcessSearch(Page& page);

// The search's statement, all its variants in one place:
//   SELECT Items.*, Users.UserName, Users.GroupID FROM Items INNER JOIN Users ON
//   Items.OwnerKey = Users.OwnerKey WHERE [owner condition AND] Items.Heading LIKE '%text%'
//   AND Items.DateStamp >= start AND Items.DateStamp <= end ORDER BY Users.GroupID,
//   Users.UserName, Items.DateStamp, Items.TimeStamp, Items.Urgent, Items.Heading
// The owner condition is "Users.GroupID = " id for a group, "Users.OwnerKey = 'key'" for a
// user and none for everyone. Searching everyone in the SQL Server dialect orders by
// "Users.UserName, Items.DateStamp, Items.Heading" alone, as that dialect always has; the
// Access dialect keeps the long order. Dates are spliced m/d/yyyy between the dialect's
// delimiters.
ado::Statement SearchStatement(std::string_view text, Date start, Date end,
                               const SearchOwner& owner, ASPDataServer dialect);

}  // namespace tidewell

#pragma once

#include <string>

#include "runtime/variant.h"

namespace tidewell {

struct Page;

// What BuildItemList draws.
namespace list_modes {
inline constexpr long kMonthCell = 0;  // a month view cell: up to 5 short links and a "more" icon
inline constexpr long kWeekRow = 1;    // a week view row: up to 4 long links and "[More..]"
inline constexpr long kDayRow = 2;     // a day view hour: up to 2 long links and "[More..]"
inline constexpr long kTimeTable = 3;  // the time view: the hour's table with sortable headers
}  // namespace list_modes

// The item list of the calendar's views: the items of a day (or of one hour). The forms'
// option lists of users and groups are views/option_lists.h.
//
// `date` is the day the list is for, as date text in the regional settings; when it reads as a
// date it is rewritten in place as m/d/yyyy, the form every statement splices whatever the
// settings (a caller that wants to keep its own text passes a copy). `hour` is the hour of the
// day and time views' lists. Any other mode draws nothing.
//
// The lists cover the current user's items, or his whole group's when his show-all-group-users
// option is set, sorted by the link's sort code (page.SortOrder) or by the default order. The
// result is markup, "&nbsp;" when nothing was produced (a table cell never collapses). A
// statement that fails becomes the request's pending kDataRead error
// (errors/database_errors.h) and the result is "&nbsp;"; the view that called drops what it
// drew and the dispatcher shows the error screen after it.
std::string BuildItemList(Page& page, long mode, std::string& date, long hour);

// The same for a day the caller already holds as a date, as the views do: their cell and row
// dates are written in the regional settings and read back by the run time before the list
// is asked for, and need not be read once more.
std::string BuildItemList(Page& page, long mode, Date day, long hour);

}  // namespace tidewell

#pragma once

#include "views/list_reading.h"

namespace tidewell {

struct Page;

// Screen 1: the week (Sunday to Saturday) holding CurrentDate, one row per day with the
// weekday and day number linking to the day view and the day's items, under a title "Week
// Starting ..." between arrows a week back and forward. When the week straddles two months,
// the days of the month the visitor came from are tinted as neighbouring days: the link's
// argument "n" (forward, or a tab) tints the days after the month changes, "p" (back) those
// before. When an item list fails, the view is taken back and the error screen follows it.
void WeekView(Page& page);
// The same with the item lists read as `reading` says (list_reading.h).
void WeekView(Page& page, ListReading reading);

}  // namespace tidewell

#pragma once

#include "views/list_reading.h"

namespace tidewell {

struct Page;

// Screen 0: the month of CurrentDate as a grid of weeks, Sunday first, the neighbouring
// months' days filling the first and last rows. Each cell links its day number to the day
// view of that date and lists the date's items; the first cell of each row links to the week
// view of that row ("1/p" in a leading row that starts in the previous month, "1/n"
// otherwise). The grid has 4, 5 or 6 rows, which sets the page's height. When an item list
// fails, everything the view drew is taken back and the error screen follows it.
void MonthView(Page& page);
// The same with the item lists read as `reading` says (list_reading.h).
void MonthView(Page& page, ListReading reading);

}  // namespace tidewell

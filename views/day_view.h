#pragma once

#include "views/list_reading.h"

namespace tidewell {

struct Page;

// Screen 2: twelve hours from CurrentHour of CurrentDate, one row per hour with the hour
// linking to the time view and the hour's items; the rows run past midnight into the next
// day when they must, and the title then names both days. The arrows page by twelve hours, or
// with Show12HourDay by whole days at the same hour. When an item list fails, the view is
// taken back and the error screen follows it.
void DayView(Page& page);
// The same with the item lists read as `reading` says (list_reading.h).
void DayView(Page& page, ListReading reading);

}  // namespace tidewell

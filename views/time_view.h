#pragma once

namespace tidewell {

struct Page;

// Screen 3: one hour, CurrentHour of CurrentDate: the hour beside the table of its items with
// their descriptions, sort headers and Edit/Delete links. The arrows step one hour back or
// forward, across midnight into the neighbouring day. When the item list fails, the view is
// taken back and the error screen follows it.
void TimeView(Page& page);

}  // namespace tidewell

#pragma once

namespace tidewell {

struct Page;

// The right-hand half of the header: the user banner, the month and year of CurrentDate
// between links one year and one month back and forward (calendar-correct: 31 January plus a
// month is the last day of February), then the header's end with a separator row, a white
// rule for Internet Explorer and a line image for the other browsers. The links re-open the
// same screen on the new date, marked "/p" (back) or "/n" (forward) for the week view.
void AppendNavigationBar(Page& page);

}  // namespace tidewell

#pragma once

namespace tidewell {

struct Page;

// The strip of four tabs under the frame: MonthView, WeekView, DayView and TimeView, each a
// link to that view on CurrentDate at DefaultStartHour ("0/n" ... "3/n"), the view in use
// drawn selected, then a filler cell. One procedure per selected view. The four differ in
// small ways that the pages have always had and that are kept on purpose:
//   - the month strip opens with "<!-- Tabs Start -->" and writes a blank before the ">" of
//     its table tags and two blanks in its selected link; the others do not;
//   - in the month and week strips the tab right of the selected one starts with the
//     "tb_left_sns" edge, elsewhere unselected tabs start with "tb_left_ns";
//   - the inner strip table is closed by the DayView tab's right edge, so the TimeView tab
//     stands after it, except in the time strip, where the selected TimeView tab closes it;
//   - an unselected TimeView tab has no blank before the ">" of its inner table.
// Navigator gets a filler 365 pixels wide, the other browsers one of 100%.
void AppendMonthTabs(Page& page);
void AppendWeekTabs(Page& page);
void AppendDayTabs(Page& page);
void AppendTimeTabs(Page& page);

}  // namespace tidewell

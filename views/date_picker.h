#pragma once

namespace tidewell {

struct Page;

// Screen 5: the pop-up month calendar the item form and the search form open in a window of
// their own. A click on a day writes the day's date text into the opening window's field and
// closes the pop-up; the arrows page a month back and forth and keep the target field.
//
// The target comes from the link's return view: 5 fills "datestamp" of the form "addmodify";
// 15 fills "startdate" (link suffix "0") or "enddate" (suffix "1") of "searchscreen"; any other
// view leaves form and field empty. Today is written dark red when HighlightTodaysDate is on.
//
// The page driver draws it alone: no frame, no database.
void DatePicker(Page& page);

}  // namespace tidewell

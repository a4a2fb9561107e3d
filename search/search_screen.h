#pragma once

namespace tidewell {

struct Page;

// Screen 15: the search form, with the result table of the search just posted below it.
//
// Before a search the date fields show the date in view and the search field is empty; after
// one, the three fields show the posted values as they were typed (escaped), the refusal of an
// unreadable date in red above the owner list, and SearchResults under the form. The owner list
// is the item lists' mode 15. Each date field has a date-picker icon; its link carries the
// suffix "0" (start date) or "1" (end date), by which the picker fills the right field.
//
// The page opens with the validator, which refuses an empty start date, end date or search
// text, and datepicker(url). The screen sets the page's height: 545, 554 for Navigator, 555 for
// Opera.
void SearchScreenView(Page& page);

}  // namespace tidewell

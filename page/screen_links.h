#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// "screen/return_view", the first field of a link to a screen that goes back to a view (or
// hands its result to a screen) when it is done: "4/3", "5/15" ...
std::string ScreenReturningTo(long screen, long return_view);

// A link to `screen` that returns to the view in use (`ReturnView`), on the date and hour
// shown, carrying the user, sort and administrator keys: the header's buttons, the help icons
// and the forms' actions. `item_id` rides along for the forms that edit one.
std::string ReturningLink(const Page& page, long screen, long item_id = 0);

// A date field's picker: screen 5, handing the chosen date to `form_screen` (the item form
// gives 5, the search form 15), opening on the month of the date in the field, or on the month
// in view while the field holds no date. The suffix names the search form's field.
std::string DatePickerLink(const Page& page, long form_screen, const std::string& field_value,
                           std::string_view suffix = "");

}  // namespace tidewell

#pragma once

#include <string>

namespace tidewell {

struct Page;

// "screen/return_view", the first field of a link to a screen that goes back to a view (or
// hands its result to a screen) when it is done: "4/3", "5/15" ...
std::string ScreenReturningTo(long screen, long return_view);

// A link to `screen` that returns to the view in use (`ReturnView`), on the date and hour
// shown, carrying the user, sort and administrator keys: the header's buttons, the help icons
// and the forms' actions. `item_id` rides along for the forms that edit one.
std::string ReturningLink(const Page& page, long screen, long item_id = 0);

}  // namespace tidewell

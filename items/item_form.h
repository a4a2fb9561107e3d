#pragma once

namespace tidewell {

struct Page;

// Screen 4: the form an item is added or edited with. Edit mode when the link carries an item
// id: the item of the calendar shown is loaded (item_updates.h) and posted back as an update;
// otherwise a new item on the shown date and hour is posted as an add. After a post that was
// refused, the posted heading, description, hour, minutes and boxes are shown again, with the
// refusal in red above the owner list. The owner list is the item lists' mode 4.
//
// The page opens with two scripts: the validator, which refuses an empty date or heading, and
// datepicker(url), which opens the date picker in a window sized for the browser. The outer
// table's height is left as the frame wrote it.
void AddModifyView(Page& page);

}  // namespace tidewell

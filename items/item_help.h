#pragma once

namespace tidewell {

struct Page;

// Screen 13: what each field of the item form means, reached from the form's help icon. Fixed
// text in the page's colour and image folder; it reads nothing else.
void HelpScreenItem(Page& page);

}  // namespace tidewell

#pragma once

namespace tidewell {

struct Page;

// Screen 16: what the search form's fields are for. Fixed text; the page's height as the
// search screen sets it.
void HelpScreenSearch(Page& page);

}  // namespace tidewell

#pragma once

namespace tidewell {

struct Page;

// Screen 11: what each field of the account forms means, for the user and administrator
// options screens. Fixed text under a title bar and the help icon; no form, no links.
void HelpScreenUser(Page& page);

// Screen 12: the same for the three rows of the group options screen.
void HelpScreenGroup(Page& page);

}  // namespace tidewell

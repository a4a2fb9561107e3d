#pragma once

namespace tidewell {

struct Page;

// The page frame: one 620-pixel outer table around every screen, opened before the header
// and closed after the screen (the view tabs follow it).

// Opens the outer table, whose height is left as the placeholder "<height></height>" for the
// screen to settle, and the header section with its first row.
void AppendFrameOpening(Page& page);

// The image buttons at the top left of the header. Which ones appear depends on how the
// visitor came in:
//   AutoLogin, not read-only:  Add New Item, Search, User Options [, Administrator Options]
//   AutoLogin, read-only:      Search
//   nobody signed in:          Login User
//   signed in with the form:   Add New Item, Search, User Options, Logout / Change User
//                              [, Administrator Options]
// Administrator Options appears while AdminKey is set. A ReturnView of 4 (the item form) is
// turned into 3 for the rest of the request first: no link ever returns to the item form.
void AppendButtonSection(Page& page);

// Closes the outer table.
void AppendFrameEnd(Page& page);

}  // namespace tidewell

#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// Small pieces of markup that many screens share.

// Text that came from a user (names, headings, descriptions, posted values shown again) made
// safe to stand in the page: "&", "<", ">" and the double quote become entities. Fixed markup
// never passes through here.
std::string EscapeHtml(std::string_view text);

// The frame writes the outer table's height as the placeholder "<height></height>"; the screen
// drawn replaces every occurrence in the whole page with its own height.
void ReplaceHeight(Page& page, long height);

// A screen's height for the browser in use: Navigator and Opera draw the frame a few pixels
// differently, every other kind takes the standard value.
long ByBrowser(const Page& page, long standard, long navigator, long opera);

// The first cell of a title bar: most screens write "<td align=center valign=middle width=60>",
// the login screen writes it with a blank before ">".
enum class TitleCell { kPlain, kSpaced };

// The 610-pixel title bar in TidewellColor above a screen's body: an empty first cell, then
// "&nbsp;<b>" title "</b>". The title cell is followed by an opening "<td>" where a "</td>"
// would close it; browsers accept it and the pages have always been written so. `title` is
// markup: a caller splicing a user's name escapes it first.
void AppendTitleBar(Page& page, std::string_view title, TitleCell first_cell);

// The Tidewell logo followed by a grey rule, as the sign-in screens open their text.
void AppendLogo(Page& page);

// A form field the browser must not send empty.
struct RequiredField {
  const char* name;   // the input's name: "username"
  const char* label;  // as the alert calls it: "Username"
};

// The browser-side check of a form (function validator), one line of script per piece, each
// line ended by CR LF and one CR LF before the first: for every field in turn an alert "Please
// enter a value in the <label> field." and the focus on it.
void AppendValidator(Page& page, std::initializer_list<RequiredField> fields);

}  // namespace tidewell

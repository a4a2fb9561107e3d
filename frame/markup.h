#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

struct Page;

// Small pieces of markup that many screens share.

// Text that came from a user (names, headings, descriptions, posted values shown again) made
// safe to stand in the page: "&", "<", ">" and the double quote become entities. Fixed markup
// never passes through here.
std::string EscapeHtml(std::string_view text);
// The same, written at the end of `out`.
void AppendEscapedHtml(std::string& out, std::string_view text);

// The frame writes the outer table's height as the placeholder "<height></height>"; the screen
// drawn replaces every occurrence in the whole page with its own height.
void ReplaceHeight(Page& page, long height);

// The height the form screens give the frame, for the placeholder a screen left in place.
inline constexpr long kFormScreenHeight = 545;

// The page as a browser gets it: every height placeholder that the screen drawn left in place
// (the item form, the item help and the error screen keep "<height></height>", as the
// component always wrote them) becomes kFormScreenHeight. Unreplaced, the placeholder breaks
// the table tag in a browser: the tag ends at the placeholder's "<height>" and the rest of it
// ("cellpadding=0 cellspacing=0 border=0>") shows as text above the calendar. Every way the
// binary hands out a page (serve, render) settles it here.
std::string SettleFrameHeight(std::string component_output);

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

// One entry of a select list as the forms write them: "<option class=text value=" value " >"
// label "</option>", or "<option selected class=text value=" for the preselected entry.
// `label` is markup: a caller showing a user's text escapes it first.
std::string TextOption(std::string_view value, std::string_view label, bool selected);

// The bordered table, 610 by 456, that a screen's body stands in below its title bar.
void AppendBodyTable(Page& page);

// A form screen's body: the body table, its row, the help column leading to `help_screen`
// (which returns to the view in use), and the opening of the cell the form stands in.
void AppendFormBodyOpening(Page& page, long help_screen);
// Closes the cell, the row and the table AppendFormBodyOpening opened.
void AppendFormBodyClosing(Page& page);

// The left column of a form screen: the help icon, linked to the screen's help.
void AppendHelpColumn(Page& page, std::string_view help_link);

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

// The same check for a form that asks for a password twice (the account forms): after the
// required fields, "password" and "confirm" must agree, else the alert "Password and Confirm
// Password do not match." and the focus back on "password".
void AppendPasswordValidator(Page& page, const std::vector<RequiredField>& fields);

// datepicker(url), which the forms' date-picker icons call: the picker in a small window, as
// large as the browser kind needs (180 by 165 for Explorer, 200 by 185 for Netscape, Navigator
// and Opera, 0 by 0 for any other kind). Written like the validator, one line a piece ended by
// CR LF and one CR LF before the first, but without the "<!--" guard. The window's left is
// given y and its top x; the pop-up has always opened there.
void AppendDatePickerScript(Page& page);

// A form's date field, ten characters at most, with the picker icon beside it that opens
// `picker_link` through datepicker().
void AppendDateField(Page& page, std::string_view name, std::string_view value,
                     std::string_view picker_link);


}  // namespace tidewell

#pragma once

#include <string_view>

namespace tidewell {

struct Page;

// Restores the navigation state from the request's "WS" parameter: screen, return view or
// argument, date, hour, item (and a requested deletion), the user's key after the key check,
// sort token and administrator key. Without "WS" the login screen on today's date. A field
// that does not convert raises the run time's error, which ends the request.
void RestoreLinkState(Page& page);

// 0 Explorer, 1 Netscape, 2 Navigator, 3 Opera: later matches win, in that order.
long BrowserKindOf(std::string_view user_agent);

// What follows the last "/" of the URL, then "?": the base of every link.
std::string ScriptNameOf(std::string_view url);

}  // namespace tidewell

#pragma once

#include <string>
#include <string_view>

#include "runtime/variant.h"

namespace tidewell {

struct Page;

// Pieces of markup the two account screens share: the user options screen and the
// administrator options screen show the same account rows, option rows and password fields.

// Beside the name of an administrator's own account.
inline constexpr const char* kAdministratorMark =
    "<font color=#b22222><b>(Administrator)</b></font>";

// One row of an account table: the label in the narrow cell, `content` (markup) in the wide
// one.
void AppendAccountRow(Page& page, std::string_view label, std::string_view content);

// Which entry of a select is the current one. The user options screen marks the entry whose
// value equals the stored one; the administrator options screen also the entry equal to its
// negation, so that a Boolean True (-1) marks the entry 1. A value that reads as no number
// (empty, or text from a post) marks no entry.
enum class Selection { kEqual, kEqualOrNegated };
bool IsSelected(const Variant& current, long value, Selection rule);

// One entry of an account select: "<option class=text value=" value, " SELECTED " for the
// current one, " >" text "</option>". `text` is fixed markup.
std::string AccountOption(long value, std::string_view text, bool selected);

// "<select class=text name=" name " >" with the entries 0 "False" and 1 "True", then
// "</select>".
std::string BooleanSelect(std::string_view name, const Variant& current, Selection rule);

// The entries of the default view select: 0 MonthView, 1 WeekView, 2 DayView, 3 TimeView.
std::string DefaultViewOptions(const Variant& current, Selection rule);

// The display settings a form shows: the start hour and the three switches, as stored
// (numbers), as preset (the page's Booleans) or as posted (text).
struct DisplaySettings {
  Variant start_hour;
  Variant highlight_todays_date;
  Variant highlight_todays_time;
  Variant show_12_hour_day;
};

// The table of display options: "Start my Days at" with the hours 00:00 to 23:00, then the
// selects for highlighting today's date and time and for the 12-hour day, and "<br>" after.
void AppendDisplayOptionTable(Page& page, const DisplaySettings& settings, Selection rule);

// The password table: the two labels over the fields "password" and "confirm", both
// pre-filled with `password` (escaped here). The labels are fixed markup.
void AppendPasswordTable(Page& page, std::string_view password_label,
                         std::string_view confirm_label, std::string_view password);

}  // namespace tidewell

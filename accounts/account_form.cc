#include "accounts/account_form.h"

#include <optional>

#include "frame/markup.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

// The current value as a number: stored numbers and Booleans convert, posted text only when
// it reads as a number.
std::optional<double> NumberOf(const Variant& value) {
  if (value.IsEmpty() || value.IsNull()) return std::nullopt;
  if (value.type() == Variant::Type::kString) return ParseNumericText(CStr(value));
  try {
    return CDbl(value);
  } catch (const AutomationError&) {
    return std::nullopt;
  }
}

// One select row of the display option table, introduced by the close of the row before.
void AppendSwitchRow(Page& page, const char* label, const char* name, const Variant& current,
                     Selection rule) {
  std::string& out = page.PageBuffer;
  out += "</select>";
  out += "</td>";
  out += "</tr><tr bgcolor=#EFEFEF>";
  out += "<td width=200 class=text>";
  out += label;
  out += "</td>";
  out += "<td class=text>";
  out += "<select class=text name=" + std::string(name) + " >";
  out += AccountOption(0, "False", IsSelected(current, 0, rule));
  out += AccountOption(1, "True", IsSelected(current, 1, rule));
}

}  // namespace

void AppendAccountRow(Page& page, std::string_view label, std::string_view content) {
  std::string& out = page.PageBuffer;
  out += "<tr bgcolor=#DEE7F7>";
  out += "<td width=200 class=text>";
  out += label;
  out += "</td>";
  out += "<td class=text>";
  out += content;
  out += "</td>";
  out += "</tr>";
}

bool IsSelected(const Variant& current, long value, Selection rule) {
  std::optional<double> number = NumberOf(current);
  if (!number) return false;
  if (*number == static_cast<double>(value)) return true;
  return rule == Selection::kEqualOrNegated && -*number == static_cast<double>(value);
}

std::string AccountOption(long value, std::string_view text, bool selected) {
  std::string option = "<option class=text value=" + std::to_string(value);
  if (selected) option += " SELECTED ";
  option += " >";
  option += text;
  option += "</option>";
  return option;
}

std::string BooleanSelect(std::string_view name, const Variant& current, Selection rule) {
  return "<select class=text name=" + std::string(name) + " >" +
         AccountOption(0, "False", IsSelected(current, 0, rule)) +
         AccountOption(1, "True", IsSelected(current, 1, rule)) + "</select>";
}

std::string DefaultViewOptions(const Variant& current, Selection rule) {
  static constexpr const char* kViews[] = {"MonthView", "WeekView", "DayView", "TimeView"};
  std::string options;
  for (long view = 0; view < 4; ++view) {
    options += AccountOption(view, kViews[view], IsSelected(current, view, rule));
  }
  return options;
}

void AppendDisplayOptionTable(Page& page, const DisplaySettings& settings, Selection rule) {
  std::string& out = page.PageBuffer;
  out += "<table cellpadding=1 cellspacing=1 border=0 width=100%>";
  out += "<tr bgcolor=#EFEFEF>";
  out += "<td width=200 class=text>";
  out += "<b>Start my Days at</b>";
  out += "</td>";
  out += "<td class=text>";
  out += "<select class=text name=userdefaultstarthour >";
  for (long hour = 0; hour < 24; ++hour) {
    out += AccountOption(hour, FormatTwoDigits(hour) + ":00",
                         IsSelected(settings.start_hour, hour, rule));
  }
  AppendSwitchRow(page, "<b>Highlight Todays Date?</b>", "userhighlighttodaysdate",
                  settings.highlight_todays_date, rule);
  AppendSwitchRow(page, "<b>Highlight Todays Time?</b>", "userhighlighttodaystime",
                  settings.highlight_todays_time, rule);
  AppendSwitchRow(page, "<b>Show 12 Hour Day?</b>", "usershow12hourday", settings.show_12_hour_day,
                  rule);
  out += "</select>";
  out += "</td>";
  out += "</tr></table><br>";
}

void AppendPasswordTable(Page& page, std::string_view password_label,
                         std::string_view confirm_label, std::string_view password) {
  std::string& out = page.PageBuffer;
  const std::string value = "\"" + EscapeHtml(password) + "\"";
  out += "<table cellpadding=0 cellspacing=0 border=0>";
  out += "<tr>";
  out += "<td class=text>";
  out += password_label;
  out += "</td>";
  out += "<td class=text>";
  out += confirm_label;
  out += "</td>";
  out += "</tr>";
  out += "<tr>";
  out += "<td class=text>";
  out += "<input maxlength=15 class=text type=password name=password value=" + value + " size=18 >";
  out += "</td>";
  out += "<td class=text>";
  out += "&nbsp;&nbsp;<input maxlength=15 class=text type=password name=confirm value=" + value +
         " size=18 >";
  out += "</td>";
  out += "</tr>";
  out += "</table>";
}

}  // namespace tidewell

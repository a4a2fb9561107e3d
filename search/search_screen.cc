#include "search/search_screen.h"

#include <string>

#include "component/link_codec.h"
#include "component/page.h"
#include "frame/markup.h"
#include "runtime/conversions.h"
#include "views/item_list.h"

namespace tidewell {
namespace {

// What the three fields show: the values just posted, or for a first visit the date in view
// twice and no search text.
struct SearchFormValues {
  std::string start_date;
  std::string end_date;
  std::string text;
};

SearchFormValues FormValues(const Page& page) {
  if (!page.FormValue("action").empty()) {
    return {page.FormValue("startdate"), page.FormValue("enddate"), page.FormValue("search")};
  }
  const std::string today = CStr(page.CurrentDate);
  return {today, today, ""};
}

// --- Links ---

std::string ReturningTo(long screen, long return_view) {
  return std::to_string(screen) + "/" + std::to_string(return_view);
}

std::string HelpLink(const Page& page) {
  return BuildLink(page, ReturningTo(screens::kSearchHelp, page.ReturnView), page.CurrentDate,
                   page.CurrentHour, 0, page.UserKey, page.SortOrder, page.AdminKey);
}

// The post comes back to screen 15, where the driver runs the search before the screen is drawn.
std::string FormActionLink(const Page& page) {
  return BuildLink(page, ReturningTo(screens::kSearch, page.ReturnView), page.CurrentDate,
                   page.CurrentHour, page.ItemId, page.UserKey, page.SortOrder, page.AdminKey);
}

// The picker returns to the search form ("5/15") and fills the field its suffix names: "0" the
// start date, "1" the end date. It opens on the month of the date in that field, or on the
// month in view while the field holds no date.
std::string PickerLink(const Page& page, const std::string& field_value, const char* suffix) {
  const Variant month = IsDate(field_value) ? Variant(CDate(field_value)) : page.CurrentDate;
  return BuildLink(page, ReturningTo(screens::kDatePicker, screens::kSearch), month,
                   page.CurrentHour, 0, page.UserKey, page.SortOrder, page.AdminKey, suffix);
}

// --- Markup ---

void AppendOwnerList(Page& page) {
  std::string no_date;
  page.PageBuffer += "Owner:<br>";
  page.PageBuffer += "<select class=text name=ownerkey>";
  page.PageBuffer += BuildItemList(page, list_modes::kSearchOwners, no_date, 0);
  page.PageBuffer += "</select>";
  page.PageBuffer += "<br><br>";
}

// One date field with its picker icon.
std::string DateField(const Page& page, const char* name, const std::string& value,
                      const char* suffix) {
  return std::string("<input maxlength=10 class=text type=text name=") + name + " value=\"" +
         EscapeHtml(value) +
         "\" size=15 >&nbsp;<a title=\"Date Picker\" href=javascript:datepicker('" +
         PickerLink(page, value, suffix) + "'); ><img src=" + page.props.ImagePath +
         "icon_dpicker.gif width=16 height=16 align=absmiddle border=0 /></a>&nbsp;&nbsp;";
}

void AppendDates(Page& page, const SearchFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<table cellpadding=0 cellspacing=0 border=0>";
  out += "<tr>";
  out += "<td class=text>Start Date:</td>";
  out += "<td class=text>End Date:</td>";
  out += "</tr>";
  out += "<tr>";
  out += "<td class=text>" + DateField(page, "startdate", values.start_date, "0") + "</td>";
  out += "<td class=text>" + DateField(page, "enddate", values.end_date, "1") + "</td>";
  out += "</tr>";
  out += "</table>";
}

void AppendSearchText(Page& page, const SearchFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<br>";
  out += "Search Critera:<br>";
  out += "<input maxlength=50 class=text type=text name=search value=\"" + EscapeHtml(values.text) +
         "\" size=50 >";
  out += "<input class=text type=submit name=submit value=Search >";
  out += "<input type=hidden name=action value=u />";
}

}  // namespace

void SearchScreenView(Page& page) {
  const SearchFormValues values = FormValues(page);
  std::string& out = page.PageBuffer;

  AppendValidator(page,
                  {{"startdate", "Start Date"}, {"enddate", "End Date"}, {"search", "Search"}});
  AppendDatePickerScript(page);
  out += "<!-- SearchScreenView  Start -->";
  AppendTitleBar(page, "Search for Items.", TitleCell::kPlain);
  out +=
      "<table align=center width=610 height=456 cellpadding=3 cellspacing=0 border=1 "
      "bordercolor=" +
      page.props.TidewellColor + ">";
  out += "<tr bgcolor=#ffffff>";
  AppendHelpColumn(page, HelpLink(page));
  out += "<td class=text align=left valign=top width=560 height=456>";
  out += "<form action=" + FormActionLink(page) +
         " method=post name=searchscreen onsubmit=\"return validator(this)\" >";
  if (page.ErrorFlag) out += "<font color=#b22222><b>" + page.ErrorText + "</b></font><br><br>";
  AppendOwnerList(page);
  AppendDates(page, values);
  AppendSearchText(page, values);
  out += "</form>";
  out += page.SearchResults;
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "<!-- SearchScreenView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

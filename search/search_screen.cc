#include "search/search_screen.h"

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/conversions.h"
#include "views/option_lists.h"

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

// --- Markup ---

void AppendOwnerList(Page& page) {
  page.PageBuffer += "Owner:<br>";
  page.PageBuffer += "<select class=text name=ownerkey>";
  page.PageBuffer += SearchOwnerList(page);
  page.PageBuffer += "</select>";
  page.PageBuffer += "<br><br>";
}

// One date field with its picker icon, and room before the next. The picker hands its date to
// the search form ("5/15") and fills the field the suffix names: "0" the start date, "1" the end
// date.
void AppendDateCell(Page& page, const char* name, const std::string& value, const char* suffix) {
  page.PageBuffer += "<td class=text>";
  AppendDateField(page, name, value, DatePickerLink(page, screens::kSearch, value, suffix));
  page.PageBuffer += "&nbsp;&nbsp;</td>";
}

void AppendDates(Page& page, const SearchFormValues& values) {
  std::string& out = page.PageBuffer;
  out += "<table cellpadding=0 cellspacing=0 border=0>";
  out += "<tr>";
  out += "<td class=text>Start Date:</td>";
  out += "<td class=text>End Date:</td>";
  out += "</tr>";
  out += "<tr>";
  AppendDateCell(page, "startdate", values.start_date, "0");
  AppendDateCell(page, "enddate", values.end_date, "1");
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
  AppendFormBodyOpening(page, screens::kSearchHelp);
  // The post comes back to screen 15, where the driver runs the search before the screen is
  // drawn.
  out += "<form action=" + ReturningLink(page, screens::kSearch, page.ItemId) +
         " method=post name=searchscreen onsubmit=\"return validator(this)\" >";
  if (page.Error.Raised()) {
    out += "<font color=#b22222><b>" + page.Error.Text + "</b></font><br><br>";
  }
  AppendOwnerList(page);
  AppendDates(page, values);
  AppendSearchText(page, values);
  out += "</form>";
  out += page.SearchResults;
  AppendFormBodyClosing(page);
  out += "<!-- SearchScreenView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

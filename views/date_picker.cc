#include "views/date_picker.h"

#include <string>

#include "page/date_helpers.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

// The field of the opening window that a click fills.
struct Target {
  std::string form;
  std::string field;
};

// The link's suffix (its ninth piece), which tells the search form's two date fields apart.
std::string LinkSuffix(const Page& page) {
  return page.LinkFields.size() > 8 ? CStr(page.LinkFields[8]) : "";
}

Target TargetOf(const Page& page) {
  if (page.ReturnView == screens::kDatePicker) return {"addmodify", "datestamp"};
  if (page.ReturnView == screens::kSearch) {
    const std::string suffix = LinkSuffix(page);
    return {"searchscreen", suffix == "0" ? "startdate" : suffix == "1" ? "enddate" : ""};
  }
  return {};
}

enum class CellKind { kNeighbouring, kToday, kCurrent };

// One month being drawn.
struct PickerGrid {
  Page& page;
  const Target target = TargetOf(page);
  const bool month_first = IsMonthFirstDateFormat();
  const Date now = Now();
};

void AppendDayCell(PickerGrid& grid, CellKind kind, int month, int day, int year) {
  const std::string date_text = CStr(GridDate(month, day, year, grid.month_first, true));
  const std::string link = "<a class=datepicker href=javascript:window.opener.document." +
                           grid.target.form + "['" + grid.target.field + "'].value='" + date_text +
                           "';self.close(); >";
  const std::string number = std::to_string(day);
  std::string& out = grid.page.PageBuffer;
  switch (kind) {
    case CellKind::kNeighbouring:
      out +=
          "<td align=center>" + link + "<font color=#adadad ><b>" + number + "</b></font></a></td>";
      break;
    case CellKind::kToday:
      out += "<td align=center >" + link + "<font color=#b22222 ><b>" + number +
             "</b></font></a></td>";
      break;
    case CellKind::kCurrent:
      out += "<td align=center>" + link + "<b>" + number + "</b></a></td>";
      break;
  }
}

CellKind CurrentMonthKind(const PickerGrid& grid, int month, int day, int year) {
  const bool today = day == Day(grid.now) && month == Month(grid.now) && year == Year(grid.now);
  return today && grid.page.props.HighlightTodaysDate ? CellKind::kToday : CellKind::kCurrent;
}

// The arrows lead to the same screen and target a month away; the suffix rides along, so a
// search's end date stays the end date.
std::string MonthLink(const Page& page, long months) {
  return LinkTo(page, ScreenReturningTo(page.Screen, page.ReturnView),
                {.date = DateAdd("m", months, page.CurrentDate),
                 .item = page.ItemId,
                 .suffix = LinkSuffix(page)});
}

void AppendMonthBar(Page& page) {
  const Date shown = page.CurrentDate;
  std::string& out = page.PageBuffer;
  out += "<td align=center width=30><a class=datepicker title=\"Previous Month\" href=" +
         MonthLink(page, -1) + " ><font color=#ffffff><b>&nbsp;&lt;&nbsp;</b></font></a></td>";
  out += "<td class=datepicker align=center width=115 ><b><font color=#ffffff >" +
         MonthName(Month(shown)) + " " + std::to_string(Year(shown)) + "</font></b></td>";
  out += "<td align=center width=30><a class=datepicker title=\"Next Month\" href=" +
         MonthLink(page, 1) + " ><font color=#ffffff><b>&nbsp;&gt;&nbsp;</b></font></a></td>";
  out += "</tr>";
  out += "</table>";
}

void AppendWeekdayNames(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<tr>";
  for (int weekday = 1; weekday <= 7; ++weekday) {
    out += "<td class=datepicker align=center><font color=" + page.props.TidewellColor + " >" +
           WeekdayName(weekday, true) + "</font></td>";
  }
  out += "</tr>";
}

// The month's days in weeks from Sunday, with the neighbouring months' days filling the first
// and the last week, as the month view walks its grid.
void AppendDays(PickerGrid& grid) {
  Page& page = grid.page;
  const Date shown = page.CurrentDate;
  const int days = DaysInMonth(Month(shown), Year(shown));
  const int first = FirstWeekdayOfMonth(Month(shown), Year(shown));

  int column = 1;
  if (first != 1) {
    page.PageBuffer += "<tr bgcolor=#ffffff>";
    const Date before = DateAdd("m", -1, shown);
    const int before_days = DaysInMonth(Month(before), Year(before));
    for (int day = before_days - first + 2; column < first; ++day, ++column) {
      AppendDayCell(grid, CellKind::kNeighbouring, Month(before), day, Year(before));
    }
  }

  column = first;
  for (int day = 1; day <= days; ++day) {
    if (column == 1) page.PageBuffer += "<tr bgcolor=#ffffff>";
    AppendDayCell(grid, CurrentMonthKind(grid, Month(shown), day, Year(shown)), Month(shown), day,
                  Year(shown));
    if (column == 7) {
      page.PageBuffer += "</tr>";
      column = 0;
    }
    ++column;
  }

  if (column != 1) {
    const Date after = DateAdd("m", 1, shown);
    for (int day = 1; column <= 7; ++day, ++column) {
      AppendDayCell(grid, CellKind::kNeighbouring, Month(after), day, Year(after));
    }
    // Upper case, as the month view closes its last row.
    page.PageBuffer += "</TR>";
  }
}

}  // namespace

void DatePicker(Page& page) {
  PickerGrid grid{page};
  const bool explorer = page.BrowserKind == browsers::kExplorer;
  std::string& out = page.PageBuffer;

  if (explorer) out += "<body topmargin=0 leftmargin=0 >";
  out += "<!-- datepicker  start -->";
  out += "<table width=180 border=1 cellpadding=0 cellspacing=0 bordercolor=" +
         page.props.TidewellColor + " >";
  out += "<tr>";
  out += "<td>";
  out += "<table width=100% border=0 height=28 cellpadding=0 cellspacing=0 >";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  AppendMonthBar(page);
  out += "<table bgcolor=#ffffff width=100% height=132 border=0 cellpadding=0 cellspacing=1 >";
  AppendWeekdayNames(page);
  AppendDays(grid);
  out += "</table>";
  out += "</td></tr></table>";
  out += "<!-- DatePicker End -->";
  if (explorer) out += "</body>";
}

}  // namespace tidewell

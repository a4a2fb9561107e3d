#include "views/month_view.h"

#include <string>
#include <vector>

#include "component/date_helpers.h"
#include "component/link_codec.h"
#include "component/page.h"
#include "frame/markup.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/view_lists.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

enum class CellKind { kNeighbouring, kCurrent };

// The days the grid shows, in drawing order: the previous month's last days up to the weekday
// the month starts on, the month, then the next month's first days to the end of the last row.
std::vector<ListCell> GridDays(Date shown, bool month_first) {
  const int first = FirstWeekdayOfMonth(Month(shown), Year(shown));
  const Date before = DateAdd("m", -1, shown);
  const Date after = DateAdd("m", 1, shown);
  const int before_days = DaysInMonth(Month(before), Year(before));
  std::vector<ListCell> cells;
  for (int column = 1; column < first; ++column) {
    const int day = before_days - first + 1 + column;
    cells.push_back({GridDate(Month(before), day, Year(before), month_first, true), std::nullopt});
  }
  for (int day = 1; day <= DaysInMonth(Month(shown), Year(shown)); ++day) {
    cells.push_back({GridDate(Month(shown), day, Year(shown), month_first, true), std::nullopt});
  }
  for (int day = 1; cells.size() % 7 != 0; ++day) {
    cells.push_back({GridDate(Month(after), day, Year(after), month_first, true), std::nullopt});
  }
  return cells;
}

// One month being drawn: what every cell needs, its days' item lists, and the page as it was
// before the view, to go back to when an item list fails.
struct MonthGrid {
  MonthGrid(Page& page, ListReading reading)
      : page(page),
        saved_page(page.PageBuffer),
        lists(page, list_modes::kMonthCell, GridDays(page.CurrentDate, month_first), reading) {}

  Page& page;
  const std::string saved_page;
  const bool month_first = IsMonthFirstDateFormat();
  const Date now = Now();
  ViewLists lists;
  size_t next_cell = 0;  // the cell drawn next, in GridDays order
};

std::string CellOpening(const MonthGrid& grid, CellKind kind, int day) {
  const Properties& props = grid.page.props;
  if (kind == CellKind::kNeighbouring) {
    return props.HighlightDeltaDays
               ? "<td bgcolor=" + props.HighlightDeltaDaysColor +
                     " class=text align=left valign=top width=88 height=88><a class=delta href="
               : "<td class=text align=left valign=top width=88 height=88><a class=delta href=";
  }
  const Date shown = grid.page.CurrentDate;
  const bool today =
      day == Day(grid.now) && Month(shown) == Month(grid.now) && Year(shown) == Year(grid.now);
  if (today && props.HighlightTodaysDate) {
    return "<td class=text bgcolor=" + props.HighlightTodaysDateColor +
           " align=left valign=top width=88 height=88><a class=today href=";
  }
  return "<td class=text align=left valign=top width=88 height=88><a class=current href=";
}

// The small link to the week of the row, in a row's first cell.
std::string WeekLink(const Page& page, const char* screen, const std::string& date_text) {
  return "<a title=\"Display This Week\" href=" +
         BuildLink(page, screen, date_text, page.CurrentHour, 0, page.UserKey, page.SortOrder,
                   page.AdminKey) +
         " ><img src=" + page.props.ImagePath +
         "icon_week.gif width=12 height=12 border=0 align=absmiddle ></a>";
}

// Appends the next cell, numbered `day`, with the link to its week when `week` names one
// ("1/p" or "1/n"). False when its item list failed: the page is then back as it was before
// the view.
bool AppendDayCell(MonthGrid& grid, CellKind kind, int day, const char* week = nullptr) {
  Page& page = grid.page;
  const Date date = grid.lists.Cell(grid.next_cell).day;
  const std::string date_text = CStr(date);
  const std::string items = grid.lists.ListOf(grid.next_cell++);
  if (page.ErrorFlag) {
    page.PageBuffer = grid.saved_page;
    return false;
  }
  std::string& out = page.PageBuffer;
  out += CellOpening(grid, kind, day);
  out += BuildLink(page, "2", date_text, page.props.DefaultStartHour, 0, page.UserKey,
                   page.SortOrder, page.AdminKey);
  out += " ><b>" + FormatTwoDigits(day) + "</b></a>&nbsp;";
  if (week != nullptr) out += WeekLink(page, week, date_text);
  out += items;
  out += "</td>";
  return true;
}

void AppendWeekdayNames(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- MonthView  Start -->";
  out += "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0 >";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  for (int weekday = 1; weekday <= 7; ++weekday) {
    out +=
        "<td class=mwdname align=center width=88 ><b>" + WeekdayName(weekday, true) + "</b></td>";
  }
  out += "</tr>";
  out += "</table>";
}

// 545 pixels, 615 for six rows; Navigator and Opera draw the grid's rows a little
// differently.
long MonthHeight(const Page& page, int rows) {
  long height = rows == 6 ? 615 : 545;
  if (page.BrowserKind == browsers::kNavigator) {
    height += 12 + (rows == 4 ? -10 : 0) + (rows == 6 ? 25 : 0);
  } else if (page.BrowserKind == browsers::kOpera) {
    height += 22 + (rows == 4 ? -20 : 0) + (rows == 6 ? 27 : 0);
  }
  return height;
}

}  // namespace

void MonthView(Page& page, ListReading reading) {
  MonthGrid grid(page, reading);
  page.PageBuffer.reserve(page.PageBuffer.size() + 64 * 1024);  // a busy month's markup
  const Date shown = page.CurrentDate;
  const int days = DaysInMonth(Month(shown), Year(shown));
  const int first = FirstWeekdayOfMonth(Month(shown), Year(shown));

  AppendWeekdayNames(page);
  page.PageBuffer +=
      "<table align=center width=610 height=460 cellpadding=3 cellspacing=0 border=1 "
      "bordercolor=" +
      page.props.TidewellColor + ">";

  // The previous month's last days, up to the weekday the month starts on.
  int rows = 0;
  int column = 1;
  if (first != 1) {
    page.PageBuffer += "<tr bgcolor=#ffffff>";
    rows = 1;
    const Date before = DateAdd("m", -1, shown);
    const int before_days = DaysInMonth(Month(before), Year(before));
    for (int day = before_days - first + 2; column < first; ++day, ++column) {
      if (!AppendDayCell(grid, CellKind::kNeighbouring, day, column == 1 ? "1/p" : nullptr))
        return;
    }
  }

  column = first;
  for (int day = 1; day <= days; ++day) {
    const char* week = nullptr;
    if (column == 1) {
      ++rows;
      page.PageBuffer += "<tr bgcolor=#ffffff>";
      week = "1/n";
    }
    if (!AppendDayCell(grid, CellKind::kCurrent, day, week)) return;
    if (column == 7) {
      page.PageBuffer += "</tr>";
      column = 0;
    }
    ++column;
  }

  // The next month's first days, to the end of the last row.
  if (column != 1) {
    for (int day = 1; column <= 7; ++day, ++column) {
      if (!AppendDayCell(grid, CellKind::kNeighbouring, day)) return;
    }
    page.PageBuffer += "</TR>";
  }

  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- MonthView End -->";
  ReplaceHeight(page, MonthHeight(page, rows));
}

void MonthView(Page& page) {
  MonthView(page, ListReading::kOnePerView);
}

}  // namespace tidewell

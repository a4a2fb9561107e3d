#include "views/month_view.h"

#include <optional>
#include <string>
#include <vector>

#include "frame/markup.h"
#include "page/date_helpers.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/view_lists.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

enum class CellKind { kNeighbouring, kCurrent };

// One day of the grid: its number as the cell shows it, and its date.
struct GridCell {
  CellKind kind;
  int day;
  Date date;
};

// The days the grid shows, a week a row from Sunday, in drawing order: the previous month's
// last days up to the weekday the month starts on, the month, then the next month's first
// days to the end of the last row.
std::vector<GridCell> GridDays(Date shown, bool month_first) {
  const int first = FirstWeekdayOfMonth(Month(shown), Year(shown));
  const Date before = DateAdd("m", -1, shown);
  const Date after = DateAdd("m", 1, shown);
  const int before_days = DaysInMonth(Month(before), Year(before));
  std::vector<GridCell> cells;
  auto add = [&cells, month_first](CellKind kind, Date month, int day) {
    cells.push_back({kind, day, GridDate(Month(month), day, Year(month), month_first, true)});
  };
  for (int column = 1; column < first; ++column) {
    add(CellKind::kNeighbouring, before, before_days - first + 1 + column);
  }
  for (int day = 1; day <= DaysInMonth(Month(shown), Year(shown)); ++day) {
    add(CellKind::kCurrent, shown, day);
  }
  for (int day = 1; cells.size() % 7 != 0; ++day) add(CellKind::kNeighbouring, after, day);
  return cells;
}

std::vector<ListCell> ListCellsOf(const std::vector<GridCell>& cells) {
  std::vector<ListCell> days;
  for (const GridCell& cell : cells) days.push_back({cell.date, std::nullopt});
  return days;
}

// One month being drawn: its cells and their item lists, what every cell needs, and the page
// as it was before the view, to go back to when an item list fails.
struct MonthGrid {
  MonthGrid(Page& page, ListReading reading)
      : page(page),
        saved_page(page.PageBuffer),
        cells(GridDays(page.CurrentDate, month_first)),
        lists(page, list_modes::kMonthCell, ListCellsOf(cells), reading) {}

  Page& page;
  const std::string saved_page;
  const bool month_first = IsMonthFirstDateFormat();
  const Date now = Now();
  const std::vector<GridCell> cells;
  ViewLists lists;
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
std::string WeekLink(const Page& page, Step step, const std::string& date_text) {
  return "<a title=\"Display This Week\" href=" +
         LinkTo(page, ScreenSteppingTo(screens::kWeekView, step), {.date = date_text}) +
         " ><img src=" + page.props.ImagePath +
         "icon_week.gif width=12 height=12 border=0 align=absmiddle ></a>";
}

// Appends the cell at `index`, with the link to its week when `week` is set (stepping back when
// the row starts in the previous month). False when its item list failed: the page is then
// back as it was before the view.
bool AppendDayCell(MonthGrid& grid, size_t index, std::optional<Step> week) {
  Page& page = grid.page;
  const GridCell& cell = grid.cells[index];
  const std::string date_text = CStr(cell.date);
  std::string& out = page.PageBuffer;
  out += CellOpening(grid, cell.kind, cell.day);
  AppendLinkTo(out, page, screens::kDayView,
               {.date = date_text, .hour = page.props.DefaultStartHour});
  out += " ><b>" + FormatTwoDigits(cell.day) + "</b></a>&nbsp;";
  if (week) out += WeekLink(page, *week, date_text);
  grid.lists.AppendListOf(out, index);
  if (page.Error.Raised()) {
    page.PageBuffer = grid.saved_page;
    return false;
  }
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
  page.PageBuffer.reserve(page.PageBuffer.size() + 128 * 1024);  // a busy month's markup
  AppendWeekdayNames(page);
  page.PageBuffer +=
      "<table align=center width=610 height=460 cellpadding=3 cellspacing=0 border=1 "
      "bordercolor=" +
      page.props.TidewellColor + ">";
  for (size_t i = 0; i < grid.cells.size(); ++i) {
    const size_t column = i % 7;
    const CellKind kind = grid.cells[i].kind;
    if (column == 0) page.PageBuffer += "<tr bgcolor=#ffffff>";
    // A row's first cell links to its week, stepping back when the row starts in the previous
    // month.
    std::optional<Step> week;
    if (column == 0) week = kind == CellKind::kCurrent ? Step::kOn : Step::kBack;
    if (!AppendDayCell(grid, i, week)) return;
    // A row that ends in the next month closes in capitals.
    if (column == 6) page.PageBuffer += kind == CellKind::kCurrent ? "</tr>" : "</TR>";
  }
  const int rows = static_cast<int>(grid.cells.size() / 7);

  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- MonthView End -->";
  ReplaceHeight(page, MonthHeight(page, rows));
}

void MonthView(Page& page) {
  MonthView(page, ListReading::kOnePerView);
}

}  // namespace tidewell

#include "views/week_view.h"

#include <string>
#include <utility>
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

// The Sunday the week starts on: its day, month and year, and the start month's length.
struct WeekStart {
  int day;
  int month;
  int year;
  int month_days;
};

WeekStart StartOfWeek(Date date) {
  WeekStart start{Day(date) - (Weekday(date) - 1), Month(date), Year(date), 0};
  start.month_days = DaysInMonth(start.month, start.year);
  if (start.day < 1) {
    if (start.month == 1) {
      start.month = 12;
      --start.year;
    } else {
      --start.month;
    }
    start.month_days = DaysInMonth(start.month, start.year);
    start.day += start.month_days;
  }
  return start;
}

bool IsToday(Date date, Date now) {
  return Day(date) == Day(now) && Month(date) == Month(now) && Year(date) == Year(now);
}

// Today's row in its colour when the page asks for it, a neighbouring month's day in the delta
// colour, any other row white. Today is never tinted as a neighbouring day.
std::string RowOpening(const Page& page, Date date, bool delta) {
  const Properties& props = page.props;
  if (IsToday(date, Now())) {
    return props.HighlightTodaysDate ? "<tr bgcolor=" + props.HighlightTodaysDateColor + " >"
                                     : "<tr bgcolor=#ffffff>";
  }
  return delta ? "<tr bgcolor=" + props.HighlightDeltaDaysColor + " >" : "<tr bgcolor=#ffffff>";
}

void AppendHeading(Page& page, const WeekStart& start, Date start_date) {
  auto link = [&page](Step step, Date target) {
    return LinkTo(page, ScreenSteppingTo(page.Screen, step), {.date = target});
  };
  const std::string title = "Week Starting " + WeekdayName(1) + ", " + MonthName(start.month) +
                            " " + std::to_string(start.day) + ", " + std::to_string(start.year);
  page.PageBuffer += "<!-- WeekView  start -->";
  AppendPagingTitleBar(page, {"Previous Week", link(Step::kBack, DateAdd("d", -7, start_date))},
                       {"Next Week", link(Step::kOn, DateAdd("d", 7, start_date))}, title);
  AppendBodyTable(page);
}

// One day's row: the weekday and day number as a link to its day view, then its items.
void AppendDayRow(Page& page, int weekday, Date date, const std::string& items) {
  page.PageBuffer +=
      "<td class=dtname align=center valign=middle width=50 height=65><a "
      "class=dtname href=" +
      LinkTo(page, screens::kDayView, {.date = date, .hour = page.props.DefaultStartHour}) +
      " ><b>" + WeekdayName(weekday, true) + "<br>" + std::to_string(Day(date)) + "</b></a></td>" +
      "<td class=text align=left valign=middle width=560 height=65>" + items + "</td>" + "</tr>";
}

// The week's seven days from Sunday, each with whether it is tinted as a neighbouring day.
struct WeekRow {
  Date date;
  bool delta;
};

std::vector<WeekRow> RowsOf(const Page& page, const WeekStart& start, bool month_first) {
  const bool tint = page.props.HighlightDeltaDays;
  const std::string& came_by = page.ScreenArgument;
  int day = start.day, month = start.month, year = start.year;
  bool delta = false;
  Date date{};
  std::vector<WeekRow> rows;
  for (int weekday = 1; weekday <= 7; ++weekday, ++day) {
    if (day > start.month_days) {
      // The week runs into the next month: seen from the earlier month ("n"), its days are
      // the neighbouring ones from here on.
      date = DateAdd("d", 1, date);
      day = 1;
      month = Month(date);
      year = Year(date);
      if (tint) delta = came_by == "n";
    } else if (tint && came_by == "p" && start.day + 6 > start.month_days &&
               start.month_days - day < 7) {
      // Seen from the later month ("p"), the days before the change are the neighbouring ones.
      delta = true;
    }
    date = GridDate(month, day, year, month_first, false);
    rows.push_back({date, delta});
  }
  return rows;
}

}  // namespace

void WeekView(Page& page, ListReading reading) {
  const std::string saved_page = page.PageBuffer;
  const bool month_first = IsMonthFirstDateFormat();
  const WeekStart start = StartOfWeek(page.CurrentDate);
  const std::vector<WeekRow> rows = RowsOf(page, start, month_first);
  std::vector<ListCell> cells;
  for (const WeekRow& row : rows) cells.push_back({row.date, std::nullopt});
  ViewLists lists(page, list_modes::kWeekRow, std::move(cells), reading);
  AppendHeading(page, start, GridDate(start.month, start.day, start.year, month_first, false));

  for (size_t i = 0; i < rows.size(); ++i) {
    page.PageBuffer += RowOpening(page, rows[i].date, rows[i].delta);
    const std::string items = lists.ListOf(i);
    if (page.Error.Raised()) {
      page.PageBuffer = saved_page;
      return;
    }
    AppendDayRow(page, static_cast<int>(i) + 1, rows[i].date, items);
  }
  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- WeekView end -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/586, /*opera=*/555));
}

void WeekView(Page& page) {
  WeekView(page, ListReading::kOnePerView);
}

}  // namespace tidewell

#include "views/day_view.h"

#include <string>
#include <vector>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/view_lists.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

// Where an arrow leads: a date and the hour the day view starts at there.
struct Target {
  Date date;
  long hour;
};

struct Paging {
  Target previous;
  Target next;
  const char* previous_title;
  const char* next_title;
  std::string title;
};

// Twelve hours back and forward, across midnight when they must; with a 12-hour day, one day
// back and forward at the same hour. The title names the day, or, when the twelve rows run
// into the next day, both weekdays and the next day's date.
Paging PagingOf(const Page& page) {
  const Date date = page.CurrentDate;
  const long hour = page.CurrentHour;
  Paging paging{{date, hour - 12},
                {date, hour + 12},
                "Previous 12 Hours",
                "Next 12 Hours",
                LongDateTitle(date)};
  if (paging.previous.hour < 0)
    paging.previous = {DateAdd("d", -1, date), paging.previous.hour + 24};
  if (paging.next.hour > 23) {
    paging.next = {DateAdd("d", 1, date), paging.next.hour - 24};
    if (paging.next.hour != 0) {
      const Date next = paging.next.date;
      paging.title = WeekdayName(Weekday(date)) + "/" + WeekdayName(Weekday(next)) + ", " +
                     MonthName(Month(next)) + " " + std::to_string(Day(next)) + ", " +
                     std::to_string(Year(next));
    }
  }
  if (page.props.Show12HourDay) {
    paging.previous = {DateAdd("d", -1, date), hour};
    paging.next = {DateAdd("d", 1, date), hour};
    paging.previous_title = "Previous Day";
    paging.next_title = "Next Day";
  }
  return paging;
}

std::string ViewLink(const Page& page, const Target& target) {
  return LinkTo(page, page.Screen, {.date = target.date, .hour = target.hour});
}

// The present hour of today is tinted when the page asks for it.
std::string RowOpening(const Page& page, Date date, long hour) {
  const Date now = Now();
  const bool present = hour == Hour(now) && Day(date) == Day(now) && Month(date) == Month(now) &&
                       Year(date) == Year(now);
  if (present && page.props.HighlightTodaysTime) {
    return "<tr bgcolor=" + page.props.HighlightTodaysTimeColor + " >";
  }
  return "<tr bgcolor=#ffffff>";
}

// One hour's row: the hour as a link to its time view, then its items.
void AppendHourRow(Page& page, Date date, long hour, const std::string& items) {
  page.PageBuffer +=
      "<td class=dtname align=center valign=middle width=50 height=38><a "
      "class=dtname href=" +
      LinkTo(page, screens::kTimeView, {.date = date, .hour = hour}) + " ><b>" +
      FormatTwoDigits(hour) + ":00</b></a></td>" +
      "<td class=text align=left valign=middle width=560 height=38>" + items + "</td>" + "</tr>";
}

// The twelve hours the view shows from CurrentHour, across midnight into the next day.
std::vector<ListCell> HoursOf(const Page& page) {
  Date date = page.CurrentDate;
  long hour = page.CurrentHour;
  std::vector<ListCell> hours;
  for (int row = 0; row < 12; ++row) {
    hours.push_back({date, hour});
    if (++hour == 24) {
      hour = 0;
      date = DateAdd("d", 1, date);
    }
  }
  return hours;
}

}  // namespace

void DayView(Page& page, ListReading reading) {
  const std::string saved_page = page.PageBuffer;
  ViewLists lists(page, list_modes::kDayRow, HoursOf(page), reading);
  const Paging paging = PagingOf(page);
  page.PageBuffer += "<!-- DayView  start -->";
  AppendPagingTitleBar(page, {paging.previous_title, ViewLink(page, paging.previous)},
                       {paging.next_title, ViewLink(page, paging.next)}, paging.title);
  AppendBodyTable(page);

  for (size_t row = 0; row < 12; ++row) {
    const ListCell& hour = lists.Cell(row);
    page.PageBuffer += RowOpening(page, hour.day, *hour.hour);
    const std::string items = lists.ListOf(row);
    if (page.Error.Raised()) {
      page.PageBuffer = saved_page;
      return;
    }
    AppendHourRow(page, hour.day, *hour.hour, items);
  }
  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- DayView end -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/617, /*opera=*/555));
}

void DayView(Page& page) {
  DayView(page, ListReading::kOnePerView);
}

}  // namespace tidewell

#include "views/time_view.h"

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/item_list.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

// The same view one hour earlier or later, across midnight into the neighbouring day.
std::string HourLink(const Page& page, long step) {
  Date date = page.CurrentDate;
  long hour = page.CurrentHour + step;
  if (hour < 0) {
    hour = 23;
    date = DateAdd("d", -1, date);
  } else if (hour > 23) {
    hour = 0;
    date = DateAdd("d", 1, date);
  }
  return LinkTo(page, page.Screen, {.date = date, .hour = hour});
}

// The hour's label, tinted when it is the present hour of today and the page asks for it.
std::string HourCell(const Page& page, const std::string& label) {
  const Date now = Now();
  const Date date = page.CurrentDate;
  const bool present = page.CurrentHour == Hour(now) && Day(date) == Day(now) &&
                       Month(date) == Month(now) && Year(date) == Year(now);
  if (present && page.props.HighlightTodaysTime) {
    return "<td class=dtname bgcolor=" + page.props.HighlightTodaysTimeColor +
           " align=center valign=top width=50 height=456 nowrap><b>" + label + "</b></td>";
  }
  return "<td class=dtname align=center valign=top width=50 height=456 nowrap><b>" + label +
         "</b></td>";
}

}  // namespace

void TimeView(Page& page) {
  const std::string saved_page = page.PageBuffer;
  const std::string label = FormatTwoDigits(page.CurrentHour) + ":00";
  page.PageBuffer += "<!-- TimeView  Start -->";
  AppendPagingTitleBar(page, {"Previous Hour", HourLink(page, -1)},
                       {"Next Hour", HourLink(page, 1)},
                       LongDateTitle(page.CurrentDate) + " @ " + label);
  AppendBodyTable(page);
  page.PageBuffer += "<tr bgcolor=#ffffff>";
  page.PageBuffer += HourCell(page, label);

  const std::string items =
      BuildItemList(page, list_modes::kTimeTable, page.CurrentDate, page.CurrentHour);
  if (page.Error.Raised()) {
    page.PageBuffer = saved_page;
    return;
  }
  page.PageBuffer += "<td class=text align=left valign=top width=560 height=456>" + items + "</td>";
  page.PageBuffer += "</tr>";
  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- TimeView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/552, /*opera=*/552));
}

}  // namespace tidewell

#include "views/view_markup.h"

#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"

namespace tidewell {

void AppendPagingTitleBar(Page& page, const PagingLink& previous, const PagingLink& next,
                          std::string_view title) {
  std::string& out = page.PageBuffer;
  out += "<table align=center width=610 height=15 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  out += "<td align=center valign=middle width=60>";
  out += "<a title=\"" + std::string(previous.title) + "\" href=" + previous.href +
         " ><img src=" + page.props.ImagePath +
         "nav_prev.gif width=24 height=15 align=absmiddle border=0></a>";
  out += "<a title=\"" + std::string(next.title) + "\" href=" + next.href +
         " ><img src=" + page.props.ImagePath +
         "nav_next.gif width=24 height=15 align=absmiddle border=0></a>";
  out += "</td>";
  out += "<td class=mwdname align=left valign=middle width=550>";
  out += "&nbsp;<b>";
  out += title;
  out += "</b>";
  out += "<td>";
  out += "</tr>";
  out += "</table>";
}

Date GridDate(int month, int day, int year, bool month_first, bool padded) {
  // Written in the settings' own order, a real day reads back as itself: a month view makes
  // dozens of these, and they are spared the round trip through text.
  if (month_first == Regional().month_first && year >= 100 && year <= 9999 &&
      IsValidCalendarDate(year, month, day)) {
    return DateSerial(year, month, day);
  }
  const std::string d = padded ? FormatTwoDigits(day) : std::to_string(day);
  const std::string m = padded ? FormatTwoDigits(month) : std::to_string(month);
  const std::string y = std::to_string(year);
  return CDate(month_first ? std::to_string(month) + "/" + std::to_string(day) + "/" + y
                           : d + "/" + m + "/" + y);
}

std::string LongDateTitle(Date day) {
  return WeekdayName(Weekday(day)) + ", " + MonthName(Month(day)) + " " + std::to_string(Day(day)) +
         ", " + std::to_string(Year(day));
}

}  // namespace tidewell

// Modes 0 to 2 of the item lists: the links in a month cell, a week row and a day view hour.

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "views/item_list.h"
#include "views/item_rows.h"

namespace tidewell {
namespace {

// A month cell has room for 7 characters: a longer heading shows its first 7 and "..".
// Characters, not bytes, so that a heading in any script is cut between two of them.
void AppendCellHeading(std::string& out, std::string_view heading) {
  size_t characters = 0;
  for (size_t i = 0; i < heading.size(); ++i) {
    if ((static_cast<unsigned char>(heading[i]) & 0xC0) == 0x80) continue;
    if (characters == 7) {
      AppendEscapedHtml(out, heading.substr(0, i));
      out += "..";
      return;
    }
    ++characters;
  }
  AppendEscapedHtml(out, heading);
}

// "09:15 - Heading (AB)": the long form of the week and day views and of every title.
void AppendLongText(std::string& out, const ItemRow& row) {
  AppendEscapedHtml(out, row.time_text);
  out += " - ";
  AppendEscapedHtml(out, row.heading);
  out += " (";
  AppendEscapedHtml(out, row.initials);
  out += ")";
}

// The link to the item in the time view of its hour, where it is shown selected. A complete
// item is in the completed colour, struck through when the page asks for it.
void AppendItemLink(std::string& out, const Page& page, long mode, const std::string& link_date,
                    const ItemRow& row) {
  const bool cross_out = row.complete && page.props.CompletedItemCrossOut;
  out += "<a class=text href=";
  AppendLinkTo(out, page, screens::kTimeView,
               {.date = link_date, .hour = row.hour, .item = row.item_id});
  out += " title=\"";
  AppendLongText(out, row);
  if (row.urgent) out += " ! ";
  out += "\">";
  if (row.complete) {
    out += "<font color=";
    out += page.props.CompletedItemColor;
    out += " >";
  }
  if (cross_out) out += "<strike>";
  if (mode == list_modes::kMonthCell) {
    AppendCellHeading(out, row.heading);
  } else {
    AppendLongText(out, row);
  }
  if (cross_out) out += "</strike>";
  if (row.complete) out += "</font>";
  out += "</a>";
  if (row.urgent && mode != list_modes::kMonthCell) {
    out += "&nbsp;<img src=";
    out += page.props.ImagePath;
    out += "icon_urgent.gif width=6 height=12 border=0 alt=Urgent >";
  }
}

// The last item shown when more exist stands in a small table beside a link to all of them:
// the day view of the date from a month cell or a week row, the time view of the hour from a
// day view row.
void AppendMoreOpening(std::string& out, long mode) {
  out += mode == list_modes::kMonthCell
             ? "<table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=70>"
             : "<table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=520>";
}

void AppendMoreClosing(std::string& out, const Page& page, long mode, const std::string& link_date,
                       const ItemRow& row) {
  if (mode == list_modes::kMonthCell) {
    out += "</td><td align=right width=18><a class=text href=";
    AppendLinkTo(out, page, screens::kDayView,
                 {.date = link_date, .hour = page.props.DefaultStartHour});
    out += " title=\"Show All Items.\"><img src=";
    out += page.props.ImagePath;
    out += "nav_more.gif width=16 height=16 align=absmiddle border=0 ></a></td></tr></table>";
    return;
  }
  out += "</td><td align=right width=40><a class=text href=";
  if (mode == list_modes::kWeekRow) {
    AppendLinkTo(out, page, screens::kDayView,
                 {.date = link_date, .hour = page.props.DefaultStartHour});
  } else {
    AppendLinkTo(out, page, screens::kTimeView, {.date = link_date, .hour = row.hour});
  }
  out += " title=\"Show All Items.\">[More..]</a></td></tr></table>";
}

}  // namespace

ListLimit LimitOf(long mode) {
  switch (mode) {
    case list_modes::kMonthCell:
      return {6, 5};
    case list_modes::kWeekRow:
      return {5, 4};
    default:
      return {3, 2};
  }
}

std::string DayListMarkup(const Page& page, long mode, const std::string& link_date,
                          const DayList& items) {
  std::string list;
  list.reserve(static_cast<size_t>(LimitOf(mode).shown) * 512);
  AppendDayListMarkup(list, page, mode, link_date, items);
  return list;
}

void AppendDayListMarkup(std::string& out, const Page& page, long mode,
                         const std::string& link_date, const DayList& items) {
  const long shown = LimitOf(mode).shown;
  const size_t start = out.size();
  for (size_t i = 0; i < items.rows.size(); ++i) {
    const ItemRow& row = items.rows[i];
    const bool last = items.more && static_cast<long>(i) + 1 == shown;
    // A month cell starts each item on a new line below the day number; the week and day
    // rows end each with a break, and the last break is cut below.
    if (mode == list_modes::kMonthCell) out += "<br>";
    if (last) AppendMoreOpening(out, mode);
    AppendItemLink(out, page, mode, link_date, row);
    if (last) AppendMoreClosing(out, page, mode, link_date, row);
    if (mode != list_modes::kMonthCell) out += "<br>";
  }
  if (out.size() - start >= 4 && out.ends_with("<br>")) out.resize(out.size() - 4);
}

DayList ReadDayList(long mode, ado::Recordset& rs) {
  const ListLimit limit = LimitOf(mode);
  DayList list;
  list.more = rs.RecordCount() >= limit.fetched;
  const ItemReader reader(rs, /*time_table=*/false);
  for (; !rs.Eof() && static_cast<long>(list.rows.size()) < limit.shown; rs.MoveNext()) {
    list.rows.push_back(reader.Read());
  }
  return list;
}

}  // namespace tidewell

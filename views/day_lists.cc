// Modes 0 to 2 of the item lists: the links in a month cell, a week row and a day view hour.

#include <string>

#include "component/link_codec.h"
#include "component/page.h"
#include "frame/markup.h"
#include "views/item_list.h"
#include "views/item_rows.h"

namespace tidewell {
namespace {

// How many rows a list fetches and how many it shows: the one more tells that more exist.
struct ListLimit {
  long fetched;
  long shown;
};

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

// A month cell has room for 7 characters: a longer heading shows its first 7 and "..".
// Characters, not bytes, so that a heading in any script is cut between two of them.
std::string CellHeading(const std::string& heading) {
  size_t characters = 0;
  for (size_t i = 0; i < heading.size(); ++i) {
    if ((static_cast<unsigned char>(heading[i]) & 0xC0) == 0x80) continue;
    if (characters == 7) return heading.substr(0, i) + "..";
    ++characters;
  }
  return heading;
}

// "09:15 - Heading (AB)": the long form of the week and day views and of every title.
std::string LongText(const ItemRow& row) {
  return row.time_text + " - " + row.heading + " (" + row.initials + ")";
}

// A complete item in the completed colour, struck through when the page asks for it.
std::string Completed(const Page& page, const std::string& text) {
  const std::string shown =
      page.props.CompletedItemCrossOut ? "<strike>" + text + "</strike>" : text;
  return "<font color=" + page.props.CompletedItemColor + " >" + shown + "</font>";
}

// The link to the item in the time view of its hour, where it is shown selected.
std::string ItemLink(const Page& page, long mode, const std::string& link_date,
                     const ItemRow& row) {
  const std::string long_text = EscapeHtml(LongText(row));
  std::string text =
      mode == list_modes::kMonthCell ? EscapeHtml(CellHeading(row.heading)) : long_text;
  if (row.complete) text = Completed(page, text);
  std::string item;
  item.reserve(512);
  item += "<a class=text href=";
  item += BuildLink(page, "3", link_date, row.hour, row.item_id, page.UserKey, page.SortOrder,
                    page.AdminKey);
  item += " title=\"";
  item += long_text;
  if (row.urgent) item += " ! ";
  item += "\">";
  item += text;
  item += "</a>";
  if (row.urgent && mode != list_modes::kMonthCell) {
    item += "&nbsp;<img src=";
    item += page.props.ImagePath;
    item += "icon_urgent.gif width=6 height=12 border=0 alt=Urgent >";
  }
  return item;
}

// The last item shown when more exist, beside a link to all of them: the day view of the date
// from a month cell or a week row, the time view of the hour from a day view row.
std::string WithMoreLink(const Page& page, long mode, const std::string& link_date,
                         const ItemRow& row, const std::string& item) {
  if (mode == list_modes::kMonthCell) {
    return "<table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=70>" + item +
           "</td><td align=right width=18><a class=text href=" +
           BuildLink(page, "2", link_date, page.props.DefaultStartHour, 0, page.UserKey,
                     page.SortOrder, page.AdminKey) +
           " title=\"Show All Items.\"><img src=" + page.props.ImagePath +
           "nav_more.gif width=16 height=16 align=absmiddle border=0 ></a></td></tr></table>";
  }
  const std::string link = mode == list_modes::kWeekRow
                               ? BuildLink(page, "2", link_date, page.props.DefaultStartHour, 0,
                                           page.UserKey, page.SortOrder, page.AdminKey)
                               : BuildLink(page, "3", link_date, row.hour, 0, page.UserKey,
                                           page.SortOrder, page.AdminKey);
  return "<table cellspacing=0 cellpadding=0 border=0><tr><td align=left width=520>" + item +
         "</td><td align=right width=40><a class=text href=" + link +
         " title=\"Show All Items.\">[More..]</a></td></tr></table>";
}

}  // namespace

std::string DayListMarkup(const Page& page, long mode, const std::string& link_date,
                          ado::Recordset& rs) {
  const ListLimit limit = LimitOf(mode);
  const bool more = rs.RecordCount() >= limit.fetched;
  std::string list;
  list.reserve(static_cast<size_t>(limit.shown) * 512);
  const ItemReader reader(rs, /*time_table=*/false);
  for (long written = 1; !rs.Eof(); ++written) {
    const ItemRow row = reader.Read();
    std::string item = ItemLink(page, mode, link_date, row);
    const bool last = more && written == limit.shown;
    if (last) item = WithMoreLink(page, mode, link_date, row, item);
    // A month cell starts each item on a new line below the day number; the week and day
    // rows end each with a break, and the last break is cut below.
    if (mode == list_modes::kMonthCell) list += "<br>";
    list += item;
    if (mode != list_modes::kMonthCell) list += "<br>";
    if (last) break;
    rs.MoveNext();
  }
  if (list.ends_with("<br>")) list.resize(list.size() - 4);
  return list;
}

}  // namespace tidewell

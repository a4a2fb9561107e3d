// Mode 3 of the item lists: the time view's table of one hour's items.

#include <string>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/conversions.h"
#include "views/item_rows.h"

namespace tidewell {
namespace {

// The header's links sort the same hour by one column: its letter, "*" and the direction,
// which turns round when the present order is ascending.
struct SortHeader {
  const Page& page;
  const std::string& link_date;
  long hour;
  const char* direction;

  std::string Link(const char* column) const {
    return LinkTo(page, screens::kTimeView,
                  {.date = link_date, .hour = hour, .sort = std::string(column) + "*" + direction});
  }
};

void AppendHeaderRow(std::string& out, const SortHeader& sort) {
  const Properties& props = sort.page.props;
  out += "<tr bgcolor=" + props.TimeViewColumnColor + " >";
  out += "<td class=text width=10 align=center ><a class=white href=" + sort.Link("U") +
         " title=\"Sort by Urgent\"><img src=" + props.ImagePath +
         "icon_urgent_title.gif width=6 height=14 border=0 align=absmiddle ></a></td>";
  out += "<td class=text width=22 align=center ><a class=white href=" + sort.Link("T") +
         " title=\"Sort by Time\">Time</a></td>";
  out += "<td class=text width=30 align=center ><a class=white href=" + sort.Link("I") +
         " title=\"Sort by Initial\">Init</a></td>";
  out += "<td class=text width=375 align=left ><a class=white href=" + sort.Link("H") +
         " title=\"Sort by Heading\">Heading</a></td>";
  out += "<td class=text width=90 align=center >&nbsp;</td>";
  out += "</tr>";
}

// A cell's content; a complete item's in the completed colour, struck through on request.
std::string CellText(const Page& page, const ItemRow& row, const std::string& value) {
  if (!row.complete) return EscapeHtml(value) + "</td>";
  if (page.props.CompletedItemCrossOut) {
    return "<font color=" + page.props.CompletedItemColor + " ><strike>" + EscapeHtml(value) +
           "</strike></font></td>";
  }
  return "<font color=" + page.props.CompletedItemColor + " >" + EscapeHtml(value) + "</font></td>";
}

// Edit and Delete for the user's own items, unless he came in read-only.
void AppendActionCell(std::string& out, const Page& page, const std::string& link_date, long hour,
                      const ItemRow& row) {
  if (row.owner_key != page.UserKey || page.AutoLoginReadOnly) {
    out += "<td class=text width=90 align=center >Read Only</td>";
    return;
  }
  const std::string edit =
      LinkTo(page, screens::kItemForm, {.date = link_date, .hour = row.hour, .item = row.item_id});
  // An item field ending in "d" asks for the item's deletion.
  const std::string remove = LinkTo(
      page, screens::kTimeView,
      {.date = link_date, .hour = hour, .item = std::to_string(row.item_id) + "d"});
  out += "<td class=text width=90 align=right ><a class=text href=" + edit +
         " title=\"Edit this Item\" >[Edit]</a>&nbsp;<a class=text href=" + remove +
         " title=\"Delete this Item\" >[Delete]</a></td>";
}

void AppendItemRows(std::string& out, const Page& page, const std::string& link_date, long hour,
                    const ItemRow& row) {
  const Properties& props = page.props;
  const bool selected = row.item_id == page.ItemId;
  out +=
      "<tr bgcolor=" + (selected ? props.TimeViewSelectedItemColor : props.TimeViewHeadingColor) +
      " >";
  if (row.urgent) {
    out += "<td class=text width=10 align=center ><img src=" + props.ImagePath +
           "icon_urgent.gif width=6 height=12 border=0 ></td>";
  } else {
    out += "<td class=text width=10 align=center >&nbsp;</td>";
  }
  out += "<td class=text width=22 align=center >" + CellText(page, row, row.time_text);
  out += "<td class=text width=30 align=center >" + CellText(page, row, row.initials);
  out += "<td class=text width=375 align=left >" + CellText(page, row, row.heading);
  AppendActionCell(out, page, link_date, hour, row);
  out += "</tr>";
  if (row.description.empty()) return;
  out += "<tr bgcolor=" +
         (selected ? props.TimeViewSelectedItemColor : props.TimeViewDescriptionColor) + " >";
  out += "<td class=text width=10 align=center >&nbsp;</td>";
  out += "<td class=text align=left colspan=4 >" + CellText(page, row, row.description);
  out += "</tr>";
}

}  // namespace

std::string TimeTableMarkup(const Page& page, const std::string& link_date, long hour,
                            std::string_view sort, ado::Recordset& rs) {
  std::string out = "<table bgcolor=#c0c0c0 width=100% cellpadding=2 cellspacing=1 border=0>";
  AppendHeaderRow(out, {page, link_date, hour, sort.ends_with("ASC") ? "D" : "A"});
  if (rs.Eof()) {
    out +=
        "<tr bgcolor=#ffffff><td class=text align=left colspan=5 >No Items Showing For This "
        "Hour.</td></tr>";
  }
  // Each owner's items follow a row with his name, written again whenever the name changes.
  std::string previous_user;
  const ItemReader reader(rs, /*time_table=*/true);
  for (bool first = true; !rs.Eof(); first = false) {
    const ItemRow row = reader.Read();
    if (std::string user = Trim(row.user_name); first || user != previous_user) {
      out += "<tr bgcolor=" + page.props.TimeViewSelectedItemColor + " >" +
             "<td class=text colspan=5 align=left >" + EscapeHtml(row.user_name) + "</td>" +
             "</tr>";
      previous_user = std::move(user);
    }
    AppendItemRows(out, page, link_date, hour, row);
    rs.MoveNext();
  }
  out += "</table>";
  return out;
}

}  // namespace tidewell

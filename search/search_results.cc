#include "search/search_results.h"

#include <optional>
#include <string>

#include "data/recordset.h"
#include "errors/database_errors.h"
#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// --- The statement ---

constexpr const char* kLongOrder =
    " ORDER BY Users.GroupID, Users.UserName, Items.DateStamp, Items.TimeStamp, Items.Urgent, "
    "Items.Heading";
constexpr const char* kShortOrder = " ORDER BY Users.UserName, Items.DateStamp, Items.Heading";

Statement& AddOwnerCondition(Statement& statement, const SearchOwner& owner) {
  switch (owner.kind) {
    case SearchOwner::Kind::kGroup:
      return statement.Add("Users.GroupID = ").Number(owner.value).Add(" AND ");
    case SearchOwner::Kind::kUser:
      return statement.Add("Users.OwnerKey = ").Text(owner.value).Add(" AND ");
    case SearchOwner::Kind::kEveryone:
      return statement;
  }
  return statement;
}

// --- The dates ---

struct SearchDates {
  Date start;
  Date end;
};

// Both posted dates, or nothing with the refusal pending.
std::optional<SearchDates> PostedDates(Page& page) {
  const std::string start = page.FormValue("startdate");
  const std::string end = page.FormValue("enddate");
  const char* refusal = !IsDate(start) ? kInvalidStartDate
                        : !IsDate(end) ? kInvalidEndDate
                                       : nullptr;
  if (refusal != nullptr) {
    page.Error.Raise(ErrorKind::kInvalidDate, refusal);
    return std::nullopt;
  }
  return SearchDates{CDate(start), CDate(end)};
}

// --- The result table ---

Statement GroupNameStatement(std::string_view group_id) {
  return Statement("SELECT GroupName FROM Groups WHERE GroupID = ").Number(group_id);
}

std::string GroupNameOf(Page& page, const std::string& group_id) {
  if (group_id.empty()) return "";
  Recordset rs;
  rs.Open(GroupNameStatement(group_id), *page.Connection);
  const std::string name = rs.Eof() ? "" : CStrOrBlank(rs.Fields("GroupName").Value());
  rs.Close();
  return name;
}

std::string HeaderRow(const Page& page) {
  return "<tr bgcolor=" + page.props.TimeViewColumnColor + " >" +
         "<td class=white width=10 align=center ><img src=" + page.props.ImagePath +
         "icon_urgent_title.gif width=6 height=14 border=0 align=absmiddle ></td>" +
         "<td class=white width=70 align=left >Date</td>" +
         "<td class=white width=22 align=center >Time</td>" +
         "<td class=white width=425 align=left >Heading</td>" + "</tr>";
}

std::string UserHeadingRow(const Page& page, const std::string& group_name,
                           const std::string& user_name) {
  return "<tr bgcolor=" + page.props.TimeViewSelectedItemColor + " >" +
         "<td class=text colspan=4 align=left >" + EscapeHtml(group_name) + " - " +
         EscapeHtml(user_name) + "</td>" + "</tr>";
}

// A complete item's value in CompletedItemColor, struck through under CompletedItemCrossOut.
std::string AsShown(const Page& page, bool complete, const std::string& value) {
  if (!complete) return value;
  const std::string shown =
      page.props.CompletedItemCrossOut ? "<strike>" + value + "</strike>" : value;
  return "<font color=" + page.props.CompletedItemColor + " >" + shown + "</font>";
}

// The time view of the item's date and hour with the item selected, in the searcher's calendar.
std::string TimeViewLink(const Page& page, Recordset& rs) {
  // The search's links have always stepped "on" and carried no sort; the time view reads
  // neither.
  return LinkTo(page, ScreenSteppingTo(screens::kTimeView, Step::kOn),
                {.date = rs.Fields("DateStamp").Value(),
                 .hour = rs.Fields("TimeStamp").Value(),
                 .item = rs.Fields("ItemID").Value(),
                 .sort = ""});
}

std::string ItemRow(const Page& page, Recordset& rs) {
  const bool complete = CBoolOrFalse(rs.Fields("Complete").Value());
  std::string row = "<tr bgcolor=" + page.props.TimeViewHeadingColor + " >";
  if (CBoolOrFalse(rs.Fields("Urgent").Value())) {
    row += "<td class=text width=10 align=center ><img src=" + page.props.ImagePath +
           "icon_urgent.gif width=6 height=12 border=0 ></td>";
  } else {
    row += "<td class=text width=10 align=center >&nbsp;</td>";
  }
  row += "<td class=text width=70 align=left >" +
         AsShown(page, complete, CStrOrBlank(rs.Fields("DateStamp").Value())) + "</td>";
  row += "<td class=text width=22 align=center >" +
         AsShown(page, complete, EscapeHtml(CStrOrBlank(rs.Fields("TimeText").Value()))) + "</td>";
  row += "<td class=text width=425 align=left ><a class=search href=" + TimeViewLink(page, rs) +
         " >" + AsShown(page, complete, EscapeHtml(CStrOrBlank(rs.Fields("Heading").Value()))) +
         "</a></td>";
  row += "</tr>";
  return row;
}

// The rows in the statement's order, under a heading row each time the trimmed user name
// changes. The group's name is read again only when the group changes; two users of the same
// trimmed name that follow each other therefore share the first one's heading.
std::string ResultTable(Page& page, Recordset& rs) {
  std::string table = "<table bgcolor=#c0c0c0 width=100% cellpadding=2 cellspacing=1 border=0>";
  table += HeaderRow(page);
  std::optional<std::string> previous_group, previous_user;
  std::string group_name;
  for (; !rs.Eof(); rs.MoveNext()) {
    const std::string group = CStrOrBlank(rs.Fields("GroupID").Value());
    if (group != previous_group) {
      group_name = GroupNameOf(page, group);
      previous_group = group;
    }
    const std::string user = CStrOrBlank(rs.Fields("UserName").Value());
    if (Trim(user) != previous_user) {
      table += UserHeadingRow(page, group_name, user);
      previous_user = Trim(user);
    }
    table += ItemRow(page, rs);
  }
  table += "</table>";
  return table;
}

void RunSearch(Page& page, const SearchDates& dates) {
  const SearchOwner owner = SearchScope(page, page.FormValue("ownerkey"));
  Recordset rs;
  rs.Open(SearchStatement(page.FormValue("search"), dates.start, dates.end, owner,
                          page.props.DataServer),
          *page.Connection);
  page.SearchResults = rs.Eof() ? kNoSearchResults : ResultTable(page, rs);
  rs.Close();
}

}  // namespace

Statement SearchStatement(std::string_view text, Date start, Date end, const SearchOwner& owner,
                          ASPDataServer dialect) {
  Statement statement(
      "SELECT Items.*, Users.UserName, Users.GroupID FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE ");
  AddOwnerCondition(statement, owner)
      .Add("Items.Heading LIKE ")
      .Text("%" + std::string(text) + "%")
      .Add(" AND Items.DateStamp >= ")
      .DateValue(start, dialect)
      .Add(" AND Items.DateStamp <= ")
      .DateValue(end, dialect);
  // Everyone in the SQL Server dialect is ordered by name alone; every other search by group
  // first.
  const bool short_order =
      owner.kind == SearchOwner::Kind::kEveryone && dialect == ASPDataServer::SQLServer;
  statement.Add(short_order ? kShortOrder : kLongOrder);
  return statement;
}

void ProcessSearch(Page& page) {
  const std::optional<SearchDates> dates = PostedDates(page);
  if (!dates) return;
  try {
    RunSearch(page, *dates);
  } catch (const ado::DatabaseError& error) {
    page.SearchResults.clear();
    TrapDatabaseError(page, error);
  } catch (const AutomationError& error) {
    // A row the run time could not convert stops the search the same way.
    page.SearchResults.clear();
    TrapDatabaseError(page, ado::DatabaseError(error.number(), error.what()));
  }
}

}  // namespace tidewell

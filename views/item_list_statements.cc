#include "views/item_list_statements.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "runtime/strings.h"
#include "views/item_list.h"

namespace tidewell {
namespace {

using ado::Statement;

constexpr const char* kDayListDefaultSort = "TimeStamp, Initials, Urgent, Heading ASC";
constexpr const char* kOtherListDefaultSort = "UserName, Initials, TimeStamp, Urgent, Heading ASC";

// Every order a list can be asked for: the two defaults and what the time view's headers
// request. The statement takes the order as fixed text from here.
constexpr const char* kSortClauses[] = {
    kDayListDefaultSort, kOtherListDefaultSort, "Urgent ASC",    "Urgent DESC", "TimeText ASC",
    "TimeText DESC",     "Initials ASC",        "Initials DESC", "Heading ASC", "Heading DESC",
};

// The fixed text of a named order, or null for any other.
const char* NamedSortClause(std::string_view sort) {
  for (const char* clause : kSortClauses) {
    if (sort == clause) return clause;
  }
  return nullptr;
}

// Any other order came from a link someone wrote by hand. It stands in the statement as a
// value without quotes, so the builder lets only a whole number through (a column's position,
// as the engine reads ORDER BY 2) and refuses the rest: the statement fails as a statement
// with such an order always failed, and nothing of the text reaches the engine.
Statement& AddSort(Statement& statement, std::string_view sort) {
  if (const char* clause = NamedSortClause(sort)) return statement.Add(clause);
  return statement.Number(sort);
}

// " AND Items.OwnerKey = '" K "' ORDER BY " S ", ItemID", or the same with " AND GroupID = "
// G. ItemID comes last so that items equal in every sorted column keep one order, whichever
// statement read them and however the engine chose to read it. `cell_columns` go first: the
// columns that tell a view's cells apart, constant within a cell.
Statement& AddOwnerAndSort(Statement& statement, const ListOwner& owner, std::string_view sort,
                           const char* cell_columns = "") {
  if (owner.group_id != 0) {
    statement.Add(" AND GroupID = ").Number(owner.group_id);
  } else {
    statement.Add(" AND Items.OwnerKey = ").Text(owner.owner_key);
  }
  statement.Add(" ORDER BY ").Add(cell_columns);
  return AddSort(statement, sort).Add(", ItemID");
}

// "(DateStamp = d)" for each day, or "(DateStamp = d AND (TimeStamp = h OR ...))" for the hours
// of each day, joined by OR: true exactly where one of the cells' own conditions is. Cells of
// one day follow each other.
Statement& AddCellConditions(Statement& statement, std::span<const ListCell> cells,
                             ASPDataServer dialect) {
  statement.Add("(");
  for (size_t i = 0; i < cells.size(); ++i) {
    const bool same_day = i > 0 && cells[i].day == cells[i - 1].day;
    if (!same_day) {
      if (i > 0) statement.Add(cells[i - 1].hour ? ")) OR " : ") OR ");
      statement.Add("(DateStamp = ").DateValue(cells[i].day, dialect);
      if (cells[i].hour) statement.Add(" AND (");
    } else if (cells[i].hour) {
      statement.Add(" OR ");
    }
    if (cells[i].hour) statement.Add("TimeStamp = ").Number(*cells[i].hour);
  }
  if (!cells.empty()) statement.Add(cells.back().hour ? "))" : ")");
  return statement.Add(")");
}

// Whether the cells are whole days, one for each day from the first to the last.
bool CellsAreEveryDayOfTheirRange(std::span<const ListCell> cells) {
  std::vector<long> days;
  for (const ListCell& cell : cells) {
    if (cell.hour) return false;
    days.push_back(static_cast<long>(std::floor(cell.day.serial)));
  }
  std::sort(days.begin(), days.end());
  days.erase(std::unique(days.begin(), days.end()), days.end());
  return !days.empty() && days.back() - days.front() + 1 == static_cast<long>(days.size());
}

Statement DayListBeginning(long mode) {
  switch (mode) {
    case list_modes::kMonthCell:
      return Statement(
          "SELECT TOP 6 ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM "
          "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ");
    case list_modes::kWeekRow:
      return Statement(
          "SELECT TOP 5 ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM "
          "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ");
    default:
      return Statement(
          "SELECT TOP 3 ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM "
          "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ");
  }
}

}  // namespace

Statement GroupScopeStatement(std::string_view owner_key) {
  return Statement("SELECT GroupID FROM Users WHERE OwnerKey = ").Text(owner_key);
}

std::string ExpandSortCode(std::string_view code, long mode) {
  if (code.empty())
    return mode <= list_modes::kDayRow ? kDayListDefaultSort : kOtherListDefaultSort;
  std::string sort = Replace(std::string(code), "A", "ASC");
  sort = Replace(std::move(sort), "D", "DESC");
  switch (code.front()) {
    case 'U':
      sort = Replace(std::move(sort), "U", "Urgent");
      break;
    case 'T':
      sort = Replace(std::move(sort), "T", "TimeText");
      break;
    case 'I':
      sort = Replace(std::move(sort), "I", "Initials");
      break;
    case 'H':
      sort = Replace(std::move(sort), "H", "Heading");
      break;
  }
  return Replace(std::move(sort), "*", " ");
}

Statement DayListStatement(long mode, std::string_view date, long hour, const ListOwner& owner,
                           std::string_view sort, ASPDataServer dialect) {
  Statement statement = DayListBeginning(mode);
  statement.DateText(date, dialect);
  if (mode == list_modes::kDayRow) statement.Add(" AND TimeStamp = ").Number(hour);
  AddOwnerAndSort(statement, owner, sort);
  return statement;
}

bool IsNamedSort(std::string_view sort) {
  return NamedSortClause(sort) != nullptr;
}

Statement ViewListStatement(std::span<const ListCell> cells, const ListOwner& owner,
                            std::string_view sort, ASPDataServer dialect) {
  Statement statement(
      "SELECT ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete, DateStamp FROM "
      "Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp >= ");
  // The range holds every cell's day. With the owner it is one stretch of the index on
  // (OwnerKey, DateStamp) for each owner, and even before the engine has statistics of the
  // table it keeps a long OR of the cells from leading to a scan.
  const auto [first, last] = std::minmax_element(
      cells.begin(), cells.end(),
      [](const ListCell& a, const ListCell& b) { return a.day.serial < b.day.serial; });
  statement.DateValue(first == cells.end() ? Date{} : first->day, dialect)
      .Add(" AND DateStamp <= ")
      .DateValue(last == cells.end() ? Date{} : last->day, dialect);
  // A range of whole days (a month's grid, a week) says all the cells say: the engine reads
  // it as one stretch of the index instead of a probe for each day and owner.
  if (!CellsAreEveryDayOfTheirRange(cells)) {
    AddCellConditions(statement.Add(" AND "), cells, dialect);
  }
  // Sorted by cell first, so that the engine compares the list's columns (text without regard
  // to case, which is slow on some engines) only between items of one cell, as the cells' own
  // statements did. Within a cell the order is the list's.
  AddOwnerAndSort(statement, owner, sort,
                  CellsAreHours(cells) ? "DateStamp, TimeStamp, " : "DateStamp, ");
  return statement;
}

Statement TimeTableStatement(std::string_view date, long hour, const ListOwner& owner,
                             std::string_view sort, ASPDataServer dialect) {
  Statement statement(
      "SELECT Items.*, Users.Initials, Users.UserName FROM Items INNER JOIN Users ON "
      "Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ");
  statement.DateText(date, dialect).Add(" AND TimeStamp = ").Number(hour);
  AddOwnerAndSort(statement, owner, sort);
  return statement;
}

Statement FeedItemsStatement(Date first, Date last, const ListOwner& owner,
                             ASPDataServer dialect) {
  Statement statement(
      "SELECT ItemID, DateStamp, TimeStamp, TimeText, Heading, Description, Urgent, Complete, "
      "Initials FROM Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE "
      "DateStamp >= ");
  statement.DateValue(first, dialect).Add(" AND DateStamp <= ").DateValue(last, dialect);
  AddOwnerAndSort(statement, owner, kDayListDefaultSort, "DateStamp, ");
  return statement;
}

Statement OneUserStatement(std::string_view owner_key) {
  return Statement(
             "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM "
             "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE Users.OwnerKey = ")
      .Text(owner_key)
      .Add(" ORDER BY GroupName, Username ASC");
}

Statement AllUsersStatement() {
  return Statement(
      "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM Users "
      "INNER JOIN Groups ON Users.GroupID = Groups.GroupID ORDER BY GroupName, Username ASC");
}

Statement GroupUsersStatement(long group_id) {
  return Statement(
             "SELECT Users.OwnerKey, Users.Username, Users.Administrator, Groups.GroupName FROM "
             "Users INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE Users.GroupID = ")
      .Number(group_id)
      .Add(" ORDER BY GroupName, Username ASC");
}

Statement AdministeredUsersStatement() {
  return Statement(
      "SELECT Users.OwnerKey, Users.Administrator, Users.UserName, Groups.GroupName FROM Users "
      "INNER JOIN Groups ON Users.GroupID = Groups.GroupID ORDER BY Groups.GroupName, "
      "Users.UserName ASC");
}

Statement GroupsStatement() {
  return Statement("SELECT * FROM Groups ORDER BY GroupName ASC");
}

Statement GroupMembersStatement(long group_id) {
  return Statement("SELECT GroupID FROM Users WHERE GroupID = ").Number(group_id);
}

Statement SearchGroupsStatement() {
  return Statement("SELECT * FROM Groups ORDER BY GroupName");
}

}  // namespace tidewell

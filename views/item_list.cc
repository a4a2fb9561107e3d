#include "views/item_list.h"

#include <optional>

#include "data/recordset.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/date_text.h"
#include "runtime/dates.h"
#include "views/item_list_statements.h"
#include "views/item_rows.h"
#include "views/list_reading.h"

namespace tidewell {
namespace {

using ado::Recordset;

// The day a list is for, in the two forms it is needed in.
struct ListDay {
  std::string statement_text;  // m/d/yyyy, or the caller's text when it is no date
  std::string link_text;       // as the regional settings write it, for the links
};

// The statements splice the date month first whatever the regional settings; the links carry
// it as the settings write it, so that it reads back as the same day. Text that is no date is
// spliced unchanged, and the statement fails on it.
ListDay ReadListDay(std::string& date) {
  std::optional<Date> day = ParseDateText(date);
  if (!day) return {date, date};
  date = ado::StatementDateText(*day);
  return {date, ShortDateText(*day)};
}

std::string ItemListOf(Page& page, long mode, const ListDay& day, long hour) {
  const ListOwner owner{page.UserKey, ListGroupScope(page)};
  const std::string sort = ExpandSortCode(page.SortOrder, mode);
  Recordset rs;
  std::string list;
  if (mode == list_modes::kTimeTable) {
    rs.Open(TimeTableStatement(day.statement_text, hour, owner, sort, page.props.DataServer),
            ListConnection(page));
    list = TimeTableMarkup(page, day.link_text, hour, sort, rs);
  } else {
    rs.Open(DayListStatement(mode, day.statement_text, hour, owner, sort, page.props.DataServer),
            ListConnection(page));
    list = DayListMarkup(page, mode, day.link_text, ReadDayList(mode, rs));
  }
  rs.Close();
  return list;
}

// `date` has been rewritten already.
std::string ListOf(Page& page, long mode, long hour, const ListDay& day) {
  switch (mode) {
    case list_modes::kMonthCell:
    case list_modes::kWeekRow:
    case list_modes::kDayRow:
    case list_modes::kTimeTable:
      return ItemListOf(page, mode, day, hour);
    default:
      return "";
  }
}

// Runs the list under the lists' error trap.
std::string TrappedList(Page& page, long mode, long hour, const ListDay& day) {
  const std::string list = TrapListFailure(page, [&] { return ListOf(page, mode, hour, day); });
  return list.empty() ? "&nbsp;" : list;
}

}  // namespace

ado::Connection& ListConnection(Page& page) {
  if (!page.Connection) {
    throw ado::DatabaseError(ado::error_numbers::kObjectClosed,
                             "Operation is not allowed when the object is closed.");
  }
  return *page.Connection;
}

long ListGroupScope(Page& page) {
  // The group is read only when it decides something.
  if (page.User.ShowAllGroupUsers && !page.GroupScope) {
    Recordset rs;
    rs.Open(GroupScopeStatement(page.UserKey), ListConnection(page));
    page.GroupScope =
        rs.Eof() || rs.Fields("GroupID").Value().IsNull() ? 0 : CLng(rs.Fields("GroupID").Value());
    rs.Close();
  }
  return GroupScopeFor(page.User.ShowAllGroupUsers, page.GroupScope.value_or(0));
}

std::string TrapListFailure(Page& page, const std::function<std::string()>& read) {
  try {
    return read();
  } catch (const ado::DatabaseError& error) {
    TrapListError(page, error);
  } catch (const AutomationError& error) {
    // A value the run time could not convert stops the list the same way.
    TrapListError(page, ado::DatabaseError(error.number(), error.what()));
  }
  return "";
}

std::string BuildItemList(Page& page, long mode, std::string& date, long hour) {
  const ListDay day = ReadListDay(date);
  return TrappedList(page, mode, hour, day);
}

std::string BuildItemList(Page& page, long mode, Date day, long hour) {
  const ListDay list_day{ado::StatementDateText(day), ShortDateText(DateOnly(day))};
  return TrappedList(page, mode, hour, list_day);
}

}  // namespace tidewell

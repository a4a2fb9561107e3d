#include "items/item_updates.h"

#include "accounts/account_statements.h"
#include "accounts/administrator_check.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "items/item_records.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// --- Statements ---
//
// Each statement that reaches an existing item names its owner too (items/item_records.h): the
// item id comes from the link, which anybody can edit, the owner from the checked key of the
// calendar shown.

Statement DeleteOwnItemStatement(long item_id, std::string_view owner_key) {
  return Statement("DELETE FROM Items WHERE ItemID = ")
      .Number(item_id)
      .Add(" AND OwnerKey = ")
      .Text(owner_key);
}

// --- The posted form ---

// The fields as the columns take them. The hour goes through the run time's CLng, so an hour
// that is no number fails the action like any other run-time error in it. A date with a time
// of day keeps only its day: the views find items by day.
ItemRecord ReadPostedItem(const Page& page) {
  ItemRecord item;
  item.owner_key = page.FormValue("ownerkey");
  item.date = DateOnly(CDate(page.FormValue("datestamp")));
  item.hour = CLng(page.FormValue("timestamp"));
  item.time_text = page.FormValue("timestamp") + ":" + page.FormValue("timetext");
  item.heading = Trim(page.FormValue("heading"));
  item.description = Trim(page.FormValue("description"));
  item.urgent = page.FormValue("urgent") == "on";
  item.complete = page.FormValue("complete") == "on";
  return item;
}

bool AccountExists(Page& page, std::string_view owner_key) {
  Recordset rs;
  rs.Open(OwnerKeyStatement(owner_key), *page.Connection);
  return !rs.Eof();
}

// The owner the item goes to. The form offers the calendar's own user, and every user only
// while an administrator works on the calendar; a posted key outside that choice keeps the
// item in the calendar shown.
std::string ChosenOwner(Page& page, const std::string& posted) {
  if (posted == page.UserKey) return posted;
  const bool offered = !page.AdminKey.empty() && IsOwnerKey(posted) &&
                       IsAdministratorAccount(page, page.AdminKey) && AccountExists(page, posted);
  return offered ? posted : page.UserKey;
}

// The item's columns as the form shows them, true flags as the word "checked".
ItemFormValues ReadItem(Recordset& rs) {
  auto text = [&rs](const char* column) { return CStrOrBlank(rs.Fields(column).Value()); };
  auto checked = [&rs](const char* column) {
    return CBoolOrFalse(rs.Fields(column).Value()) ? std::string("checked") : std::string();
  };
  ItemFormValues values;
  values.owner_key = text("OwnerKey");
  values.date = text("DateStamp");
  const Variant& hour = rs.Fields("TimeStamp").Value();
  values.hour = hour.IsNull() ? -1 : CLng(hour);
  values.time_text = text("TimeText");
  values.heading = text("Heading");
  values.description = text("Description");
  values.urgent = checked("Urgent");
  values.complete = checked("Complete");
  return values;
}

// --- The actions ---

void AddItem(Page& page, const ItemRecord& item) {
  page.CurrentDate = item.date;
  const bool from_a_view =
      page.ReturnView >= screens::kMonthView && page.ReturnView <= screens::kTimeView;
  page.Screen = from_a_view ? page.ReturnView : screens::kTimeView;
  page.CurrentHour = page.Screen == screens::kTimeView ? item.hour : page.props.DefaultStartHour;

  InsertItem(*page.Connection, item);
}

void UpdateItem(Page& page, const ItemRecord& item) {
  page.CurrentHour = item.hour;
  page.Screen = screens::kTimeView;

  Recordset rs;
  rs.Open(OwnItemStatement(page.ItemId, page.UserKey), *page.Connection, ado::adOpenDynamic,
          ado::adLockOptimistic);
  // No row: the item is gone or belongs to another calendar; nothing is said.
  if (!rs.Eof()) {
    AssignItemColumns(rs, item);
    rs.Fields("Urgent").SetValue(item.urgent);
    rs.Fields("Complete").SetValue(item.complete);
    rs.Update();
  }
  rs.Close();
}

void DeleteItem(Page& page) {
  page.Connection->Execute(DeleteOwnItemStatement(page.ItemId, page.UserKey));
}

void RejectDate(Page& page) {
  page.Error.Raise(ErrorKind::kInvalidDate, kInvalidItemDate);
}

void RunAction(Page& page, std::string_view action) {
  if (action == "d") return DeleteItem(page);
  ItemRecord item = ReadPostedItem(page);
  item.owner_key = ChosenOwner(page, item.owner_key);
  if (action == "a") AddItem(page, item);
  if (action == "u") UpdateItem(page, item);
}

}  // namespace

void ProcessItemAction(Page& page, std::string_view action) {
  if (page.UserKey.empty()) return;
  if (action != "d" && !IsDate(page.FormValue("datestamp"))) return RejectDate(page);
  try {
    RunAction(page, action);
  } catch (const ado::DatabaseError& error) {
    TrapUpdateError(page, error);
  } catch (const AutomationError& error) {
    // A posted value the run time could not convert stops the action the same way.
    TrapUpdateError(page, ado::DatabaseError(error.number(), error.what()));
  }
}

bool LoadItemForEdit(Page& page, long item_id, ItemFormValues& values) {
  try {
    Recordset rs;
    rs.Open(OwnItemStatement(item_id, page.UserKey), *page.Connection);
    if (rs.Eof()) return false;
    values = ReadItem(rs);
    return true;
  } catch (const ado::DatabaseError& error) {
    TrapUpdateError(page, error);
  } catch (const AutomationError& error) {
    TrapUpdateError(page, ado::DatabaseError(error.number(), error.what()));
  }
  return false;
}

}  // namespace tidewell

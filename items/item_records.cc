#include "items/item_records.h"

#include "runtime/conversions.h"

namespace tidewell {
namespace {

ado::Statement ItemsTable() {
  return ado::Statement("Items");
}

std::string TwoDigits(long number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string ItemTimeText(long hour, long minute) {
  return TwoDigits(hour) + ":" + TwoDigits(minute);
}

ado::Statement OwnItemStatement(long item_id, std::string_view owner_key) {
  return ado::Statement("SELECT * FROM Items WHERE ItemID = ")
      .Number(item_id)
      .Add(" AND OwnerKey = ")
      .Text(owner_key);
}

void AssignItemColumns(ado::Recordset& rs, const ItemRecord& item) {
  rs.Fields("OwnerKey").SetValue(item.owner_key);
  rs.Fields("DateStamp").SetValue(item.date);
  rs.Fields("TimeStamp").SetValue(item.hour);
  rs.Fields("TimeText").SetValue(item.time_text);
  rs.Fields("Heading").SetValue(item.heading);
  rs.Fields("Description").SetValue(item.description);
}

long InsertItem(ado::Connection& connection, const ItemRecord& item) {
  ado::Recordset rs;
  rs.Open(ItemsTable(), connection, ado::adOpenDynamic, ado::adLockOptimistic);
  rs.AddNew();
  AssignItemColumns(rs, item);
  if (item.urgent) rs.Fields("Urgent").SetValue(true);
  if (item.complete) rs.Fields("Complete").SetValue(true);
  rs.Update();
  const long item_id = CLng(rs.Fields("ItemID").Value());
  rs.Close();
  return item_id;
}

}  // namespace tidewell

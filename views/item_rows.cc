#include "views/item_rows.h"

#include "runtime/conversions.h"

namespace tidewell {
namespace {

// Columns that may hold Null (a description never written, a flag left unset) read as
// nothing.
std::string TextOf(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? "" : CStr(value);
}
long NumberOf(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? 0 : CLng(value);
}
bool FlagOf(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? false : CBool(value);
}

}  // namespace

ItemReader::ItemReader(ado::Recordset& rs, bool time_table)
    : item_id_(rs.Fields("ItemID")),
      heading_(rs.Fields("Heading")),
      hour_(rs.Fields("TimeStamp")),
      time_text_(rs.Fields("TimeText")),
      urgent_(rs.Fields("Urgent")),
      initials_(rs.Fields("Initials")),
      complete_(rs.Fields("Complete")) {
  if (!time_table) return;
  owner_key_ = rs.Fields("OwnerKey");
  user_name_ = rs.Fields("UserName");
  description_ = rs.Fields("Description");
}

ItemRow ItemReader::Read() const {
  ItemRow row;
  row.item_id = NumberOf(item_id_.Value());
  row.heading = TextOf(heading_.Value());
  row.hour = NumberOf(hour_.Value());
  row.time_text = TextOf(time_text_.Value());
  row.urgent = FlagOf(urgent_.Value());
  row.initials = TextOf(initials_.Value());
  row.complete = FlagOf(complete_.Value());
  if (owner_key_) {
    row.owner_key = TextOf(owner_key_->Value());
    row.user_name = TextOf(user_name_->Value());
    row.description = TextOf(description_->Value());
  }
  return row;
}

}  // namespace tidewell

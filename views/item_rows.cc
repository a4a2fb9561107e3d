#include "views/item_rows.h"

#include "runtime/conversions.h"

namespace tidewell {

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
  row.item_id = CLngOrZero(item_id_.Value());
  row.heading = CStrOrBlank(heading_.Value());
  row.hour = CLngOrZero(hour_.Value());
  row.time_text = CStrOrBlank(time_text_.Value());
  row.urgent = CBoolOrFalse(urgent_.Value());
  row.initials = CStrOrBlank(initials_.Value());
  row.complete = CBoolOrFalse(complete_.Value());
  if (owner_key_) {
    row.owner_key = CStrOrBlank(owner_key_->Value());
    row.user_name = CStrOrBlank(user_name_->Value());
    row.description = CStrOrBlank(description_->Value());
  }
  return row;
}

}  // namespace tidewell

#pragma once

#include <string>
#include <string_view>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/variant.h"

namespace tidewell {

// The rows of Items as the item form writes them, on a connection alone: the form's post
// and `tidewell import` make items through the same insert, so an imported item is stored
// exactly as one typed into the form. Each throws ado::DatabaseError when a statement fails.

// What the item form lets a user type: a heading of at most 50 characters (the field's
// maxlength) and a description of at most 255 (its label's "max 255 chars").
inline constexpr size_t kHeadingMaxCharacters = 50;
inline constexpr size_t kDescriptionMaxCharacters = 255;

// One item's columns.
struct ItemRecord {
  std::string owner_key;
  Date date;              // the day alone: the views find items by day
  long hour = 0;          // TimeStamp, 0 to 23
  std::string time_text;  // TimeText, "09:15"
  std::string heading;
  std::string description;
  bool urgent = false;
  bool complete = false;
};

// The time text the form stores for an hour and a minute chosen in its selects: both in two
// digits, joined by ":" ("09:05").
std::string ItemTimeText(long hour, long minute);

// The item `item_id` when `owner_key` owns it: every statement that reaches an existing item
// names its owner too, as the item id may come from an edited link.
ado::Statement OwnItemStatement(long item_id, std::string_view owner_key);

// Assigns the columns every write assigns (owner, date, hour, time text, heading,
// description) to the recordset's current or new row; the flags are the caller's.
void AssignItemColumns(ado::Recordset& rs, const ItemRecord& item);

// Adds the item as the form's "Add" does: the flags are written only when set, so unchecked
// boxes leave the columns' default, false. Answers the ItemID the database gave it.
long InsertItem(ado::Connection& connection, const ItemRecord& item);

}  // namespace tidewell

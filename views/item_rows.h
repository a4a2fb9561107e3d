#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/recordset.h"

namespace tidewell {

struct Page;

// One item as an item list reads it. A column the statement did not select, or that holds
// Null, reads as "", 0 or false.
struct ItemRow {
  long item_id = 0;
  long hour = 0;  // TimeStamp
  std::string time_text;
  std::string heading;
  std::string initials;
  bool urgent = false;
  bool complete = false;
  // The time view's statement also brings these.
  std::string owner_key;
  std::string user_name;
  std::string description;
};

// Reads the rows of an item list's recordset: its fields are looked up by name once, then
// read row after row.
class ItemReader {
 public:
  // The day lists' columns (modes 0 to 2), and with `time_table` also the owner's key and
  // name and the description the time view shows (mode 3).
  ItemReader(ado::Recordset& rs, bool time_table);
  // The recordset's current row.
  ItemRow Read() const;

 private:
  ado::Field item_id_, heading_, hour_, time_text_, urgent_, initials_, complete_;
  std::optional<ado::Field> owner_key_, user_name_, description_;
};

// How many rows a day list (modes 0 to 2) fetches and how many it shows: the one row more
// tells that more exist. A month cell fetches 6 and shows 5, a week row 5 and 4, a day view
// hour 3 and 2.
struct ListLimit {
  long fetched;
  long shown;
};
ListLimit LimitOf(long mode);

// What a day list shows: its first rows, as many as it shows at most, and whether it fetched
// a row more than that.
struct DayList {
  std::vector<ItemRow> rows;
  bool more = false;
};

// The day list of `mode` from the open recordset of its statement (TOP `fetched`).
DayList ReadDayList(long mode, ado::Recordset& rs);

// Modes 0 to 2: the item links of a month cell, a week row or a day view hour, "" when the
// list holds none. `link_date` is the day as the links carry it.
std::string DayListMarkup(const Page& page, long mode, const std::string& link_date,
                          const DayList& items);
// The same, written at the end of `out`; nothing when the list holds none.
void AppendDayListMarkup(std::string& out, const Page& page, long mode,
                         const std::string& link_date, const DayList& items);

// Mode 3: the time view's table of the hour's items, with the sortable headers. `sort` is the
// expanded sort order the statement used.
std::string TimeTableMarkup(const Page& page, const std::string& link_date, long hour,
                            std::string_view sort, ado::Recordset& rs);

}  // namespace tidewell

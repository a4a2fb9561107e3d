#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "data/connection.h"
#include "feeds/calendar_events.h"
#include "items/item_records.h"

namespace tidewell {

// An import that cannot go ahead for a reason of the site, not of the file (no such user).
class ImportRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The item the form would make of an event instance for an account whose day starts at
// `start_hour`: the instance's day; its hour and minute ("hh:nn"), or for an all-day event the
// start hour at minute 00; SUMMARY as the heading and DESCRIPTION as the description, trimmed
// of blanks as the form trims them and cut to the form's lengths (counted in characters), line
// ends written as a browser posts a text area's (CR LF); PRIORITY 1 to 4 (the upper half of
// iCalendar's 1..9) as urgent. `headings_cut` and `descriptions_cut` count what was cut.
struct ItemCuts {
  long headings = 0;
  long descriptions = 0;
};
ItemRecord ItemOfInstance(const EventInstance& instance, std::string_view owner_key,
                       long start_hour, ItemCuts& cuts);

// What an import did.
struct ImportReport {
  std::string user_name;  // as stored
  long imported = 0;
  long already_imported = 0;  // by an earlier import: the item is still there
  long deleted_since = 0;     // imported earlier, and the item deleted since: not made again
  long repeated = 0;          // the same instance of the same UID earlier in the file
  CalendarSkips skipped;
  ItemCuts cuts;

  long Skipped() const {
    return already_imported + deleted_since + repeated + skipped.cancelled +
           skipped.outside_window + skipped.not_events;
  }
};

// Makes items of `events` for the account named `user_name` (names compare as the login
// compares them), in one transaction under the accounts lock: every item or none. An instance
// an earlier import made an item of (its UID and instance start, for the same account) is
// passed over, even when that item has been deleted since: deleting an imported item keeps it
// deleted. `site_start_hour` is the hour an all-day event takes for an account with no start
// hour of its own. Throws ImportRefused for an unknown user, ado::DatabaseError when a
// statement fails (nothing is written either way).
ImportReport ImportEvents(ado::Connection& connection, std::string_view user_name,
                          const CalendarEvents& events, long site_start_hour);

// "imported 12 items for alice; skipped 3 (2 already imported, 1 outside the window)".
std::string ImportSummary(const ImportReport& report);

}  // namespace tidewell

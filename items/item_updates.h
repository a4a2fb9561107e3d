#pragma once

#include <string>
#include <string_view>

namespace tidewell {

struct Page;

// Writing and reading single items for the item form.
//
// Every statement that touches an existing item carries the condition OwnerKey = the request's
// UserKey (the checked key of the calendar shown), whatever the form posted: an item of
// another calendar can be neither changed, deleted nor loaded by editing a link or a post.

// The item form's values, as its fields show them.
struct ItemFormValues {
  std::string owner_key;
  std::string date;       // date text as the regional settings write it
  long hour = -1;         // the hour select's choice; -1 for none
  std::string time_text;  // "09:15"; the minute select marks its last two characters
  std::string heading;
  std::string description;
  std::string urgent;  // "checked" or ""
  std::string complete;
};

// The message of a post whose "datestamp" reads as no date (ErrorKind::kInvalidDate).
inline constexpr const char* kInvalidItemDate =
    "You have entered an invalid date, please choose another date.";

// Runs the item form's post ("a" add, "u" update) or a deletion link ("d") for the request's
// ItemId, with the posted fields "ownerkey", "datestamp", "timestamp", "timetext", "heading",
// "description", "urgent" and "complete".
//
//   - Every action but "d" first reads "datestamp": no date gives the pending kInvalidDate error
//     with the message above, nothing written; the form is drawn again.
//   - "a" makes the posted date the shown one and goes on to the view the form was opened
//     from (ReturnView 0 to 3, else the time view); the time view gets the posted hour, the
//     others DefaultStartHour. Unchecked boxes are left to the columns' default, false.
//   - "u" changes the item when it is the calendar's own, both boxes either way; the time view
//     of the posted hour follows.
//   - "d" deletes the item when it is the calendar's own, without a word.
//
// Heading and description are trimmed; TimeText is the posted hour, ":" and the posted minute.
// The posted owner is taken when it is the calendar's own key, or when an administrator works
// on the calendar and the key names an account (the only owners the form offers); otherwise
// the item stays with the calendar shown. A failed statement becomes the pending
// kDatabaseRefused error and the error screen. Nobody signed in, nothing happens.
void ProcessItemAction(Page& page, std::string_view action);

// Reads item `item_id` of the calendar shown into `values` (flags as "checked"); false, and
// `values` untouched, when the calendar has no such item. A failed statement becomes the
// pending kDatabaseRefused error.
bool LoadItemForEdit(Page& page, long item_id, ItemFormValues& values);

}  // namespace tidewell

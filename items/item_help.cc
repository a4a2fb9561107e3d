#include "items/item_help.h"

#include <string>

#include "frame/help_page.h"
#include "page/page.h"

namespace tidewell {
namespace {

// One field's entry, ruled off.
void AppendEntry(Page& page, const char* label, const char* explanation) {
  AppendHelpEntry(page, std::string(label) + ":", explanation);
  AppendHelpRule(page);
}

}  // namespace

void HelpScreenItem(Page& page) {
  AppendHelpOpening(page, "<!-- HelpScreenItem  Start -->", "Help On Item Information.");
  AppendEntry(page, "Owner", "This is the account holder (the owner) of the scheduled item.");
  AppendEntry(page, "Scheduled Date",
              "Enter a Scheduled Date or click on the Date Picker Icon to select a date from a "
              "pop up calendar for easier selection.");
  AppendEntry(page, "Scheduled Time", "Select the Scheduled Time using the drop down lists.");
  AppendEntry(page, "Heading", "Enter the heading of the scheduled item. (max 50 chars)");
  AppendEntry(page, "Description",
              "Enter a brief description (optional) to give further details of the scheduled "
              "item.");
  AppendEntry(page, "Urgent",
              "Mark the item as Urgent by checking the box, this places a red ! against the item "
              "for notice.");
  AppendEntry(page, "Complete",
              "Mark the item as Complete by checking the box, this changes the items color and "
              "crosses out the item for notice.");
  // The frame's height stays as the header left it.
  AppendHelpClosing(page, "<!-- HelpScreenItem End -->");
}

}  // namespace tidewell

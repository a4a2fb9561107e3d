#include "accounts/account_help.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include "frame/help_page.h"
#include "frame/markup.h"
#include "page/page.h"

namespace tidewell {
namespace {

// An entry of a help text: its heading, then its explanation in dark green. Every entry but
// the last of its group ends with a line break; a grey rule closes each group.
struct HelpEntry {
  const char* heading;
  const char* text;
};

void AppendGroup(Page& page, std::initializer_list<HelpEntry> entries) {
  std::size_t index = 0;
  for (const HelpEntry& entry : entries) {
    AppendHelpEntry(page, entry.heading, entry.text);
    if (++index < entries.size()) page.PageBuffer += "<br>";
  }
  AppendHelpRule(page);
}

// The help screens of this file all stand as high as the other form screens.
void AppendAccountHelpClosing(Page& page, std::string_view end_comment) {
  AppendHelpClosing(page, end_comment);
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace

void HelpScreenUser(Page& page) {
  AppendHelpOpening(page, "<!-- HelpScreenUser  Start -->", "Help On User Information.");
  AppendGroup(
      page,
      {{"User:",
        "This is the user name of the account holder, it is also used as the owner of a "
        "scheduled item. User Name's can be modified by the administrator, but they must be "
        "unique. (max 15 chars)"},
       {"Initials:",
        "This is the Initials of the user, the administrator can change these, however you "
        "have to have unique initials within your own group. (max 4 chars)"},
       {"Group:",
        "This is the group name assigned to the user. A user can only be assigned to one "
        "group. The administrator can move the user to other groups or create new groups. (max "
        "15 chars)"},
       {"Show All Group Users:",
        "This indicates whether the user can view other group member items in read only mode "
        "as well as their own items in read/write mode. The administrator can turn this option "
        "on or off."}});
  AppendGroup(
      page,
      {{"Start my Days at",
        "Starts the DayView at the hour you specify. This option is updatable by users if setup "
        "in the application options, otherwise the administrator can only change this."},
       {"Highlight Todays Date?",
        "Highlights todays date on the MonthView and WeekView. This option is updatable by "
        "users if setup in the application options, otherwise the administrator can only "
        "change this."},
       {"Highlight Todays Time?",
        "Highlights todays time on the DayView. This option is updatable by users if setup in "
        "the application options, otherwise the administrator can only change this."},
       {"Show 12 Hour Day?",
        "Allows you to navigate a day as 12 hours instead of a 24 hours. This option is "
        "updatable by users if setup in the application options, otherwise the administrator "
        "can only change this."}});
  AppendGroup(
      page, {{"After logging in, show me the MonthView, WeekView, DayView or TimeView page.",
             "Loads the specified view immediatley after a successful login attempt."},
            {"Change Password:", "Change or create a password for the account."},
            {"Confirm Password:", "Confirm your password to be sure it was entered correctly."}});
  AppendAccountHelpClosing(page, "<!-- HelpScreenUser End -->");
}

void HelpScreenGroup(Page& page) {
  AppendHelpOpening(page, "<!-- HelpScreenGroup  Start -->", "Help On Group Information.");
  AppendGroup(page, {{"New Group Name:",
                     "Add a new group to the group list so you can assign users to that group "
                     "when you need to in the future. If no users are assigned to a group, you "
                     "can delete it by viewing the none assigned groups section."}});
  AppendGroup(page, {{"Change Group Name:",
                     "Select the group name to rename and enter the new group name. All users "
                     "of the old group name will be updated to the new group name."}});
  AppendGroup(page, {{"None Assigned Groups:",
                     "This shows a list of all the Groups that do not have any users assigned to "
                     "them. These groups can be deleted if required by selecting the one to "
                     "delete and clicking the delete button."}});
  AppendAccountHelpClosing(page, "<!-- HelpScreenGroup End -->");
}

}  // namespace tidewell

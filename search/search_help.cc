#include "search/search_help.h"

#include <string>

#include "frame/help_page.h"
#include "frame/markup.h"
#include "page/page.h"

namespace tidewell {
namespace {

// One field's entry.
void AppendEntry(Page& page, const char* label, const char* explanation) {
  AppendHelpEntry(page, std::string(label) + ":", explanation);
}

}  // namespace

void HelpScreenSearch(Page& page) {
  AppendHelpOpening(page, "<!-- HelpScreenSearch  Start -->", "Help On Search Information.");
  // Rules stand between the entries, none after the last.
  AppendEntry(page, "Owner", "This is the account holder (the owner) of a scheduled item.");
  AppendHelpRule(page);
  AppendEntry(page, "Start Date",
              "Enter a Start Date or click on the Date Picker Icon to select a date from a pop up "
              "calendar for easier selection.");
  AppendHelpRule(page);
  AppendEntry(page, "End Date",
              "Enter a End Date or click on the Date Picker Icon to select a date from a pop up "
              "calendar for easier selection.");
  AppendHelpRule(page);
  AppendEntry(page, "Search Critera",
              "Enter search critera to which you want to find matching items. (max 50 chars)");
  AppendHelpClosing(page, "<!-- HelpScreenSearch End -->");
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

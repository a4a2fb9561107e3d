#include "search/search_help.h"

#include <string>

#include "component/page.h"
#include "frame/markup.h"

namespace tidewell {
namespace {

// One field's entry: its name in bold and the explanation in dark green.
void AppendEntry(Page& page, const char* label, const char* explanation) {
  page.PageBuffer += std::string("<b>") + label + ":</b><br>";
  page.PageBuffer += std::string("<font color=#006400 >") + explanation + "</font>";
}

void AppendRule(Page& page) {
  page.PageBuffer += "<hr size=1 color=#c0c0c0 >";
}

}  // namespace

void HelpScreenSearch(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- HelpScreenSearch  Start -->";
  AppendTitleBar(page, "Help On Search Information.", TitleCell::kPlain);
  out +=
      "<table align=center width=610 height=456 cellpadding=3 cellspacing=0 border=1 "
      "bordercolor=" +
      page.props.TidewellColor + ">";
  out += "<tr bgcolor=#ffffff>";
  out += "<td class=dtname align=center valign=top width=50 height=456 nowrap><img src=" +
         page.props.ImagePath + "icon_help.gif width=30 height=30 border=0 align=absmiddle ></td>";
  out += "<td class=text align=left valign=top width=560 height=456>";
  // The inner table has no row of its own; browsers supply one.
  out += "<table align=center valign=top width=100% border=0 >";
  out += "<td class=help align=left valign=top >";
  // Rules stand between the entries, none after the last.
  AppendEntry(page, "Owner", "This is the account holder (the owner) of a scheduled item.");
  AppendRule(page);
  AppendEntry(page, "Start Date",
              "Enter a Start Date or click on the Date Picker Icon to select a date from a pop up "
              "calendar for easier selection.");
  AppendRule(page);
  AppendEntry(page, "End Date",
              "Enter a End Date or click on the Date Picker Icon to select a date from a pop up "
              "calendar for easier selection.");
  AppendRule(page);
  AppendEntry(page, "Search Critera",
              "Enter search critera to which you want to find matching items. (max 50 chars)");
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "<!-- HelpScreenSearch End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

#include "items/item_help.h"

#include <string>

#include "component/page.h"
#include "frame/markup.h"

namespace tidewell {
namespace {

// One field's entry: its name in bold, the explanation in dark green, and a grey rule.
void AppendEntry(Page& page, const char* label, const char* explanation) {
  page.PageBuffer += std::string("<b>") + label + ":</b><br>";
  page.PageBuffer += std::string("<font color=#006400 >") + explanation + "</font>";
  page.PageBuffer += "<hr size=1 color=#c0c0c0 >";
}

}  // namespace

void HelpScreenItem(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- HelpScreenItem  Start -->";
  AppendTitleBar(page, "Help On Item Information.", TitleCell::kPlain);
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
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "</td>";
  out += "</tr>";
  out += "</table>";
  out += "<!-- HelpScreenItem End -->";
}

}  // namespace tidewell

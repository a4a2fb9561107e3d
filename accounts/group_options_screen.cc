#include "accounts/group_options_screen.h"

#include <string>
#include <string_view>

#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "views/option_lists.h"

namespace tidewell {
namespace {

std::string Button(std::string_view value) {
  return "<input class=text type=submit name=submit value=\"" + std::string(value) + "\" >";
}

void AppendRow(std::string& out, std::string_view first_cell, std::string_view middle_cell,
               std::string_view button_cell) {
  out += "<tr bgcolor=#DEE7F7>";
  out += first_cell;
  out += middle_cell;
  out += "<td class=text align=center>";
  out += button_cell;
}

void AppendGroupTable(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<br><table cellpadding=1 cellspacing=1 border=0 width=100%>";
  AppendRow(out, "<td width=200 class=text><b>New Group Name:</b></td>",
            "<td class=text><input maxlength=15 class=text type=text name=newgroup size=18 "
            "></td>",
            Button("Add"));
  out += "</td>";
  out += "</tr>";
  AppendRow(out, "<td width=200 class=text><b>Change Group Name:</b></td>",
            "<td class=text><select class=text name=groupid>" + GroupList(page, page.UserGroupId) +
                "</select>&nbsp;<b>To:</b>&nbsp;<input maxlength=15 class=text type=text "
                "name=groupname size=10 ></td>",
            Button("Update"));
  out += "</td>";
  out += "</tr>";
  // The list builder answers "&nbsp;" when no group is without members.
  const std::string unassigned = UnassignedGroupList(page);
  const bool none = unassigned == "&nbsp;";
  AppendRow(out, "<td width=200 class=text><b>None Assigned Groups:</b></td>",
            "<td class=text height=25>" +
                (none ? std::string("&nbsp;<font color=#adadad><b>No Groups Unassigned</b></font>")
                      : "<select class=text name=rgroupid>" + unassigned + "</select>") +
                "</td>",
            none ? "&nbsp;" : Button("Delete"));
  out += "</td>";
  out += "</tr></table>";
}

}  // namespace

void GroupOptionsView(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- GroupOptionsView  Start -->";
  AppendTitleBar(page, "Administrator Group Options.", TitleCell::kPlain);
  AppendFormBodyOpening(page, screens::kGroupHelp);
  out += "<form action=" + ReturningLink(page, screens::kGroupOptions) +
         " method=post name=groupoptions>";
  if (page.Error.Raised()) out += "<font color=#b22222><b>" + page.Error.Text + "</b></font>";
  AppendGroupTable(page);
  out += "<br>" + Button("Back");
  out += "<input type=hidden name=groupaction value=u />";
  out += "</form>";
  AppendFormBodyClosing(page);
  out += "<!-- GroupOptionsView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

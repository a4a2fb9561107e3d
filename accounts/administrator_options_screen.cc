#include "accounts/administrator_options_screen.h"

#include <cmath>
#include <optional>
#include <string>

#include "accounts/account_form.h"
#include "accounts/password_fields.h"
#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/conversions.h"
#include "views/option_lists.h"

namespace tidewell {
namespace {

// --- The values the form shows ---

struct AccountValues {
  std::string username;
  std::string initials;
  std::string password;
  long group_id = 0;  // the group the list marks; 0 marks none
  Variant show_all_group_users;
  DisplaySettings display;
  Variant default_view;
};

// The account UserKey names, as it was loaded.
AccountValues LoadedAccount(const Page& page) {
  const CurrentUser& user = page.User;
  AccountValues values;
  values.username = user.Username;
  values.initials = user.Initials;
  values.password = PasswordStandIn(page, user.Password);
  values.group_id = page.UserGroupId;
  values.show_all_group_users = user.ShowAllGroupUsers;
  values.display = {user.StartHour, user.HighlightTodaysDate, user.HighlightTodaysTime,
                    user.Show12HourDay};
  values.default_view = user.DefaultView;
  return values;
}

// An empty account: no group, the whole group shown, the month view, and the display options
// the page has. The password fields stay empty, so that a new account never takes over the
// password of the account shown before.
AccountValues NewAccount(const Page& page) {
  const Properties& props = page.props;
  AccountValues values;
  values.show_all_group_users = true;
  values.display = {props.DefaultStartHour, props.HighlightTodaysDate, props.HighlightTodaysTime,
                    props.Show12HourDay};
  values.default_view = 0L;
  return values;
}

// A posted group id the list can mark, or 0.
long PostedGroupId(const std::string& text) {
  std::optional<double> id = ParseNumericText(text);
  if (!id || *id != std::floor(*id) || *id < 1 || *id > 2147483647.0) return 0;
  return static_cast<long>(*id);
}

// A refused post's password fields: the stand-in when that is what came back, so the password
// stays as it is; empty when a password was typed, which the page must not carry.
std::string ShownAgain(const Page& page, const std::string& posted) {
  const std::string* stored = page.NewUserMode ? nullptr : page.Stamps.Find(page.UserKey);
  return stored && posted == PasswordStandIn(page, *stored) ? posted : "";
}

// After a refused post: everything as posted, but the name or the initials that clashed.
AccountValues PostedAccount(const Page& page) {
  AccountValues values;
  if (!NameWasTaken(page.Error.Kind)) values.username = page.FormValue("username");
  if (!InitialsWereTaken(page.Error.Kind)) values.initials = page.FormValue("initials");
  values.password = ShownAgain(page, page.FormValue("password"));
  values.group_id = PostedGroupId(page.FormValue("groupid"));
  values.show_all_group_users = page.RequestValue("loadgroupdata");
  values.display = {
      page.RequestValue("userdefaultstarthour"), page.RequestValue("userhighlighttodaysdate"),
      page.RequestValue("userhighlighttodaystime"), page.RequestValue("usershow12hourday")};
  values.default_view = page.FormValue("defaultview");
  return values;
}

AccountValues FormValues(const Page& page) {
  if (page.Error.Raised()) return PostedAccount(page);
  if (page.NewUserMode) return NewAccount(page);
  return LoadedAccount(page);
}

bool ShowsAdministratorMark(const Page& page) {
  if (page.FirstAdministratorMode) return true;
  return page.UserKey == page.AdminKey && !page.NewUserMode;
}

// --- Markup ---

void AppendValidatorForMode(Page& page) {
  std::vector<RequiredField> fields = {{"username", "User"}, {"initials", "Initials"}};
  if (page.FirstAdministratorMode) fields.push_back({"newgroup", "Group"});
  fields.push_back({"password", "Password"});
  fields.push_back({"confirm", "Confirm Password"});
  AppendPasswordValidator(page, fields);
}

std::string FormActionLink(const Page& page) {
  return ReturningLink(page, screens::kAdministratorOptions);
}

// The coloured head row: the first administrator's heading, or the account chooser.
void AppendHeadTable(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<table cellpadding=1 cellspacing=1 border=0 width=100%>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  if (page.FirstAdministratorMode) {
    out += "<td align=center class=mwdname>";
    out += "<b>New Administrator/User Account.</b>";
    out += "</td>";
  } else {
    out += "<td width=200 class=text>";
    out += "<input class=text type=submit name=submit value=\"New User\" >";
    out += "</td>";
    out += "<td class=text>";
    out += "<select class=text name=ownerkey>";
    out += UserList(page);
    out += "</select>";
    out += "&nbsp;<input class=text type=submit name=submit value=\"Change User\" >";
    out += "</td>";
  }
  out += "</tr></table>";
}

std::string GroupContent(Page& page, long group_id) {
  if (page.FirstAdministratorMode) {
    return "<input maxlength=15 class=text type=text name=newgroup size=18 >";
  }
  return "<select class=text name=groupid>" + GroupList(page, group_id) +
         "</select>&nbsp;&nbsp;<b>New Group:</b>&nbsp;<input maxlength=15 class=text type=text "
         "name=newgroup value=\"" +
         EscapeHtml(page.FormValue("newgroup")) + "\" size=15 >";
}

// Name, initials, group and the show-all setting; the last row closes the table.
void AppendAccountTable(Page& page, const AccountValues& values) {
  std::string& out = page.PageBuffer;
  out += "<br><table cellpadding=1 cellspacing=1 border=0 width=100%>";
  AppendAccountRow(page, "<b>User:</b>",
            "<input maxlength=15 class=text type=text name=username value=\"" +
                EscapeHtml(values.username) + "\" size=18 >&nbsp;" +
                (ShowsAdministratorMark(page) ? kAdministratorMark : ""));
  AppendAccountRow(page, "<b>Initials:</b>",
            "<input maxlength=4 class=text type=text name=initials value=\"" +
                EscapeHtml(values.initials) + "\" size=18 >");
  const char* group_label =
      page.FirstAdministratorMode
          ? "<b>Group:</b>"
          : "<b>Group:</b>&nbsp;&nbsp;<input class=text type=submit name=submit value=\"Manage\" >";
  AppendAccountRow(page, group_label, GroupContent(page, values.group_id));
  AppendAccountRow(
      page, "<b>Show All Group Users:</b>",
      BooleanSelect("loadgroupdata", values.show_all_group_users, Selection::kEqualOrNegated));
  out += "</table><br>";
}

void AppendDefaultViewRow(Page& page, const AccountValues& values) {
  std::string& out = page.PageBuffer;
  out += "<span class=text><b>After logging in, show me the</b>&nbsp;";
  out += "<select class=text name=defaultview >";
  out += DefaultViewOptions(values.default_view, Selection::kEqualOrNegated);
  out += "</select>&nbsp;<b>page.</b></span><br><br>";
}

void AppendButtons(Page& page) {
  std::string& out = page.PageBuffer;
  if (page.NewUserMode) {
    out +=
        "<input onclick=\"javascript:return validator(adminoptions)\" class=text type=submit "
        "name=submit value=\"Add New User\" >";
    out += "<input type=hidden name=action value=a />";
    return;
  }
  out += "<table cellpadding=0 cellspacing=0 border=0 width=100% >";
  out += "<tr>";
  out += "<td align=left valign=middle width=50%>";
  out +=
      "<input onclick=\"javascript:return validator(adminoptions)\" class=text type=submit "
      "name=submit value=Update >";
  out += "</td>";
  out += "<td align=right valign=middle width=50%>";
  if (page.UserKey != page.AdminKey) {
    out += "<input class=text type=submit name=submit value=\"Delete This User\" >";
  }
  out += "</td></tr></table>";
  out += "<input type=hidden name=action value=u />";
}

}  // namespace

void AdminOptionsView(Page& page) {
  const AccountValues values = FormValues(page);
  const bool new_account = page.NewUserMode || page.FirstAdministratorMode;
  std::string& out = page.PageBuffer;

  AppendValidatorForMode(page);
  out += "<!-- AdminOptionsView  Start -->";
  AppendTitleBar(page, "Administrator Options.", TitleCell::kPlain);
  AppendFormBodyOpening(page, screens::kUserHelp);
  out += "<form action=" + FormActionLink(page) + " method=post name=adminoptions  >";
  AppendHeadTable(page);
  if (page.Error.Raised()) out += "<font color=#b22222><b>" + page.Error.Text + "</b></font>";
  AppendAccountTable(page, values);
  AppendDisplayOptionTable(page, values.display, Selection::kEqualOrNegated);
  AppendDefaultViewRow(page, values);
  AppendPasswordTable(page, new_account ? "Password:" : "Change Password:",
                      "&nbsp;&nbsp;Confirm Password", values.password);
  out += "<br>";
  AppendButtons(page);
  if (page.FirstAdministratorMode) out += "<input type=hidden name=welcome value=y />";
  out += "</form>";
  AppendFormBodyClosing(page);
  out += "<!-- AdminOptionsView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555));
}

}  // namespace tidewell

#include "accounts/user_options_screen.h"

#include <string>
#include <string_view>

#include "accounts/account_form.h"
#include "accounts/password_fields.h"
#include "frame/markup.h"
#include "page/page.h"
#include "page/screen_links.h"

namespace tidewell {
namespace {

std::string FormActionLink(const Page& page) {
  return ReturningLink(page, screens::kUserOptions);
}

// The show-all setting: a select when the user may switch it, the bare word when it is
// locked by the administrator.
std::string ShowAllGroupUsersValue(const CurrentUser& user) {
  if (!user.MayChangeShowAllGroupUsers) return user.ShowAllGroupUsers ? "True" : "False";
  return BooleanSelect("loadgroupdata", Variant(user.ShowAllGroupUsers ? 1L : 0L),
                       Selection::kEqual);
}

// Name, initials, group and the show-all setting; the last row closes the table.
void AppendAccountTable(Page& page) {
  const CurrentUser& user = page.User;
  std::string& out = page.PageBuffer;
  out += "<br>";
  out += "<table cellpadding=1 cellspacing=1 border=0 width=100%>";
  AppendAccountRow(page, "<b>User:</b>",
            EscapeHtml(user.Username) + "&nbsp;" +
                (page.UserKey == page.AdminKey ? kAdministratorMark : ""));
  AppendAccountRow(page, "<b>Initials:</b>", EscapeHtml(user.Initials));
  AppendAccountRow(page, "<b>Group:</b>", EscapeHtml(user.GroupName));
  AppendAccountRow(page, "<b>Show All Group Users:</b>", ShowAllGroupUsersValue(user));
  out += "</table><br>";
}

Variant Switch(bool on) {
  return Variant(on ? 1L : 0L);
}

// The feed address and the button that replaces it, below the form, while the host serves
// feeds: one row of its own, whose post carries the screen's keys like the form's.
void AppendFeedAddressRow(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<br><table cellpadding=1 cellspacing=1 border=0 width=100%>";
  AppendAccountRow(
      page, "<b>Calendar Feed:</b>",
      "<input class=text type=text name=feedaddress readonly size=60 value=\"" +
          EscapeHtml(page.FeedAddress) + "\" >&nbsp;<form action=" + FormActionLink(page) +
          " method=post name=feedrenewal style=\"display:inline\" onsubmit=\"return confirm("
          "'Replace your feed address? Programs subscribed to the old one stop receiving "
          "your calendar.')\" ><input type=hidden name=" + std::string(kRenewFeedField) +
          " value=" + std::string(kRenewFeedValue) +
          " ><input class=text type=submit value=\"New Address\" ></form>");
  out += "</table>";
}

// How much taller the screen is with the feed row.
constexpr long kFeedRowHeight = 34;

void AppendDefaultViewRow(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<span class=text ><b>After logging in, show me the</b>&nbsp;";
  out += "<select class=text name=defaultview >";
  out += DefaultViewOptions(Variant(page.User.DefaultView), Selection::kEqual);
  out += "</select>&nbsp;<b>page.</b></span><br><br>";
}

}  // namespace

void UserOptionsView(Page& page) {
  const CurrentUser& user = page.User;
  std::string& out = page.PageBuffer;

  AppendPasswordValidator(page, {{"password", "Password"}, {"confirm", "Confirm Password"}});
  out += "<!-- UserOptionsView  Start -->";
  AppendTitleBar(page, EscapeHtml(user.Username) + " Options.", TitleCell::kPlain);
  AppendFormBodyOpening(page, screens::kUserHelp);
  out += "<form action=" + FormActionLink(page) +
         " method=post name=useroptions onsubmit=\"return validator(this)\" >";
  AppendAccountTable(page);
  if (page.props.AllowUserOwnDefaults) {
    AppendDisplayOptionTable(page,
                             {Variant(user.StartHour), Switch(user.HighlightTodaysDate),
                              Switch(user.HighlightTodaysTime), Switch(user.Show12HourDay)},
                             Selection::kEqual);
  }
  AppendDefaultViewRow(page);
  AppendPasswordTable(page, "Change Password:", "&nbsp;&nbsp;Confirm Password:",
                      PasswordStandIn(page, user.Password));
  out += "<br>";
  out += "<input class=text type=submit name=submit value=Update >";
  out += "<input type=hidden name=action value=u />";
  out += "</form>";
  const bool feed_row = page.FeedAddressStart.has_value() && !page.FeedAddress.empty();
  if (feed_row) AppendFeedAddressRow(page);
  AppendFormBodyClosing(page);
  out += "<!-- UserOptionsView End -->";
  ReplaceHeight(page, ByBrowser(page, /*standard=*/545, /*navigator=*/554, /*opera=*/555) +
                          (feed_row ? kFeedRowHeight : 0));
}

}  // namespace tidewell

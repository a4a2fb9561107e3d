#include "frame/header.h"

#include <string>

#include "page/page.h"
#include "page/screen_links.h"
#include "runtime/clock.h"

namespace tidewell {
namespace {

// "&nbsp;" and one image button; the href is written without quotes.
void AppendButton(Page& page, const char* title, const std::string& link, const char* image) {
  page.PageBuffer += "&nbsp;<a title=\"" + std::string(title) + "\" href=" + link +
                     " ><img src=" + page.props.ImagePath + image + "></a>";
}

// A button to one of the screens that return to the view in use: "4/3", "15/0" ...
void AppendReturningButton(Page& page, const char* title, long screen, const char* image) {
  AppendButton(page, title, ReturningLink(page, screen), image);
}

void AppendAddItemButton(Page& page) {
  AppendReturningButton(page, "Add New Item", screens::kItemForm,
                        "nav_additem.gif width=49 height=31 align=absmiddle border=0");
}

void AppendSearchButton(Page& page) {
  AppendReturningButton(page, "Search for Items", screens::kSearch,
                        "nav_search.gif width=49 height=31 align=absmiddle border=0");
}

void AppendUserOptionsButton(Page& page) {
  AppendReturningButton(page, "User Options", screens::kUserOptions,
                        "nav_options.gif width=49 height=31 align=absmiddle border=0");
}

void AppendAdministratorButtonWhenAdministrator(Page& page) {
  if (page.AdminKey.empty()) return;
  AppendReturningButton(page, "Administrator Options", screens::kAdministratorOptions,
                        "nav_admin.gif width=49 height=31 align=absmiddle border=0");
}

// The login screen with the state as it is.
void AppendLoginButton(Page& page) {
  AppendButton(page, "Login User",
               LinkTo(page, screens::kLogin),
               "nav_login.gif width=49 height=31 align=absmiddle border=0");
}

// The login screen on the present date and time, with no key: following it forgets the user.
void AppendLogoutButton(Page& page) {
  AppendButton(page, "Logout / Change User", SignedOutLink(page),
               "nav_login.gif width=49 height=31 align=absmiddle border=0");
}

void AppendButtons(Page& page) {
  if (page.AutoLoginEnabled && !page.AutoLoginReadOnly) {
    AppendAddItemButton(page);
    AppendSearchButton(page);
    AppendUserOptionsButton(page);
    AppendAdministratorButtonWhenAdministrator(page);
  } else if (page.AutoLoginEnabled) {
    AppendSearchButton(page);
  } else if (page.UserKey.empty()) {
    AppendLoginButton(page);
  } else {
    AppendAddItemButton(page);
    AppendSearchButton(page);
    AppendUserOptionsButton(page);
    AppendLogoutButton(page);
    AppendAdministratorButtonWhenAdministrator(page);
  }
}

}  // namespace

void AppendFrameOpening(Page& page) {
  std::string& out = page.PageBuffer;
  out += "<!-- Outer Table Start -->";
  out +=
      "<table align=center valign=top width=620 height=<height></height> cellpadding=0 "
      "cellspacing=0 border=0>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
  out += "<td align=center valign=top>";
  out += "<!-- Header Section Start -->";
  out += "<table align=center width=620 height=50 cellpadding=0 cellspacing=0 border=0>";
  out += "<tr bgcolor=" + page.props.TidewellColor + ">";
}

void AppendButtonSection(Page& page) {
  if (page.ReturnView == screens::kItemForm) page.ReturnView = screens::kTimeView;
  page.PageBuffer += "<!-- Button Section Start -->";
  page.PageBuffer += "<td align=left width=279 nowrap>";
  AppendButtons(page);
  page.PageBuffer += "</td>";
  page.PageBuffer += "<!-- Button Section End -->";
}

void AppendFrameEnd(Page& page) {
  page.PageBuffer += "</td>";
  page.PageBuffer += "</tr>";
  page.PageBuffer += "</table>";
  page.PageBuffer += "<!-- Outer Table End -->";
}

}  // namespace tidewell

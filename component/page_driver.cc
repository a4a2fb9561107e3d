#include "component/page_driver.h"

#include "accounts/account_updates.h"
#include "accounts/administrator_actions.h"
#include "accounts/administrator_check.h"
#include "accounts/group_updates.h"
#include "accounts/key_check.h"
#include "accounts/login.h"
#include "component/link_state.h"
#include "component/screen_dispatch.h"
#include "errors/database_errors.h"
#include "feeds/feed_address.h"
#include "frame/header.h"
#include "frame/navigation_bar.h"
#include "frame/view_tabs.h"
#include "items/item_updates.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "search/search_results.h"
#include "views/date_picker.h"

namespace tidewell {
namespace {

// 424: what the run time said when a script used an object it did not have.
[[noreturn]] void RaiseObjectRequired() {
  throw AutomationError(424, "Object required");
}

void ResolveStartHour(Page& page) {
  if (page.props.DefaultStartHour == -1) page.props.DefaultStartHour = Hour(Now());
}

void OpenWrapperDivs(Page& page) {
  page.PageBuffer =
      page.props.Visible ? "<div id=ws_vis >" : "<div id=ws_vis style=\"display:none\">";
  if (!page.props.Position.empty()) {
    page.PageBuffer += "<div id=ws_pos style=\"" + page.props.Position + "\">";
  } else {
    page.PageBuffer += "<div id=ws_pos >";
  }
}

// The page is written once, at the end: the response takes the buffer over, unless the text
// was asked for too (ViewSource answers it).
void WritePage(Page& page) {
  if (page.response == nullptr) RaiseObjectRequired();
  if (page.ViewSourceMode) {
    page.response->Write(page.PageBuffer);
    return;
  }
  page.response->WriteOwned(std::move(page.PageBuffer));
  page.PageBuffer.clear();
}

// 9a: on the login screen, the page's AutoLogin account, or else the posted login form. A
// failed login leaves the key empty and the "LA" notice pending.
void LogIn(Page& page) {
  if (page.AutoLoginEnabled) {
    page.UserKey = LoginUser(page, page.AutoLoginUserName, page.AutoLoginPassword,
                             LoginSource::kAutoLogin);
  } else if (!page.FormValue("login").empty()) {
    page.UserKey = LoginUser(page, page.FormValue("username"), page.FormValue("password"),
                             LoginSource::kForm);
  }
  // The logout link carries the present date and time, and so does the login form it leads
  // to. The calendar a user signs in to is on that day: without the time of day, which would
  // otherwise stand in the item and search forms' date fields ("11/21/2026 9:30:00 AM" where a
  // ten-character date belongs) until the first link to another day.
  if (!page.UserKey.empty()) page.CurrentDate = DateOnly(page.CurrentDate);
}

// 9g: the user the key names; without one, the first-administrator form when asked for, else
// the welcome screen while no administrator exists (the login screen otherwise stays). After
// a refused administrator action nobody signed in gets the login screen, whatever he asked.
void EstablishUser(Page& page, bool refused) {
  if (!page.UserKey.empty()) {
    LoadCurrentUser(page);
  } else if (refused) {
    return;
  } else if (page.RequestValue("welcome") == "y") {
    page.Screen = screens::kAdministratorOptions;
    page.NewUserMode = true;
    page.FirstAdministratorMode = true;
  } else if (!AdministratorExists(page) && !page.Error.Raised()) {
    page.Screen = screens::kWelcome;
  }
}

// Step 9: at most one posted action, chosen by the screen and the posted fields, then the
// current user. Each subsystem's action is called from here as it is built.
void RunPostedActions(Page& page) {
  if (page.Screen == screens::kLogin) LogIn(page);
  // 9b, 9c: the item form's post on screen 4, and the deletion a link's "d" asked for.
  if (page.Screen == screens::kItemForm && !page.FormValue("action").empty()) {
    ProcessItemAction(page, page.FormValue("action"));
  }
  if (page.DeletionRequested) ProcessItemAction(page, "d");
  // 9d: the administrator options screen's buttons, for administrators only.
  bool refused = false;
  if (!page.Error.Raised() && page.Screen == screens::kAdministratorOptions) {
    refused = !RunAdministratorAction(page);
  }
  // 9e: the group options screen's buttons: "Back" returns to screen 8, the others are
  // administrator actions.
  if (!page.Error.Raised() && page.Screen == screens::kGroupOptions &&
      !page.FormValue("groupaction").empty()) {
    refused = !RunGroupAction(page);
  }
  // 9f: the user's own options, posted from screen 7.
  if (!page.Error.Raised() && page.Screen == screens::kUserOptions &&
      !page.FormValue("action").empty()) {
    ProcessAccount(page, AccountForm::kUserOptions);
  }
  if (!page.Error.Raised()) EstablishUser(page, refused);
  // The administrator screens are drawn for administrators only; anyone else, the login
  // screen.
  GuardAdministratorScreens(page);
  // From here on the page writes links: the keys it carries are known to be whose they are.
  SettleKeyStamps(page);
  // The user options screen's feed address, renewed when its button posted.
  PrepareFeedAddress(page);
  // 9g: the search on screen 15, once the searcher is known.
  if (!page.Error.Raised() && page.Screen == screens::kSearch &&
      !page.FormValue("action").empty()) {
    ProcessSearch(page);
  }
}

void AppendViewTabs(Page& page) {
  switch (SelectViewTabs(page.Screen, page.ReturnView)) {
    case ViewTabs::kMonth:
      return AppendMonthTabs(page);
    case ViewTabs::kWeek:
      return AppendWeekTabs(page);
    case ViewTabs::kDay:
      return AppendDayTabs(page);
    case ViewTabs::kTime:
      return AppendTimeTabs(page);
    case ViewTabs::kNone:
      return;
  }
}

// Step 10: frame, buttons, navigation, the screen, frame end and view tabs, in page order.
void AssemblePage(Page& page) {
  AppendFrameOpening(page);
  AppendButtonSection(page);
  AppendNavigationBar(page);
  DispatchScreen(page);
  AppendFrameEnd(page);
  AppendViewTabs(page);
}

}  // namespace

void RunPageDriver(Page& page) {
  if (page.request == nullptr) RaiseObjectRequired();
  ResolveStartHour(page);
  page.UserBanner = "&nbsp;";
  page.BrowserKind = BrowserKindOf(page.request->ServerVariables("HTTP_USER_AGENT"));
  OpenWrapperDivs(page);
  page.ScriptName = ScriptNameOf(page.request->ServerVariables("URL"));
  RestoreLinkState(page);

  if (page.Screen == screens::kDatePicker) {
    // The pop-up stands alone: no frame, no database, no closing divs, and written even when
    // only the text was asked for.
    DatePicker(page);
    WritePage(page);
    return;
  }

  OpenDatabase(page);
  if (!page.Error.Raised()) ConfirmLinkKeys(page);
  if (!page.Error.Raised()) RunPostedActions(page);
  AssemblePage(page);
  CloseDatabase(page);
  page.PageBuffer += "</div>";
  page.PageBuffer += "</div>";
  if (!page.ViewSourceMode) WritePage(page);
}

}  // namespace tidewell

#include "component/page_driver.h"

#include "component/link_state.h"
#include "component/page.h"
#include "component/screen_dispatch.h"
#include "data/open_database.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"
#include "runtime/dates.h"

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

void WritePage(Page& page) {
  if (page.response == nullptr) RaiseObjectRequired();
  page.response->Write(page.PageBuffer);
}

// Step 9: at most one posted action, chosen by the screen and the posted fields, then the
// current user. Each subsystem's action is called from here as it is built: login on screen 6,
// item updates on screen 4 and for a deletion link, account updates on screens 8 and 7, group
// updates on screen 10, the search on screen 15.
void RunPostedActions(Page& page) {
  (void)page;
}

// Step 10: frame, buttons, navigation, the screen, frame end and view tabs, in page order.
// The frame pieces come with the page frame; the screens fill the dispatcher's table.
void AssemblePage(Page& page) {
  DispatchScreen(page);
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
    // only the text was asked for. The picker's month grid is drawn here once views/ has it.
    WritePage(page);
    return;
  }

  OpenDatabase(page);
  if (!page.ErrorFlag) RunPostedActions(page);
  AssemblePage(page);
  CloseDatabase(page);
  page.PageBuffer += "</div>";
  page.PageBuffer += "</div>";
  if (!page.ViewSourceMode) WritePage(page);
}

}  // namespace tidewell

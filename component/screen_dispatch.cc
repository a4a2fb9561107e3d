#include "component/screen_dispatch.h"

#include "accounts/login_screen.h"
#include "accounts/welcome_screen.h"
#include "data/error_screen.h"

namespace tidewell {

const ScreenTable& Screens() {
  static const ScreenTable table = {
      nullptr,        // 0 month view
      nullptr,        // 1 week view
      nullptr,        // 2 day view
      nullptr,        // 3 time view
      nullptr,        // 4 item form
      nullptr,        // 5 date picker: drawn alone by the driver
      LoginScreen,    // 6 login
      nullptr,        // 7 user options
      nullptr,        // 8 administrator options
      WelcomeScreen,  // 9 welcome
      nullptr,        // 10 group options
      nullptr,        // 11 user help
      nullptr,        // 12 group help
      nullptr,        // 13 item help
      ErrorScreen,    // 14 database error
      nullptr,        // 15 search
      nullptr,        // 16 search help
  };
  return table;
}

namespace {

void DrawOnce(Page& page, const ScreenTable& table) {
  if (page.Screen < 0 || page.Screen >= screens::kCount) return;
  if (ScreenProcedure draw = table[static_cast<size_t>(page.Screen)]) draw(page);
}

}  // namespace

void DispatchScreen(Page& page, const ScreenTable& table) {
  DrawOnce(page, table);
  if (page.ErrorFlag && page.ErrorKind == "DS") DrawOnce(page, table);
}

ViewTabs SelectViewTabs(long screen, long return_view) {
  switch (screen) {
    case screens::kMonthView:
      return ViewTabs::kMonth;
    case screens::kWeekView:
      return ViewTabs::kWeek;
    case screens::kDayView:
      return ViewTabs::kDay;
    case screens::kTimeView:
      return ViewTabs::kTime;
    case screens::kItemForm:
    case screens::kUserOptions:
    case screens::kAdministratorOptions:
    case screens::kGroupOptions:
    case screens::kUserHelp:
    case screens::kGroupHelp:
    case screens::kItemHelp:
    case screens::kSearch:
    case screens::kSearchHelp:
      switch (return_view) {
        case 0:
          return ViewTabs::kMonth;
        case 1:
          return ViewTabs::kWeek;
        case 2:
          return ViewTabs::kDay;
        default:
          return ViewTabs::kTime;
      }
    default:
      return ViewTabs::kNone;
  }
}

}  // namespace tidewell

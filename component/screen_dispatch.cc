#include "component/screen_dispatch.h"

#include "accounts/account_help.h"
#include "accounts/administrator_options_screen.h"
#include "accounts/group_options_screen.h"
#include "accounts/login_screen.h"
#include "accounts/user_options_screen.h"
#include "accounts/welcome_screen.h"
#include "errors/error_screen.h"
#include "items/item_form.h"
#include "items/item_help.h"
#include "search/search_help.h"
#include "search/search_screen.h"
#include "views/day_view.h"
#include "views/month_view.h"
#include "views/time_view.h"
#include "views/week_view.h"

namespace tidewell {

const ScreenTable& Screens() {
  static const ScreenTable table = {
      MonthView,         // 0 month view
      WeekView,          // 1 week view
      DayView,           // 2 day view
      TimeView,          // 3 time view
      AddModifyView,     // 4 item form
      nullptr,           // 5 date picker: drawn alone by the driver
      LoginScreen,       // 6 login
      UserOptionsView,   // 7 user options
      AdminOptionsView,  // 8 administrator options
      WelcomeScreen,     // 9 welcome
      GroupOptionsView,  // 10 group options
      HelpScreenUser,    // 11 user help
      HelpScreenGroup,   // 12 group help
      HelpScreenItem,    // 13 item help
      ErrorScreen,       // 14 database error
      SearchScreenView,  // 15 search
      HelpScreenSearch,  // 16 search help
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
  if (page.Error.Kind == ErrorKind::kDataRead) DrawOnce(page, table);
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

#pragma once

#include <array>

#include "page/page.h"

namespace tidewell {

// Draws one screen into the page.
using ScreenProcedure = void (*)(Page&);

// The procedure of each screen code. An entry left empty draws nothing: the date picker (5)
// is drawn before the frame by the driver, and a subsystem not built yet leaves its screens
// empty.
using ScreenTable = std::array<ScreenProcedure, screens::kCount>;
const ScreenTable& Screens();

// Draws the screen `page.Screen` names (codes 17 and above draw nothing). When a list
// statement failed while it drew, the error screen has been selected and is drawn once more
// after it; only once, since the error screen clears neither the flag nor the kind.
void DispatchScreen(Page& page, const ScreenTable& table = Screens());

enum class ViewTabs { kNone, kMonth, kWeek, kDay, kTime };

// The tab strip under a screen: the calendar views their own, the forms and help screens
// that of the view they return to, the picker, login, welcome and error screens none.
ViewTabs SelectViewTabs(long screen, long return_view);

}  // namespace tidewell

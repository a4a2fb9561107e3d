#pragma once

namespace tidewell {

struct Page;

// Screen 9: shown while no account is an administrator. Its one button posts "welcome" = "y",
// which opens the form that creates the first administrator.
void WelcomeScreen(Page& page);

}  // namespace tidewell

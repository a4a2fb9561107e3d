#pragma once

namespace tidewell {

struct Page;

// Screen 6: the form a visitor signs in with (user name and password, at most 15 characters
// each, both required by a script in the browser). After a failed login the invalid-login
// notice stands above the prompt. The form posts "login" = "y" back to the page.
void LoginScreen(Page& page);

}  // namespace tidewell

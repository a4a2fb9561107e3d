#pragma once

#include <string_view>

namespace tidewell {

struct Page;

// Screen 7: the signed-in user's own account. Name, initials and group are shown as text
// (with the "(Administrator)" mark when the user key is the administrator key); the
// show-all-group-users setting is a select when the user may change it and the word "True" or
// "False" when it is locked. The display options (start hour and three switches) appear only
// when the page allows users their own defaults. The default view select and both password
// fields, pre-filled with the stored password, are always there. The form posts
// "action" = "u" back to screen 7, where the account processing stores it in its user form
// (accounts/account_updates.h). User text is escaped.
//
// While the host serves feeds and the page holds the user's feed address, one more row below
// the form shows the address with a button that posts kRenewFeedField = kRenewFeedValue to
// screen 7 with the screen's keys (feeds/feed_address.h replaces the token then); otherwise the
// screen is exactly as described above.
void UserOptionsView(Page& page);

// The field the feed row's button posts.
inline constexpr std::string_view kRenewFeedField = "feedaction";
inline constexpr std::string_view kRenewFeedValue = "renew";

}  // namespace tidewell

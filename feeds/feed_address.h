#pragma once

namespace tidewell {

struct Page;

// For the user options screen while the host serves feeds (Page::FeedAddressStart): replaces
// the signed-in user's token when the screen's renew button posted, then puts his address in
// Page::FeedAddress, making his token on first use. Runs after the link keys were confirmed
// against the account, so a post with a forged, expired or foreign key (no UserKey then)
// renews nothing. A failed statement becomes the pending kDatabaseRefused error.
void PrepareFeedAddress(Page& page);

}  // namespace tidewell

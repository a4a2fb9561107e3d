#include "feeds/feed_address.h"

#include "accounts/user_options_screen.h"
#include "data/database_error.h"
#include "errors/database_errors.h"
#include "feeds/feed_tokens.h"
#include "feeds/site_time_zone.h"
#include "page/page.h"

namespace tidewell {

void PrepareFeedAddress(Page& page) {
  if (!page.FeedAddressStart || page.Error.Raised() || page.UserKey.empty() || !page.Connection ||
      page.Screen != screens::kUserOptions) {
    return;
  }
  try {
    const long long now = ClockUnixSeconds();
    const std::string token = page.FormValue(kRenewFeedField) == kRenewFeedValue
                                  ? RenewFeedToken(*page.Connection, page.UserKey, now)
                                  : FeedTokenFor(*page.Connection, page.UserKey, now);
    page.FeedAddress = *page.FeedAddressStart + token + ".ics";
  } catch (const ado::DatabaseError& error) {
    TrapUpdateError(page, error);
  }
}

}  // namespace tidewell

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "feeds/site_time_zone.h"
#include "page/properties.h"

namespace tidewell {

namespace ado {
class Connection;
}

// Where and how a site's feeds are read: the page's database and the site's keys.
struct FeedSource {
  std::string connection_string;
  ASPDataServer dialect = ASPDataServer::Access;
  SiteTimeZone zone;
  long days_back = 90;
  long days_ahead = 400;
};

// One feed as served: the body and its validators.
struct FeedDocument {
  std::string body;
  std::string etag;             // strong, quoted: a hash of the body
  long long last_modified = 0;  // Unix seconds when a body of this content was first served
};

// The feed the token opens: every item from `today` - days_back to `today` + days_ahead that
// the token's account sees in his own views (his items, and his group's with the show-all
// option), written by WriteFeed. The time a body of new content is first served is recorded
// with the token, so that every server gives the same DTSTAMP, ETag and Last-Modified for the
// same content. Nothing for a malformed token (without asking the database) or one no account
// has. Throws ado::DatabaseError.
std::optional<FeedDocument> ReadFeed(const FeedSource& source, std::string_view token,
                                     long long now);

// The site's identity for UIDs: made once, kept in TidewellSettings, shared by its servers.
std::string FeedSiteIdentity(ado::Connection& connection);

}  // namespace tidewell

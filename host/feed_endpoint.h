#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/feed_document.h"
#include "host/config.h"
#include "host/http_server.h"

namespace tidewell {

// The feed addresses beside every page: "<page path>/feed/<token>.ics" ("/feed/<token>.ics"
// for the page at "/"), answered while the Feeds key is on. They never draw a screen.
//
//   200  text/calendar; charset=utf-8, the feed (feeds/feed_document.h), with a strong ETag
//        (a hash of the body: every server gives the same one for the same body),
//        Last-Modified (when a body of this content was first served, kept with the token)
//        and Cache-Control "private, max-age=300": a subscribing program may keep it five
//        minutes and then asks again with If-None-Match, which costs a 304.
//   304  the same validators and no body, when If-None-Match names the ETag (or "*"), or,
//        without If-None-Match, when If-Modified-Since is not before Last-Modified.
//   404  the site's ordinary "Not found." for a malformed token, one never made, one replaced
//        and one whose account is gone: one indexed lookup decides all of them alike.
//   405  for other methods than GET and HEAD.
class FeedEndpoint {
 public:
  explicit FeedEndpoint(const SiteConfig& config);

  // The answer when `request` asks for a feed address of a configured page while feeds are
  // on; nothing otherwise (then the site goes on to its other paths). Throws
  // ado::DatabaseError when the database fails.
  std::optional<HttpAnswer> Answer(const HttpRequest& request) const;

 private:
  // A page's feeds: where their paths start and the database and window they are read from,
  // worked out once from the configuration rather than for every request.
  struct PageFeeds {
    std::string path_start;
    FeedSource source;
  };
  bool on_;
  std::vector<PageFeeds> pages_;
};

// Where the feed addresses of `page` start, as the user options screen shows them: the
// PublicAddress key's origin when set, else the scheme and Host the request came with (from
// X-Forwarded-Proto and X-Forwarded-Host when the peer is one of the TrustedProxies), then the
// page's feed path, e.g. "https://cal.example.org/feed/". Without a usable Host, the path
// alone. Nothing while feeds are off.
std::optional<std::string> FeedAddressStart(const SiteConfig& config, const PageConfig& page,
                                            const HttpRequest* request);

// The feed path of a page: its path with "/" added when it lacks one, then "feed/".
std::string FeedPathStart(std::string_view page_path);

// HTTP dates (IMF-fixdate, "Sun, 06 Nov 1994 08:49:37 GMT") and back; nothing for text that
// is no such date.
std::string HttpDate(long long unix_seconds);
std::optional<long long> ParseHttpDate(std::string_view text);

}  // namespace tidewell

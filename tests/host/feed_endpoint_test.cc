// Where feed addresses start, as the screen shows them, and the HTTP dates of the validators.

#include "host/feed_endpoint.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

HttpRequest RequestFrom(const std::string& peer,
                        std::vector<std::pair<std::string, std::string>> headers) {
  HttpRequest request;
  request.method = "GET";
  request.path = "/";
  request.peer_address = peer;
  request.remote_address = peer;
  request.headers = std::move(headers);
  return request;
}

TEST(FeedAddressStart, NothingWhileFeedsAreOff) {
  SiteConfig config = ParseConfig("PublicAddress = https://cal.example.org\n", "site.conf");
  HttpRequest request = RequestFrom("127.0.0.1", {{"Host", "cal.example.org"}});
  EXPECT_EQ(FeedAddressStart(config, config.pages[0], &request), std::nullopt);
}

TEST(FeedAddressStart, ThePublicAddressWinsOverTheRequest) {
  SiteConfig config = ParseConfig(
      "Feeds = on\nPublicAddress = https://example.org/calendar/\n[page /crew]\n", "site.conf");
  HttpRequest request = RequestFrom("127.0.0.1", {{"Host", "elsewhere.example"}});
  EXPECT_EQ(FeedAddressStart(config, config.pages[0], &request),
            "https://example.org/calendar/feed/");
  EXPECT_EQ(FeedAddressStart(config, config.pages[1], &request),
            "https://example.org/calendar/crew/feed/");
  EXPECT_EQ(FeedAddressStart(config, config.pages[1], nullptr),
            "https://example.org/calendar/crew/feed/");
}

TEST(FeedAddressStart, ForwardedSchemeAndHostOnlyFromTrustedProxies) {
  SiteConfig config = ParseConfig("Feeds = on\nTrustedProxies = 10.0.0.1\n", "site.conf");
  const std::vector<std::pair<std::string, std::string>> headers = {
      {"Host", "backend:8080"},
      {"X-Forwarded-Proto", "https"},
      {"X-Forwarded-Host", "cal.example.org, backend:8080"}};
  HttpRequest proxied = RequestFrom("10.0.0.1", headers);
  EXPECT_EQ(FeedAddressStart(config, config.pages[0], &proxied), "https://cal.example.org/feed/");
  HttpRequest direct = RequestFrom("192.0.2.7", headers);
  EXPECT_EQ(FeedAddressStart(config, config.pages[0], &direct), "http://backend:8080/feed/");
  // A Host that is no host gives the path alone rather than a broken address.
  HttpRequest odd = RequestFrom("192.0.2.7", {{"Host", "cal.example.org\"><script>"}});
  EXPECT_EQ(FeedAddressStart(config, config.pages[0], &odd), "/feed/");
}

TEST(FeedAddressStart, APublicAddressMustBeAPlainAddress) {
  for (const char* bad : {"cal.example.org", "https://", "https://cal.example.org/\"x",
                          "ftp://cal.example.org", "https://cal.example.org/?x"}) {
    EXPECT_THROW(ParseConfig(std::string("PublicAddress = ") + bad + "\n", "site.conf"),
                 ConfigError)
        << bad;
  }
}

TEST(HttpDate, WritesAndReadsImfFixdates) {
  EXPECT_EQ(HttpDate(784111777), "Sun, 06 Nov 1994 08:49:37 GMT");
  EXPECT_EQ(HttpDate(1774008000), "Fri, 20 Mar 2026 12:00:00 GMT");
  EXPECT_EQ(ParseHttpDate("Sun, 06 Nov 1994 08:49:37 GMT"), 784111777);
  EXPECT_EQ(ParseHttpDate(HttpDate(1774008000)), 1774008000);
  EXPECT_EQ(ParseHttpDate("Sunday, 06-Nov-94 08:49:37 GMT"), std::nullopt);
  EXPECT_EQ(ParseHttpDate("Sun, 06 Xyz 1994 08:49:37 GMT"), std::nullopt);
  EXPECT_EQ(ParseHttpDate(""), std::nullopt);
}

}  // namespace
}  // namespace tidewell

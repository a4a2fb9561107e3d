#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/access_log.h"
#include "host/ip_networks.h"

namespace tidewell {

// A configuration file: "Name = Value" lines. Names are the component's properties (set in
// file order after OnStartPage, as a page's script did) or host keys. Lines before any
// section configure the page at "/"; a "[page /path]" section configures another path,
// starting from the top lines and adding its own. A line whose first non-blank character is
// "#" is a comment; a "#" inside a value belongs to the value (#rrggbb colours).
//
// Host keys: Listen (host:port), Locale (en-US, en-GB), LinkSecret, LinkLifetime (seconds),
// AssetFolder, the server's limits (RequestTimeout, IdleTimeout, MaxConnections, Workers) and
// its headers (FrameAncestors, ContentSecurityPolicy), what it tells a monitor (Metrics,
// MetricsAllow, LogFormat), whom it believes (TrustedProxies) and the feeds (Feeds, TimeZone,
// FeedDaysBack, FeedDaysAhead, PublicAddress) apply to the whole server; PageTemplate
// (a file) and AutoLogin (user, password, readonly) to the page they stand in.

struct PropertySetting {
  std::string name;
  std::string value;
  int line = 0;
};

struct AutoLoginSetting {
  std::string user;
  std::string password;
  bool read_only = false;
};

struct PageConfig {
  std::string path = "/";
  std::vector<PropertySetting> properties;
  std::string page_template;  // the template's text
  std::optional<AutoLoginSetting> auto_login;

  // The last value the page gives the property (names without regard to case), or "".
  std::string PropertyValue(std::string_view name) const;
};

struct SiteConfig {
  std::string file;  // the file it was read from; "" for the built-in defaults
  std::string listen = "127.0.0.1:8080";
  std::string locale = "en-US";
  std::optional<std::string> link_secret;
  long link_lifetime_seconds = 12 * 60 * 60;
  std::string asset_folder;
  // Seconds a request's headers and body may take to arrive, all told.
  long request_timeout_seconds = 10;
  // Seconds a kept-alive connection may wait for its next request (and a client may take to
  // receive an answer).
  long idle_timeout_seconds = 30;
  long max_connections = 10000;
  // Threads that run the component, as Workers sets them; while 0, WorkersOf chooses.
  long workers = 0;
  // Origins allowed to show the pages in a frame ("https://intranet.example"); none by default.
  std::vector<std::string> frame_ancestors;
  // Replaces the built-in Content-Security-Policy (host/security_headers.h) when set.
  std::optional<std::string> content_security_policy;
  // /metrics answers (host/service_endpoints.h), to loopback clients and these networks.
  bool metrics = false;
  std::vector<IpNetwork> metrics_allow;
  LogFormat log_format = LogFormat::kText;
  // Proxies whose X-Forwarded-For names the client (host/client_address.h); none by default.
  std::vector<IpNetwork> trusted_proxies;
  // Each account's private iCalendar feed of its items (off: no feed path, no feed row).
  bool feeds = false;
  // The IANA zone the items' dates and hours are wall times in; DefaultConfig takes the
  // machine's (feeds/site_time_zone.h SystemTimeZoneName).
  std::string time_zone = "UTC";
  // The feed's window, in days before and after today.
  long feed_days_back = 90;
  long feed_days_ahead = 400;
  // The site's address as its users reach it ("https://cal.example.org"), for the feed
  // addresses the user options screen shows; "" builds them from each request's Host.
  std::string public_address;
  std::vector<PageConfig> pages;  // the page at "/" first

  const PageConfig* FindPage(std::string_view path) const;
};

// A line that cannot be used: the message names the file and the line.
class ConfigError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads and checks a configuration: every property value is tried on a component, templates
// are read, unknown names and bad values throw ConfigError.
SiteConfig LoadConfig(const std::string& path);
SiteConfig ParseConfig(const std::string& text, const std::string& file_name);

// Where a request's database work runs: on the thread that runs the request (SQLite), or in
// another process the thread waits for (PostgreSQL).
enum class DatabaseWork { kOnTheRequestsThread, kInAnotherProcess };

// Threads that run the component unless Workers says otherwise, for the processors this
// process may run on (at least 2, at most 64). A request on SQLite keeps its processor busy
// from start to end, so one thread for each processor: more only take turns on the processors
// and stretch every request's time. A request on PostgreSQL also waits for the engine, which
// a second thread for each processor covers.
long DefaultWorkers(DatabaseWork work);

// Threads that read and write the connections: one for every four processors this process may
// run on, at least 1, at most 16. Reading and writing take a small part of a request's time
// (the calendar's work the rest), and every thread more takes turns on the processors with the
// workers: on two processors a second one cost the month view 4% more processor time per request
// and a longer wait at the 99th percentile.
long EventLoopThreads();

// The Workers setting, or the default for the site's pages: work in another process when any
// page's ConnectionString names a provider other than SQLite (or none that can be read).
long WorkersOf(const SiteConfig& config);

// The configuration without a file: one page at "/" with the defaults.
SiteConfig DefaultConfig();

// The host keys by name, as the file spells them.
std::vector<std::string_view> HostKeyNames();

// Applies the TIDEWELL_<NAME> variables of `environment` (a NULL-terminated "NAME=value"
// list, such as environ) to `config`: NAME is a property or a host key in upper case
// (TIDEWELL_CONNECTIONSTRING, TIDEWELL_LINKSECRET), and TIDEWELL_<NAME>_FILE reads the value
// from a file, for secrets. Each wins over the file: a page property applies to every page.
// Other TIDEWELL_ variables are left alone. A bad value throws ConfigError naming the
// variable. Answers the variables used, in the order applied.
std::vector<std::string> ApplyEnvironment(SiteConfig& config, char** environment);

}  // namespace tidewell

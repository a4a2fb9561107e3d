#include "host/config.h"

#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <thread>

#include "feeds/site_time_zone.h"

namespace tidewell {
namespace {

std::string ErrorOf(const std::string& text) {
  try {
    ParseConfig(text, "site.conf");
  } catch (const ConfigError& e) {
    return e.what();
  }
  return "";
}

TEST(Config, EmptyFileGivesOnePageWithTheDefaults) {
  SiteConfig config = ParseConfig("", "site.conf");
  ASSERT_EQ(config.pages.size(), 1u);
  EXPECT_EQ(config.pages[0].path, "/");
  EXPECT_EQ(config.listen, "127.0.0.1:8080");
  EXPECT_EQ(config.locale, "en-US");
  EXPECT_NE(config.pages[0].page_template.find("{{tidewell}}"), std::string::npos);
}

TEST(Config, PropertiesKeepFileOrderAndLines) {
  SiteConfig config = ParseConfig("Visible = True\n\n  TidewellColor=#123456\n", "site.conf");
  const auto& props = config.pages[0].properties;
  ASSERT_EQ(props.size(), 2u);
  EXPECT_EQ(props[0].name, "Visible");
  EXPECT_EQ(props[0].value, "True");
  EXPECT_EQ(props[1].name, "TidewellColor");
  EXPECT_EQ(props[1].value, "#123456");
  EXPECT_EQ(props[1].line, 3);
}

TEST(Config, HashStartsACommentOnlyAtTheLineStart) {
  SiteConfig config = ParseConfig("# a comment\n   # another\nTidewellColor = #abcdef\n", "f");
  ASSERT_EQ(config.pages[0].properties.size(), 1u);
  EXPECT_EQ(config.pages[0].properties[0].value, "#abcdef");
}

TEST(Config, BooleansTakeTrueFalseAndNumbers) {
  EXPECT_NO_THROW(ParseConfig("Visible = -1\nHexQueryString = 0\nShow12HourDay = false\n", "f"));
}

TEST(Config, UnknownNameStopsWithItsLine) {
  EXPECT_EQ(ErrorOf("Visible = True\nColour = red\n"), "site.conf:2: unknown name Colour");
}

TEST(Config, BadValueStopsWithItsLine) {
  EXPECT_EQ(ErrorOf("\nVisible = maybe\n"),
            "site.conf:2: bad value for Visible: maybe (Type mismatch)");
  EXPECT_NE(ErrorOf("DefaultStartHour = noon\n").find("site.conf:1:"), std::string::npos);
}

TEST(Config, MonitoringKeysAreOffAndEmptyByDefault) {
  SiteConfig config = ParseConfig("", "site.conf");
  EXPECT_FALSE(config.metrics);
  EXPECT_TRUE(config.metrics_allow.empty());
  EXPECT_TRUE(config.trusted_proxies.empty());
  EXPECT_EQ(config.log_format, LogFormat::kText);
}

TEST(Config, MonitoringKeysTakeTheirValues) {
  SiteConfig config = ParseConfig(
      "Metrics = on\nMetricsAllow = 10.0.0.0/8, 2001:db8::/32\nLogFormat = json\n"
      "TrustedProxies = 192.0.2.1 ::1\n",
      "site.conf");
  EXPECT_TRUE(config.metrics);
  EXPECT_EQ(config.metrics_allow.size(), 2u);
  EXPECT_TRUE(NetworksContain(config.metrics_allow, "10.9.9.9"));
  EXPECT_EQ(config.log_format, LogFormat::kJson);
  EXPECT_TRUE(NetworksContain(config.trusted_proxies, "::1"));
  EXPECT_FALSE(ParseConfig("Metrics = off\n", "f").metrics);
}

TEST(Config, BadMonitoringValuesStopWithTheirLine) {
  EXPECT_EQ(ErrorOf("\nMetrics = yes\n"), "site.conf:2: Metrics is on or off, not yes");
  EXPECT_EQ(ErrorOf("LogFormat = xml\n"), "site.conf:1: LogFormat is text or json, not xml");
  EXPECT_EQ(ErrorOf("Visible = True\nMetricsAllow = 10.0.0.0/40\n"),
            "site.conf:2: MetricsAllow lists addresses and networks such as 10.0.0.0/8 or ::1: "
            "10.0.0.0/40: the prefix length is a number from 0 to 32");
  EXPECT_EQ(ErrorOf("TrustedProxies = proxy.example\n"),
            "site.conf:1: TrustedProxies lists addresses and networks such as 10.0.0.0/8 or ::1: "
            "proxy.example is not an IP address or network");
  EXPECT_EQ(ErrorOf("[page /metrics]\n"),
            "site.conf:1: /metrics is the server's own; a page cannot take it");
  EXPECT_EQ(ErrorOf("[page /x]\nMetrics = on\n"),
            "site.conf:2: Metrics applies to the whole server; set it before any [page] section");
}

TEST(Config, FeedKeysAreOffWithTheMachinesZoneAndAWindowByDefault) {
  SiteConfig config = ParseConfig("", "site.conf");
  EXPECT_FALSE(config.feeds);
  EXPECT_EQ(config.time_zone, SystemTimeZoneName());
  EXPECT_EQ(config.feed_days_back, 90);
  EXPECT_EQ(config.feed_days_ahead, 400);
}

TEST(Config, FeedKeysTakeTheirValues) {
  SiteConfig config = ParseConfig(
      "Feeds = on\nTimeZone = Europe/Berlin\nFeedDaysBack = 7\nFeedDaysAhead = 30\n", "site.conf");
  EXPECT_TRUE(config.feeds);
  EXPECT_EQ(config.time_zone, "Europe/Berlin");
  EXPECT_EQ(config.feed_days_back, 7);
  EXPECT_EQ(config.feed_days_ahead, 30);
  EXPECT_EQ(ParseConfig("TimeZone = UTC\n", "f").time_zone, "UTC");
}

TEST(Config, BadFeedValuesStopWithTheirLine) {
  EXPECT_EQ(ErrorOf("Feeds = yes\n"), "site.conf:1: Feeds is on or off, not yes");
  EXPECT_EQ(ErrorOf("\nTimeZone = Europe/Atlantis\n"),
            "site.conf:2: TimeZone names a zone such as Europe/Berlin or UTC; unknown time zone "
            "Europe/Atlantis");
  EXPECT_EQ(ErrorOf("FeedDaysBack = -1\n"),
            "site.conf:1: FeedDaysBack is a whole number from 0 to 3660, not -1");
  EXPECT_EQ(ErrorOf("FeedDaysAhead = soon\n"), "site.conf:1: expected a whole number, not soon");
  EXPECT_EQ(ErrorOf("[page /x]\nTimeZone = UTC\n"),
            "site.conf:2: TimeZone applies to the whole server; set it before any [page] section");
}

// Runs `read` on a thread of its own that may run on one processor only: what the server
// chooses on a machine, or in a container, of one processor.
template <class Read>
void OnOneProcessor(Read read) {
  std::thread([&] {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    read();
  }).join();
}

long ProcessorsAllowed() {
  cpu_set_t allowed;
  EXPECT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
  return CPU_COUNT(&allowed);
}

// One thread for each processor the server may run on when the database work runs on the
// request's thread, two when it runs in another process; never fewer than two.
TEST(Config, DefaultWorkersFollowTheProcessorsAllowedAndWhereTheDatabaseWorks) {
  long pinned_here = 0;
  long pinned_elsewhere = 0;
  OnOneProcessor([&] {
    pinned_here = DefaultWorkers(DatabaseWork::kOnTheRequestsThread);
    pinned_elsewhere = DefaultWorkers(DatabaseWork::kInAnotherProcess);
  });
  EXPECT_EQ(pinned_here, 2);
  EXPECT_EQ(pinned_elsewhere, 2);
  const long processors = ProcessorsAllowed();
  EXPECT_EQ(DefaultWorkers(DatabaseWork::kOnTheRequestsThread), std::clamp(processors, 2L, 64L));
  EXPECT_EQ(DefaultWorkers(DatabaseWork::kInAnotherProcess), std::clamp(2 * processors, 2L, 64L));
}

// One thread that reads and writes connections for every four processors, at least one.
TEST(Config, EventLoopThreadsFollowTheProcessorsAllowed) {
  long pinned = 0;
  OnOneProcessor([&] { pinned = EventLoopThreads(); });
  EXPECT_EQ(pinned, 1);
  EXPECT_EQ(EventLoopThreads(), std::clamp(ProcessorsAllowed() / 4, 1L, 16L));
}

// Without Workers, the site's engines choose: SQLite on every page runs its work on the
// request's thread; PostgreSQL, or a connection string that cannot be read, on any page counts
// as work in another process. Workers wins over both.
TEST(Config, WorkersOfASiteFollowItsPagesEngines) {
  const long here = DefaultWorkers(DatabaseWork::kOnTheRequestsThread);
  const long elsewhere = DefaultWorkers(DatabaseWork::kInAnotherProcess);
  EXPECT_EQ(WorkersOf(ParseConfig("ConnectionString = Provider=SQLite;Data Source=a.db\n", "f")),
            here);
  EXPECT_EQ(
      WorkersOf(ParseConfig("ConnectionString = provider=sqlite;Data Source=a.db\n"
                            "[page /b]\nConnectionString = Provider=SQLite;Data Source=b.db\n",
                            "f")),
      here);
  EXPECT_EQ(WorkersOf(ParseConfig("ConnectionString = Provider=SQLite;Data Source=a.db\n"
                                  "[page /b]\nConnectionString = Provider=PostgreSQL;host=db\n",
                                  "f")),
            elsewhere);
  EXPECT_EQ(WorkersOf(ParseConfig("", "f")), elsewhere);
  EXPECT_EQ(
      WorkersOf(ParseConfig("ConnectionString = Provider=PostgreSQL;host=db\nWorkers = 3\n", "f")),
      3);
}

TEST(Config, ServerLimitsHaveDefaultsAndTakeWholeNumbers) {
  SiteConfig defaults = ParseConfig("", "site.conf");
  EXPECT_EQ(defaults.request_timeout_seconds, 10);
  EXPECT_EQ(defaults.idle_timeout_seconds, 30);
  EXPECT_EQ(defaults.max_connections, 10000);
  EXPECT_EQ(defaults.workers, 0);  // chosen by WorkersOf
  SiteConfig config = ParseConfig(
      "RequestTimeout = 5\nIdleTimeout = 60\nMaxConnections = 2000\nWorkers = 4\n", "site.conf");
  EXPECT_EQ(config.request_timeout_seconds, 5);
  EXPECT_EQ(config.idle_timeout_seconds, 60);
  EXPECT_EQ(config.max_connections, 2000);
  EXPECT_EQ(config.workers, 4);
  EXPECT_EQ(ErrorOf("RequestTimeout = 0\n"),
            "site.conf:1: RequestTimeout is a whole number from 1 to 3600, not 0");
  EXPECT_NE(ErrorOf("Workers = many\n").find("site.conf:1: expected a whole number"),
            std::string::npos);
  EXPECT_NE(ErrorOf("[page /x]\nIdleTimeout = 5\n").find("applies to the whole server"),
            std::string::npos);
}

TEST(Config, FrameAncestorsTakesPlainOriginsOnly) {
  SiteConfig config =
      ParseConfig("FrameAncestors = https://intranet.example, http://wiki.example:8080\n", "f");
  EXPECT_EQ(config.frame_ancestors,
            (std::vector<std::string>{"https://intranet.example", "http://wiki.example:8080"}));
  EXPECT_EQ(ParseConfig("FrameAncestors = 'self'\n", "f").frame_ancestors,
            std::vector<std::string>{"'self'"});
  EXPECT_NE(
      ErrorOf("FrameAncestors = https://a.example; script-src *\n").find("not https://a.example;"),
      std::string::npos);
  EXPECT_NE(ErrorOf("FrameAncestors = *\n").find("FrameAncestors lists origins"),
            std::string::npos);
  EXPECT_NE(ErrorOf("FrameAncestors = https://a.example/path\n").find("FrameAncestors lists"),
            std::string::npos);
}

TEST(Config, LineWithoutEqualsStops) {
  EXPECT_EQ(ErrorOf("Visible True\n"), "site.conf:1: expected Name = Value, not \"Visible True\"");
}

TEST(Config, HostKeys) {
  SiteConfig config = ParseConfig(
      "Listen = 0.0.0.0:9000\nLocale = en-GB\nLinkSecret = 0123456789abcdef0123\n"
      "LinkLifetime = 600\nAssetFolder = /srv/tidewell\n",
      "f");
  EXPECT_EQ(config.listen, "0.0.0.0:9000");
  EXPECT_EQ(config.locale, "en-GB");
  EXPECT_EQ(config.link_secret, "0123456789abcdef0123");
  EXPECT_EQ(config.link_lifetime_seconds, 600);
  EXPECT_EQ(config.asset_folder, "/srv/tidewell");
}

TEST(Config, BadHostValuesStop) {
  EXPECT_NE(ErrorOf("Locale = fr-FR\n"), "");
  EXPECT_NE(ErrorOf("Listen = 8080\n"), "");
  EXPECT_NE(ErrorOf("LinkLifetime = soon\n"), "");
  EXPECT_NE(ErrorOf("LinkLifetime = 0\n"), "");
  EXPECT_NE(ErrorOf("LinkSecret = short\n"), "");
}

TEST(Config, AutoLoginTakesThreeParts) {
  SiteConfig config = ParseConfig("AutoLogin = alice, s3cret, True\n", "f");
  ASSERT_TRUE(config.pages[0].auto_login.has_value());
  EXPECT_EQ(config.pages[0].auto_login->user, "alice");
  EXPECT_EQ(config.pages[0].auto_login->password, "s3cret");
  EXPECT_TRUE(config.pages[0].auto_login->read_only);
  EXPECT_NE(ErrorOf("AutoLogin = alice\n"), "");
  EXPECT_NE(ErrorOf("AutoLogin = alice, pw, perhaps\n"), "");
}

TEST(Config, SectionsStartFromTheTopLinesAndAddTheirOwn) {
  SiteConfig config = ParseConfig(
      "Visible = True\n[page /team]\nTidewellColor = #000000\n[page /other/cal]\n", "f");
  ASSERT_EQ(config.pages.size(), 3u);
  const PageConfig* team = config.FindPage("/team");
  ASSERT_NE(team, nullptr);
  ASSERT_EQ(team->properties.size(), 2u);
  EXPECT_EQ(team->properties[1].value, "#000000");
  EXPECT_EQ(config.FindPage("/")->properties.size(), 1u);
  EXPECT_EQ(config.FindPage("/other/cal")->properties.size(), 1u);
  EXPECT_EQ(config.FindPage("/nowhere"), nullptr);
}

TEST(Config, ServerKeysInsideASectionStop) {
  EXPECT_NE(ErrorOf("[page /a]\nListen = 127.0.0.1:1\n").find("whole server"), std::string::npos);
}

TEST(Config, BadSectionsStop) {
  EXPECT_NE(ErrorOf("[pages /a]\n"), "");
  EXPECT_NE(ErrorOf("[page a]\n"), "");
  EXPECT_NE(ErrorOf("[page /a]\n[page /a]\n"), "");
}

TEST(Config, PageTemplateMustHoldTheMarker) {
  std::string good = ::testing::TempDir() + "/good_template.html";
  std::string bad = ::testing::TempDir() + "/bad_template.html";
  std::ofstream(good) << "<html><body class=site>{{tidewell}}</body></html>";
  std::ofstream(bad) << "<html><body></body></html>";
  SiteConfig config = ParseConfig("PageTemplate = " + good + "\n", "f");
  EXPECT_EQ(config.pages[0].page_template, "<html><body class=site>{{tidewell}}</body></html>");
  EXPECT_NE(ErrorOf("PageTemplate = " + bad + "\n").find("marker"), std::string::npos);
  EXPECT_NE(ErrorOf("PageTemplate = /no/such/file.html\n"), "");
  std::remove(good.c_str());
  std::remove(bad.c_str());
}

TEST(Config, TheShippedConfigurationLoads) {
  SiteConfig config = LoadConfig(TIDEWELL_SOURCE_DIR "/config/tidewell.conf");
  bool visible = false;
  for (const PropertySetting& p : config.pages[0].properties) {
    if (p.name == "Visible") visible = p.value == "True";
  }
  EXPECT_TRUE(visible);
}

TEST(Config, MissingFileIsAConfigError) {
  EXPECT_THROW(LoadConfig("/no/such/tidewell.conf"), ConfigError);
}

}  // namespace
}  // namespace tidewell

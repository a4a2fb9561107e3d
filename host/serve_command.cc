// tidewell serve: the calendar over HTTP.

#include <unistd.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "host/commands.h"
#include "host/server.h"

namespace tidewell {
namespace {

constexpr const char* kServeUsage =
    "Usage: tidewell serve [--config FILE] [--listen HOST:PORT]\n"
    "\n"
    "Serves the calendar over HTTP until SIGINT or SIGTERM.\n"
    "\n"
    "  --config FILE       configuration: the calendar's properties (ConnectionString,\n"
    "                      ImagePath, Visible, ...) and host keys (Listen, Locale,\n"
    "                      PageTemplate, AutoLogin, LinkSecret, LinkLifetime, AssetFolder,\n"
    "                      RequestTimeout, IdleTimeout, MaxConnections, Workers,\n"
    "                      FrameAncestors, ContentSecurityPolicy, Metrics, MetricsAllow,\n"
    "                      LogFormat, TrustedProxies, Feeds, TimeZone, FeedDaysBack,\n"
    "                      FeedDaysAhead, PublicAddress)\n"
    "  --listen HOST:PORT  address to listen on (default: the Listen key, else\n"
    "                      127.0.0.1:8080); port 0 picks a free port\n"
    "\n"
    "A request's headers and body must arrive within RequestTimeout seconds (10) or the\n"
    "connection is closed; idle kept-alive connections close after IdleTimeout (30).\n"
    "One access line per request goes to standard error, without query strings;\n"
    "LogFormat = json writes each as a JSON object instead.\n"
    "\n"
    "At the server's root: /healthz answers 200 while the process serves; /readyz 200\n"
    "when the \"/\" page's database answers SELECT 1 within 2 seconds, else 503 with the\n"
    "reason. Metrics = on adds /metrics (Prometheus text format) for loopback clients\n"
    "and the networks MetricsAllow lists (e.g. 10.0.0.0/8, 2001:db8::/32); others get\n"
    "404. TrustedProxies lists the proxies whose X-Forwarded-For names the client.\n"
    "One access line per request goes to standard error, without query strings.\n"
    "Feeds = on answers each account's private calendar feed at <page path>/feed/<token>.ics\n"
    "(text/calendar, ETag and 304; 404 for any other token) and shows the address on the\n"
    "user options screen; the access log shows such paths as /feed/... .\n"
    "A database of an older schema version is refused (run `tidewell migrate` first), and\n"
    "so is one a newer tidewell upgraded.\n"
    "\n"
    "Every key can also be set as TIDEWELL_<NAME> in the environment (or read from the file\n"
    "TIDEWELL_<NAME>_FILE names), which wins over the file; `tidewell config` shows the result.\n"
    "The environment variable TIDEWELL_NOW=\"YYYY-MM-DD HH:MM:SS\" fixes the clock.\n";

}  // namespace

SiteConfig ConfigFrom(const Arguments& args, std::vector<std::string>* variables) {
  SiteConfig config = args.Get("config") ? LoadConfig(*args.Get("config")) : DefaultConfig();
  std::vector<std::string> used = ApplyEnvironment(config, environ);
  if (variables != nullptr) *variables = std::move(used);
  return config;
}

int ServeCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kServeUsage, stdout), 0;
  args.Expect({"config", "listen", "help"});
  SiteConfig config = ConfigFrom(args);
  return Serve(config, args.Get("listen").value_or(config.listen));
}

}  // namespace tidewell

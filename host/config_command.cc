// tidewell config: the configuration a server would run with, from the file and the
// environment, with its secrets masked.

#include <cstdio>
#include <string>
#include <string_view>

#include "host/access_log.h"
#include "host/commands.h"
#include "host/ip_networks.h"
#include "host/password_masking.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

constexpr const char* kConfigUsage =
    "Usage: tidewell config [--config FILE]\n"
    "\n"
    "Prints the configuration `tidewell serve` would run with: the file's lines (or the\n"
    "built-in defaults), then the TIDEWELL_<NAME> and TIDEWELL_<NAME>_FILE variables of the\n"
    "environment, which win over the file. Secrets (LinkSecret, AutoLogin's password, a\n"
    "password in a ConnectionString) are masked. Exits 1 when the configuration is bad.\n";

constexpr const char* kMask = "********";

void PrintLine(std::string_view name, std::string_view value) {
  std::printf("%.*s = %.*s\n", static_cast<int>(name.size()), name.data(),
              static_cast<int>(value.size()), value.data());
}

std::string NetworkList(const std::vector<IpNetwork>& networks) {
  std::string list;
  for (const IpNetwork& network : networks) list += (list.empty() ? "" : ", ") + NetworkText(network);
  return list;
}

void PrintServerKeys(const SiteConfig& config) {
  PrintLine("Listen", config.listen);
  PrintLine("Locale", config.locale);
  if (config.link_secret) {
    PrintLine("LinkSecret", kMask);
  } else {
    std::puts("# LinkSecret: not set; the secret kept in the database signs the links");
  }
  PrintLine("LinkLifetime", std::to_string(config.link_lifetime_seconds));
  if (!config.asset_folder.empty()) PrintLine("AssetFolder", config.asset_folder);
  PrintLine("RequestTimeout", std::to_string(config.request_timeout_seconds));
  PrintLine("IdleTimeout", std::to_string(config.idle_timeout_seconds));
  PrintLine("MaxConnections", std::to_string(config.max_connections));
  PrintLine("Workers", std::to_string(WorkersOf(config)));
  if (!config.frame_ancestors.empty()) {
    std::string origins;
    for (const std::string& origin : config.frame_ancestors) {
      origins += (origins.empty() ? "" : ", ") + origin;
    }
    PrintLine("FrameAncestors", origins);
  }
  if (config.content_security_policy) {
    PrintLine("ContentSecurityPolicy", *config.content_security_policy);
  }
  PrintLine("Metrics", config.metrics ? "on" : "off");
  if (!config.metrics_allow.empty()) PrintLine("MetricsAllow", NetworkList(config.metrics_allow));
  PrintLine("LogFormat", config.log_format == LogFormat::kJson ? "json" : "text");
  if (!config.trusted_proxies.empty()) {
    PrintLine("TrustedProxies", NetworkList(config.trusted_proxies));
  }
  PrintLine("Feeds", config.feeds ? "on" : "off");
  PrintLine("TimeZone", config.time_zone);
  PrintLine("FeedDaysBack", std::to_string(config.feed_days_back));
  PrintLine("FeedDaysAhead", std::to_string(config.feed_days_ahead));
  if (!config.public_address.empty()) PrintLine("PublicAddress", config.public_address);
}

void PrintPage(const PageConfig& page) {
  if (page.path != "/") std::printf("\n[page %s]\n", page.path.c_str());
  for (const PropertySetting& setting : page.properties) {
    PrintLine(setting.name, EqualsIgnoringCase(setting.name, "ConnectionString")
                                ? WithoutPasswords(setting.value, setting.value, kMask)
                                : setting.value);
  }
  if (page.auto_login) {
    PrintLine("AutoLogin", page.auto_login->user + ", " + kMask + ", " +
                               (page.auto_login->read_only ? "True" : "False"));
  }
}

}  // namespace

int ConfigCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kConfigUsage, stdout), 0;
  args.Expect({"config", "help"});
  std::vector<std::string> variables;
  const SiteConfig config = ConfigFrom(args, &variables);
  std::printf("# from %s", args.Get("config") ? args.Get("config")->c_str() : "the defaults");
  for (const std::string& variable : variables) std::printf(", %s", variable.c_str());
  std::puts("");
  PrintServerKeys(config);
  for (const PageConfig& page : config.pages) PrintPage(page);
  return 0;
}

}  // namespace tidewell

#include "host/config.h"

#include <sched.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <thread>

#include "data/connection_string.h"
#include "data/database_error.h"
#include "feeds/site_time_zone.h"
#include "host/page_template.h"
#include "page/properties.h"
#include "page/property_table.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

std::string TrimBlanks(std::string_view s) {
  size_t start = s.find_first_not_of(" \t\r");
  if (start == std::string_view::npos) return "";
  size_t end = s.find_last_not_of(" \t\r");
  return std::string(s.substr(start, end - start + 1));
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// Reads one file line at a time and knows where it is, so every complaint names the line.
class ConfigReader {
 public:
  explicit ConfigReader(std::string file_name) : file_name_(std::move(file_name)) {}

  [[noreturn]] void Fail(const std::string& message) const {
    if (!variable_.empty()) throw ConfigError("environment " + variable_ + ": " + message);
    throw ConfigError(file_name_ + ":" + std::to_string(line_) + ": " + message);
  }

  // A value from the environment variable `variable`: it stands as a line after the file's
  // top lines and in every [page] section, so that it wins over the file everywhere.
  void ApplyFromEnvironment(const std::string& variable, const std::string& name,
                            const std::string& value, SiteConfig& config) {
    variable_ = variable;
    if (IsPropertyName(name) || EqualsIgnoringCase(name, "PageTemplate") ||
        EqualsIgnoringCase(name, "AutoLogin")) {
      for (PageConfig& page : config.pages) Apply(name, value, config, page, false);
    } else {
      Apply(name, value, config, config.pages.front(), true);
    }
    variable_.clear();
  }

  void Read(const std::string& text, SiteConfig& config) {
    std::istringstream lines(text);
    std::string raw;
    PageConfig* page = &config.pages.front();
    while (std::getline(lines, raw)) {
      ++line_;
      std::string line = TrimBlanks(raw);
      if (line.empty() || line[0] == '#') continue;
      if (line[0] == '[') {
        page = &StartSection(line, config);
        continue;
      }
      size_t eq = line.find('=');
      if (eq == std::string::npos) Fail("expected Name = Value, not \"" + line + "\"");
      std::string name = TrimBlanks(std::string_view(line).substr(0, eq));
      std::string value = TrimBlanks(std::string_view(line).substr(eq + 1));
      Apply(name, value, config, *page, page == &config.pages.front());
    }
  }

 private:
  PageConfig& StartSection(const std::string& line, SiteConfig& config) {
    if (line.back() != ']' || line.compare(0, 6, "[page ") != 0)
      Fail("a section reads [page /path], not \"" + line + "\"");
    std::string path = TrimBlanks(std::string_view(line).substr(6, line.size() - 7));
    if (path.empty() || path[0] != '/') Fail("a page path starts with \"/\"");
    if (config.FindPage(path) != nullptr) Fail("page " + path + " is configured twice");
    if (path == "/healthz" || path == "/readyz" || path == "/metrics")
      Fail(path + " is the server's own; a page cannot take it");
    PageConfig section = config.pages.front();  // the top lines, then the section's own
    section.path = path;
    config.pages.push_back(section);
    return config.pages.back();
  }

  void Apply(const std::string& name, const std::string& value, SiteConfig& config,
             PageConfig& page, bool top) {
    if (IsPropertyName(name)) return ApplyProperty(name, value, page);
    if (EqualsIgnoringCase(name, "PageTemplate")) return ApplyTemplate(value, page);
    if (EqualsIgnoringCase(name, "AutoLogin")) return ApplyAutoLogin(value, page);
    if (!top) Fail(name + " applies to the whole server; set it before any [page] section");
    if (EqualsIgnoringCase(name, "Listen")) {
      if (value.rfind(':') == std::string::npos) Fail("Listen takes HOST:PORT");
      config.listen = value;
    } else if (EqualsIgnoringCase(name, "Locale")) {
      if (value != "en-US" && value != "en-GB") Fail("Locale is en-US or en-GB, not " + value);
      config.locale = value;
    } else if (EqualsIgnoringCase(name, "LinkSecret")) {
      if (value.size() < 16) Fail("LinkSecret needs at least 16 characters");
      config.link_secret = value;
    } else if (EqualsIgnoringCase(name, "LinkLifetime")) {
      long seconds = ParseWholeNumber(value);
      if (seconds <= 0) Fail("LinkLifetime is a number of seconds above 0");
      config.link_lifetime_seconds = seconds;
    } else if (EqualsIgnoringCase(name, "AssetFolder")) {
      config.asset_folder = value;
    } else if (EqualsIgnoringCase(name, "RequestTimeout")) {
      config.request_timeout_seconds = ParseWholeNumberInRange(name, value, 1, 3600);
    } else if (EqualsIgnoringCase(name, "IdleTimeout")) {
      config.idle_timeout_seconds = ParseWholeNumberInRange(name, value, 1, 3600);
    } else if (EqualsIgnoringCase(name, "MaxConnections")) {
      config.max_connections = ParseWholeNumberInRange(name, value, 1, 1000000);
    } else if (EqualsIgnoringCase(name, "Workers")) {
      config.workers = ParseWholeNumberInRange(name, value, 1, 256);
    } else if (EqualsIgnoringCase(name, "FrameAncestors")) {
      config.frame_ancestors = ParseOrigins(value);
    } else if (EqualsIgnoringCase(name, "ContentSecurityPolicy")) {
      if (value.empty() || value.find_first_of("\r\n") != std::string::npos)
        Fail("ContentSecurityPolicy takes a policy on one line");
      config.content_security_policy = value;
    } else if (EqualsIgnoringCase(name, "Metrics")) {
      if (value != "on" && value != "off") Fail("Metrics is on or off, not " + value);
      config.metrics = value == "on";
    } else if (EqualsIgnoringCase(name, "MetricsAllow")) {
      config.metrics_allow = ParseNetworkList(name, value);
    } else if (EqualsIgnoringCase(name, "TrustedProxies")) {
      config.trusted_proxies = ParseNetworkList(name, value);
    } else if (EqualsIgnoringCase(name, "LogFormat")) {
      if (value != "text" && value != "json") Fail("LogFormat is text or json, not " + value);
      config.log_format = value == "json" ? LogFormat::kJson : LogFormat::kText;
    } else if (EqualsIgnoringCase(name, "Feeds")) {
      if (value != "on" && value != "off") Fail("Feeds is on or off, not " + value);
      config.feeds = value == "on";
    } else if (EqualsIgnoringCase(name, "TimeZone")) {
      if (!IsKnownTimeZone(value)) {
        Fail("TimeZone names a zone such as Europe/Berlin or UTC; unknown time zone " + value);
      }
      config.time_zone = value;
    } else if (EqualsIgnoringCase(name, "PublicAddress")) {
      config.public_address = ParsePublicAddress(value);
    } else if (EqualsIgnoringCase(name, "FeedDaysBack")) {
      config.feed_days_back = ParseWholeNumberInRange(name, value, 0, 3660);
    } else if (EqualsIgnoringCase(name, "FeedDaysAhead")) {
      config.feed_days_ahead = ParseWholeNumberInRange(name, value, 0, 3660);
    } else {
      Fail("unknown name " + name);
    }
  }

  // Tried on a scratch set of properties now, so that a bad value stops the server at start.
  void ApplyProperty(const std::string& name, const std::string& value, PageConfig& page) {
    Properties scratch;
    try {
      LetProperty(scratch, name, value);
    } catch (const AutomationError& e) {
      Fail("bad value for " + name + ": " + value + " (" + e.what() + ")");
    }
    page.properties.push_back({name, value, line_});
  }

  void ApplyTemplate(const std::string& value, PageConfig& page) {
    std::string text;
    try {
      text = ReadFile(value);
    } catch (const std::exception& e) {
      Fail(e.what());
    }
    if (!IsPageTemplate(text)) Fail(value + " must hold the marker {{tidewell}} once");
    page.page_template = text;
  }

  void ApplyAutoLogin(const std::string& value, PageConfig& page) {
    std::vector<std::string> parts;
    std::istringstream in(value);
    for (std::string part; std::getline(in, part, ',');) parts.push_back(TrimBlanks(part));
    if (parts.size() != 3) Fail("AutoLogin takes user, password, readonly");
    bool read_only = false;
    try {
      read_only = CBool(parts[2]);
    } catch (const AutomationError&) {
      Fail("the readonly part of AutoLogin is True or False, not " + parts[2]);
    }
    page.auto_login = AutoLoginSetting{parts[0], parts[1], read_only};
  }

  long ParseWholeNumber(const std::string& value) {
    try {
      size_t used = 0;
      long n = std::stol(value, &used);
      if (used == value.size()) return n;
    } catch (const std::exception&) {
    }
    Fail("expected a whole number, not " + value);
  }

  long ParseWholeNumberInRange(const std::string& name, const std::string& value, long low,
                               long high) {
    long n = ParseWholeNumber(value);
    if (n < low || n > high) {
      Fail(name + " is a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
           ", not " + value);
    }
    return n;
  }

  std::vector<IpNetwork> ParseNetworkList(const std::string& name, const std::string& value) {
    try {
      return ParseNetworks(value);
    } catch (const std::invalid_argument& e) {
      Fail(name + " lists addresses and networks such as 10.0.0.0/8 or ::1: " + e.what());
    }
  }

  // "https://cal.example.org" or "https://example.org/calendar": where users reach the site,
  // without a trailing "/"; nothing that could break out of an address or an attribute.
  std::string ParsePublicAddress(const std::string& value) {
    const bool web = value.rfind("https://", 0) == 0 || value.rfind("http://", 0) == 0;
    const size_t host = value.find("://") + 3;
    if (!web || value.size() <= host ||
        value.find_first_of(" \t\"'<>?#\\", 0) != std::string::npos) {
      Fail("PublicAddress is the site's address such as https://cal.example.org, not " + value);
    }
    std::string address = value;
    while (address.size() > host && address.back() == '/') address.pop_back();
    return address;
  }

  // "https://a.example, https://b.example:8443" or 'self': the sources of frame-ancestors.
  // Each must be a plain origin, so that the value cannot add directives to the policy.
  std::vector<std::string> ParseOrigins(const std::string& value) {
    std::vector<std::string> origins;
    std::string list = value;
    for (char& c : list) {
      if (c == ',') c = ' ';
    }
    std::istringstream in(list);
    for (std::string origin; in >> origin;) {
      bool web = origin.rfind("https://", 0) == 0 || origin.rfind("http://", 0) == 0;
      size_t host = origin.find("://") + 3;
      bool plain =
          web && origin.size() > host && origin.find_first_of("/;'\"?#", host) == std::string::npos;
      if (!plain && origin != "'self'") {
        Fail("FrameAncestors lists origins such as https://intranet.example or 'self', not " +
             origin);
      }
      origins.push_back(origin);
    }
    if (origins.empty()) Fail("FrameAncestors lists at least one origin");
    return origins;
  }

  std::string file_name_;
  int line_ = 0;
  std::string variable_;  // the environment variable being read, if any
};

// The name a TIDEWELL_ variable stands for: a property or a host key whose name, in upper
// case, is the rest of the variable's name. Other TIDEWELL_ variables (TIDEWELL_NOW, the
// tests' own) are not configuration.
std::optional<std::string> NameOfVariable(std::string_view rest) {
  for (std::string_view name : PropertyNames()) {
    if (EqualsIgnoringCase(name, rest)) return std::string(name);
  }
  for (std::string_view name : HostKeyNames()) {
    if (EqualsIgnoringCase(name, rest)) return std::string(name);
  }
  return std::nullopt;
}

}  // namespace

std::string PageConfig::PropertyValue(std::string_view name) const {
  std::string value;
  for (const PropertySetting& setting : properties) {
    if (EqualsIgnoringCase(setting.name, name)) value = setting.value;
  }
  return value;
}

const PageConfig* SiteConfig::FindPage(std::string_view path) const {
  for (const PageConfig& page : pages) {
    if (page.path == path) return &page;
  }
  return nullptr;
}

namespace {

// The processors this process may run on (fewer than the machine's in a pinned container).
long ProcessorsAllowed() {
  cpu_set_t allowed;
  return sched_getaffinity(0, sizeof allowed, &allowed) == 0
             ? CPU_COUNT(&allowed)
             : static_cast<long>(std::thread::hardware_concurrency());
}

}  // namespace

long DefaultWorkers(DatabaseWork work) {
  const long per_processor = work == DatabaseWork::kOnTheRequestsThread ? 1 : 2;
  return std::clamp(per_processor * ProcessorsAllowed(), 2L, 64L);
}

long EventLoopThreads() {
  return std::clamp(ProcessorsAllowed() / 4, 1L, 16L);
}

long WorkersOf(const SiteConfig& config) {
  if (config.workers > 0) return config.workers;
  for (const PageConfig& page : config.pages) {
    bool on_sqlite = false;
    try {
      on_sqlite = EqualsIgnoringCase(
          ado::ParseConnectionString(page.PropertyValue("ConnectionString")).provider, "SQLite");
    } catch (const ado::DatabaseError&) {
      // Counted as another engine's: more threads than needed cost less than too few.
    }
    if (!on_sqlite) return DefaultWorkers(DatabaseWork::kInAnotherProcess);
  }
  return DefaultWorkers(DatabaseWork::kOnTheRequestsThread);
}

SiteConfig DefaultConfig() {
  SiteConfig config;
  config.pages.emplace_back();
  config.pages.front().page_template = DefaultPageTemplate();
  config.time_zone = SystemTimeZoneName();
  return config;
}

SiteConfig ParseConfig(const std::string& text, const std::string& file_name) {
  SiteConfig config = DefaultConfig();
  ConfigReader(file_name).Read(text, config);
  return config;
}

std::vector<std::string_view> HostKeyNames() {
  return {"Listen",
          "Locale",
          "LinkSecret",
          "LinkLifetime",
          "AssetFolder",
          "RequestTimeout",
          "IdleTimeout",
          "MaxConnections",
          "Workers",
          "FrameAncestors",
          "ContentSecurityPolicy",
          "PageTemplate",
          "AutoLogin",
          "Metrics",
          "MetricsAllow",
          "LogFormat",
          "TrustedProxies",
          "Feeds",
          "TimeZone",
          "FeedDaysBack",
          "FeedDaysAhead",
          "PublicAddress"};
}

std::vector<std::string> ApplyEnvironment(SiteConfig& config, char** environment) {
  std::vector<std::string> used;
  ConfigReader reader("environment");
  for (char** entry = environment; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    const size_t eq = text.find('=');
    if (!text.starts_with("TIDEWELL_") || eq == std::string_view::npos) continue;
    const std::string variable(text.substr(0, eq));
    std::string value(text.substr(eq + 1));
    std::string_view rest = std::string_view(variable).substr(9);
    std::optional<std::string> name = NameOfVariable(rest);
    if (!name && rest.ends_with("_FILE")) {
      name = NameOfVariable(rest.substr(0, rest.size() - 5));
      if (!name) continue;
      // A secret kept in a file (a container's secret mount): its text, less the line end.
      try {
        value = ReadFile(value);
      } catch (const std::exception& e) {
        throw ConfigError("environment " + variable + ": " + e.what());
      }
      while (!value.empty() && (value.back() == '\n' || value.back() == '\r')) value.pop_back();
    }
    if (!name) continue;
    reader.ApplyFromEnvironment(variable, *name, TrimBlanks(value), config);
    used.push_back(variable);
  }
  return used;
}

SiteConfig LoadConfig(const std::string& path) {
  std::string text;
  try {
    text = ReadFile(path);
  } catch (const std::exception& e) {
    throw ConfigError(e.what());
  }
  SiteConfig config = ParseConfig(text, path);
  config.file = path;
  return config;
}

}  // namespace tidewell

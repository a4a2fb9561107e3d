#include "host/feed_endpoint.h"

#include <ctime>

#include "feeds/feed_document.h"
#include "feeds/site_time_zone.h"
#include "page/properties.h"
#include "page/property_table.h"

namespace tidewell {
namespace {

constexpr std::string_view kFeedSuffix = ".ics";

// What a page's configuration says about its database.
FeedSource SourceOf(const SiteConfig& config, const PageConfig& page) {
  Properties properties;
  for (const PropertySetting& setting : page.properties) {
    LetProperty(properties, setting.name, setting.value);
  }
  return FeedSource{.connection_string = properties.ConnectionString,
                    .dialect = properties.DataServer,
                    .zone = TimeZoneNamed(config.time_zone),
                    .days_back = config.feed_days_back,
                    .days_ahead = config.feed_days_ahead};
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

// The first entry of a comma-separated header: what the outermost proxy wrote.
std::string_view FirstEntry(std::string_view value) {
  return Trimmed(value.substr(0, value.find(',')));
}

// A host and port as a Host header may name them, and nothing that could leave the address.
bool IsPlainHost(std::string_view host) {
  if (host.empty() || host.size() > 255) return false;
  for (char c : host) {
    bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                 c == '.' || c == '-' || c == ':' || c == '[' || c == ']';
    if (!plain) return false;
  }
  return true;
}

std::string RequestOrigin(const SiteConfig& config, const HttpRequest& request) {
  std::string_view scheme = "http";
  const std::string host_header = request.Header("Host");  // kept: `host` looks into it
  std::string_view host = Trimmed(host_header);
  const std::string forwarded_proto = request.Header("X-Forwarded-Proto");
  const std::string forwarded_host = request.Header("X-Forwarded-Host");
  if (NetworksContain(config.trusted_proxies, request.peer_address)) {
    if (std::string_view proto = FirstEntry(forwarded_proto); proto == "https" || proto == "http") {
      scheme = proto;
    }
    if (std::string_view forwarded = FirstEntry(forwarded_host); !forwarded.empty()) {
      host = forwarded;
    }
  }
  if (!IsPlainHost(host)) return "";
  return std::string(scheme) + "://" + std::string(host);
}

// Whether an If-None-Match list names `etag` (compared weakly, as the header is).
bool NamesEtag(std::string_view list, std::string_view etag) {
  while (!list.empty()) {
    const size_t comma = list.find(',');
    std::string_view entry = Trimmed(list.substr(0, comma));
    if (entry.starts_with("W/")) entry.remove_prefix(2);
    if (entry == "*" || entry == etag) return true;
    if (comma == std::string_view::npos) break;
    list.remove_prefix(comma + 1);
  }
  return false;
}

bool NotModified(const HttpRequest& request, const FeedDocument& feed) {
  const std::string if_none_match = request.Header("If-None-Match");
  if (!if_none_match.empty()) return NamesEtag(if_none_match, feed.etag);
  const std::optional<long long> since = ParseHttpDate(Trimmed(request.Header("If-Modified-Since")));
  return since && feed.last_modified <= *since;
}

HttpAnswer FeedAnswer(const HttpRequest& request, FeedDocument feed) {
  HttpAnswer answer;
  answer.headers.emplace_back("ETag", feed.etag);
  answer.headers.emplace_back("Last-Modified", HttpDate(feed.last_modified));
  answer.headers.emplace_back("Cache-Control", "private, max-age=300");
  if (NotModified(request, feed)) {
    answer.status = 304;
    answer.content_type.clear();
    return answer;
  }
  answer.content_type = "text/calendar; charset=utf-8";
  answer.body = std::move(feed.body);
  return answer;
}

}  // namespace

std::string FeedPathStart(std::string_view page_path) {
  std::string start(page_path);
  if (start.empty() || start.back() != '/') start += '/';
  return start + "feed/";
}

std::optional<std::string> FeedAddressStart(const SiteConfig& config, const PageConfig& page,
                                            const HttpRequest* request) {
  if (!config.feeds) return std::nullopt;
  std::string origin = config.public_address;
  if (origin.empty() && request != nullptr) origin = RequestOrigin(config, *request);
  return origin + FeedPathStart(page.path);
}

FeedEndpoint::FeedEndpoint(const SiteConfig& config) : on_(config.feeds) {
  if (!on_) return;
  for (const PageConfig& page : config.pages) {
    pages_.push_back({FeedPathStart(page.path), SourceOf(config, page)});
  }
}

std::optional<HttpAnswer> FeedEndpoint::Answer(const HttpRequest& request) const {
  if (!on_) return std::nullopt;
  for (const PageFeeds& page : pages_) {
    if (!request.path.starts_with(page.path_start)) continue;
    std::string_view name = std::string_view(request.path).substr(page.path_start.size());
    if (name.find('/') != std::string_view::npos) continue;
    if (request.method != "GET" && request.method != "HEAD") {
      HttpAnswer answer = PlainAnswer(405, "Method not allowed.\n");
      answer.headers.emplace_back("Allow", "GET, HEAD");
      return answer;
    }
    std::optional<FeedDocument> feed;
    if (name.ends_with(kFeedSuffix)) {
      name.remove_suffix(kFeedSuffix.size());
      feed = ReadFeed(page.source, name, ClockUnixSeconds());
    }
    if (!feed) return PlainAnswer(404, "Not found.\n");
    return FeedAnswer(request, std::move(*feed));
  }
  return std::nullopt;
}

std::string HttpDate(long long unix_seconds) {
  const std::time_t time = static_cast<std::time_t>(unix_seconds);
  std::tm parts{};
  gmtime_r(&time, &parts);
  static constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  char text[40];
  std::snprintf(text, sizeof text, "%s, %02d %s %04d %02d:%02d:%02d GMT", kDays[parts.tm_wday],
                parts.tm_mday, kMonths[parts.tm_mon], parts.tm_year + 1900, parts.tm_hour,
                parts.tm_min, parts.tm_sec);
  return text;
}

std::optional<long long> ParseHttpDate(std::string_view text) {
  static constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
  char weekday[4] = {};
  char month[4] = {};
  int day = 0, year = 0, hour = 0, minute = 0, second = 0;
  char zone[4] = {};
  const std::string copy(text);
  if (std::sscanf(copy.c_str(), "%3s, %d %3s %d %d:%d:%d %3s", weekday, &day, month, &year,
                  &hour, &minute, &second, zone) != 8 ||
      std::string_view(zone) != "GMT") {
    return std::nullopt;
  }
  const size_t at = kMonths.find(month);
  if (at == std::string_view::npos || at % 3 != 0 || day < 1 || day > 31 || hour > 23 ||
      minute > 59 || second > 60) {
    return std::nullopt;
  }
  std::tm parts{};
  parts.tm_year = year - 1900;
  parts.tm_mon = static_cast<int>(at / 3);
  parts.tm_mday = day;
  parts.tm_hour = hour;
  parts.tm_min = minute;
  parts.tm_sec = second;
  return static_cast<long long>(timegm(&parts));
}

}  // namespace tidewell

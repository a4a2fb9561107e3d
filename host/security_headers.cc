#include "host/security_headers.h"

#include <set>

#include "runtime/strings.h"

namespace tidewell {
namespace {

// "https://images.example:8443" of "https://images.example:8443/cal/images/"; "" for a path on
// this site.
std::string OriginOf(const std::string& image_path) {
  std::string lower = image_path;
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  size_t start = 0;
  if (lower.rfind("http://", 0) == 0) {
    start = 7;
  } else if (lower.rfind("https://", 0) == 0) {
    start = 8;
  } else if (lower.rfind("//", 0) == 0) {
    start = 2;
  } else {
    return "";
  }
  size_t end = image_path.find_first_of("/?#", start);
  std::string origin = image_path.substr(0, end);
  // Only what a source expression may hold; anything else would bend the policy.
  if (origin.find_first_of(" ;,'\"\t") != std::string::npos || end == start) return "";
  return origin;
}

std::string FrameAncestorsSource(const SiteConfig& config) {
  if (config.frame_ancestors.empty()) return "'none'";
  std::string sources;
  for (const std::string& origin : config.frame_ancestors) {
    if (!sources.empty()) sources += ' ';
    sources += origin;
  }
  return sources;
}

}  // namespace

std::string ContentSecurityPolicy(const SiteConfig& config) {
  if (config.content_security_policy) return *config.content_security_policy;
  std::set<std::string> image_origins;
  for (const PageConfig& page : config.pages) {
    std::string origin = OriginOf(page.PropertyValue("ImagePath"));
    if (!origin.empty()) image_origins.insert(origin);
  }
  std::string images = "'self'";
  for (const std::string& origin : image_origins) images += " " + origin;
  return "default-src 'none'; script-src 'unsafe-inline'; style-src 'self' 'unsafe-inline'; "
         "style-src-elem 'self'; img-src " +
         images +
         "; form-action 'self'; base-uri 'none'; frame-ancestors " +
         FrameAncestorsSource(config);
}

std::vector<std::pair<std::string, std::string>> SecurityHeaders(const SiteConfig& config) {
  std::vector<std::pair<std::string, std::string>> headers = {
      {"Content-Security-Policy", ContentSecurityPolicy(config)},
      {"Referrer-Policy", "no-referrer"},
      {"X-Content-Type-Options", "nosniff"},
  };
  if (config.frame_ancestors.empty()) headers.emplace_back("X-Frame-Options", "DENY");
  return headers;
}

}  // namespace tidewell

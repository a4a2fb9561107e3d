#include "host/security_headers.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

std::string HeaderOf(const std::vector<std::pair<std::string, std::string>>& headers,
                     const std::string& name) {
  for (const auto& [key, value] : headers) {
    if (key == name) return value;
  }
  return "<absent>";
}

TEST(SecurityHeaders, RefuseFramingAndReferrersByDefault) {
  auto headers = SecurityHeaders(ParseConfig("", "site.conf"));
  EXPECT_EQ(HeaderOf(headers, "Content-Security-Policy"),
            "default-src 'none'; script-src 'unsafe-inline'; style-src 'self' 'unsafe-inline'; "
            "style-src-elem 'self'; img-src 'self'; form-action 'self'; base-uri 'none'; "
            "frame-ancestors 'none'");
  EXPECT_EQ(HeaderOf(headers, "Referrer-Policy"), "no-referrer");
  EXPECT_EQ(HeaderOf(headers, "X-Content-Type-Options"), "nosniff");
  EXPECT_EQ(HeaderOf(headers, "X-Frame-Options"), "DENY");
}

TEST(SecurityHeaders, FrameAncestorsNamesTheOriginsAndDropsXFrameOptions) {
  auto headers = SecurityHeaders(ParseConfig(
      "FrameAncestors = https://intranet.example http://wiki.example:8080\n", "site.conf"));
  std::string policy = HeaderOf(headers, "Content-Security-Policy");
  EXPECT_NE(policy.find("; frame-ancestors https://intranet.example http://wiki.example:8080"),
            std::string::npos)
      << policy;
  EXPECT_EQ(HeaderOf(headers, "X-Frame-Options"), "<absent>");
  EXPECT_EQ(HeaderOf(headers, "X-Content-Type-Options"), "nosniff");
}

TEST(SecurityHeaders, ImagesFromAnotherSiteAreAllowedFromThatOriginOnly) {
  std::string policy = ContentSecurityPolicy(ParseConfig(
      "ImagePath = https://static.example:8443/tidewell/images/\n"
      "[page /other.asp]\nImagePath = images/\n",
      "site.conf"));
  EXPECT_NE(policy.find("img-src 'self' https://static.example:8443;"), std::string::npos)
      << policy;
}

TEST(SecurityHeaders, ContentSecurityPolicyKeyReplacesThePolicy) {
  SiteConfig config =
      ParseConfig("ContentSecurityPolicy = default-src 'self'; frame-ancestors 'none'\n", "f");
  EXPECT_EQ(HeaderOf(SecurityHeaders(config), "Content-Security-Policy"),
            "default-src 'self'; frame-ancestors 'none'");
  EXPECT_EQ(HeaderOf(SecurityHeaders(config), "X-Frame-Options"), "DENY");
}

}  // namespace
}  // namespace tidewell

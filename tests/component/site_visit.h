#pragma once

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "component/asp_tidewell.h"
#include "page/link_codec.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "runtime/strings.h"
#include "tests/component/fake_request.h"
#include "tests/component/seeded_database.h"

namespace tidewell::testing {

// One request to a page set up as a site would set it: a seeded database, images under
// "images/", visible, links signed with the given secret and, so that expectations stay
// readable, not hex-encoded. The request is made up first (link, agent, posted fields), then
// Show runs once.
class SiteVisit {
 public:
  SiteVisit(const SeededDatabase& database, LinkSigning signing,
            std::string url = "/cal/default.asp")
      : visit_(std::move(url)), database_(database), signing_(std::move(signing)) {}

  // The link's payload as it stands in a link ("~6~11/21/2026~14~0~~~~").
  SiteVisit& Link(std::string payload) {
    visit_.request.QueryString.Add("WS", std::move(payload));
    return *this;
  }
  SiteVisit& Agent(std::string agent) {
    visit_.Agent(std::move(agent));
    return *this;
  }
  // The client's address, as the server variable REMOTE_ADDR carries it.
  SiteVisit& From(std::string address) {
    visit_.request.ServerVariables.Add("REMOTE_ADDR", std::move(address));
    return *this;
  }
  SiteVisit& Post(std::string name, std::string value) {
    visit_.request.Form.Add(std::move(name), std::move(value));
    return *this;
  }
  SiteVisit& Query(std::string name, std::string value) {
    visit_.request.QueryString.Add(std::move(name), std::move(value));
    return *this;
  }
  // What the host page does after setting the usual properties (AutoLogin, other settings).
  SiteVisit& Configure(std::function<void(ASPTidewell&)> configure) {
    configure_ = std::move(configure);
    return *this;
  }

  // Runs the request and answers the page.
  std::string Show() {
    ASPTidewell& component = visit_.Start();
    component.SetConnectionString(database_.connection_string());
    component.SetLinkSigning(signing_);
    component.SetImagePath("images/");
    component.SetVisible(true);
    component.SetHexQueryString(false);
    if (configure_) configure_(component);
    html_ = component.ViewSource();
    return html_;
  }

  const Page& page() const { return visit_.component.page(); }
  const std::string& html() const { return html_; }

 private:
  FakeVisit visit_;
  const SeededDatabase& database_;
  LinkSigning signing_;
  std::function<void(ASPTidewell&)> configure_;
  std::string html_;
};

// The unquoted href of the link with title="`title`" (buttons and navigation write the title
// first, tabs after the href), or "" when the page has none.
inline std::string LinkTitled(const std::string& html, const std::string& title) {
  const std::string before = "title=\"" + title + "\" href=";
  if (size_t at = html.find(before); at != std::string::npos) {
    size_t start = at + before.size();
    return html.substr(start, html.find(' ', start) - start);
  }
  const std::string after = " title=\"" + title + "\"";
  size_t at = html.find(after);
  if (at == std::string::npos) return "";
  size_t start = html.rfind("href=", at) + 5;
  return html.substr(start, at - start);
}

// The "action" of the page's form.
inline std::string FormAction(const std::string& html) {
  size_t start = html.find("<form action=");
  if (start == std::string::npos) return "";
  start += 13;
  return html.substr(start, html.find(' ', start) - start);
}

// The seven fields of a link ("default.asp?WS=..."): index 1 is the screen, 5 the user key.
inline std::vector<std::string> LinkFields(const std::string& link, bool hex = false) {
  size_t at = link.find("WS=");
  if (at == std::string::npos) return {};
  return Split(DecodeQueryString(link.substr(at + 3), hex), '~');
}

// Seconds since 1970 of a moment of the test clock: what link expiries count in.
inline long long UnixSeconds(int year, int month, int day, int hour, int minute, int second) {
  std::tm moment{};
  moment.tm_year = year - 1900;
  moment.tm_mon = month - 1;
  moment.tm_mday = day;
  moment.tm_hour = hour;
  moment.tm_min = minute;
  moment.tm_sec = second;
  return static_cast<long long>(timegm(&moment));
}

// HMAC-SHA256 of `message` with `secret`, in lower-case hex, worked out here on its own.
inline std::string HmacSha256Hex(const std::string& secret, const std::string& message) {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int length = 0;
  HMAC(EVP_sha256(), secret.data(), static_cast<int>(secret.size()),
       reinterpret_cast<const unsigned char*>(message.data()), message.size(), digest, &length);
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (unsigned int i = 0; i < length; ++i) {
    hex += kDigits[digest[i] >> 4];
    hex += kDigits[digest[i] & 0xF];
  }
  return hex;
}

// A key signed as links must carry it: key "." expiry "." the first 32 hex digits of
// HMAC-SHA256(secret, key "." expiry "\n" stamp), worked out here on its own. The stamp is the
// account's stored password hash.
inline std::string ExpectedSignedKey(const std::string& secret, const std::string& key,
                                     long long expiry, const std::string& stamp) {
  std::string signed_part = key + "." + std::to_string(expiry);
  return signed_part + "." + HmacSha256Hex(secret, signed_part + "\n" + stamp).substr(0, 32);
}

// What the password fields show for an account whose stored hash is `stored`: the first 15
// hex digits of HMAC-SHA256(secret, "password stand-in\n" stored), worked out here on its own.
inline std::string ExpectedStandIn(const std::string& secret, const std::string& stored) {
  return HmacSha256Hex(secret, "password stand-in\n" + stored).substr(0, 15);
}

// Requests against a seeded database on Saturday 21 November 2026, 2:05 PM, with links signed
// by a test secret for an hour.
class SiteTest : public ::testing::Test {
 protected:
  static constexpr const char* kSecret = "site test secret";
  static constexpr long kLifetime = 3600;

  void SetUp() override {
    SetFixedNow(Combine(DateSerial(2026, 11, 21), TimeSerial(14, 5, 0)));
    crew_ = database_.AddGroup("Crew");
  }
  void TearDown() override { SetFixedNow(std::nullopt); }

  SiteVisit Visit() { return SiteVisit(database_, signing_); }

  std::string AddAdministrator(std::string name = "admin", std::string password = "pw") {
    return database_.AddUser({.name = std::move(name),
                              .password = std::move(password),
                              .group = crew_,
                              .administrator = true});
  }
  std::string AddUser(std::string name, std::string password = "pw", long default_view = 0,
                      std::string options = "0+8+0+0+0") {
    return database_.AddUser({.name = std::move(name),
                              .password = std::move(password),
                              .group = crew_,
                              .default_view = default_view,
                              .options = std::move(options)});
  }

  // A key as a link from this server carries it.
  std::string InLink(const std::string& key) const {
    return SignKey(signing_, key, database_.StampOf(key));
  }
  // The signed form the pages drawn now must write for `key`.
  std::string Expected(const std::string& key) const {
    return key.empty() ? ""
                       : ExpectedSignedKey(kSecret, key,
                                           UnixSeconds(2026, 11, 21, 14, 5, 0) + kLifetime,
                                           database_.StampOf(key));
  }

  // The stand-in the password fields show for the account.
  std::string StandInOf(const std::string& key) const {
    return ExpectedStandIn(kSecret, database_.StampOf(key));
  }

  SeededDatabase database_;
  LinkSigning signing_{kSecret, kLifetime};
  long crew_ = 0;
};

}  // namespace tidewell::testing

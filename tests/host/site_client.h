#pragma once

#include <httplib.h>

#include <cctype>
#include <string>
#include <utility>
#include <vector>

#include "tests/component/site_visit.h"

namespace tidewell::testing {

using FormFields = std::vector<std::pair<std::string, std::string>>;

// application/x-www-form-urlencoded, as a browser writes it: letters and digits stay, a blank
// becomes "+", every other byte "%XX".
inline std::string FormEncoded(const FormFields& fields) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string body;
  for (const auto& [name, value] : fields) {
    if (!body.empty()) body += "&";
    body += name + "=";
    for (unsigned char c : value) {
      if (std::isalnum(c)) {
        body += static_cast<char>(c);
      } else if (c == ' ') {
        body += '+';
      } else {
        body += '%';
        body += kDigits[c >> 4];
        body += kDigits[c & 0xF];
      }
    }
  }
  return body;
}

// A browser's requests to one server on 127.0.0.1: links and form actions as the pages write
// them (relative to "/"). Safe to use from several threads, each request on a connection of
// its own. A failed request answers "".
class SiteClient {
 public:
  explicit SiteClient(int port) : port_(port) {}

  std::string Get(const std::string& link) const {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Get(("/" + link).c_str());
    return res && res->status == 200 ? res->body : "";
  }
  std::string PostForm(const std::string& action, const FormFields& fields) const {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Post(("/" + action).c_str(), FormEncoded(fields),
                           "application/x-www-form-urlencoded");
    return res && res->status == 200 ? res->body : "";
  }
  // The login form of a fresh visit, filled in and sent.
  std::string LogIn(const std::string& name, const std::string& password) const {
    return PostForm(FormAction(Get("")),
                    {{"username", name}, {"password", password}, {"login", "y"}});
  }

 private:
  int port_;
};

}  // namespace tidewell::testing

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

// The administrator options form as a browser posts it with `submit` pressed: the account's
// name, initials and group (an existing group's id, or a new group's name), the whole group
// shown, the month view, display options as the page has them, and the password "pw".
inline FormFields AccountForm(const std::string& name, const std::string& initials,
                              const std::string& group_id, const std::string& new_group,
                              const std::string& submit) {
  return {{"username", name},
          {"initials", initials},
          {"groupid", group_id},
          {"newgroup", new_group},
          {"loadgroupdata", "1"},
          {"userdefaultstarthour", "8"},
          {"userhighlighttodaysdate", "0"},
          {"userhighlighttodaystime", "0"},
          {"usershow12hourday", "0"},
          {"defaultview", "0"},
          {"password", "pw"},
          {"confirm", "pw"},
          {"submit", submit},
          {"action", submit == "Add New User" ? "a" : "u"}};
}

// The value of the entry of a select list that reads `label`: what a browser posts for it.
inline std::string OptionValue(const std::string& html, const std::string& label) {
  const size_t at = html.find(" >" + label + "</option>");
  if (at == std::string::npos) return "";
  const size_t value = html.rfind("value=", at) + 6;
  return html.substr(value, at - value);
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

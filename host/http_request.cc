#include "host/http_request.h"

#include "host/form_encoding.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

std::string_view QueryOf(std::string_view target) {
  size_t question = target.find('?');
  return question == std::string_view::npos ? std::string_view() : target.substr(question + 1);
}

bool IsFormPost(const HttpRequest& http) {
  return http.method == "POST" &&
         http.Header("Content-Type").rfind("application/x-www-form-urlencoded", 0) == 0;
}

}  // namespace

AspCollection ParseCookies(std::string_view header) {
  AspCollection cookies;
  for (const std::string& piece : Split(header, ';')) {
    std::string pair = Trim(piece);
    size_t eq = pair.find('=');
    if (eq == std::string::npos) continue;
    cookies.Add(pair.substr(0, eq), pair.substr(eq + 1));
  }
  return cookies;
}

AspRequest ToAspRequest(const HttpRequest& http) {
  AspRequest request;
  std::string_view query = QueryOf(http.target);
  request.QueryString = ParseUrlEncoded(query);
  if (IsFormPost(http)) request.Form = ParseUrlEncoded(http.body);
  request.Cookies = ParseCookies(http.Header("Cookie"));
  AspCollection& vars = request.ServerVariables;
  vars.Add("URL", http.path);
  vars.Add("HTTP_USER_AGENT", http.Header("User-Agent"));
  vars.Add("REQUEST_METHOD", http.method);
  vars.Add("QUERY_STRING", std::string(query));
  vars.Add("REMOTE_ADDR", http.remote_address);
  vars.Add("HTTP_HOST", http.Header("Host"));
  return request;
}

}  // namespace tidewell

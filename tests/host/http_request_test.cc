#include "host/http_request.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

HttpRequest FormPost() {
  HttpRequest http;
  http.method = "POST";
  http.target = "/cal/default.asp?WS=abc&x=1";
  http.path = "/cal/default.asp";
  http.version = "HTTP/1.1";
  http.headers = {{"Host", "cal.example"},
                  {"content-type", "application/x-www-form-urlencoded; charset=UTF-8"},
                  {"User-Agent", "Mozilla/5.0 (X11)"},
                  {"Cookie", "a=1; b=two"}};
  http.body = "username=bob&password=p%26w+x";
  http.remote_address = "203.0.113.7";
  return http;
}

TEST(HttpRequest, HeadersAreFoundWithoutRegardToCase) {
  HttpRequest http = FormPost();
  EXPECT_EQ(http.Header("Content-Type"), "application/x-www-form-urlencoded; charset=UTF-8");
  EXPECT_EQ(http.Header("HOST"), "cal.example");
  EXPECT_EQ(http.Header("Referer"), "");
}

TEST(HttpRequest, BecomesTheComponentsRequest) {
  AspRequest request = ToAspRequest(FormPost());
  EXPECT_EQ(request.QueryString("WS"), "abc");
  EXPECT_EQ(request.QueryString("x"), "1");
  EXPECT_EQ(request.Form("username"), "bob");
  EXPECT_EQ(request.Form("password"), "p&w x");
  EXPECT_EQ(request.Cookies("b"), "two");
  EXPECT_EQ(request.ServerVariables("URL"), "/cal/default.asp");
  EXPECT_EQ(request.ServerVariables("HTTP_USER_AGENT"), "Mozilla/5.0 (X11)");
  EXPECT_EQ(request.ServerVariables("REQUEST_METHOD"), "POST");
  EXPECT_EQ(request.ServerVariables("QUERY_STRING"), "WS=abc&x=1");
  EXPECT_EQ(request.ServerVariables("HTTP_HOST"), "cal.example");
}

TEST(HttpRequest, RemoteAddrIsThePeersAddress) {
  HttpRequest http = FormPost();
  EXPECT_EQ(ToAspRequest(http).ServerVariables("REMOTE_ADDR"), "203.0.113.7");
  http.remote_address = "::1";
  EXPECT_EQ(ToAspRequest(http).ServerVariables("REMOTE_ADDR"), "::1");
}

TEST(HttpRequest, OnlyAFormPostFillsTheForm) {
  HttpRequest http = FormPost();
  http.method = "GET";
  EXPECT_EQ(ToAspRequest(http).Form("username"), "");
  http.method = "POST";
  http.headers[1].second = "text/plain";
  EXPECT_EQ(ToAspRequest(http).Form("username"), "");
}

}  // namespace
}  // namespace tidewell

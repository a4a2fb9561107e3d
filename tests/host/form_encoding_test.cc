#include "host/form_encoding.h"

#include <gtest/gtest.h>

#include "host/http_request.h"

namespace tidewell {
namespace {

TEST(ParseUrlEncoded, ReadsPairsInOrder) {
  AspCollection c = ParseUrlEncoded("a=1&b=two+words&c=%7E%41");
  ASSERT_EQ(c.items().size(), 3u);
  EXPECT_EQ(c("a"), "1");
  EXPECT_EQ(c("b"), "two words");
  EXPECT_EQ(c("c"), "~A");
}

TEST(ParseUrlEncoded, RepeatedNamesJoinWithCommaBlank) {
  EXPECT_EQ(ParseUrlEncoded("x=1&x=2")("X"), "1, 2");
}

TEST(ParseUrlEncoded, EmptyAndValuelessPairs) {
  AspCollection c = ParseUrlEncoded("&&flag&empty=&=v");
  EXPECT_TRUE(c.Contains("flag"));
  EXPECT_EQ(c("flag"), "");
  EXPECT_EQ(c("empty"), "");
}

TEST(ParseUrlEncoded, MalformedEscapeStaysAsWritten) {
  EXPECT_EQ(ParseUrlEncoded("a=%zz%4")("a"), "%zz%4");
}

TEST(ParseUrlEncoded, Utf8SurvivesTheRoundTrip) {
  std::string text = "Zoë's café & 日本";
  EXPECT_EQ(ParseUrlEncoded("t=" + UrlEncode(text))("t"), text);
}

TEST(ParseCookies, ReadsNameValuePairs) {
  AspCollection c = ParseCookies("a=1; session=xyz;flag");
  EXPECT_EQ(c("a"), "1");
  EXPECT_EQ(c("session"), "xyz");
  EXPECT_FALSE(c.Contains("flag"));
}

TEST(AspRequest, DefaultCollectionSearchesQueryFormCookiesThenServerVariables) {
  AspRequest r;
  r.ServerVariables.Add("welcome", "server");
  EXPECT_EQ(r("welcome"), "server");
  r.Cookies.Add("welcome", "cookie");
  EXPECT_EQ(r("welcome"), "cookie");
  r.Form.Add("welcome", "form");
  EXPECT_EQ(r("welcome"), "form");
  r.QueryString.Add("welcome", "y");
  EXPECT_EQ(r("welcome"), "y");
  EXPECT_EQ(r("absent"), "");
}

}  // namespace
}  // namespace tidewell

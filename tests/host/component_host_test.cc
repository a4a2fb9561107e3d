#include "host/component_host.h"

#include <gtest/gtest.h>

#include "host/config.h"
#include "page/link_codec.h"

namespace tidewell {
namespace {

AspRequest RequestFor(std::string url, std::string ws = "") {
  AspRequest request;
  request.ServerVariables.Add("URL", std::move(url));
  if (!ws.empty()) request.QueryString.Add("WS", std::move(ws));
  return request;
}

TEST(RunComponent, WrapsTheOutputInThePageTemplate) {
  SiteConfig config =
      ParseConfig("Visible = True\nConnectionString = Provider=SQLite;Data Source=:memory:\n", "f");
  config.pages[0].page_template = "<body>{{tidewell}}</body>";
  HostAnswer answer = RunComponent(config.pages[0], {}, RequestFor("/"));
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(
      answer.body.rfind("<body><div id=ws_vis ><div id=ws_pos ><!-- Outer Table Start -->", 0), 0u);
  EXPECT_EQ(answer.body.substr(answer.body.size() - 19), "</div></div></body>");
}

TEST(RunComponent, PropertiesApplyInFileOrderAfterOnStartPage) {
  SiteConfig config = ParseConfig(
      "Visible = True\nConnectionString = Provider=SQLite;Data Source=:memory:\nPosition = a\n"
      "Position = b\n",
      "f");
  config.pages[0].page_template = "{{tidewell}}";
  HostAnswer answer = RunComponent(config.pages[0], {}, RequestFor("/"));
  EXPECT_EQ(answer.body.rfind("<div id=ws_vis ><div id=ws_pos style=\"b\"><!--", 0), 0u);
}

TEST(RunComponent, UndecodableLinkIsABadRequest) {
  SiteConfig config = DefaultConfig();
  HostAnswer answer = RunComponent(config.pages[0], {}, RequestFor("/", "7EZZ"));
  EXPECT_EQ(answer.status, 400);
  EXPECT_EQ(answer.content_type, "text/plain; charset=utf-8");
  EXPECT_EQ(answer.body, "Bad request: run-time error 13, Type mismatch.\n");
}

TEST(ViewComponentSource, ReturnsTheComponentsOwnText) {
  SiteConfig config =
      ParseConfig("Visible = True\nConnectionString = Provider=SQLite;Data Source=:memory:\n", "f");
  std::string html = ViewComponentSource(config.pages[0], {}, RequestFor("/"));
  EXPECT_EQ(html.rfind("<div id=ws_vis ><div id=ws_pos ><!-- Outer Table Start -->", 0), 0u);
  EXPECT_EQ(html.substr(html.size() - 12), "</div></div>");
}

// The error screen leaves the frame's height placeholder in the component's text; `serve`
// (RunComponent) and `render` (ServedPage of the component's text) settle it the same way.
TEST(ServedPage, ServeAndRenderSendTheSamePage) {
  SiteConfig config = ParseConfig("Visible = True\nConnectionString = Provider=Nothing\n", "f");
  config.pages[0].page_template = "<body>{{tidewell}}</body>";
  const std::string own_text = ViewComponentSource(config.pages[0], {}, RequestFor("/"));
  ASSERT_NE(own_text.find("<!-- ErrorScreen Start -->"), std::string::npos);
  ASSERT_NE(own_text.find("height=<height></height>"), std::string::npos);
  const std::string served = RunComponent(config.pages[0], {}, RequestFor("/")).body;
  EXPECT_EQ(ServedPage(config.pages[0], own_text), served);
  EXPECT_EQ(served.find("<height></height>"), std::string::npos);
  EXPECT_NE(served.find("width=620 height=545 cellpadding=0"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

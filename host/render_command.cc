// tidewell render: the HTML of one request, without a server.

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include "host/commands.h"
#include "host/component_host.h"
#include "host/feed_endpoint.h"
#include "host/form_encoding.h"
#include "host/site_setup.h"
#include "page/asp_objects.h"

namespace tidewell {
namespace {

constexpr const char* kRenderUsage =
    "Usage: tidewell render [--config FILE] [--url PATH] [--query TEXT]\n"
    "                       [--form NAME=VALUE]... [--user-agent TEXT]\n"
    "\n"
    "Prints the page the server would send for one request: the calendar's HTML\n"
    "inside the page's template.\n"
    "\n"
    "  --config FILE       configuration, as for serve\n"
    "  --url PATH          the page's path (default /); picks the [page] section\n"
    "  --query TEXT        the query string, e.g. WS=7E367E...\n"
    "  --form NAME=VALUE   a posted form field; repeat for more\n"
    "  --user-agent TEXT   the browser's User-Agent\n";

AspRequest RequestFrom(const Arguments& args) {
  AspRequest request;
  std::string url = args.Get("url").value_or("/");
  std::string query = args.Get("query").value_or("");
  if (size_t question = url.find('?'); question != std::string::npos) {
    if (query.empty()) query = url.substr(question + 1);
    url = url.substr(0, question);
  }
  request.QueryString = ParseUrlEncoded(query);
  for (const std::string& field : args.All("form")) {
    size_t eq = field.find('=');
    if (eq == std::string::npos) throw std::invalid_argument("--form takes NAME=VALUE");
    request.Form.Add(field.substr(0, eq), field.substr(eq + 1));
  }
  request.ServerVariables.Add("URL", url);
  request.ServerVariables.Add("HTTP_USER_AGENT", args.Get("user-agent").value_or(""));
  request.ServerVariables.Add("REQUEST_METHOD", args.All("form").empty() ? "GET" : "POST");
  return request;
}

}  // namespace

int RenderCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0);
  if (args.Has("help")) return std::fputs(kRenderUsage, stdout), 0;
  args.Expect({"config", "url", "query", "form", "user-agent", "help"});
  SiteConfig config = ConfigFrom(args);
  PrepareRegionalSettings(config);
  AspRequest request = RequestFrom(args);
  const PageConfig* page = config.FindPage(request.ServerVariables("URL"));
  if (page == nullptr) page = &config.pages.front();
  RefuseOtherSchemaVersion(config, page->PropertyValue("ConnectionString"));
  // No request to take a Host from: the feed address is PublicAddress's, else the path alone.
  std::cout << ServedPage(*page, ViewComponentSource(*page, PrepareSigning(config), request,
                                                     FeedAddressStart(config, *page, nullptr)));
  return 0;
}

}  // namespace tidewell

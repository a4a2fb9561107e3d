// tidewell: the calendar server and its tools.

#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include "component/asp_objects.h"
#include "data/schema.h"
#include "host/command_line.h"
#include "host/component_host.h"
#include "host/config.h"
#include "host/form_encoding.h"
#include "host/server.h"
#include "host/site_setup.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"

namespace tidewell {
namespace {

constexpr const char* kUsage =
    "Usage: tidewell COMMAND [OPTIONS]\n"
    "\n"
    "Commands:\n"
    "  serve     run the calendar web server\n"
    "  render    print the HTML the calendar writes for one request\n"
    "  init-db   create the calendar's tables on an empty database\n"
    "\n"
    "Run 'tidewell COMMAND --help' for a command's options.\n";

constexpr const char* kServeUsage =
    "Usage: tidewell serve [--config FILE] [--listen HOST:PORT]\n"
    "\n"
    "Serves the calendar over HTTP until SIGINT or SIGTERM.\n"
    "\n"
    "  --config FILE       configuration: the calendar's properties (ConnectionString,\n"
    "                      ImagePath, Visible, ...) and host keys (Listen, Locale,\n"
    "                      PageTemplate, AutoLogin, LinkSecret, LinkLifetime, AssetFolder,\n"
    "                      RequestTimeout, IdleTimeout, MaxConnections, Workers,\n"
    "                      FrameAncestors, ContentSecurityPolicy)\n"
    "  --listen HOST:PORT  address to listen on (default: the Listen key, else\n"
    "                      127.0.0.1:8080); port 0 picks a free port\n"
    "\n"
    "A request's headers and body must arrive within RequestTimeout seconds (10) or the\n"
    "connection is closed; idle kept-alive connections close after IdleTimeout (30).\n"
    "One access line per request goes to standard error, without query strings.\n"
    "\n"
    "The environment variable TIDEWELL_NOW=\"YYYY-MM-DD HH:MM:SS\" fixes the clock.\n";

constexpr const char* kRenderUsage =
    "Usage: tidewell render [--config FILE] [--url PATH] [--query TEXT]\n"
    "                       [--form NAME=VALUE]... [--user-agent TEXT]\n"
    "\n"
    "Prints the HTML the calendar returns for one request (its ViewSource).\n"
    "\n"
    "  --config FILE       configuration, as for serve\n"
    "  --url PATH          the page's path (default /); picks the [page] section\n"
    "  --query TEXT        the query string, e.g. WS=7E367E...\n"
    "  --form NAME=VALUE   a posted form field; repeat for more\n"
    "  --user-agent TEXT   the browser's User-Agent\n";

constexpr const char* kInitDbUsage =
    "Usage: tidewell init-db (--connection STRING | --config FILE)\n"
    "\n"
    "Creates the tables Groups, Users and Items, with their keys and indexes, on an empty\n"
    "database. Refuses when any of them exists already.\n"
    "\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\" or\n"
    "                       \"Provider=PostgreSQL;host=db.example;dbname=tidewell\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n";

SiteConfig ConfigFrom(const Arguments& args) {
  if (auto path = args.Get("config")) return LoadConfig(*path);
  return DefaultConfig();
}

int ServeCommand(const Arguments& args) {
  if (args.Has("help")) return std::fputs(kServeUsage, stdout), 0;
  args.Expect({"config", "listen", "help"});
  SiteConfig config = ConfigFrom(args);
  return Serve(config, args.Get("listen").value_or(config.listen));
}

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

int RenderCommand(const Arguments& args) {
  if (args.Has("help")) return std::fputs(kRenderUsage, stdout), 0;
  args.Expect({"config", "url", "query", "form", "user-agent", "help"});
  SiteConfig config = ConfigFrom(args);
  PrepareRegionalSettings(config);
  AspRequest request = RequestFrom(args);
  const PageConfig* page = config.FindPage(request.ServerVariables("URL"));
  if (page == nullptr) page = &config.pages.front();
  std::cout << ViewComponentSource(*page, PrepareSigning(config), request);
  return 0;
}

int InitDbCommand(const Arguments& args) {
  if (args.Has("help")) return std::fputs(kInitDbUsage, stdout), 0;
  args.Expect({"connection", "config", "help"});
  std::optional<std::string> connection = args.Get("connection");
  if (!connection && args.Has("config")) {
    connection = ConfigFrom(args).pages.front().PropertyValue("ConnectionString");
  }
  if (!connection) throw std::invalid_argument("give --connection STRING or --config FILE");
  CreateSchema(*connection);
  // Made here rather than by the first server, so that servers started together agree at once.
  SiteLinkSecret(*connection);
  std::puts(
      "tidewell init-db: created the tables Groups, Users and Items, and the site's own "
      "TidewellSettings (with a new link secret) and LoginFailures");
  return 0;
}

int Main(int argc, char** argv) {
  std::string command = argc > 1 ? argv[1] : "";
  if (command == "--help" || command == "-h" || command == "help") {
    return std::fputs(kUsage, stdout), 0;
  }
  try {
    CheckClockEnvironment();
    if (command == "serve") return ServeCommand(Arguments(argc, argv, 2));
    if (command == "render") return RenderCommand(Arguments(argc, argv, 2));
    if (command == "init-db") return InitDbCommand(Arguments(argc, argv, 2));
  } catch (const std::invalid_argument& e) {
    std::fprintf(stderr, "tidewell %s: %s\n", command.c_str(), e.what());
    return 2;
  } catch (const AutomationError& e) {
    std::fprintf(stderr, "tidewell %s: run-time error %ld: %s\n", command.c_str(), e.number(),
                 e.what());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tidewell %s: %s\n", command.c_str(), e.what());
    return 1;
  }
  std::fputs(kUsage, stderr);
  return 2;
}

}  // namespace
}  // namespace tidewell

int main(int argc, char** argv) {
  return tidewell::Main(argc, argv);
}

#include "host/server.h"

#include <cstdio>
#include <stdexcept>

#include "data/database_error.h"
#include "host/component_host.h"
#include "host/feed_endpoint.h"
#include "host/http_request.h"
#include "host/http_server.h"
#include "host/metrics.h"
#include "host/security_headers.h"
#include "host/service_endpoints.h"
#include "host/site_setup.h"
#include "host/static_assets.h"

namespace tidewell {
namespace {

struct Endpoint {
  std::string host;
  int port = 0;
};

Endpoint ParseEndpoint(const std::string& listen) {
  size_t colon = listen.rfind(':');
  Endpoint endpoint{listen.substr(0, colon), 0};
  if (endpoint.host.size() > 2 && endpoint.host.front() == '[') {
    endpoint.host = endpoint.host.substr(1, endpoint.host.size() - 2);  // [::1]
  }
  try {
    size_t used = 0;
    endpoint.port = std::stoi(listen.substr(colon + 1), &used);
    if (used != listen.size() - colon - 1 || endpoint.port < 0 || endpoint.port > 65535) throw 0;
  } catch (...) {
    throw std::runtime_error("cannot listen on \"" + listen + "\": expected HOST:PORT");
  }
  return endpoint;
}

// Answers every request: the server's own paths (host/service_endpoints.h), a configured page
// runs the component, an image or the style sheet comes from memory, anything else is not
// found. Called on the server's worker threads.
class Site {
 public:
  Site(const SiteConfig& config, SiteSigning& signing, StaticAssets assets, Metrics& metrics)
      : config_(config),
        signing_(signing),
        assets_(std::move(assets)),
        metrics_(metrics),
        service_(config, metrics),
        feeds_(config) {}

  HttpAnswer Answer(const HttpRequest& request) const {
    bool get = request.method == "GET" || request.method == "HEAD";
    if (!get && request.method != "POST") {
      HttpAnswer answer = PlainAnswer(405, "Method not allowed.\n");
      answer.headers.emplace_back("Allow", "GET, HEAD, POST");
      return answer;
    }
    if (std::optional<HttpAnswer> answer = service_.Answer(request)) return std::move(*answer);
    if (std::optional<HttpAnswer> answer = AnswerFeed(request)) return std::move(*answer);
    if (const PageConfig* page = config_.FindPage(request.path)) return AnswerPage(*page, request);
    if (get) {
      if (const StaticAssets::Asset* asset = assets_.Find(request.path)) {
        HttpAnswer answer;
        answer.content_type = asset->content_type;
        answer.body = asset->body;
        answer.headers.emplace_back("Cache-Control", "max-age=3600");
        return answer;
      }
    }
    return PlainAnswer(404, "Not found.\n");
  }

 private:
  HttpAnswer AnswerPage(const PageConfig& page, const HttpRequest& request) const {
    HostAnswer host;
    try {
      host = RunComponent(page, signing_.Current(), ToAspRequest(request),
                          FeedAddressStart(config_, page, &request));
    } catch (const ado::DatabaseError& e) {
      metrics_.CountEscapedDatabaseError();
      // Its text may quote a value from the request; the log gets the number only.
      throw std::runtime_error("database error " + std::to_string(e.number()));
    }
    metrics_.CountPage(host.statements, host.error_kind, host.link_keys_refused,
                       host.login_refused);
    HttpAnswer answer;
    answer.status = host.status;
    answer.content_type = std::move(host.content_type);
    answer.body = std::move(host.body);  // moved: a month view is some 55 KB
    answer.headers.emplace_back("Cache-Control", "no-store");
    answer.log_screen = host.screen;
    answer.log_statements = std::to_string(host.statements);
    return answer;
  }

  std::optional<HttpAnswer> AnswerFeed(const HttpRequest& request) const {
    try {
      return feeds_.Answer(request);
    } catch (const ado::DatabaseError& e) {
      metrics_.CountEscapedDatabaseError();
      throw std::runtime_error("database error " + std::to_string(e.number()));
    }
  }

  const SiteConfig& config_;
  SiteSigning& signing_;
  StaticAssets assets_;
  Metrics& metrics_;
  mutable ServiceEndpoints service_;
  FeedEndpoint feeds_;
};

HttpServerLimits LimitsOf(const SiteConfig& config) {
  HttpServerLimits limits;
  limits.request_timeout = std::chrono::seconds(config.request_timeout_seconds);
  limits.idle_timeout = std::chrono::seconds(config.idle_timeout_seconds);
  limits.max_connections = static_cast<size_t>(config.max_connections);
  limits.workers = static_cast<size_t>(WorkersOf(config));
  limits.io_threads = static_cast<size_t>(EventLoopThreads());
  return limits;
}

// Each answer as it leaves: one access line on standard error, and the request counters.
HttpServerAccess AccessOf(const SiteConfig& config, Metrics& metrics) {
  HttpServerAccess access;
  access.trusted_proxies = config.trusted_proxies;
  access.on_answer = [format = config.log_format, &metrics](const AccessRecord& record) {
    std::fputs(AccessLine(record, format).c_str(), stderr);
    metrics.CountAnswer(record.screen, record.status, record.duration_ms / 1000);
  };
  return access;
}

}  // namespace

int Serve(const SiteConfig& config, const std::string& listen) {
  Endpoint endpoint = ParseEndpoint(listen);
  PreparedSite prepared = PrepareSite(config);
  Metrics metrics;
  Site site(config, *prepared.signing, std::move(prepared.assets), metrics);

  HttpServer server([&site](const HttpRequest& request) { return site.Answer(request); },
                    LimitsOf(config), SecurityHeaders(config), AccessOf(config, metrics));
  int port = 0;
  try {
    port = server.Bind(endpoint.host, endpoint.port);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tidewell: %s\n", e.what());
    return 1;
  }
  bool v6 = endpoint.host.find(':') != std::string::npos;
  std::fprintf(stderr, "tidewell: serving http://%s%s%s:%d/\n", v6 ? "[" : "",
               endpoint.host.c_str(), v6 ? "]" : "", port);
  server.Run();
  std::fprintf(stderr, "tidewell: stopped\n");
  return 0;
}

}  // namespace tidewell

#include "host/service_endpoints.h"

namespace tidewell {
namespace {

HttpAnswer Uncached(HttpAnswer answer) {
  answer.headers.emplace_back("Cache-Control", "no-store");
  return answer;
}

}  // namespace

bool MetricsAllowed(std::string_view address, const std::vector<IpNetwork>& allowed) {
  return IsLoopback(address) || NetworksContain(allowed, address);
}

ServiceEndpoints::ServiceEndpoints(const SiteConfig& config, const Metrics& metrics)
    : config_(config),
      metrics_(metrics),
      readiness_(config.pages.front().PropertyValue("ConnectionString"), kReadinessBound) {}

std::optional<HttpAnswer> ServiceEndpoints::Answer(const HttpRequest& request) {
  if (request.method != "GET" && request.method != "HEAD") return std::nullopt;
  if (request.path == "/healthz") return Uncached(PlainAnswer(200, "ok\n"));
  if (request.path == "/readyz") {
    Readiness readiness = readiness_.Check();
    return Uncached(readiness.ready ? PlainAnswer(200, "ready\n")
                                    : PlainAnswer(503, "not ready: " + readiness.reason));
  }
  if (request.path == "/metrics" && config_.metrics &&
      MetricsAllowed(request.remote_address, config_.metrics_allow)) {
    HttpAnswer answer = PlainAnswer(200, metrics_.Exposition(ado::PoolStatistics()));
    answer.content_type = "text/plain; version=0.0.4; charset=utf-8";
    return Uncached(std::move(answer));
  }
  return std::nullopt;
}

}  // namespace tidewell

#pragma once

#include <optional>

#include "host/config.h"
#include "host/http_server.h"
#include "host/metrics.h"
#include "host/readiness.h"

namespace tidewell {

// The paths a load balancer and a monitor ask at the server's root, beside the pages:
//   /healthz  200 "ok" while the process serves;
//   /readyz   200 "ready" when the "/" page's database answers SELECT 1 within two seconds,
//             else 503 with the reason;
//   /metrics  the counters (host/metrics.h) when the Metrics key is on, to loopback clients
//             and the networks MetricsAllow lists; to anyone else it does not exist.
// None of them runs the calendar; their answers are never cached.
class ServiceEndpoints {
 public:
  static constexpr std::chrono::seconds kReadinessBound{2};

  ServiceEndpoints(const SiteConfig& config, const Metrics& metrics);

  // The answer for a GET or HEAD of one of the paths, or nothing: then the request is not
  // theirs (another path, another method, or /metrics refused) and the site goes on.
  std::optional<HttpAnswer> Answer(const HttpRequest& request);

 private:
  const SiteConfig& config_;
  const Metrics& metrics_;
  ReadinessCheck readiness_;
};

// Whether the client at `address` may read /metrics: loopback, or one of `allowed`.
bool MetricsAllowed(std::string_view address, const std::vector<IpNetwork>& allowed);

}  // namespace tidewell

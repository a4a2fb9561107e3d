#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>

#include "host/config.h"
#include "page/link_keys.h"

namespace tidewell {

// How the server's requests sign keys in links, shared by its worker threads. The secret is
// the configured LinkSecret, else the one the database keeps (host/site_setup.h). A server
// may start while its database is down (servers and database started together): it then signs
// with a secret of its own process and asks the database again, at most every
// kRetryInterval, until it answers; from then on every server of the site signs alike.
class SiteSigning {
 public:
  static constexpr std::chrono::seconds kRetryInterval{10};

  explicit SiteSigning(const SiteConfig& config,
                       std::chrono::milliseconds retry_interval = kRetryInterval);
  SiteSigning(const SiteSigning&) = delete;
  SiteSigning& operator=(const SiteSigning&) = delete;

  // The signing to use for a request now.
  LinkSigning Current();

 private:
  LinkSigning signing_;
  std::string connection_string_;  // where the secret is kept, until it was read
  std::chrono::milliseconds retry_interval_;
  std::atomic<bool> settled_{false};
  std::mutex mutex_;
  std::chrono::steady_clock::time_point last_try_;
};

}  // namespace tidewell

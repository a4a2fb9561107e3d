#include "host/site_signing.h"

#include <cstdio>

#include "data/database_error.h"
#include "host/site_setup.h"

namespace tidewell {

SiteSigning::SiteSigning(const SiteConfig& config, std::chrono::milliseconds retry_interval)
    : signing_(PrepareSigning(config)),
      connection_string_(config.pages.front().PropertyValue("ConnectionString")),
      retry_interval_(retry_interval),
      last_try_(std::chrono::steady_clock::now()) {
  settled_ = !signing_.secret.empty();
}

LinkSigning SiteSigning::Current() {
  // Once settled the signing never changes again, so it may be read without the lock.
  if (settled_.load(std::memory_order_acquire)) return signing_;
  std::lock_guard lock(mutex_);
  if (settled_.load(std::memory_order_relaxed)) return signing_;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_try_ >= retry_interval_) {
    last_try_ = now;
    try {
      signing_.secret = SiteLinkSecret(connection_string_);
      std::fprintf(stderr, "tidewell: the database answered; links are signed with its secret\n");
      settled_.store(true, std::memory_order_release);
    } catch (const ado::DatabaseError&) {
      // Still down: the process's own secret serves a little longer.
    }
  }
  return signing_;
}

}  // namespace tidewell

#pragma once

#include <chrono>
#include <future>
#include <mutex>
#include <string>

namespace tidewell {

struct Readiness {
  bool ready = false;
  std::string reason;  // why not, in plain words; never the connection string's password
};

// Whether a database answers a trivial statement (SELECT 1) within a bound. The statement runs
// on a thread of its own, so that a database that hangs costs the asking request no more than
// the bound; while one check is still running, later requests wait on it instead of starting
// another, so a hung database holds one thread however often it is asked.
class ReadinessCheck {
 public:
  ReadinessCheck(std::string connection_string, std::chrono::milliseconds bound);

  Readiness Check();

 private:
  std::string connection_string_;
  std::chrono::milliseconds bound_;
  std::mutex mutex_;
  std::shared_future<Readiness> running_;
};

}  // namespace tidewell

// The provider registry and the per-connection-string pools of sessions, the way the
// original platform's resource pooling kept connections open between requests.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <mutex>
#include <vector>

#include "data/database_error.h"
#include "data/postgres_session.h"
#include "data/session.h"
#include "data/sqlite_session.h"

namespace tidewell::ado {
namespace {

// Sessions open at once per connection string (handed out and idle), unless the string's
// "Max Pool Size" says otherwise; and how long a request waits for one of them when all are
// in use ("Pool Timeout", in seconds) before it fails. Both keys belong to the pool: the
// provider never sees them.
constexpr size_t kDefaultMaxPoolSize = 16;
constexpr double kDefaultPoolTimeoutSeconds = 5;
constexpr const char* kMaxPoolSizeKey = "Max Pool Size";
constexpr const char* kPoolTimeoutKey = "Pool Timeout";

struct PoolLimits {
  size_t max_sessions = kDefaultMaxPoolSize;
  std::chrono::milliseconds wait{static_cast<long>(kDefaultPoolTimeoutSeconds * 1000)};
};

// One connection string's sessions: the idle ones, and how many are open in all.
struct Pool {
  std::vector<std::unique_ptr<Session>> idle;
  size_t open = 0;
};

struct Registry {
  std::mutex mutex;
  std::condition_variable session_freed;
  std::vector<std::pair<std::string, SessionFactory>> providers;
  std::map<std::string, Pool> pools;
  size_t waiting = 0;  // requests inside WaitForSession, all pools together

  Registry() {
    providers.emplace_back("SQLite", OpenSqliteSession);
    providers.emplace_back("PostgreSQL", OpenPostgresSession);
  }
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

// The factory registered under the provider's name, and the name as registered.
std::pair<std::string, SessionFactory> FindProvider(Registry& registry, const std::string& name) {
  std::lock_guard lock(registry.mutex);
  for (const auto& entry : registry.providers) {
    if (EqualsIgnoringCase(entry.first, name)) return entry;
  }
  throw DatabaseError(error_numbers::kProviderNotFound,
                      "Provider cannot be found. It may not be properly installed. (Provider=" +
                          name + "; the providers are SQLite and PostgreSQL.)");
}

[[noreturn]] void RaiseBadPoolSetting(const std::string& key, const std::string& value) {
  throw DatabaseError(
      error_numbers::kInvalidArgument,
      "The connection string's " + key + " must be a whole number above 0, not \"" + value + "\".");
}

// Takes the pool's own keys out of the settings and reads them.
PoolLimits TakePoolLimits(ConnectionSettings& settings) {
  PoolLimits limits;
  auto& list = settings.settings;
  for (auto it = list.begin(); it != list.end();) {
    const bool size = EqualsIgnoringCase(it->first, kMaxPoolSizeKey);
    const bool timeout = EqualsIgnoringCase(it->first, kPoolTimeoutKey);
    if (!size && !timeout) {
      ++it;
      continue;
    }
    char* end = nullptr;
    const long value = std::strtol(it->second.c_str(), &end, 10);
    if (it->second.empty() || *end != '\0' || value <= 0 || value > 100000) {
      RaiseBadPoolSetting(it->first, it->second);
    }
    if (size) limits.max_sessions = static_cast<size_t>(value);
    if (timeout) limits.wait = std::chrono::seconds(value);
    it = list.erase(it);
  }
  return limits;
}

// What a request gets from the pool: an idle session (still to be checked), or leave to
// open a new one (counted as open already).
struct Lease {
  std::unique_ptr<Session> idle;
  bool open_new = false;
};

// Waits, up to the limit, for an idle session or room for a new one. Throws E_FAIL when
// neither came in time: every session is in use, and the open fails as for a server that is
// down.
Lease WaitForSession(Registry& registry, const std::string& connection_string,
                     const PoolLimits& limits) {
  std::unique_lock lock(registry.mutex);
  Pool& pool = registry.pools[connection_string];
  Lease lease;
  auto available = [&] { return !pool.idle.empty() || pool.open < limits.max_sessions; };
  bool ready = available();
  if (!ready) {
    ++registry.waiting;
    ready = registry.session_freed.wait_for(lock, limits.wait, available);
    --registry.waiting;
  }
  if (!ready) {
    throw DatabaseError(error_numbers::kFail,
                        "Timeout expired. All " + std::to_string(limits.max_sessions) +
                            " pooled connections were in use and none was released within " +
                            std::to_string(limits.wait.count() / 1000) + " seconds.");
  }
  if (!pool.idle.empty()) {
    lease.idle = std::move(pool.idle.back());
    pool.idle.pop_back();
  } else {
    ++pool.open;
    lease.open_new = true;
  }
  return lease;
}

// A session that closes, or one that was never opened, makes room for another.
void CountClosed(Registry& registry, const std::string& connection_string) {
  {
    std::lock_guard lock(registry.mutex);
    Pool& pool = registry.pools[connection_string];
    if (pool.open > 0) --pool.open;
  }
  registry.session_freed.notify_one();
}

}  // namespace

void RegisterProvider(const std::string& name, SessionFactory factory) {
  Registry& registry = TheRegistry();
  std::lock_guard lock(registry.mutex);
  for (auto& entry : registry.providers) {
    if (EqualsIgnoringCase(entry.first, name)) {
      entry.second = std::move(factory);
      return;
    }
  }
  registry.providers.emplace_back(name, std::move(factory));
}

std::unique_ptr<Session> AcquireSession(const std::string& connection_string,
                                        std::string* provider) {
  Registry& registry = TheRegistry();
  ConnectionSettings settings = ParseConnectionString(connection_string);
  const PoolLimits limits = TakePoolLimits(settings);
  auto [name, factory] = FindProvider(registry, settings.provider);
  if (provider) *provider = name;
  // A session whose engine went away while it was idle is dropped for the next one. The
  // check may touch the file or the socket, and dropping closes the session: both happen
  // outside the lock every request takes.
  for (;;) {
    Lease lease = WaitForSession(registry, connection_string, limits);
    if (lease.idle) {
      if (lease.idle->Reusable()) return std::move(lease.idle);
      lease.idle.reset();
      CountClosed(registry, connection_string);
      continue;
    }
    try {
      return factory(settings);
    } catch (...) {
      CountClosed(registry, connection_string);
      throw;
    }
  }
}

void ReleaseSession(const std::string& connection_string, std::unique_ptr<Session> session) {
  Registry& registry = TheRegistry();
  if (session && session->Returnable()) {
    {
      std::lock_guard lock(registry.mutex);
      registry.pools[connection_string].idle.push_back(std::move(session));
    }
    registry.session_freed.notify_one();
    return;
  }
  session.reset();  // closes outside the lock
  CountClosed(registry, connection_string);
}

PoolStats PoolStatistics() {
  Registry& registry = TheRegistry();
  std::lock_guard lock(registry.mutex);
  PoolStats stats;
  for (const auto& [text, pool] : registry.pools) {
    stats.idle += pool.idle.size();
    stats.in_use += pool.open - std::min(pool.open, pool.idle.size());
  }
  stats.waiting = registry.waiting;
  return stats;
}

void ClosePooledSessions() {
  Registry& registry = TheRegistry();
  std::vector<std::unique_ptr<Session>> closing;
  {
    std::lock_guard lock(registry.mutex);
    for (auto& [text, pool] : registry.pools) {
      pool.open -= std::min(pool.open, pool.idle.size());
      for (auto& session : pool.idle) closing.push_back(std::move(session));
      pool.idle.clear();
    }
  }
  registry.session_freed.notify_all();
}

}  // namespace tidewell::ado

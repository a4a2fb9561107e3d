// The provider registry and the per-connection-string pools of idle sessions, the way the
// original platform's resource pooling kept connections open between requests.

#include <map>
#include <mutex>
#include <vector>

#include "data/database_error.h"
#include "data/postgres_session.h"
#include "data/session.h"
#include "data/sqlite_session.h"

namespace tidewell::ado {
namespace {

// Idle sessions kept per connection string; more than this many are closed when released.
constexpr size_t kIdleSessionsPerString = 16;

struct Registry {
  std::mutex mutex;
  std::vector<std::pair<std::string, SessionFactory>> providers;
  std::map<std::string, std::vector<std::unique_ptr<Session>>> idle;

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

std::unique_ptr<Session> PopIdle(Registry& registry, const std::string& connection_string) {
  std::lock_guard lock(registry.mutex);
  auto found = registry.idle.find(connection_string);
  if (found == registry.idle.end() || found->second.empty()) return nullptr;
  std::unique_ptr<Session> session = std::move(found->second.back());
  found->second.pop_back();
  return session;
}

// A session whose engine went away while it was idle is dropped for the next one. The check
// may touch the file or the socket, and dropping closes the session: both happen outside the
// lock every request takes.
std::unique_ptr<Session> TakeIdle(Registry& registry, const std::string& connection_string) {
  while (std::unique_ptr<Session> session = PopIdle(registry, connection_string)) {
    if (session->Reusable()) return session;
  }
  return nullptr;
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
  auto [name, factory] = FindProvider(registry, settings.provider);
  if (provider) *provider = name;
  if (std::unique_ptr<Session> session = TakeIdle(registry, connection_string)) return session;
  return factory(settings);
}

void ReleaseSession(const std::string& connection_string, std::unique_ptr<Session> session) {
  if (!session || !session->Reusable()) return;
  Registry& registry = TheRegistry();
  std::unique_lock lock(registry.mutex);
  auto& idle = registry.idle[connection_string];
  if (idle.size() < kIdleSessionsPerString) idle.push_back(std::move(session));
  lock.unlock();
  // A session the pool did not take closes here, outside the lock.
}

void ClosePooledSessions() {
  Registry& registry = TheRegistry();
  std::map<std::string, std::vector<std::unique_ptr<Session>>> closing;
  {
    std::lock_guard lock(registry.mutex);
    closing.swap(registry.idle);
  }
}

}  // namespace tidewell::ado

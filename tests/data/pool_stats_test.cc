// The pools' sessions as a monitor sees them: handed out, idle, and requests waiting.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

#include "data/database_error.h"
#include "data/session.h"
#include "tests/data/engines.h"

namespace tidewell {
namespace {

TEST(PoolStats, CountSessionsInUseIdleAndRequestsWaiting) {
  testing::SqliteEngine engine;
  engine.Start();
  // A pool of two that gives up on a waiting request after a second.
  const std::string pooled = engine.connection_string + ";Max Pool Size=2;Pool Timeout=1";
  const ado::PoolStats before = ado::PoolStatistics();

  auto first = ado::AcquireSession(pooled, nullptr);
  auto second = ado::AcquireSession(pooled, nullptr);
  ado::PoolStats full = ado::PoolStatistics();
  EXPECT_EQ(full.in_use, before.in_use + 2);
  EXPECT_EQ(full.waiting, before.waiting);

  bool timed_out = false;
  std::thread third([&] {
    try {
      ado::AcquireSession(pooled, nullptr);
    } catch (const ado::DatabaseError&) {
      timed_out = true;
    }
  });
  size_t waiting = 0;
  for (int i = 0; i < 50 && waiting == 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    waiting = ado::PoolStatistics().waiting - before.waiting;
  }
  EXPECT_EQ(waiting, 1u);
  third.join();
  EXPECT_TRUE(timed_out);
  EXPECT_EQ(ado::PoolStatistics().waiting, before.waiting);

  ado::ReleaseSession(pooled, std::move(first));
  ado::PoolStats released = ado::PoolStatistics();
  EXPECT_EQ(released.in_use, before.in_use + 1);
  EXPECT_EQ(released.idle, before.idle + 1);
  ado::ReleaseSession(pooled, std::move(second));
  EXPECT_EQ(ado::PoolStatistics().in_use, before.in_use);
}

// A session goes back to the pool without a look at its file; it is looked at before the
// session is handed out again, and a session whose file was replaced meanwhile is closed.
TEST(PoolStats, ASessionWhoseFileWasReplacedIsClosedInsteadOfHandedOutAgain) {
  testing::SqliteEngine engine;
  engine.Start();
  const std::string path = engine.folder.path() + "/calendar.db";
  std::unique_ptr<ado::Session> session = ado::AcquireSession(engine.connection_string, nullptr);
  session->RunBound("CREATE TABLE Marker (Name TEXT)", {});
  EXPECT_TRUE(session->Reusable());
  // Another file moved over the path, as an operator putting a copy back might.
  { std::ofstream(path + ".other") << ""; }
  ASSERT_EQ(std::rename((path + ".other").c_str(), path.c_str()), 0);
  EXPECT_TRUE(session->Returnable());
  EXPECT_FALSE(session->Reusable());
  ado::ReleaseSession(engine.connection_string, std::move(session));

  std::unique_ptr<ado::Session> next = ado::AcquireSession(engine.connection_string, nullptr);
  EXPECT_FALSE(next->TableExists("Marker"));
  ado::ReleaseSession(engine.connection_string, std::move(next));
  ado::ClosePooledSessions();
}

}  // namespace
}  // namespace tidewell

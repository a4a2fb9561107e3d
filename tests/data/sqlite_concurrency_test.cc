// Requests on several threads share the embedded database through the pool.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "data/recordset.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

constexpr int kThreads = 8;
constexpr auto kDuration = std::chrono::milliseconds(2500);

struct Results {
  std::mutex mutex;
  std::set<long> inserted;
  std::vector<std::string> errors;
};

// One request: add an item, change it, read the thread's latest items back.
void OneRequest(const std::string& connection_string, const std::string& owner, int n,
                Results& results) {
  ado::Connection connection;
  connection.Open(connection_string);
  Recordset rs;
  rs.Open(Statement("Items"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
  rs.AddNew();
  rs.Fields("OwnerKey").SetValue(owner);
  rs.Fields("DateStamp").SetValue(DateSerial(2026, 11, 1 + n % 28));
  rs.Fields("TimeStamp").SetValue(static_cast<long>(n % 24));
  rs.Fields("Heading").SetValue(owner + " " + std::to_string(n));
  rs.Update();
  long id = CLng(rs.Fields("ItemID").Value());
  rs.Close();
  {
    std::lock_guard lock(results.mutex);
    results.inserted.insert(id);
  }
  rs.Open(Statement("SELECT * FROM Items WHERE ItemID = ").Number(id), connection,
          ado::adOpenDynamic, ado::adLockOptimistic);
  rs.Fields("Complete").SetValue(true);
  rs.Update();
  rs.Close();
  rs.Open(Statement("SELECT TOP 5 ItemID, Heading FROM Items WHERE OwnerKey = ")
              .Text(owner)
              .Add(" ORDER BY ItemID DESC"),
          connection);
  if (rs.Eof() || CLng(rs.Fields("ItemID").Value()) != id) {
    std::lock_guard lock(results.mutex);
    results.errors.push_back(owner + ": its newest item is not the one it just added");
  }
  rs.Close();
  connection.Close();
}

TEST(SqliteConcurrency, EightThreadsReadAndWriteWithoutLockErrors) {
  testing::TempFolder folder;
  const std::string connection_string =
      "Provider=SQLite;Data Source=" + folder.path() + "/calendar.db";
  CreateSchema(connection_string);
  Results results;
  const auto deadline = std::chrono::steady_clock::now() + kDuration;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      const std::string owner = "thread" + std::to_string(t);
      for (int n = 0; std::chrono::steady_clock::now() < deadline; ++n) {
        try {
          OneRequest(connection_string, owner, n, results);
        } catch (const ado::DatabaseError& e) {
          std::lock_guard lock(results.mutex);
          results.errors.push_back(owner + ": " + e.what());
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_TRUE(results.errors.empty())
      << results.errors.size() << " errors, the first: " << results.errors.front();
  EXPECT_GE(results.inserted.size(), static_cast<size_t>(kThreads));
  ado::Connection connection;
  connection.Open(connection_string);
  Recordset rs;
  rs.Open(Statement("SELECT ItemID, Complete FROM Items"), connection);
  std::set<long> found;
  for (; !rs.Eof(); rs.MoveNext()) {
    found.insert(CLng(rs.Fields("ItemID").Value()));
    EXPECT_EQ(rs.Fields("Complete").Value(), Variant(true));
  }
  EXPECT_EQ(found, results.inserted);
}

// Writers take turns in the order they came: under a burst of writes from eight threads, no
// thread is left waiting while the others write again and again (SQLite's own busy wait
// polls with growing sleeps, and a writer that lost a few rounds kept losing).
TEST(SqliteConcurrency, WritersOfOneFileTakeTurns) {
  testing::TempFolder folder;
  const std::string connection_string =
      "Provider=SQLite;Data Source=" + folder.path() + "/calendar.db";
  CreateSchema(connection_string);
  std::vector<int> writes(kThreads, 0);
  std::atomic<int> errors = 0;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(2000);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      ado::Connection connection;
      connection.Open(connection_string);
      while (std::chrono::steady_clock::now() < deadline) {
        try {
          connection.Execute(Statement("INSERT INTO Items (OwnerKey, Heading) VALUES (")
                                 .Text("thread" + std::to_string(t))
                                 .Add(", 'turn')"));
          ++writes[static_cast<size_t>(t)];
        } catch (const ado::DatabaseError&) {
          ++errors;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(errors, 0);
  // No writer is shut out. How evenly they share the file depends on the scheduler of a
  // shared machine, so only starvation is asserted.
  EXPECT_GT(*std::min_element(writes.begin(), writes.end()), 0)
      << "the writes of each thread: " << ::testing::PrintToString(writes);
}

}  // namespace
}  // namespace tidewell

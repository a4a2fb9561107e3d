// tidewell backup against a real server that is writing: the copy is whole and consistent,
// an existing file is kept unless --force, and PostgreSQL is sent to pg_dump.

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "tests/component/seeded_database.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::CommandResult;
using testing::RunTidewell;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";
constexpr int kWriters = 4;
constexpr int kPostsEach = 40;

// The value of the preselected entry of a select list: what a browser posts for it.
std::string SelectedValue(const std::string& html) {
  const std::string before = "<option selected class=text value=";
  size_t at = html.find(before);
  if (at == std::string::npos) return "";
  at += before.size();
  return html.substr(at, html.find(' ', at) - at);
}

// A SQLite file opened read-only for the test's own look at it.
class SqliteFile {
 public:
  explicit SqliteFile(const std::string& path) {
    ok_ = sqlite3_open_v2(path.c_str(), &db_, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK;
    sqlite3_busy_timeout(db_, 5000);
  }
  ~SqliteFile() { sqlite3_close_v2(db_); }
  bool ok() const { return ok_; }

  // The first column of every row, as text ("NULL" for none).
  std::vector<std::string> Column(const char* sql) {
    std::vector<std::string> values;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sql << ": " << sqlite3_errmsg(db_);
      return values;
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(statement, 0);
      values.push_back(text ? reinterpret_cast<const char*>(text) : "NULL");
    }
    sqlite3_finalize(statement);
    return values;
  }
  long Count(const char* sql) { return std::stol(Column(sql).at(0)); }

 private:
  sqlite3* db_ = nullptr;
  bool ok_ = false;
};

class BackupOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    long crew = database_.AddGroup("Crew");
    bob_ = database_.AddUser({.name = "bob", .password = "secret", .group = crew});
    database_path_ = database_.folder() + "/calendar.db";
    connection_ = "'Provider=SQLite;Data Source=" + database_path_ + "'";
  }

  std::string BackupTo(const std::string& file) { return database_.folder() + "/" + file; }

  testing::SeededDatabase database_;
  std::string bob_;
  std::string database_path_;
  std::string connection_;
};

TEST_F(BackupOverHttp, ACopyTakenWhileItemsAreAddedIsWholeAndConsistent) {
  const std::string config = database_.folder() + "/site.conf";
  std::ofstream(config) << "Visible = True\nImagePath = images/\n"
                        << "ConnectionString = Provider=SQLite;Data Source=" << database_path_
                        << "\nLinkSecret = backup-test-secret-0123456789\n";
  ServerProcess server(TIDEWELL_BINARY, {"serve", "--config", config, "--listen", "127.0.0.1:0"},
                       {kNow});
  const int port = server.WaitForPort();
  ASSERT_NE(port, 0) << server.Log();
  testing::SiteClient client(port);
  const std::string form = client.Get(testing::LinkTitled(client.LogIn("bob", "secret"),
                                                          "Add New Item"));
  ASSERT_NE(form.find("Add Item to Schedule."), std::string::npos) << form;
  const std::string action = testing::FormAction(form);
  const std::string owner = SelectedValue(form);

  std::atomic<int> answered{0};
  std::vector<std::thread> writers;
  for (int w = 0; w < kWriters; ++w) {
    writers.emplace_back([&, w] {
      for (int i = 0; i < kPostsEach; ++i) {
        const std::string heading = "Tide " + std::to_string(w) + "-" + std::to_string(i);
        if (!client.PostForm(action, {{"ownerkey", owner},
                                      {"datestamp", "11/22/2026"},
                                      {"timestamp", "07"},
                                      {"timetext", "15"},
                                      {"heading", heading},
                                      {"description", "high water"},
                                      {"submit", "Add"},
                                      {"action", "a"}})
                 .empty()) {
          ++answered;
        }
      }
    });
  }
  SqliteFile live(database_path_);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (live.Count("SELECT COUNT(*) FROM Items") < 10 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  const long before = live.Count("SELECT COUNT(*) FROM Items");
  const std::string copy = BackupTo("copy.db");
  CommandResult backup = RunTidewell("backup --to " + copy + " --connection " + connection_);
  const long after = live.Count("SELECT COUNT(*) FROM Items");
  for (std::thread& writer : writers) writer.join();

  ASSERT_EQ(backup.status, 0) << backup.out;
  EXPECT_EQ(answered.load(), kWriters * kPostsEach);
  EXPECT_EQ(live.Count("SELECT COUNT(*) FROM Items"), kWriters * kPostsEach);
  EXPECT_LT(before, kWriters * kPostsEach) << "the writers were done before the backup";
  SqliteFile copied(copy);
  ASSERT_TRUE(copied.ok());
  EXPECT_EQ(copied.Column("PRAGMA integrity_check"), std::vector<std::string>{"ok"});
  const long items = copied.Count("SELECT COUNT(*) FROM Items");
  EXPECT_GE(items, before);
  EXPECT_LE(items, after);
  // Every row as the form wrote it: no item half there.
  EXPECT_EQ(copied.Count("SELECT COUNT(*) FROM Items WHERE Heading LIKE 'Tide %' AND "
                         "Description = 'high water' AND DateStamp = '2026-11-22' AND "
                         "TimeStamp = 7 AND TimeText = '07:15' AND OwnerKey IS NOT NULL"),
            items);
  EXPECT_EQ(copied.Count("SELECT COUNT(*) FROM Users"), 1);
  EXPECT_EQ(backup.out, "tidewell backup: " + copy + ", " +
                               std::to_string(std::filesystem::file_size(copy)) + " bytes, 1 user, " +
                               std::to_string(items) + " items\n");
  struct stat info;
  ASSERT_EQ(::stat(copy.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0600u);
  // Nothing left beside it: no temporary file, no journal.
  for (const auto& entry : std::filesystem::directory_iterator(database_.folder())) {
    EXPECT_EQ(entry.path().filename().string().rfind(".copy.db", 0), std::string::npos)
        << entry.path();
    EXPECT_NE(entry.path().filename().string(), "copy.db-journal");
  }
}

TEST_F(BackupOverHttp, AnExistingFileIsKeptUnlessForced) {
  const std::string copy = BackupTo("kept.db");
  std::ofstream(copy) << "an older backup";
  CommandResult refused = RunTidewell("backup --to " + copy + " --connection " + connection_);
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.out, "tidewell backup: " + copy + " exists: give --force to replace it.\n");
  std::ifstream kept(copy);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), "an older backup");

  CommandResult forced =
      RunTidewell("backup --to " + copy + " --force --connection " + connection_);
  EXPECT_EQ(forced.status, 0) << forced.out;
  SqliteFile copied(copy);
  EXPECT_EQ(copied.Count("SELECT COUNT(*) FROM Users"), 1);
}

TEST(Backup, OnPostgresItNamesPgDumpAndIsAUsageError) {
  CommandResult run = RunTidewell(
      "backup --to /tmp/never.dump --connection 'Provider=PostgreSQL;host=127.0.0.1;dbname=x'");
  EXPECT_EQ(run.status, 2);
  EXPECT_NE(run.out.find("pg_dump -Fc"), std::string::npos) << run.out;
  EXPECT_FALSE(std::filesystem::exists("/tmp/never.dump"));
}

}  // namespace
}  // namespace tidewell

#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "data/connection.h"
#include "data/database_error.h"
#include "data/schema.h"
#include "data/session.h"
#include "data/statement.h"
#include "page/properties.h"

namespace tidewell::testing {

// A fresh folder under the temporary directory, removed with its contents afterwards.
class TempFolder {
 public:
  TempFolder() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tidewell-data.XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The PostgreSQL server scripts/with_postgres.sh started, or "" when the tests run without.
inline std::string PostgresServer() {
  const char* value = std::getenv("TIDEWELL_TEST_POSTGRES");
  return value ? value : "";
}

inline constexpr const char* kNoPostgres =
    "TIDEWELL_TEST_POSTGRES is not set: run the tests under scripts/with_postgres.sh to test "
    "the PostgreSQL provider";

// The embedded engine with a fresh database file holding the schema.
struct SqliteEngine {
  static constexpr ASPDataServer kDialect = ASPDataServer::Access;
  static constexpr ASPDataServer kOtherDialect = ASPDataServer::SQLServer;
  static constexpr const char* kName = "SQLite";

  TempFolder folder;
  std::string connection_string;

  // Empty when the engine is ready, else why the test must be skipped.
  std::string Start() {
    connection_string = "Provider=SQLite;Data Source=" + folder.path() + "/calendar.db";
    CreateSchema(connection_string);
    return "";
  }
};

// A database of its own on the test server, dropped afterwards: tests run in parallel.
struct PostgresEngine {
  static constexpr ASPDataServer kDialect = ASPDataServer::SQLServer;
  static constexpr ASPDataServer kOtherDialect = ASPDataServer::Access;
  static constexpr const char* kName = "PostgreSQL";

  std::string server;
  std::string database;
  std::string connection_string;

  std::string Start() {
    server = PostgresServer();
    if (server.empty()) return kNoPostgres;
    static std::atomic<int> counter{0};
    database = "tidewell_test_" + std::to_string(::getpid()) + "_" + std::to_string(counter++);
    RunOnServer("CREATE DATABASE " + database);
    connection_string = server + ";dbname=" + database;
    CreateSchema(connection_string);
    return "";
  }

  ~PostgresEngine() {
    if (database.empty()) return;
    ado::ClosePooledSessions();
    try {
      RunOnServer("DROP DATABASE IF EXISTS " + database + " WITH (FORCE)");
    } catch (const ado::DatabaseError&) {
      // The server is thrown away after the tests anyway.
    }
  }

  // The statement is ours, made of fixed words and the database's generated name.
  void RunOnServer(const std::string& statement) const {
    ado::Connection connection;
    connection.Open(server);
    connection.Execute(ado::Statement(statement.c_str()));
  }
};

// Names typed tests by their engine: "Conformance/SQLite.TopLimitsTheRows".
struct EngineNames {
  template <class Engine>
  static std::string GetName(int) {
    return Engine::kName;
  }
};

using Engines = ::testing::Types<SqliteEngine, PostgresEngine>;

}  // namespace tidewell::testing

// Pooled PostgreSQL sessions: what the server does to them while they are idle, and the
// settings they are opened with.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"

namespace tidewell::testing {
namespace {

using ado::Connection;
using ado::Recordset;
using ado::Statement;

class PostgresPool : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string why = engine_.Start();
    if (!why.empty()) GTEST_SKIP() << why;
  }

  // The answer of a one-value query on a connection of its own.
  std::string ValueOf(const std::string& connection_string, const char* query) {
    Connection connection;
    connection.Open(connection_string);
    Recordset rs;
    rs.Open(Statement(query), connection);
    std::string value = CStr(rs.Fields(static_cast<size_t>(0)).Value());
    rs.Close();
    connection.Close();
    return value;
  }

  // The server ends every session on the test database but the asking one, and they are
  // gone when this returns.
  void TerminateSessionsOfTheDatabase() {
    Connection server;
    server.Open(engine_.server);
    server.Execute(Statement("SELECT pg_terminate_backend(pid) FROM pg_stat_activity "
                             "WHERE pid <> pg_backend_pid() AND datname = ")
                       .Text(engine_.database));
    for (int attempt = 0; attempt < 100; ++attempt) {
      Recordset rs;
      rs.Open(Statement("SELECT count(*) AS n FROM pg_stat_activity WHERE datname = ")
                  .Text(engine_.database),
              server);
      if (CLng(rs.Fields("n").Value()) == 0) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    FAIL() << "the sessions were not ended";
  }

  PostgresEngine engine_;
};

TEST_F(PostgresPool, ASessionTheServerEndedWhileIdleIsNotServedAgain) {
  EXPECT_EQ(ValueOf(engine_.connection_string, "SELECT 1"), "1");  // pooled on close
  TerminateSessionsOfTheDatabase();
  EXPECT_EQ(ValueOf(engine_.connection_string, "SELECT 2"), "2");
}

TEST_F(PostgresPool, AUrisOwnParametersWinOverOurDefaults) {
  const std::string prefix = "Provider=PostgreSQL;";
  ASSERT_EQ(engine_.connection_string.rfind(prefix, 0), 0u);
  const std::string connection_string =
      prefix + "postgresql://?application_name=fromuri&connect_timeout=7;" +
      engine_.connection_string.substr(prefix.size());
  EXPECT_EQ(ValueOf(connection_string, "SELECT current_setting('application_name')"),
            "fromuri");
  EXPECT_EQ(ValueOf(engine_.connection_string, "SELECT current_setting('application_name')"),
            "tidewell");
}

}  // namespace
}  // namespace tidewell::testing

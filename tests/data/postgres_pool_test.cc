// Pooled PostgreSQL sessions: what the server does to them while they are idle, and the
// settings they are opened with.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "data/connection.h"
#include "data/connection_string.h"
#include "data/postgres_session.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"

namespace tidewell::testing {
namespace {

using ado::Connection;
using ado::Recordset;
using ado::Statement;
namespace error_numbers = ado::error_numbers;

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
  EXPECT_EQ(ValueOf(connection_string, "SELECT current_setting('application_name')"), "fromuri");
  EXPECT_EQ(ValueOf(engine_.connection_string, "SELECT current_setting('application_name')"),
            "tidewell");
}

// A session of its own, outside the pool, whose counts the test reads.
std::unique_ptr<ado::Session> OwnSession(const std::string& connection_string) {
  return ado::OpenPostgresSession(ado::ParseConnectionString(connection_string));
}

TEST_F(PostgresPool, AStatementOfOneShapeIsPreparedOnceAndRunWithEachValue) {
  std::unique_ptr<ado::Session> session = OwnSession(engine_.connection_string);
  session->Run("INSERT INTO Groups (GroupName) VALUES ('Harbour')");
  session->Run("INSERT INTO Groups (GroupName) VALUES ('Quay')");
  const ado::StatementCounts after_inserts = session->Counts();
  EXPECT_EQ(after_inserts.prepared, 1);
  EXPECT_EQ(after_inserts.run, 2);

  ado::Rows quay = session->Run("SELECT GroupName FROM Groups WHERE GroupName = 'quay'");
  ado::Rows harbour = session->Run("SELECT GroupName FROM Groups WHERE GroupName = 'Harbour'");
  ado::Rows none = session->Run("SELECT GroupName FROM Groups WHERE GroupName = ''");
  ASSERT_EQ(quay.values.size(), 1u);  // names compare without regard to case, as before
  EXPECT_EQ(quay.values[0][0].AsString(), "Quay");
  ASSERT_EQ(harbour.values.size(), 1u);
  EXPECT_EQ(harbour.values[0][0].AsString(), "Harbour");
  EXPECT_TRUE(none.values.empty());
  EXPECT_EQ(session->Counts().prepared, 2);
  EXPECT_EQ(session->Counts().run, 5);
}

TEST_F(PostgresPool, PreparedDatesAndNumbersFailAsTheirLiteralsDid) {
  std::unique_ptr<ado::Session> session = OwnSession(engine_.connection_string);
  EXPECT_TRUE(
      session->Run("SELECT ItemID FROM Items WHERE DateStamp = '11/3/2026'").values.empty());
  try {
    session->Run("SELECT ItemID FROM Items WHERE DateStamp = 'soon'");
    ADD_FAILURE() << "a date column compared with text that is no date ran";
  } catch (const ado::DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kTypeMismatch);
    EXPECT_EQ(std::string(e.what()), "invalid input syntax for type date: \"soon\"");
  }
  try {
    session->Run("SELECT ItemID FROM Items WHERE Heading = 5");
    ADD_FAILURE() << "a text column compared with a number ran";
  } catch (const ado::DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kErrorsInCommand);
    EXPECT_EQ(std::string(e.what()), "operator does not exist: citext = integer");
  }
  EXPECT_TRUE(session->Run("SELECT ItemID FROM Items WHERE ItemID = 5").values.empty());
}

TEST_F(PostgresPool, AStatementOverATableThatChangedIsPreparedAgain) {
  std::unique_ptr<ado::Session> session = OwnSession(engine_.connection_string);
  session->Run("CREATE TABLE Notes (a integer)");
  session->Run("INSERT INTO Notes (a) VALUES (1)");
  EXPECT_EQ(session->Run("SELECT * FROM Notes WHERE a = 1").names.size(), 1u);
  session->Run("ALTER TABLE Notes ADD COLUMN b integer");
  ado::Rows rows = session->Run("SELECT * FROM Notes WHERE a = 1");
  EXPECT_EQ(rows.names.size(), 2u);
  EXPECT_EQ(rows.values.size(), 1u);
}

TEST_F(PostgresPool, ARequestFindingThePoolInUseWaitsThenFailsWithTheDPError) {
  const std::string limited = engine_.connection_string + ";Max Pool Size=1;Pool Timeout=1";
  Connection holder;
  holder.Open(limited);

  Page page;
  page.props.ConnectionString = limited;
  const auto start = std::chrono::steady_clock::now();
  OpenDatabase(page);
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_GE(waited, std::chrono::milliseconds(900));
  EXPECT_LT(waited, std::chrono::seconds(4));
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDatabaseRefused);

  // A session given back while a request waits goes to that request.
  std::thread release([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    holder.Close();
  });
  Connection waiting;
  EXPECT_NO_THROW(waiting.Open(limited));
  release.join();
  EXPECT_EQ(waiting.State(), ado::adStateOpen);
}

TEST_F(PostgresPool, PoolSettingsMustBeWholeNumbers) {
  Connection connection;
  try {
    connection.Open(engine_.connection_string + ";Max Pool Size=many");
    ADD_FAILURE() << "an unreadable pool size was taken";
  } catch (const ado::DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kInvalidArgument);
  }
}

}  // namespace
}  // namespace tidewell::testing

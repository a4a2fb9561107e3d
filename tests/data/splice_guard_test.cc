// A value that would break a statement's text stops the statement before any engine sees it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/recordset.h"
#include "data/session.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "tests/data/engines.h"

namespace tidewell {
namespace {

using ado::DatabaseError;
using ado::Recordset;
using ado::Statement;

// An engine double that answers every statement with no rows and keeps every text it was
// given, in the order it was given.
class RecordingSession : public ado::Session {
 public:
  static std::vector<std::string>& Received() {
    static std::vector<std::string> texts;
    return texts;
  }
  ado::Rows Run(std::string_view statement) override { return Answer(statement); }
  ado::Rows RunBound(std::string_view text, const std::vector<Variant>&) override {
    return Answer(text);
  }
  std::string Parameter(int n) const override { return "?" + std::to_string(n); }
  std::vector<std::string> KeyColumns(std::string_view) override { return {}; }
  bool TableExists(std::string_view) override { return false; }

 private:
  static ado::Rows Answer(std::string_view text) {
    Received().emplace_back(text);
    return ado::Rows{{"OwnerKey"}, {ado::ColumnKind::kText}, {}, 0};
  }
};

class SpliceGuard : public ::testing::Test {
 protected:
  void SetUp() override {
    ado::RegisterProvider("Recorder", [](const ado::ConnectionSettings&) {
      return std::make_unique<RecordingSession>();
    });
    connection_.Open("Provider=Recorder");
    RecordingSession::Received().clear();
  }
  ado::Connection connection_;
};

TEST_F(SpliceGuard, TheDoubleSeesStatementsThatAreFine) {
  Recordset rs;
  rs.Open(Statement("SELECT OwnerKey FROM Users WHERE Username = ").Text("alice"), connection_);
  connection_.Execute(Statement("DELETE FROM Items WHERE ItemID = ").Number("7"));
  EXPECT_EQ(RecordingSession::Received(),
            (std::vector<std::string>{"SELECT OwnerKey FROM Users WHERE Username = 'alice'",
                                      "DELETE FROM Items WHERE ItemID = 7"}));
}

TEST_F(SpliceGuard, QuoteInATextValueNeverReachesTheEngine) {
  Recordset rs;
  EXPECT_THROW(
      rs.Open(
          Statement("SELECT OwnerKey, DefaultView, Initials, Options FROM Users WHERE Username = ")
              .Text("x' OR '1'='1")
              .Add(" AND Password = ")
              .Text("x' OR '1'='1"),
          connection_, ado::adOpenStatic, ado::adLockReadOnly),
      DatabaseError);
  EXPECT_EQ(rs.State(), ado::adStateClosed);
  EXPECT_THROW(
      connection_.Execute(Statement("DELETE FROM Items WHERE OwnerKey = ").Text("k' OR 'a'='a")),
      DatabaseError);
  EXPECT_TRUE(RecordingSession::Received().empty());
}

TEST_F(SpliceGuard, NonIntegerInAnUnquotedPlaceNeverReachesTheEngine) {
  EXPECT_THROW(
      connection_.Execute(Statement("DELETE FROM Items WHERE ItemID = ").Number("7 OR 1=1")),
      DatabaseError);
  Recordset rs;
  EXPECT_THROW(rs.Open(Statement("SELECT * FROM Items WHERE ItemID = ").Number("1.5"), connection_,
                       ado::adOpenDynamic, ado::adLockOptimistic),
               DatabaseError);
  EXPECT_TRUE(RecordingSession::Received().empty());
}

TEST_F(SpliceGuard, ARefusedListReadBecomesTheDSError) {
  Page page;
  page.props.ConnectionString = "Provider=Recorder";
  OpenDatabase(page);
  RecordingSession::Received().clear();
  try {
    Recordset rs;
    rs.Open(Statement("SELECT TOP 6 ItemID FROM Items WHERE Heading = ").Text("it's"),
            *page.Connection);
  } catch (const DatabaseError& error) {
    TrapListError(page, error);
  }
  CloseDatabase(page);
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDataRead);
  EXPECT_EQ(page.Screen, screens::kErrorScreen);
  EXPECT_EQ(page.Error.Text,
            "<font color=#b22222><b>The following error was presented while attempting to retrieve "
            "data.</b></font><br><br>Error Number: -2147217900<br>A text value in the statement "
            "contains a single quote.");
  EXPECT_TRUE(RecordingSession::Received().empty());
}

// On the real engines: the refused statement changed nothing.
template <class Engine>
class SpliceGuardOnEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_.Open(engine_.connection_string);
  }
  long GroupCount() {
    Recordset rs;
    rs.Open(Statement("SELECT GroupID FROM Groups"), connection_);
    return rs.RecordCount();
  }
  Engine engine_;
  ado::Connection connection_;
};

TYPED_TEST_SUITE(SpliceGuardOnEngine, testing::Engines, testing::EngineNames);

TYPED_TEST(SpliceGuardOnEngine, RefusedDeleteChangesNothing) {
  this->connection_.Execute(
      Statement("INSERT INTO Groups (GroupName) VALUES (").Text("Harbour").Add(")"));
  EXPECT_THROW(this->connection_.Execute(
                   Statement("DELETE FROM Groups WHERE GroupName = ").Text("x' OR 'a'='a")),
               DatabaseError);
  EXPECT_THROW(this->connection_.Execute(
                   Statement("DELETE FROM Groups WHERE GroupID = ").Number("0 OR 1=1")),
               DatabaseError);
  EXPECT_EQ(this->GroupCount(), 1);
}

}  // namespace
}  // namespace tidewell

#include "errors/error_screen.h"

#include <gtest/gtest.h>

#include "data/database_error.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using ado::DatabaseError;
using testing::MatchesGolden;
namespace error_numbers = ado::error_numbers;

TEST(OpenDatabase, EmptyConnectionStringIsADBError) {
  Page page;
  OpenDatabase(page);
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kCannotConnect);
  EXPECT_EQ(page.Screen, screens::kErrorScreen);
  EXPECT_EQ(
      page.Error.Text,
      "<font color=#b22222><b>The following error was presented when trying to connect to the "
      "database.</b></font><br><br>Error Number: -2146824582<br>Provider cannot be found. The "
      "connection string names no Provider.");
}

TEST(OpenDatabase, SuccessLeavesTheConnectionOpenUntilClosed) {
  Page page;
  page.props.ConnectionString = "Provider=SQLite;Data Source=:memory:";
  OpenDatabase(page);
  EXPECT_FALSE(page.Error.Raised());
  EXPECT_EQ(page.Screen, screens::kLogin);
  ASSERT_NE(page.Connection, nullptr);
  EXPECT_EQ(page.Connection->State(), ado::adStateOpen);
  CloseDatabase(page);
  EXPECT_EQ(page.Connection, nullptr);
}

TEST(CloseDatabase, WithoutAConnectionDoesNothing) {
  Page page;
  EXPECT_NO_THROW(CloseDatabase(page));
}

TEST(TrapDatabaseError, ReportsAFailedStatementAsTheOpenerDoes) {
  Page page;
  page.Screen = screens::kLogin;
  TrapDatabaseError(page, DatabaseError(error_numbers::kErrorsInCommand, "no such table: Users"));
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kCannotConnect);
  EXPECT_EQ(page.Screen, screens::kErrorScreen);
  EXPECT_EQ(page.Error.Text,
            "<font color=#b22222><b>The following error was presented when trying to connect to "
            "the database.</b></font><br><br>Error Number: -2147217900<br>no such table: Users");
}

TEST(TrapDatabaseError, EFailIsADPError) {
  Page page;
  TrapDatabaseError(page, DatabaseError(error_numbers::kFail, "database is locked"));
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDatabaseRefused);
}

TEST(TrapListError, SetsTheDSErrorAndTheErrorScreen) {
  Page page;
  page.Screen = screens::kMonthView;
  TrapListError(page, DatabaseError(error_numbers::kErrorsInCommand, "no such column: Heading"));
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDataRead);
  EXPECT_EQ(page.Screen, screens::kErrorScreen);
  EXPECT_EQ(page.Error.Text,
            "<font color=#b22222><b>The following error was presented while attempting to retrieve "
            "data.</b></font><br><br>Error Number: -2147217900<br>no such column: Heading");
}

TEST(TrapListError, TheEnginesMessageIsEscaped) {
  Page page;
  TrapListError(
      page, DatabaseError(error_numbers::kErrorsInCommand, "near \"<b>\": syntax error & more"));
  EXPECT_NE(page.Error.Text.find("near &quot;&lt;b&gt;&quot;: syntax error &amp; more"),
            std::string::npos);
}

TEST(ErrorScreen, ConnectionStringAdviceForDB) {
  Page page;
  OpenDatabase(page);
  ErrorScreen(page);
  EXPECT_TRUE(MatchesGolden(page.PageBuffer, "error_screen_db.html"));
}

TEST(ErrorScreen, PermissionAdviceForDP) {
  Page page;
  page.props.ConnectionString =
      "Provider=SQLite;Data Source=/nonexistent-tidewell-folder/calendar.db";
  OpenDatabase(page);
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDatabaseRefused);
  ErrorScreen(page);
  EXPECT_TRUE(MatchesGolden(page.PageBuffer, "error_screen_dp.html"));
}

TEST(ErrorScreen, DataServerAdviceForDS) {
  Page page;
  TrapListError(page, DatabaseError(error_numbers::kTypeMismatch,
                                    "Data type mismatch in criteria expression."));
  ErrorScreen(page);
  EXPECT_TRUE(MatchesGolden(page.PageBuffer, "error_screen_ds.html"));
}

TEST(ErrorScreen, OtherKindsGetNoAdvice) {
  Page page;
  page.props.TidewellColor = "#b0c4de";
  page.Error.Kind = ErrorKind::kLoginRefused;
  page.Error.Text =
      "<font color=#b22222><b>The Username and/or Password you have entered is "
      "invalid.</b></font><br><br>";
  ErrorScreen(page);
  EXPECT_TRUE(MatchesGolden(page.PageBuffer, "error_screen_no_advice.html"));
}

TEST(ErrorScreen, AppendsAndClearsNothing) {
  Page page;
  page.PageBuffer = "[before]";
  TrapListError(page, DatabaseError(error_numbers::kErrorsInCommand, "x"));
  ErrorScreen(page);
  EXPECT_EQ(page.PageBuffer.rfind("[before]<!-- ErrorScreen Start -->", 0), 0u);
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Error.Kind, ErrorKind::kDataRead);
}

}  // namespace
}  // namespace tidewell

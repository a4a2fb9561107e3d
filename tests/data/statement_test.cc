#include "data/statement.h"

#include <gtest/gtest.h>

#include "data/database_error.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"

namespace tidewell::ado {
namespace {

TEST(Statement, LoginIsTheDescribedText) {
  Statement s =
      Statement("SELECT OwnerKey, DefaultView, Initials, Options FROM Users WHERE Username = ")
          .Text("alice")
          .Add(" AND Password = ")
          .Text("se cret");
  EXPECT_EQ(
      s.CheckedText(),
      "SELECT OwnerKey, DefaultView, Initials, Options FROM Users WHERE Username = 'alice' AND "
      "Password = 'se cret'");
}

TEST(Statement, NumbersGoInUnquoted) {
  Statement s =
      Statement("DELETE FROM Items WHERE ItemID = ").Number(42).Add(" AND OwnerKey = ").Text("k");
  EXPECT_EQ(s.CheckedText(), "DELETE FROM Items WHERE ItemID = 42 AND OwnerKey = 'k'");
  EXPECT_EQ(Statement("SELECT * FROM Items WHERE ItemID = ").Number("17").CheckedText(),
            "SELECT * FROM Items WHERE ItemID = 17");
  EXPECT_EQ(Statement("x = ").Number("-3").CheckedText(), "x = -3");
}

TEST(Statement, AccessDatesGoBetweenHashes) {
  Statement s = Statement("SELECT TOP 6 ItemID FROM Items WHERE DateStamp = ")
                    .DateValue(DateSerial(2026, 11, 3), ASPDataServer::Access)
                    .Add(" AND Items.OwnerKey = ")
                    .Text("k");
  EXPECT_EQ(
      s.CheckedText(),
      "SELECT TOP 6 ItemID FROM Items WHERE DateStamp = #11/3/2026# AND Items.OwnerKey = 'k'");
}

TEST(Statement, SqlServerDatesGoBetweenQuotes) {
  Statement s =
      Statement("WHERE DateStamp = ").DateValue(DateSerial(2026, 1, 25), ASPDataServer::SQLServer);
  EXPECT_EQ(s.CheckedText(), "WHERE DateStamp = '1/25/2026'");
}

TEST(Statement, DatesAreMonthFirstWhateverTheRegionalSettings) {
  ScopedRegionalSettings gb("en-GB");
  EXPECT_EQ(Statement("").DateValue(DateSerial(2026, 2, 3), ASPDataServer::Access).CheckedText(),
            "#2/3/2026#");
}

TEST(Statement, DatesLoseTheirTimeOfDay) {
  Date with_time = Combine(DateSerial(2026, 2, 3), TimeSerial(14, 30, 0));
  EXPECT_EQ(Statement("").DateValue(with_time, ASPDataServer::SQLServer).CheckedText(),
            "'2/3/2026'");
}

TEST(Statement, DateTextGoesInAsItIsBetweenTheDialectsDelimiters) {
  EXPECT_EQ(
      Statement("WHERE DateStamp = ").DateText("1/5/2004", ASPDataServer::Access).CheckedText(),
      "WHERE DateStamp = #1/5/2004#");
  EXPECT_EQ(Statement("WHERE DateStamp = ")
                .DateText("13/45/2004", ASPDataServer::SQLServer)
                .CheckedText(),
            "WHERE DateStamp = '13/45/2004'");
}

TEST(Statement, DateTextOtherThanDigitsAndSlashesIsRefused) {
  for (const char* bad : {"", "1/5/2004 2:00", "Users", "1/5/2004#", "1/5/2004' OR '1'='1"}) {
    Statement s = Statement("WHERE DateStamp = ").DateText(bad, ASPDataServer::Access);
    EXPECT_TRUE(s.refused()) << '"' << bad << '"';
    EXPECT_THROW(s.CheckedText(), DatabaseError) << bad;
  }
}

TEST(Statement, TrueIsMinusOneForAccessAndOneForSqlServer) {
  EXPECT_EQ(Statement("SELECT OwnerKey FROM Users Where Administrator = ")
                .TrueValue(ASPDataServer::Access)
                .CheckedText(),
            "SELECT OwnerKey FROM Users Where Administrator = -1");
  EXPECT_EQ(Statement("SELECT OwnerKey FROM Users Where Administrator = ")
                .TrueValue(ASPDataServer::SQLServer)
                .CheckedText(),
            "SELECT OwnerKey FROM Users Where Administrator = 1");
}

TEST(Statement, TextWithAQuoteIsRefused) {
  Statement s = Statement("SELECT UserName, OwnerKey FROM Users WHERE UserName = ").Text("o'brien");
  EXPECT_TRUE(s.refused());
  try {
    s.CheckedText();
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kErrorsInCommand);
    EXPECT_STREQ(e.what(), "A text value in the statement contains a single quote.");
  }
}

TEST(Statement, InjectionAttemptIsRefusedNotRun) {
  Statement s = Statement("SELECT OwnerKey FROM Users WHERE Username = ")
                    .Text("x' OR '1'='1")
                    .Add(" AND Password = ")
                    .Text("y");
  EXPECT_THROW(s.CheckedText(), DatabaseError);
  EXPECT_EQ(s.text().find("OR"), std::string::npos);  // the refused value was never spliced
}

TEST(Statement, TextWithANulIsRefused) {
  EXPECT_THROW(Statement("x = ").Text(std::string_view("a\0b", 3)).CheckedText(), DatabaseError);
}

TEST(Statement, UnquotedValuesMustBePlainIntegers) {
  for (const char* bad : {"", "1.5", "1e3", " 7", "7 ", "+7", "7; DELETE FROM Items", "0x10", "-",
                          "12345678901234567890", "1 OR 1=1"}) {
    Statement s = Statement("SELECT * FROM Items WHERE ItemID = ").Number(std::string_view(bad));
    EXPECT_TRUE(s.refused()) << '"' << bad << '"';
    try {
      s.CheckedText();
      ADD_FAILURE() << bad;
    } catch (const DatabaseError& e) {
      EXPECT_STREQ(e.what(),
                   "A value placed in the statement without quotes is not a whole number.");
    }
  }
}

TEST(Statement, TheFirstRefusalIsReported) {
  Statement s = Statement("x = ").Number("x").Add(" AND y = ").Text("'");
  try {
    s.CheckedText();
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_STREQ(e.what(), "A value placed in the statement without quotes is not a whole number.");
  }
}

TEST(Statement, QuotesInFixedTextAreTheAuthorsBusiness) {
  EXPECT_EQ(Statement("SELECT 1 WHERE a = 'fixed'").CheckedText(), "SELECT 1 WHERE a = 'fixed'");
}

}  // namespace
}  // namespace tidewell::ado

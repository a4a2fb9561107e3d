#include "data/dialect_translation.h"

#include <gtest/gtest.h>

#include "data/database_error.h"

namespace tidewell::ado {
namespace {

bool DateStampIsADate(std::string_view column) {
  return column == "DateStamp";
}

std::string ForSqlite(std::string_view statement) {
  return TranslateAccessForSqlite(statement, DateStampIsADate);
}

TEST(Tokenize, QuotedValuesAreSingleTokens) {
  std::vector<Token> tokens = Tokenize("a = 'it''s #1/2/2020# TOP 3' AND b <> 4");
  ASSERT_EQ(tokens.size(), 13u);
  EXPECT_EQ(tokens[4].kind, TokenKind::kText);
  EXPECT_EQ(tokens[4].text, "'it''s #1/2/2020# TOP 3'");
  EXPECT_EQ(tokens[10].kind, TokenKind::kOperator);
  EXPECT_EQ(tokens[10].text, "<>");
}

TEST(Tokenize, DateLiteralsAndNames) {
  std::vector<Token> tokens = Tokenize("#11/3/2026# [Items] \"x\"");
  EXPECT_EQ(tokens[0].kind, TokenKind::kDateLiteral);
  EXPECT_EQ(tokens[2].kind, TokenKind::kQuotedName);
  EXPECT_EQ(tokens[4].kind, TokenKind::kQuotedName);
}

TEST(TranslateAccessForSqlite, TopBecomesLimitAtTheEnd) {
  EXPECT_EQ(ForSqlite("SELECT TOP 6 ItemID FROM Items ORDER BY TimeStamp ASC"),
            "SELECT ItemID FROM Items ORDER BY TimeStamp ASC LIMIT 6");
  EXPECT_EQ(ForSqlite("select distinct top 2 a from b;"), "select distinct a from b LIMIT 2;");
}

TEST(TranslateAccessForSqlite, DateLiteralsBecomeIsoText) {
  EXPECT_EQ(ForSqlite("SELECT 1 FROM Items WHERE DateStamp = #11/3/2026# AND Items.OwnerKey = 'k'"),
            "SELECT 1 FROM Items WHERE DateStamp = '2026-11-03' AND Items.OwnerKey = 'k'");
  EXPECT_EQ(ForSqlite("WHERE DateStamp >= #1/25/2026# AND DateStamp <= #12/31/26#"),
            "WHERE DateStamp >= '2026-01-25' AND DateStamp <= '2026-12-31'");
}

TEST(TranslateAccessForSqlite, TextInsideQuotesIsNeverRewritten) {
  const char* statement = "INSERT INTO Groups (GroupName) VALUES ('SELECT TOP 1 #11/3/2026#')";
  EXPECT_EQ(ForSqlite(statement), statement);
}

TEST(TranslateAccessForSqlite, DateColumnComparedWithTextIsATypeMismatch) {
  for (const char* statement : {"SELECT 1 FROM Items WHERE DateStamp = '11/3/2026'",
                                "SELECT 1 FROM Items WHERE Items.DateStamp >= '11/3/2026'",
                                "SELECT 1 FROM Items WHERE '11/3/2026' = Items.DateStamp"}) {
    try {
      ForSqlite(statement);
      ADD_FAILURE() << statement;
    } catch (const DatabaseError& e) {
      EXPECT_EQ(e.number(), error_numbers::kTypeMismatch);
      EXPECT_STREQ(e.what(), "Data type mismatch in criteria expression.");
    }
  }
}

TEST(TranslateAccessForSqlite, OtherColumnsComparedWithTextAreFine) {
  EXPECT_EQ(ForSqlite("SELECT 1 FROM Users WHERE Username = 'DateStamp'"),
            "SELECT 1 FROM Users WHERE Username = 'DateStamp'");
}

TEST(TranslateAccessForSqlite, MalformedDateIsASyntaxError) {
  try {
    ForSqlite("WHERE DateStamp = #2/30/2026#");
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kErrorsInCommand);
    EXPECT_STREQ(e.what(), "Syntax error in date in query expression '#2/30/2026#'.");
  }
}

TEST(TranslateSqlServerForPostgres, TopBecomesLimitAndQuotedDatesStay) {
  EXPECT_EQ(TranslateSqlServerForPostgres(
                "SELECT TOP 3 ItemID FROM Items WHERE DateStamp = '11/3/2026' ORDER BY [Heading]"),
            "SELECT ItemID FROM Items WHERE DateStamp = '11/3/2026' ORDER BY Heading LIMIT 3");
}

TEST(TranslateSqlServerForPostgres, HashDateIsASyntaxError) {
  try {
    TranslateSqlServerForPostgres("SELECT 1 FROM Items WHERE DateStamp = #11/3/2026#");
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kErrorsInCommand);
    EXPECT_STREQ(e.what(), "syntax error at or near \"#\"");
  }
}

TEST(TranslateSqlServerForPostgres, HashInsideQuotesIsText) {
  const char* statement = "SELECT 1 FROM Items WHERE Heading = '#1 #2'";
  EXPECT_EQ(TranslateSqlServerForPostgres(statement), statement);
}

}  // namespace
}  // namespace tidewell::ado

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

SqliteStatement ParameterizedForSqlite(std::string_view statement) {
  return ParameterizedAccessForSqlite(statement, DateStampIsADate);
}

TEST(ParameterizedAccessForSqlite, ValuesBecomeParametersAndTopARowLimit) {
  SqliteStatement s = ParameterizedForSqlite(
      "SELECT TOP 6 ItemID FROM Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE "
      "DateStamp = #11/3/2026# AND Items.OwnerKey = 'k1' AND TimeStamp = 14 ORDER BY TimeStamp, "
      "Heading ASC");
  EXPECT_EQ(s.text,
            "SELECT ItemID FROM Items INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE "
            "DateStamp = ? AND Items.OwnerKey = ? AND TimeStamp = ? ORDER BY TimeStamp, Heading "
            "ASC");
  EXPECT_EQ(s.values, (std::vector<Variant>{Variant("2026-11-03"), Variant("k1"), Variant(14L)}));
  EXPECT_EQ(s.row_limit, 6);
}

// Statements differing only in their values share one text, so one prepared statement.
TEST(ParameterizedAccessForSqlite, StatementsDifferingInValuesShareTheirText) {
  SqliteStatement a = ParameterizedForSqlite(
      "SELECT TOP 5 ItemID FROM Items WHERE DateStamp = #11/3/2026# AND GroupID = 4");
  SqliteStatement b = ParameterizedForSqlite(
      "SELECT TOP 5 ItemID FROM Items WHERE DateStamp = #12/24/2027# AND GroupID = 17");
  EXPECT_EQ(a.text, b.text);
  EXPECT_NE(a.values, b.values);
}

TEST(ParameterizedAccessForSqlite, QuotedValuesAreReadAsTheEngineReadsThem) {
  SqliteStatement s =
      ParameterizedForSqlite("SELECT 1 FROM Items WHERE Heading LIKE '%it''s%' AND Heading <> ''");
  EXPECT_EQ(s.text, "SELECT 1 FROM Items WHERE Heading LIKE ? AND Heading <> ?");
  EXPECT_EQ(s.values, (std::vector<Variant>{Variant("%it's%"), Variant("")}));
}

TEST(ParameterizedAccessForSqlite, NumbersOutsideComparisonsStayInTheText) {
  SqliteStatement s = ParameterizedForSqlite(
      "SELECT 1 FROM Users WHERE Administrator = -1 AND GroupID = 2 ORDER BY 1");
  EXPECT_EQ(s.text, "SELECT 1 FROM Users WHERE Administrator = -1 AND GroupID = ? ORDER BY 1");
  EXPECT_EQ(s.values, (std::vector<Variant>{Variant(2L)}));
  EXPECT_EQ(ParameterizedForSqlite("SELECT 1 FROM Items WHERE ItemID = 12345678901").text,
            "SELECT 1 FROM Items WHERE ItemID = 12345678901");
}

TEST(ParameterizedAccessForSqlite, OtherStatementsKeepTheirValues) {
  const char* create = "CREATE TABLE t (a TEXT DEFAULT 'x', d DATE)";
  SqliteStatement s = ParameterizedForSqlite(create);
  EXPECT_EQ(s.text, create);
  EXPECT_TRUE(s.values.empty());
  EXPECT_FALSE(s.row_limit);
}

TEST(ParameterizedAccessForSqlite, FailsAsTheTranslationFails) {
  EXPECT_THROW(ParameterizedForSqlite("SELECT 1 FROM Items WHERE DateStamp = '11/3/2026'"),
               DatabaseError);
  EXPECT_THROW(ParameterizedForSqlite("SELECT 1 FROM Items WHERE DateStamp = #2/30/2026#"),
               DatabaseError);
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

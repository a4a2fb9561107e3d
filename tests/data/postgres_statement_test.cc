#include "data/postgres_statement.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tidewell::ado {
namespace {

// The parameters as "value:type" for short comparisons: u untyped, i integer, b bigint.
std::vector<std::string> Parameters(const PostgresStatement& statement) {
  std::vector<std::string> out;
  for (const PostgresParameter& p : statement.parameters) {
    const char* type = p.type == LiteralType::kUntyped   ? "u"
                       : p.type == LiteralType::kInteger ? "i"
                                                         : "b";
    out.push_back(p.value + ":" + type);
  }
  return out;
}

using Values = std::vector<std::string>;

TEST(ShapePostgresStatement, QuotedTextsBecomeUntypedParameters) {
  PostgresStatement s = ShapePostgresStatement(
      "SELECT OwnerKey FROM Users WHERE Username = 'alice' AND Password = 'it''s'");
  EXPECT_TRUE(s.preparable);
  EXPECT_EQ(s.shape, "SELECT OwnerKey FROM Users WHERE Username = $1 AND Password = $2");
  EXPECT_EQ(Parameters(s), (Values{"alice:u", "it's:u"}));
}

TEST(ShapePostgresStatement, EmptyTextIsAParameterToo) {
  PostgresStatement s = ShapePostgresStatement("SELECT 1 FROM Users WHERE Initials = ''");
  EXPECT_EQ(s.shape, "SELECT 1 FROM Users WHERE Initials = $1");
  EXPECT_EQ(Parameters(s), (Values{":u"}));
}

TEST(ShapePostgresStatement, QuotedDatesStayTextForTheEngineToRead) {
  PostgresStatement s = ShapePostgresStatement(
      "SELECT ItemID FROM Items WHERE DateStamp >= '11/1/2026' AND DateStamp <= '11/30/2026' "
      "ORDER BY DateStamp LIMIT 6");
  EXPECT_EQ(s.shape,
            "SELECT ItemID FROM Items WHERE DateStamp >= $1 AND DateStamp <= $2 "
            "ORDER BY DateStamp LIMIT 6");
  EXPECT_EQ(Parameters(s), (Values{"11/1/2026:u", "11/30/2026:u"}));
}

TEST(ShapePostgresStatement, LikePatternsKeepTheirWildcards) {
  PostgresStatement s = ShapePostgresStatement(
      "SELECT * FROM Items WHERE Heading LIKE '%tide_%' OR Heading LIKE 'x'");
  EXPECT_EQ(s.shape, "SELECT * FROM Items WHERE Heading LIKE $1 OR Heading LIKE $2");
  EXPECT_EQ(Parameters(s), (Values{"%tide_%:u", "x:u"}));
}

TEST(ShapePostgresStatement, WholeNumbersAfterComparisonsAreIntegers) {
  PostgresStatement s = ShapePostgresStatement(
      "DELETE FROM LoginFailures WHERE FailedAt <= 1795000000 AND Kind<>7 AND Big = 4000000000");
  EXPECT_EQ(s.shape, "DELETE FROM LoginFailures WHERE FailedAt <= $1 AND Kind<>$2 AND Big = $3");
  EXPECT_EQ(Parameters(s), (Values{"1795000000:i", "7:i", "4000000000:b"}));
}

TEST(ShapePostgresStatement, NegativeNumbersTakeTheirSign) {
  PostgresStatement s =
      ShapePostgresStatement("SELECT 1 FROM Items WHERE Urgent = -1 AND TimeStamp > - 2147483648");
  EXPECT_EQ(s.shape, "SELECT 1 FROM Items WHERE Urgent = $1 AND TimeStamp > $2");
  EXPECT_EQ(Parameters(s), (Values{"-1:i", "-2147483648:b"}));
}

TEST(ShapePostgresStatement, NumbersInNamesPositionsAndArithmeticStay) {
  const char* text =
      "SELECT Items2.a, 3 FROM Items2 WHERE x - 5 > y ORDER BY 1, 2 LIMIT 10 OFFSET 20";
  PostgresStatement s = ShapePostgresStatement(text);
  EXPECT_TRUE(s.preparable);
  EXPECT_EQ(s.shape, text);
  EXPECT_TRUE(s.parameters.empty());
}

TEST(ShapePostgresStatement, DecimalsAndRunTogetherNumbersStay) {
  const char* text = "SELECT 1 FROM t WHERE a = 1.5 AND b = 1e5 AND c = 1234567890123456789";
  EXPECT_EQ(ShapePostgresStatement(text).shape, text);
}

TEST(ShapePostgresStatement, ValuesAndInListsTakeParameters) {
  PostgresStatement s = ShapePostgresStatement(
      "INSERT INTO LoginFailures (Subject, Token, FailedAt) VALUES ('u:bob', 't', 1795000000)");
  EXPECT_EQ(s.shape, "INSERT INTO LoginFailures (Subject, Token, FailedAt) VALUES ($1, $2, $3)");
  EXPECT_EQ(Parameters(s), (Values{"u:bob:u", "t:u", "1795000000:i"}));
  PostgresStatement in = ShapePostgresStatement("SELECT 1 FROM t WHERE g IN (1, -2, 3 + 4)");
  EXPECT_EQ(in.shape, "SELECT 1 FROM t WHERE g IN ($1, $2, 3 + 4)");
}

TEST(ShapePostgresStatement, TypedLiteralsStay) {
  const char* text = "SELECT 1 FROM t WHERE d = DATE '2026-11-03' AND s = E'a\\\\b'";
  PostgresStatement s = ShapePostgresStatement(text);
  EXPECT_EQ(s.shape, text);
}

TEST(ShapePostgresStatement, TextThatLooksLikeStatementTextIsOneValue) {
  PostgresStatement s = ShapePostgresStatement(
      "UPDATE Groups SET GroupName = 'a = 1 -- ORDER BY 2' WHERE GroupID = 3");
  EXPECT_EQ(s.shape, "UPDATE Groups SET GroupName = $1 WHERE GroupID = $2");
  EXPECT_EQ(Parameters(s), (Values{"a = 1 -- ORDER BY 2:u", "3:i"}));
}

TEST(ShapePostgresStatement, OtherStatementsAndOwnPlaceholdersRunAsWritten) {
  for (const char* text :
       {"BEGIN", "CREATE TABLE t (a varchar(20) DEFAULT 'x')", "SET DateStyle = 'ISO, MDY'",
        "SELECT a FROM t WHERE b = $1 AND c = 'x'"}) {
    PostgresStatement s = ShapePostgresStatement(text);
    EXPECT_FALSE(s.preparable) << text;
    EXPECT_EQ(s.shape, text);
    EXPECT_TRUE(s.parameters.empty()) << text;
  }
  EXPECT_TRUE(CanPrepare("  select 1"));
  EXPECT_FALSE(CanPrepare("DROP TABLE t"));
}

}  // namespace
}  // namespace tidewell::ado

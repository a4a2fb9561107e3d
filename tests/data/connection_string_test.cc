#include "data/connection_string.h"

#include <gtest/gtest.h>

#include "data/database_error.h"

namespace tidewell::ado {
namespace {

TEST(ParseConnectionString, ProviderAndSettings) {
  ConnectionSettings s = ParseConnectionString("Provider=SQLite; Data Source = var/tidewell.db ;");
  EXPECT_EQ(s.provider, "SQLite");
  EXPECT_EQ(s.Get("data source"), "var/tidewell.db");
  EXPECT_EQ(s.Get("Password"), std::nullopt);
}

TEST(ParseConnectionString, QuotedValuesMayHoldSemicolons) {
  ConnectionSettings s = ParseConnectionString("provider=PostgreSQL;password=\"a;b\";user='x y'");
  EXPECT_EQ(s.provider, "PostgreSQL");
  EXPECT_EQ(s.Get("password"), "a;b");
  EXPECT_EQ(s.Get("user"), "x y");
}

TEST(ParseConnectionString, LaterSettingsWin) {
  EXPECT_EQ(ParseConnectionString("Provider=PostgreSQL;dbname=a;dbname=b").Get("DBNAME"), "b");
}

TEST(ParseConnectionString, UriStandsForSettings) {
  ConnectionSettings s =
      ParseConnectionString("Provider=PostgreSQL;postgresql://u@localhost:5433/cal");
  EXPECT_EQ(s.uri, "postgresql://u@localhost:5433/cal");
  EXPECT_TRUE(s.settings.empty());
}

TEST(ParseConnectionString, EmptyStringNamesNoProvider) {
  try {
    ParseConnectionString("");
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kProviderNotFound);
  }
}

TEST(ParseConnectionString, TextWithoutEqualsCannotBeRead) {
  try {
    ParseConnectionString("Provider=SQLite;nonsense");
    FAIL();
  } catch (const DatabaseError& e) {
    EXPECT_EQ(e.number(), error_numbers::kInvalidArgument);
  }
}

}  // namespace
}  // namespace tidewell::ado

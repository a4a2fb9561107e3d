// The search's statement: the text of each variant in both dialects, and the guard every
// spliced value passes.

#include <gtest/gtest.h>

#include "data/database_error.h"
#include "runtime/dates.h"
#include "search/search_results.h"

namespace tidewell {
namespace {

using Kind = SearchOwner::Kind;

constexpr const char* kBase =
    "SELECT Items.*, Users.UserName, Users.GroupID FROM Items INNER JOIN Users ON Items.OwnerKey "
    "= Users.OwnerKey WHERE ";
constexpr const char* kLongOrder =
    " ORDER BY Users.GroupID, Users.UserName, Items.DateStamp, Items.TimeStamp, Items.Urgent, "
    "Items.Heading";
constexpr const char* kKey = "0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c";

std::string TextOf(const SearchOwner& owner, ASPDataServer dialect,
                   std::string_view text = "Harbour") {
  return SearchStatement(text, DateSerial(2026, 11, 1), DateSerial(2026, 11, 30), owner, dialect)
      .text();
}

const std::string kAccessConditions =
    "Items.Heading LIKE '%Harbour%' AND Items.DateStamp >= #11/1/2026# AND Items.DateStamp <= "
    "#11/30/2026#";
const std::string kSqlServerConditions =
    "Items.Heading LIKE '%Harbour%' AND Items.DateStamp >= '11/1/2026' AND Items.DateStamp <= "
    "'11/30/2026'";

TEST(SearchStatement, AGroupInTheAccessDialect) {
  EXPECT_EQ(TextOf({Kind::kGroup, "2"}, ASPDataServer::Access),
            std::string(kBase) + "Users.GroupID = 2 AND " + kAccessConditions + kLongOrder);
}

TEST(SearchStatement, AGroupInTheSqlServerDialect) {
  EXPECT_EQ(TextOf({Kind::kGroup, "2"}, ASPDataServer::SQLServer),
            std::string(kBase) + "Users.GroupID = 2 AND " + kSqlServerConditions + kLongOrder);
}

TEST(SearchStatement, AUserInTheAccessDialect) {
  EXPECT_EQ(
      TextOf({Kind::kUser, kKey}, ASPDataServer::Access),
      std::string(kBase) + "Users.OwnerKey = '" + kKey + "' AND " + kAccessConditions + kLongOrder);
}

TEST(SearchStatement, AUserInTheSqlServerDialect) {
  EXPECT_EQ(TextOf({Kind::kUser, kKey}, ASPDataServer::SQLServer),
            std::string(kBase) + "Users.OwnerKey = '" + kKey + "' AND " + kSqlServerConditions +
                kLongOrder);
}

TEST(SearchStatement, EveryoneInTheAccessDialectKeepsTheLongOrder) {
  EXPECT_EQ(TextOf({Kind::kEveryone, ""}, ASPDataServer::Access),
            std::string(kBase) + kAccessConditions + kLongOrder);
}

TEST(SearchStatement, EveryoneInTheSqlServerDialectHasTheShortOrder) {
  EXPECT_EQ(TextOf({Kind::kEveryone, ""}, ASPDataServer::SQLServer),
            std::string(kBase) + kSqlServerConditions +
                " ORDER BY Users.UserName, Items.DateStamp, Items.Heading");
}

TEST(SearchStatement, DatesAreSplicedMonthFirstWithoutTheirTime) {
  const std::string text =
      SearchStatement("x", Combine(DateSerial(2027, 1, 5), TimeSerial(10, 30, 0)),
                      DateSerial(2027, 12, 25), {Kind::kEveryone, ""}, ASPDataServer::Access)
          .text();
  EXPECT_NE(text.find("Items.DateStamp >= #1/5/2027# AND Items.DateStamp <= #12/25/2027#"),
            std::string::npos)
      << text;
}

TEST(SearchStatement, TheSearchTextIsSplicedAsTyped) {
  EXPECT_NE(TextOf({Kind::kEveryone, ""}, ASPDataServer::Access, "50% _off")
                .find("Items.Heading LIKE '%50% _off%' AND"),
            std::string::npos);
}

TEST(SearchStatement, ASearchTextWithAQuoteIsRefused) {
  ado::Statement statement =
      SearchStatement("Carol's", DateSerial(2026, 11, 1), DateSerial(2026, 11, 30),
                      {Kind::kEveryone, ""}, ASPDataServer::Access);
  EXPECT_TRUE(statement.refused());
  EXPECT_THROW(statement.CheckedText(), ado::DatabaseError);
}

TEST(SearchStatement, AnOwnerKeyWithAQuoteIsRefused) {
  EXPECT_TRUE(SearchStatement("x", DateSerial(2026, 11, 1), DateSerial(2026, 11, 30),
                              {Kind::kUser, "x' OR '1'='1"}, ASPDataServer::Access)
                  .refused());
}

TEST(SearchStatement, AGroupThatIsNoPlainIntegerIsRefused) {
  for (const char* group : {"1.5", "2 OR 1=1", "&H10", ""}) {
    EXPECT_TRUE(SearchStatement("x", DateSerial(2026, 11, 1), DateSerial(2026, 11, 30),
                                {Kind::kGroup, group}, ASPDataServer::SQLServer)
                    .refused())
        << group;
  }
}

}  // namespace
}  // namespace tidewell

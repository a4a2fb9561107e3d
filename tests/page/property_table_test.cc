#include "page/property_table.h"

#include <gtest/gtest.h>

#include "runtime/automation_error.h"

namespace tidewell {
namespace {

TEST(PropertyTable, ListsEveryPropertyInTypeLibraryOrder) {
  auto names = PropertyNames();
  ASSERT_EQ(names.size(), 22u);
  EXPECT_EQ(names.front(), "Visible");
  EXPECT_EQ(names.back(), "ImagePath");
}

TEST(PropertyTable, EveryNameReadsBackWhatItsDefaultIs) {
  Properties p;
  EXPECT_EQ(GetProperty(p, "TidewellColor"), Variant("#172676"));
  EXPECT_EQ(GetProperty(p, "DefaultStartHour"), Variant(-1));
  EXPECT_EQ(GetProperty(p, "HexQueryString"), Variant(true));
  EXPECT_EQ(GetProperty(p, "DataServer"), Variant(0));
}

TEST(PropertyTable, NamesMatchWithoutRegardToCase) {
  Properties p;
  LetProperty(p, "tidewellcolor", "#000000");
  EXPECT_EQ(p.TidewellColor, "#000000");
}

TEST(PropertyTable, BooleansTakeWordsAndNumbers) {
  Properties p;
  LetProperty(p, "Visible", "True");
  EXPECT_TRUE(p.Visible);
  LetProperty(p, "Visible", "0");
  EXPECT_FALSE(p.Visible);
  LetProperty(p, "Visible", "-1");
  EXPECT_TRUE(p.Visible);
  LetProperty(p, "Visible", "False");
  EXPECT_FALSE(p.Visible);
}

TEST(PropertyTable, BadBooleanIsTypeMismatch) {
  Properties p;
  EXPECT_THROW(LetProperty(p, "Visible", "maybe"), AutomationError);
}

TEST(PropertyTable, LongsTakeNumbers) {
  Properties p;
  LetProperty(p, "DefaultStartHour", "8");
  EXPECT_EQ(p.DefaultStartHour, 8);
  EXPECT_THROW(LetProperty(p, "DefaultStartHour", "eight"), AutomationError);
}

TEST(PropertyTable, DataServerTakesNamesAndNumbers) {
  Properties p;
  LetProperty(p, "DataServer", "SQLServer");
  EXPECT_EQ(p.DataServer, ASPDataServer::SQLServer);
  LetProperty(p, "DataServer", "0");
  EXPECT_EQ(p.DataServer, ASPDataServer::Access);
  LetProperty(p, "DataServer", 1);
  EXPECT_EQ(p.DataServer, ASPDataServer::SQLServer);
  EXPECT_THROW(LetProperty(p, "DataServer", "Oracle"), AutomationError);
  EXPECT_THROW(LetProperty(p, "DataServer", "2"), AutomationError);
}

TEST(PropertyTable, ImagePathKeepsItsSlashRule) {
  Properties p;
  LetProperty(p, "ImagePath", "/images");
  EXPECT_EQ(p.ImagePath, "/images/");
}

TEST(PropertyTable, ColoursAreStoredUnvalidated) {
  Properties p;
  LetProperty(p, "CompletedItemColor", "not a colour");
  EXPECT_EQ(p.CompletedItemColor, "not a colour");
}

TEST(PropertyTable, UnknownNameRaisesError438) {
  Properties p;
  try {
    LetProperty(p, "Colour", "#fff");
    FAIL();
  } catch (const AutomationError& e) {
    EXPECT_EQ(e.number(), 438);
  }
  EXPECT_FALSE(IsPropertyName("Colour"));
  EXPECT_TRUE(IsPropertyName("connectionstring"));
}

}  // namespace
}  // namespace tidewell

#include "runtime/strings.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

using Pieces = std::vector<std::string>;

TEST(Split, KeepsEmptyPieces) { EXPECT_EQ(Split("~6~~", '~'), (Pieces{"", "6", "", ""})); }
TEST(Split, EmptyTextIsOneEmptyPiece) { EXPECT_EQ(Split("", '+'), (Pieces{""})); }
TEST(Split, NoDelimiterIsOnePiece) { EXPECT_EQ(Split("1", '+'), (Pieces{"1"})); }
TEST(Split, OptionsString) {
  EXPECT_EQ(Split("1+8+0+1+0", '+'), (Pieces{"1", "8", "0", "1", "0"}));
}

TEST(Replace, EveryOccurrenceLeftToRight) {
  EXPECT_EQ(Replace("h=<height></height> w=<height></height>", "<height></height>", "545"),
            "h=545 w=545");
}
TEST(Replace, ReplacementIsNotSearchedAgain) {
  EXPECT_EQ(Replace("UA", "A", "ASC"), "UASC");
  EXPECT_EQ(Replace("aaa", "a", "aa"), "aaaaaa");
}
TEST(Replace, OverlappingOccurrencesAreTakenFromTheLeft) {
  EXPECT_EQ(Replace("aaa", "aa", "b"), "ba");
}
TEST(Replace, NothingFoundLeavesTheText) {
  EXPECT_EQ(Replace("<HEIGHT></HEIGHT>", "<height></height>", "545"), "<HEIGHT></HEIGHT>");
  EXPECT_EQ(Replace("", "x", "y"), "");
}
TEST(Replace, EmptyFindChangesNothing) { EXPECT_EQ(Replace("abc", "", "x"), "abc"); }
TEST(Replace, AtBothEnds) { EXPECT_EQ(Replace("xabx", "x", "--"), "--ab--"); }

}  // namespace
}  // namespace tidewell

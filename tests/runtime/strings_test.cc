#include "runtime/strings.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

using Pieces = std::vector<std::string>;

TEST(Split, KeepsEmptyPieces) {
  EXPECT_EQ(Split("~6~~", '~'), (Pieces{"", "6", "", ""}));
}
TEST(Split, EmptyTextIsOneEmptyPiece) {
  EXPECT_EQ(Split("", '+'), (Pieces{""}));
}
TEST(Split, NoDelimiterIsOnePiece) {
  EXPECT_EQ(Split("1", '+'), (Pieces{"1"}));
}
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
TEST(Replace, EmptyFindChangesNothing) {
  EXPECT_EQ(Replace("abc", "", "x"), "abc");
}
TEST(Replace, AtBothEnds) {
  EXPECT_EQ(Replace("xabx", "x", "--"), "--ab--");
}
TEST(Replace, AShorterReplacementClosesTheTextUpInItsOwnBuffer) {
  std::string page = "<h></h>a<h></h><h></h>bc<h></h>";
  page.reserve(1024);
  const char* const buffer = page.data();
  std::string replaced = Replace(std::move(page), "<h></h>", "9");
  EXPECT_EQ(replaced, "9a99bc9");
  EXPECT_EQ(replaced.data(), buffer);
  EXPECT_GE(replaced.capacity(), 1024u);
  EXPECT_EQ(Replace("x<h></h>", "<h></h>", ""), "x");
  EXPECT_EQ(Replace("aaaa", "aa", "a"), "aa");
}

}  // namespace
}  // namespace tidewell

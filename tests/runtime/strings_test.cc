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

}  // namespace
}  // namespace tidewell

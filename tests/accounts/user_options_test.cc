#include "accounts/user_options.h"

#include <gtest/gtest.h>

namespace tidewell {
namespace {

TEST(ReadUserOptions, AllFiveValues) {
  UserOptions options = ReadUserOptions("1+7+1+0+1");
  EXPECT_TRUE(options.show_all_group_users);
  EXPECT_TRUE(options.may_change_show_all_group_users);
  EXPECT_EQ(options.start_hour, 7);
  EXPECT_EQ(options.highlight_todays_date, 1);
  EXPECT_EQ(options.highlight_todays_time, 0);
  EXPECT_EQ(options.show_12_hour_day, 1);
}

TEST(ReadUserOptions, AdministratorsZeroLocksTheSettingOff) {
  UserOptions options = ReadUserOptions("0+8+0+0+0");
  EXPECT_FALSE(options.show_all_group_users);
  EXPECT_FALSE(options.may_change_show_all_group_users);
}

TEST(ReadUserOptions, UsersOwnThreeIsOffButChangeable) {
  UserOptions options = ReadUserOptions("3+8+0+0+0");
  EXPECT_FALSE(options.show_all_group_users);
  EXPECT_TRUE(options.may_change_show_all_group_users);
}

TEST(ReadUserOptions, UsersOwnFourIsOnAndChangeable) {
  UserOptions options = ReadUserOptions("4+8+0+0+0");
  EXPECT_TRUE(options.show_all_group_users);
  EXPECT_TRUE(options.may_change_show_all_group_users);
}

TEST(ReadUserOptions, OtherBooleanTextsOfTheFirstValue) {
  EXPECT_TRUE(ReadUserOptions("-1+8+0+0+0").show_all_group_users);
  EXPECT_TRUE(ReadUserOptions("True+8+0+0+0").show_all_group_users);
  EXPECT_FALSE(ReadUserOptions("False+8+0+0+0").show_all_group_users);
  EXPECT_FALSE(ReadUserOptions("x+8+0+0+0").show_all_group_users);
  EXPECT_FALSE(ReadUserOptions("+8+0+0+0").show_all_group_users);
}

// What a user who saved his own options without own defaults is left with.
TEST(ReadUserOptions, OneElementStringHasTheFlagAlone) {
  UserOptions options = ReadUserOptions("4");
  EXPECT_TRUE(options.show_all_group_users);
  EXPECT_TRUE(options.may_change_show_all_group_users);
  EXPECT_FALSE(options.start_hour);
  EXPECT_FALSE(options.highlight_todays_date);
  EXPECT_FALSE(options.highlight_todays_time);
  EXPECT_FALSE(options.show_12_hour_day);
}

TEST(ReadUserOptions, EmptyText) {
  UserOptions options = ReadUserOptions("");
  EXPECT_FALSE(options.show_all_group_users);
  EXPECT_FALSE(options.start_hour);
}

TEST(ReadUserOptions, ValuesThatAreNoNumbersAreMissing) {
  UserOptions options = ReadUserOptions("0+eight++1");
  EXPECT_FALSE(options.start_hour);
  EXPECT_FALSE(options.highlight_todays_date);
  EXPECT_EQ(options.highlight_todays_time, 1);
  EXPECT_FALSE(options.show_12_hour_day);
}

TEST(ReadUserOptions, NonZeroNumbersAreOn) {
  UserOptions options = ReadUserOptions("0+23+-1+2+5");
  EXPECT_EQ(options.start_hour, 23);
  EXPECT_EQ(options.highlight_todays_date, -1);
  EXPECT_EQ(options.highlight_todays_time, 2);
}

}  // namespace
}  // namespace tidewell

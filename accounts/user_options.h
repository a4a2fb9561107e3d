#pragma once

#include <optional>
#include <string_view>

namespace tidewell {

// Users.Options holds five values joined by "+":
//   0  show all group users: "0"/"1" as an administrator set it, "3"/"4" as the user set it
//      himself ("3" off, "4" on)
//   1  start hour
//   2  highlight today's date (non-zero is on)
//   3  highlight the current time (non-zero is on)
//   4  show a 12-hour day (non-zero is on)
// A user who saves his own options while users may not keep their own defaults is left with
// the flag alone ("4"), so every value after the first may be missing.
struct UserOptions {
  bool show_all_group_users = false;
  // "3" and "4" say the user chose himself and may choose again; otherwise only an
  // administrator's "on" lets him switch it off, while "off" locks it.
  bool may_change_show_all_group_users = false;
  // Missing, or text that is no number: nothing, and the site's setting stays in force.
  std::optional<long> start_hour;
  std::optional<long> highlight_todays_date;
  std::optional<long> highlight_todays_time;
  std::optional<long> show_12_hour_day;
};

// Reads Users.Options. A first value that is neither "3", "4" nor a Boolean (a number or
// True/False) reads as off.
UserOptions ReadUserOptions(std::string_view options);

}  // namespace tidewell

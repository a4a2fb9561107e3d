#include "accounts/user_options.h"

#include <string>
#include <vector>

#include "runtime/automation_error.h"
#include "runtime/conversions.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

std::optional<long> NumberAt(const std::vector<std::string>& values, size_t index) {
  if (index >= values.size() || !IsNumeric(values[index])) return std::nullopt;
  try {
    return CLng(values[index]);
  } catch (const AutomationError&) {  // a number too large for a Long
    return std::nullopt;
  }
}

bool BooleanText(const std::string& text) {
  try {
    return CBool(text);
  } catch (const AutomationError&) {
    return false;
  }
}

}  // namespace

UserOptions ReadUserOptions(std::string_view options) {
  std::vector<std::string> values = Split(options, '+');
  UserOptions read;
  const std::string& flag = values[0];
  if (flag == "3" || flag == "4") {
    read.show_all_group_users = flag == "4";
    read.may_change_show_all_group_users = true;
  } else {
    read.show_all_group_users = BooleanText(flag);
    read.may_change_show_all_group_users = read.show_all_group_users;
  }
  read.start_hour = NumberAt(values, 1);
  read.highlight_todays_date = NumberAt(values, 2);
  read.highlight_todays_time = NumberAt(values, 3);
  read.show_12_hour_day = NumberAt(values, 4);
  return read;
}

}  // namespace tidewell

#include "host/account_table.h"

#include <algorithm>
#include <array>

namespace tidewell {
namespace {

constexpr size_t kColumns = 4;
using Row = std::array<std::string, kColumns>;

// Characters, counting each UTF-8 sequence once.
size_t Width(const std::string& text) {
  return std::count_if(text.begin(), text.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

}  // namespace

std::string AccountTable(const std::vector<AccountSummary>& accounts) {
  std::vector<Row> rows = {{"NAME", "INITIALS", "GROUP", "ADMINISTRATOR"}};
  for (const AccountSummary& account : accounts) {
    rows.push_back({account.user_name, account.initials,
                    account.group_name.empty() ? "-" : account.group_name,
                    account.administrator ? "yes" : "no"});
  }
  std::array<size_t, kColumns> widths{};
  for (const Row& row : rows) {
    for (size_t column = 0; column < kColumns; ++column) {
      widths[column] = std::max(widths[column], Width(row[column]));
    }
  }
  std::string table;
  for (const Row& row : rows) {
    for (size_t column = 0; column + 1 < kColumns; ++column) {
      table += row[column] + std::string(widths[column] - Width(row[column]) + 2, ' ');
    }
    table += row[kColumns - 1] + "\n";
  }
  return table;
}

}  // namespace tidewell

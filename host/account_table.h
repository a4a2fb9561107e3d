#pragma once

#include <string>
#include <vector>

#include "accounts/account_records.h"

namespace tidewell {

// What `tidewell user list` prints: a heading and one line per account, columns NAME,
// INITIALS, GROUP and ADMINISTRATOR ("yes" or "no") aligned with spaces (widths counted in
// characters, not bytes). An account whose group is gone shows "-" for it.
std::string AccountTable(const std::vector<AccountSummary>& accounts);

}  // namespace tidewell

#include "accounts/administrator_check.h"

#include <string_view>

#include "accounts/account_statements.h"
#include "accounts/login.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// The login screen, with the modes of the first-administrator form switched off.
void ShowLoginScreen(Page& page) {
  page.Screen = screens::kLogin;
  page.NewUserMode = false;
  page.FirstAdministratorMode = false;
}

}  // namespace

bool IsAdministratorAccount(Page& page, std::string_view key) {
  if (key.empty()) return false;
  Recordset rs;
  rs.Open(AdministratorFlagStatement(key), *page.Connection);
  return !rs.Eof() && CBoolOrFalse(rs.Fields("Administrator").Value());
}

std::optional<std::string> AdministratorOfRequest(Page& page) {
  try {
    if (IsAdministratorAccount(page, page.UserKey)) return page.UserKey;
    if (IsAdministratorAccount(page, page.AdminKey)) return page.AdminKey;
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
  }
  return std::nullopt;
}

void GuardAdministratorScreens(Page& page) {
  if (page.Screen != screens::kAdministratorOptions && page.Screen != screens::kGroupOptions) {
    return;
  }
  const bool first_administrator_form = page.Screen == screens::kAdministratorOptions &&
                                        page.FirstAdministratorMode && page.UserKey.empty();
  const bool allowed = first_administrator_form ? !AdministratorExists(page)
                                                : AdministratorOfRequest(page).has_value();
  if (allowed) return;
  // A read that failed has put the error screen in place already.
  if (page.Screen != screens::kErrorScreen) ShowLoginScreen(page);
}

}  // namespace tidewell

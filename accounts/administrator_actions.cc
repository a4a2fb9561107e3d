#include "accounts/administrator_actions.h"

#include <optional>
#include <string>

#include "accounts/account_statements.h"
#include "accounts/account_updates.h"
#include "accounts/administrator_check.h"
#include "accounts/login.h"
#include "data/connection.h"
#include "data/database_error.h"
#include "errors/database_errors.h"
#include "page/page.h"

namespace tidewell {
namespace {

bool IsAdministratorButton(const std::string& submit) {
  return submit == "Change User" || submit == "Update" || submit == "New User" ||
         submit == "Add New User" || submit == "Manage" || submit == "Delete This User";
}

bool Refuse(Page& page) {
  if (page.Screen != screens::kErrorScreen) page.Screen = screens::kLogin;
  page.NewUserMode = false;
  page.FirstAdministratorMode = false;
  return false;
}

// Ends a transaction that must leave nothing behind; a failure to roll back leaves it to the
// connection's close, which rolls back too.
void RollBack(ado::Connection& connection) {
  try {
    connection.RollbackTrans();
  } catch (const ado::DatabaseError&) {
  }
}

void AddNewUser(Page& page) {
  page.NewUserMode = true;
  ProcessAccount(page, AccountForm::kAdministratorOptions);
  page.NewUserMode = page.Error.Raised();
}

// The welcome screen's form makes the first account, and only while there is no
// administrator: once there is one, the form is no way in. Several visitors may post the form
// at the same moment; the check and the insert run in one transaction that first updates the
// accounts lock row, so such transactions take turns on either engine, and every one after
// the first finds the administrator it made.
bool AddFirstAdministrator(Page& page) {
  if (page.FormValue("submit") != "Add New User") return Refuse(page);
  ado::Connection& connection = *page.Connection;
  try {
    connection.BeginTrans();
    connection.Execute(LockAccountsStatement());
  } catch (const ado::DatabaseError& error) {
    RollBack(connection);
    TrapUpdateError(page, error);
    return Refuse(page);
  }
  if (AdministratorExists(page) || page.Error.Raised()) {
    RollBack(connection);
    return Refuse(page);
  }
  page.FirstAdministratorMode = true;
  AddNewUser(page);
  if (page.Error.Raised()) {
    RollBack(connection);
  } else {
    try {
      connection.CommitTrans();
    } catch (const ado::DatabaseError& error) {
      TrapUpdateError(page, error);
      page.UserKey.clear();
    }
  }
  // A refused form comes back as the first administrator's form.
  page.FirstAdministratorMode = page.NewUserMode;
  return true;
}

}  // namespace

bool RunAdministratorAction(Page& page) {
  const std::string submit = page.FormValue("submit");
  if (!IsAdministratorButton(submit)) return true;
  if (page.UserKey.empty() && page.RequestValue("welcome") == "y") {
    return AddFirstAdministrator(page);
  }
  const std::optional<std::string> administrator = AdministratorOfRequest(page);
  if (!administrator) return Refuse(page);
  if (page.AdminKey.empty()) page.AdminKey = *administrator;

  if (submit == "Change User") page.UserKey = page.FormValue("ownerkey");
  if (submit == "Update") ProcessAccount(page, AccountForm::kAdministratorOptions);
  if (submit == "New User") page.NewUserMode = true;
  if (submit == "Add New User") AddNewUser(page);
  if (submit == "Manage") page.Screen = screens::kGroupOptions;
  if (submit == "Delete This User") DeleteUser(page, page.UserKey);
  return true;
}

}  // namespace tidewell

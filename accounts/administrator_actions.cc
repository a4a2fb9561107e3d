#include "accounts/administrator_actions.h"

#include <optional>
#include <string>

#include "accounts/account_updates.h"
#include "accounts/administrator_check.h"
#include "accounts/login.h"
#include "component/page.h"

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

void AddNewUser(Page& page) {
  page.NewUserMode = true;
  ProcessAccount(page, AccountForm::kAdministratorOptions);
  page.NewUserMode = page.ErrorFlag;
}

// The welcome screen's form makes the first account, and only while there is no
// administrator: once there is one, the form is no way in.
bool AddFirstAdministrator(Page& page) {
  if (page.FormValue("submit") != "Add New User") return Refuse(page);
  if (AdministratorExists(page) || page.ErrorFlag) return Refuse(page);
  page.FirstAdministratorMode = true;
  AddNewUser(page);
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

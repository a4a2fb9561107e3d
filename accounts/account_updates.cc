#include "accounts/account_updates.h"

#include <optional>
#include <string>

#include "accounts/account_records.h"
#include "accounts/account_statements.h"
#include "accounts/password_fields.h"
#include "accounts/password_hash.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "frame/markup.h"
#include "page/page.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

Statement DeleteEveryGroupStatement() {
  return Statement("DELETE FROM Groups");
}

// --- The uniqueness checks of the administrator form ---

// A clash when the name belongs to another account, or to any account while a new one is
// being made.
bool ClashesWith(const Page& page, const std::string& owner_key) {
  return owner_key != page.UserKey || page.NewUserMode;
}

void CheckName(Page& page) {
  std::optional<NamedAccount> holder =
      FindAccountNamed(*page.Connection, page.FormValue("username"));
  if (!holder || !ClashesWith(page, holder->owner_key)) return;
  page.Error.Raise(ErrorKind::kUserNameTaken, "<br>There is already a user named: " +
                                                  EscapeHtml(holder->user_name) +
                                                  ", Please choose another.");
}

// CheckName after a write the unique index refused: whether the name clashes now.
bool RecheckName(Page& page) {
  try {
    CheckName(page);
  } catch (const ado::DatabaseError&) {
    return false;
  }
  return page.Error.Raised();
}

// Only an account that joins an existing group can clash: a new group has no members yet.
void CheckInitials(Page& page) {
  if (!Trim(page.FormValue("newgroup")).empty()) return;
  std::optional<std::string_view> changing;
  if (!page.NewUserMode) changing = page.UserKey;
  std::optional<InitialsHolder> holder = FindInitialsHolder(
      *page.Connection, page.FormValue("initials"), page.FormValue("groupid"), changing);
  if (!holder) return;
  page.Error.Text +=
      "<br>There is already a user with the initials: " + EscapeHtml(holder->initials) +
      " in the group: " + EscapeHtml(holder->group_name) +
      ".<br>The user is: " + EscapeHtml(holder->user_name) + ".";
  // Kept beside a refused name, so that the form empties both fields.
  page.Error.Kind = NameWasTaken(page.Error.Kind) ? ErrorKind::kUserNameAndInitialsTaken
                                                   : ErrorKind::kInitialsTaken;
}

// --- Writing ---

// The group the account goes to: one named in "newgroup", made first when there is none of
// that name (the insert is simply refused when there is one), else the chosen "groupid".
Variant ChosenGroup(Page& page) {
  const std::string new_group = page.FormValue("newgroup");
  if (Trim(new_group).empty()) return Variant(page.FormValue("groupid"));
  return JoinGroupNamed(*page.Connection, new_group);
}

// "+" and the four display options as the request carries them.
std::string DisplayOptionsTail(const Page& page) {
  return "+" + page.RequestValue("userdefaultstarthour") + "+" +
         page.RequestValue("userhighlighttodaysdate") + "+" +
         page.RequestValue("userhighlighttodaystime") + "+" +
         page.RequestValue("usershow12hourday");
}

// The show-all flag a user sets himself: "3" off, "4" on; nothing posted keeps the stored one.
std::string UsersOwnShowAllFlag(const Page& page, const std::string& stored_options) {
  const std::string posted = page.RequestValue("loadgroupdata");
  if (posted == "0") return "3";
  if (!posted.empty()) return "4";
  return stored_options.substr(0, 1);
}

void AddAccount(Page& page) {
  NewAccount account;
  account.owner_key = FreshOwnerKey(*page.Connection);
  account.group_id = ChosenGroup(page);
  account.user_name = page.FormValue("username");
  account.password_hash = HashPassword(page.FormValue("password"));
  account.initials = page.FormValue("initials");
  account.default_view = page.FormValue("defaultview");
  account.options = page.RequestValue("loadgroupdata") + DisplayOptionsTail(page);
  // The first administrator comes from the welcome screen's form; no other form sets the flag.
  account.administrator = page.RequestValue("welcome") == "y";
  InsertAccount(*page.Connection, account);
  page.UserKey = account.owner_key;
}

void ChangeAccount(Page& page, AccountForm form) {
  const bool administrator_form = form == AccountForm::kAdministratorOptions;
  Recordset rs;
  rs.Open(AccountStatement(page.UserKey), *page.Connection, ado::adOpenDynamic,
          ado::adLockOptimistic);
  if (rs.Eof()) return;
  if (!administrator_form) page.Screen = CLng(rs.Fields("DefaultView").Value());
  rs.Fields("DefaultView").SetValue(page.FormValue("defaultview"));
  const std::string stored = CStrOrBlank(rs.Fields("Password").Value());
  const std::string password = PasswordToStore(page, page.FormValue("password"), stored);
  if (password != stored) {
    rs.Fields("Password").SetValue(password);
    // Every link signed for this account before is void from now on, this page's included.
    page.Stamps.Forget(page.UserKey);
  }
  std::string tail;
  if (administrator_form || page.props.AllowUserOwnDefaults) {
    tail = DisplayOptionsTail(page);
    // The page being built already starts its days at the new hour.
    page.props.DefaultStartHour = CLng(page.RequestValue("userdefaultstarthour"));
  }
  if (administrator_form) {
    rs.Fields("UserName").SetValue(page.FormValue("username"));
    rs.Fields("Initials").SetValue(page.FormValue("initials"));
    rs.Fields("GroupID").SetValue(ChosenGroup(page));
    rs.Fields("Options").SetValue(page.RequestValue("loadgroupdata") + tail);
  } else {
    // Without the display options the flag stands alone.
    const std::string stored = CStrOrBlank(rs.Fields("Options").Value());
    rs.Fields("Options").SetValue(UsersOwnShowAllFlag(page, stored) + tail);
  }
  rs.Update();
  rs.Close();
}

void StoreAccount(Page& page, AccountForm form) {
  if (form == AccountForm::kAdministratorOptions) {
    CheckName(page);
    CheckInitials(page);
    if (page.Error.Raised()) return;
    if (page.NewUserMode) return AddAccount(page);
  }
  ChangeAccount(page, form);
}

}  // namespace

void ProcessAccount(Page& page, AccountForm form) {
  if (form == AccountForm::kAdministratorOptions) page.Screen = screens::kAdministratorOptions;
  try {
    StoreAccount(page, form);
  } catch (const ado::DatabaseError& error) {
    // The name check and the write are two statements: an account of the same name made by
    // another request in between makes the unique index refuse the write. Checked again, the
    // name clashes, and the form says so as it would have a moment later.
    if (error.number() == ado::error_numbers::kIntegrityViolation &&
        form == AccountForm::kAdministratorOptions && RecheckName(page)) {
      return;
    }
    TrapUpdateError(page, error);
  } catch (const AutomationError& error) {
    // A posted number the run time could not read stops the update the same way.
    TrapUpdateError(page, ado::DatabaseError(error.number(), error.what()));
  }
}

void DeleteUser(Page& page, std::string_view key) {
  const std::string deleted(key);
  try {
    DeleteAccountWithItems(*page.Connection, deleted);
    if (!page.AdminKey.empty() && page.AdminKey != page.UserKey) {
      page.UserKey = page.AdminKey;
      return;
    }
    // The signed-in user deleted his own account: every group goes with it (the accounts left
    // keep a group id that names no group), and the welcome screen follows, signed out.
    page.Connection->Execute(DeleteEveryGroupStatement());
    page.UserKey.clear();
    page.AdminKey.clear();
    page.Screen = screens::kWelcome;
  } catch (const ado::DatabaseError& error) {
    TrapUpdateError(page, error);
  }
}

}  // namespace tidewell

#include "accounts/account_updates.h"

#include <optional>
#include <string>

#include "accounts/account_statements.h"
#include "accounts/password_fields.h"
#include "accounts/password_hash.h"
#include "component/link_keys.h"
#include "component/page.h"
#include "data/open_database.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "frame/markup.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

// --- Statements ---

Statement UsersTable() {
  return Statement("Users");
}

Statement UserNamedStatement(std::string_view name) {
  return Statement("SELECT UserName, OwnerKey FROM Users WHERE UserName = ").Text(name);
}

Statement InitialsStatement(std::string_view initials) {
  return Statement(
             "SELECT Users.Initials, Users.OwnerKey, Users.UserName, Groups.GroupName, "
             "Groups.GroupID FROM Groups INNER JOIN Users ON Groups.GroupID = Users.GroupID "
             "WHERE Users.Initials = ")
      .Text(initials);
}

Statement AccountStatement(std::string_view key) {
  return Statement("SELECT * FROM Users WHERE OwnerKey = ").Text(key);
}

Statement GroupNamedStatement(std::string_view name) {
  return Statement("SELECT GroupID FROM Groups WHERE GroupName = ").Text(name);
}

Statement DeleteItemsStatement(std::string_view key) {
  return Statement("DELETE FROM Items WHERE OwnerKey = ").Text(key);
}

Statement DeleteUserStatement(std::string_view key) {
  return Statement("DELETE FROM Users WHERE OwnerKey = ").Text(key);
}

Statement DeleteEveryGroupStatement() {
  return Statement("DELETE FROM Groups");
}

// --- Reading ---

// Whether a group id read from the database is the one the form posted ("groupid" as text).
bool IsPostedGroup(const Variant& group_id, const std::string& posted) {
  std::optional<double> number = ParseNumericText(posted);
  return number && !group_id.IsNull() && CDbl(group_id) == *number;
}

// --- The uniqueness checks of the administrator form ---

// A clash when the name belongs to another account, or to any account while a new one is
// being made.
bool ClashesWith(const Page& page, const std::string& owner_key) {
  return owner_key != page.UserKey || page.NewUserMode;
}

void CheckName(Page& page) {
  Recordset rs;
  rs.Open(UserNamedStatement(page.FormValue("username")), *page.Connection);
  if (rs.Eof() || !ClashesWith(page, CStrOrBlank(rs.Fields("OwnerKey").Value()))) return;
  page.ErrorFlag = true;
  page.ErrorText =
      "<br>There is already a user named: " + EscapeHtml(CStrOrBlank(rs.Fields("UserName").Value())) +
      ", Please choose another.";
  page.ErrorKind = "U";
}

// CheckName after a write the unique index refused: whether the name clashes now.
bool RecheckName(Page& page) {
  try {
    CheckName(page);
  } catch (const ado::DatabaseError&) {
    return false;
  }
  return page.ErrorFlag;
}

// Only an account that joins an existing group can clash: a new group has no members yet.
void CheckInitials(Page& page) {
  if (!Trim(page.FormValue("newgroup")).empty()) return;
  const std::string group = page.FormValue("groupid");
  Recordset rs;
  rs.Open(InitialsStatement(page.FormValue("initials")), *page.Connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    if (!IsPostedGroup(rs.Fields("GroupID").Value(), group)) continue;
    if (!ClashesWith(page, CStrOrBlank(rs.Fields("OwnerKey").Value()))) continue;
    page.ErrorFlag = true;
    page.ErrorText += "<br>There is already a user with the initials: " +
                      EscapeHtml(CStrOrBlank(rs.Fields("Initials").Value())) +
                      " in the group: " + EscapeHtml(CStrOrBlank(rs.Fields("GroupName").Value())) +
                      ".<br>The user is: " + EscapeHtml(CStrOrBlank(rs.Fields("UserName").Value())) +
                      ".";
    // Kept beside a "U" of the name check, so that the form empties both fields.
    page.ErrorKind += "I";
    return;
  }
}

// --- Writing ---

// A key no account has yet. Keys are 128 random bits, so the first is all but certainly
// free; the check makes it certain.
std::string FreshOwnerKey(Page& page) {
  for (;;) {
    std::string key = GenerateOwnerKey();
    Recordset rs;
    rs.Open(OwnerKeyStatement(key), *page.Connection);
    if (rs.Eof()) return key;
  }
}

// The group the account goes to: one named in "newgroup", made first when there is none of
// that name (the insert is simply refused when there is one), else the chosen "groupid".
Variant ChosenGroup(Page& page) {
  const std::string new_group = page.FormValue("newgroup");
  if (Trim(new_group).empty()) return Variant(page.FormValue("groupid"));
  try {
    page.Connection->Execute(InsertGroupStatement(new_group));
  } catch (const ado::DatabaseError&) {
    // A group of that name exists already: the account joins it.
  }
  Recordset rs;
  rs.Open(GroupNamedStatement(new_group), *page.Connection);
  return rs.Fields("GroupID").Value();
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
  const std::string key = FreshOwnerKey(page);
  const Variant group = ChosenGroup(page);
  Recordset rs;
  rs.Open(UsersTable(), *page.Connection, ado::adOpenDynamic, ado::adLockOptimistic);
  rs.AddNew();
  rs.Fields("OwnerKey").SetValue(key);
  // The first administrator comes from the welcome screen's form; no other path sets the flag.
  if (page.RequestValue("welcome") == "y") rs.Fields("Administrator").SetValue(true);
  rs.Fields("GroupID").SetValue(group);
  rs.Fields("UserName").SetValue(page.FormValue("username"));
  rs.Fields("Password").SetValue(HashPassword(page.FormValue("password")));
  rs.Fields("Initials").SetValue(page.FormValue("initials"));
  rs.Fields("DefaultView").SetValue(page.FormValue("defaultview"));
  rs.Fields("Options").SetValue(page.RequestValue("loadgroupdata") + DisplayOptionsTail(page));
  rs.Update();
  rs.Close();
  page.UserKey = key;
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
    if (page.ErrorFlag) return;
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
    page.Connection->Execute(DeleteItemsStatement(deleted));
    page.Connection->Execute(DeleteUserStatement(deleted));
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

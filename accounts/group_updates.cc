#include "accounts/group_updates.h"

#include <optional>
#include <string>
#include <string_view>

#include "accounts/account_statements.h"
#include "accounts/administrator_check.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "frame/markup.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

Statement GroupStatement(std::string_view group_id) {
  return Statement("SELECT * FROM Groups WHERE GroupID = ").Number(group_id);
}

Statement DeleteGroupStatement(std::string_view group_id) {
  return Statement("DELETE FROM Groups WHERE GroupID = ").Number(group_id);
}

// A name the database refuses is taken to be one in use: the unique group name is the one
// constraint the insert can meet.
void AddGroup(Page& page) {
  const std::string name = page.FormValue("newgroup");
  if (Trim(name).empty()) return;
  try {
    page.Connection->Execute(InsertGroupStatement(name));
  } catch (const ado::DatabaseError&) {
    page.Error.Raise(ErrorKind::kGroupNameTaken,
                     "<br>There is already a group named: " + EscapeHtml(name));
  }
}

void RenameGroup(Page& page) {
  const std::string name = page.FormValue("groupname");
  if (Trim(name).empty()) return;
  Recordset rs;
  rs.Open(GroupStatement(page.RequestValue("groupid")), *page.Connection, ado::adOpenDynamic,
          ado::adLockOptimistic);
  if (!rs.Eof()) {
    rs.Fields("GroupName").SetValue(name);
    rs.Update();
  }
  rs.Close();
}

void DeleteGroup(Page& page) {
  page.Connection->Execute(DeleteGroupStatement(page.RequestValue("rgroupid")));
}

bool Refuse(Page& page) {
  if (page.Screen != screens::kErrorScreen) page.Screen = screens::kLogin;
  return false;
}

}  // namespace

bool RunGroupAction(Page& page) {
  const std::string submit = page.FormValue("submit");
  if (submit == "Back") {
    page.Screen = screens::kAdministratorOptions;
    return true;
  }
  const std::optional<std::string> administrator = AdministratorOfRequest(page);
  if (!administrator) return Refuse(page);
  if (page.AdminKey.empty()) page.AdminKey = *administrator;
  try {
    if (submit == "Add") AddGroup(page);
    if (submit == "Update") RenameGroup(page);
    if (submit == "Delete") DeleteGroup(page);
  } catch (const ado::DatabaseError& error) {
    TrapUpdateError(page, error);
  }
  return true;
}

}  // namespace tidewell

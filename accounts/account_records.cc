#include "accounts/account_records.h"

#include "accounts/account_statements.h"
#include "data/database_error.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "page/link_keys.h"
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

Statement GroupNamedStatement(std::string_view name) {
  return Statement("SELECT GroupID FROM Groups WHERE GroupName = ").Text(name);
}

Statement DeleteItemsStatement(std::string_view key) {
  return Statement("DELETE FROM Items WHERE OwnerKey = ").Text(key);
}

Statement DeleteUserStatement(std::string_view key) {
  return Statement("DELETE FROM Users WHERE OwnerKey = ").Text(key);
}

// Accounts whose group is gone are listed too, with no group name.
Statement AccountListStatement() {
  return Statement(
      "SELECT Users.OwnerKey, Users.UserName, Users.Initials, Users.Administrator, "
      "Groups.GroupName FROM Users LEFT JOIN Groups ON Groups.GroupID = Users.GroupID "
      "ORDER BY Users.UserName");
}

// Whether a group id read from the database is the one given as text.
bool IsGivenGroup(const Variant& group_id, std::string_view given) {
  std::optional<double> number = ParseNumericText(given);
  return number && !group_id.IsNull() && CDbl(group_id) == *number;
}

// Opens the account `key` for writing; Eof when there is none.
void OpenAccount(Recordset& rs, ado::Connection& connection, std::string_view key) {
  rs.Open(AccountStatement(key), connection, ado::adOpenDynamic, ado::adLockOptimistic);
}

}  // namespace

std::optional<NamedAccount> FindAccountNamed(ado::Connection& connection, std::string_view name) {
  Recordset rs;
  rs.Open(UserNamedStatement(name), connection);
  if (rs.Eof()) return std::nullopt;
  return NamedAccount{CStrOrBlank(rs.Fields("OwnerKey").Value()),
                      CStrOrBlank(rs.Fields("UserName").Value())};
}

std::optional<InitialsHolder> FindInitialsHolder(ado::Connection& connection,
                                                 std::string_view initials,
                                                 std::string_view group_id,
                                                 std::optional<std::string_view> changing) {
  Recordset rs;
  rs.Open(InitialsStatement(initials), connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    if (!IsGivenGroup(rs.Fields("GroupID").Value(), group_id)) continue;
    if (changing && CStrOrBlank(rs.Fields("OwnerKey").Value()) == *changing) continue;
    return InitialsHolder{CStrOrBlank(rs.Fields("Initials").Value()),
                          CStrOrBlank(rs.Fields("GroupName").Value()),
                          CStrOrBlank(rs.Fields("UserName").Value())};
  }
  return std::nullopt;
}

std::string FreshOwnerKey(ado::Connection& connection) {
  for (;;) {
    std::string key = GenerateOwnerKey();
    Recordset rs;
    rs.Open(OwnerKeyStatement(key), connection);
    if (rs.Eof()) return key;
  }
}

std::optional<Variant> GroupIdNamed(ado::Connection& connection, std::string_view name) {
  Recordset rs;
  rs.Open(GroupNamedStatement(name), connection);
  if (rs.Eof()) return std::nullopt;
  return rs.Fields("GroupID").Value();
}

Variant JoinGroupNamed(ado::Connection& connection, std::string_view name) {
  try {
    connection.Execute(InsertGroupStatement(name));
  } catch (const ado::DatabaseError&) {
    // A group of that name exists already: the account joins it.
  }
  Recordset rs;
  rs.Open(GroupNamedStatement(name), connection);
  return rs.Fields("GroupID").Value();
}

void InsertAccount(ado::Connection& connection, const NewAccount& account) {
  Recordset rs;
  rs.Open(UsersTable(), connection, ado::adOpenDynamic, ado::adLockOptimistic);
  rs.AddNew();
  rs.Fields("OwnerKey").SetValue(account.owner_key);
  if (account.administrator) rs.Fields("Administrator").SetValue(true);
  rs.Fields("GroupID").SetValue(account.group_id);
  rs.Fields("UserName").SetValue(account.user_name);
  rs.Fields("Password").SetValue(account.password_hash);
  rs.Fields("Initials").SetValue(account.initials);
  rs.Fields("DefaultView").SetValue(account.default_view);
  rs.Fields("Options").SetValue(account.options);
  rs.Update();
  rs.Close();
}

long DeleteAccountWithItems(ado::Connection& connection, std::string_view key) {
  const long items = connection.Execute(DeleteItemsStatement(key));
  connection.Execute(DeleteUserStatement(key));
  return items;
}

std::vector<AccountSummary> ListAccounts(ado::Connection& connection) {
  std::vector<AccountSummary> accounts;
  Recordset rs;
  rs.Open(AccountListStatement(), connection);
  for (; !rs.Eof(); rs.MoveNext()) {
    accounts.push_back(
        {CStrOrBlank(rs.Fields("OwnerKey").Value()), CStrOrBlank(rs.Fields("UserName").Value()),
         CStrOrBlank(rs.Fields("Initials").Value()), CStrOrBlank(rs.Fields("GroupName").Value()),
         CBoolOrFalse(rs.Fields("Administrator").Value())});
  }
  return accounts;
}

void SetAdministratorFlag(ado::Connection& connection, std::string_view key, bool administrator) {
  Recordset rs;
  OpenAccount(rs, connection, key);
  if (rs.Eof()) return;
  rs.Fields("Administrator").SetValue(administrator);
  rs.Update();
  rs.Close();
}

void SetPasswordHash(ado::Connection& connection, std::string_view key,
                     const std::string& password_hash) {
  Recordset rs;
  OpenAccount(rs, connection, key);
  if (rs.Eof()) return;
  rs.Fields("Password").SetValue(password_hash);
  rs.Update();
  rs.Close();
}

}  // namespace tidewell

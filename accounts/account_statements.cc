#include "accounts/account_statements.h"

namespace tidewell {

using ado::Statement;

Statement AdministratorFlagStatement(std::string_view owner_key) {
  return Statement("SELECT Administrator FROM Users WHERE OwnerKey = ").Text(owner_key);
}

Statement OwnerKeyStatement(std::string_view owner_key) {
  return Statement("SELECT OwnerKey FROM Users WHERE OwnerKey = ").Text(owner_key);
}

Statement AccountStatement(std::string_view owner_key) {
  return Statement("SELECT * FROM Users WHERE OwnerKey = ").Text(owner_key);
}

Statement InsertGroupStatement(std::string_view name) {
  return Statement("INSERT INTO Groups (GroupName) VALUES (").Text(name).Add(")");
}

Statement LockAccountsStatement() {
  return Statement("UPDATE TidewellSettings SET Value = Value WHERE Name = 'AccountsLock'");
}

}  // namespace tidewell

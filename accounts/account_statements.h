#pragma once

#include <string_view>

#include "data/statement.h"

namespace tidewell {

// Statements about accounts and groups that more than one part of the calendar runs.

// "SELECT Administrator FROM Users WHERE OwnerKey = " K: whether the account is an
// administrator (no row when there is no such account).
ado::Statement AdministratorFlagStatement(std::string_view owner_key);

// "SELECT OwnerKey FROM Users WHERE OwnerKey = " K: whether an account has the key.
ado::Statement OwnerKeyStatement(std::string_view owner_key);

// "SELECT * FROM Users WHERE OwnerKey = " K: the whole account, to change it.
ado::Statement AccountStatement(std::string_view owner_key);

// "INSERT INTO Groups (GroupName) VALUES (" N ")": fails when a group has the name already.
ado::Statement InsertGroupStatement(std::string_view name);

// "UPDATE TidewellSettings SET Value = Value WHERE Name = 'AccountsLock'": run first in a
// transaction that must not overlap another of its kind. It changes nothing, but holds the
// row (PostgreSQL) or the database (SQLite) for writing until the transaction ends.
ado::Statement LockAccountsStatement();

}  // namespace tidewell

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "data/connection.h"
#include "runtime/variant.h"

namespace tidewell {

// The account rules and writes that the administrator options screen and the `tidewell user`
// command share, on a connection alone: no page, no markup. Each throws ado::DatabaseError when
// a statement fails; what the caller shows for a refusal is the caller's business.

// The account holding `name`, compared as the database's unique index compares names
// (without regard to case); the first row when several do (an old database without the index).
struct NamedAccount {
  std::string owner_key;
  std::string user_name;  // as stored
};
std::optional<NamedAccount> FindAccountNamed(ado::Connection& connection, std::string_view name);

// Another member of the group `group_id` (the id as text, as a form posts it) whose initials
// are `initials`. `changing` is the key of the account being changed, whose own initials are
// no clash; nothing while a new account is being made.
struct InitialsHolder {
  std::string initials;
  std::string group_name;
  std::string user_name;
};
std::optional<InitialsHolder> FindInitialsHolder(ado::Connection& connection,
                                                 std::string_view initials,
                                                 std::string_view group_id,
                                                 std::optional<std::string_view> changing);

// A key no account has yet: 128 random bits as 32 lower-case hex digits. The first is all but
// certainly free; reading it back makes it certain.
std::string FreshOwnerKey(ado::Connection& connection);

// The id of the group named `name` (without regard to case); nothing when there is none.
std::optional<Variant> GroupIdNamed(ado::Connection& connection, std::string_view name);

// The id of the group named `name`, made first when there is none: the insert is tried and
// its refusal (a group of that name exists) passed over. Outside a transaction only: on
// PostgreSQL a refused statement ends the transaction it runs in.
Variant JoinGroupNamed(ado::Connection& connection, std::string_view name);

// A row of Users, as the administrator form or the command makes it.
struct NewAccount {
  std::string owner_key;
  Variant group_id;
  std::string user_name;
  std::string password_hash;  // accounts/password_hash.h
  std::string initials;
  std::string default_view;  // "0" month, "1" week, "2" day, "3" time
  std::string options;       // accounts/user_options.h
  bool administrator = false;
};
void InsertAccount(ado::Connection& connection, const NewAccount& account);

// Deletes the account `key` and every item it owns, items first; answers how many items.
long DeleteAccountWithItems(ado::Connection& connection, std::string_view key);

// What the command lists of an account.
struct AccountSummary {
  std::string owner_key;
  std::string user_name;
  std::string initials;
  std::string group_name;  // "" when the account's group is gone
  bool administrator = false;
};
// Every account, by name.
std::vector<AccountSummary> ListAccounts(ado::Connection& connection);

// Sets or clears the account's Administrator flag, written as the welcome form writes it.
void SetAdministratorFlag(ado::Connection& connection, std::string_view key, bool administrator);

// Replaces the account's stored password hash.
void SetPasswordHash(ado::Connection& connection, std::string_view key,
                     const std::string& password_hash);

}  // namespace tidewell

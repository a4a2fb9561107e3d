#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "page/link_keys.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace tidewell::testing {

// An account as a test writes it into the Users table.
struct Account {
  std::string key = "";  // "" for a freshly generated one
  std::string name;
  std::string password = "pw";  // as typed at the login; the table holds its hash
  // Written as it is instead of the hash: a plain text, as the oldest sites kept passwords.
  std::optional<std::string> stored_password = std::nullopt;
  long group = 0;
  bool administrator = false;
  long default_view = 0;
  std::string options = "0+8+0+0+0";
  std::string initials = "XX";
};

// An item as a test writes it into the Items table. A text left at nullopt stays NULL, as in
// rows that other programs wrote.
struct Item {
  std::string owner = "";
  Date date = {};
  long hour = 9;
  std::optional<std::string> time_text = "09:00";
  std::string heading = "Item";
  std::optional<std::string> description = "";
  bool urgent = false;
  bool complete = false;
};

// How a seeder stores the passwords the accounts are given.
enum class PasswordHashing {
  kEachAccount,     // a hash of its own for each account, as the calendar stores them
  kOncePerProcess,  // one hash of each password for every account: a hash costs tens of
                    // milliseconds, and the busy calendars have hundreds of accounts
};

// Groups, accounts and items written straight into the tables of a calendar database (SQLite
// or PostgreSQL) through the data layer's own recordsets: the rows a test starts from, without
// the screens that would otherwise write them.
class Seeder {
 public:
  // Each write opens a connection of its own on `connection_string`.
  explicit Seeder(std::string connection_string,
                  PasswordHashing hashing = PasswordHashing::kEachAccount)
      : connection_string_(std::move(connection_string)), hashing_(hashing) {}
  // Each write goes through the caller's open connection, which must outlive the seeder.
  explicit Seeder(ado::Connection& connection) : connection_(&connection) {}

  // Adds the group and answers its GroupID.
  long AddGroup(const std::string& name) {
    return OnConnection([&](ado::Connection& connection) {
      ado::Recordset rs;
      rs.Open(ado::Statement("Groups"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
      rs.AddNew();
      rs.Fields("GroupName").SetValue(name);
      rs.Update();
      return CLng(rs.Fields("GroupID").Value());
    });
  }

  // Adds the account under its key (a freshly generated one unless given) and answers the key.
  // Administrator, like the item flags, is assigned only when true.
  std::string AddUser(const Account& account) {
    const std::string key = account.key.empty() ? GenerateOwnerKey() : account.key;
    OnConnection([&](ado::Connection& connection) {
      ado::Recordset rs;
      rs.Open(ado::Statement("Users"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
      rs.AddNew();
      rs.Fields("OwnerKey").SetValue(key);
      rs.Fields("Username").SetValue(account.name);
      rs.Fields("Password").SetValue(StoredPassword(account));
      rs.Fields("Initials").SetValue(account.initials);
      rs.Fields("DefaultView").SetValue(account.default_view);
      rs.Fields("Options").SetValue(account.options);
      rs.Fields("GroupID").SetValue(account.group);
      if (account.administrator) rs.Fields("Administrator").SetValue(true);
      rs.Update();
      return 0;
    });
    return key;
  }

  // Adds the item and answers its ItemID.
  long AddItem(const Item& item) {
    return OnConnection([&](ado::Connection& connection) {
      ado::Recordset rs;
      rs.Open(ado::Statement("Items"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
      AddItemRow(rs, item);
      return CLng(rs.Fields("ItemID").Value());
    });
  }

  // Adds the items in one transaction: a statement each, but no connection or commit each,
  // which is what makes hundreds of items slow on PostgreSQL.
  void AddItems(const std::vector<Item>& items) {
    OnConnection([&](ado::Connection& connection) {
      connection.BeginTrans();
      ado::Recordset rs;
      rs.Open(ado::Statement("Items"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
      for (const Item& item : items) AddItemRow(rs, item);
      rs.Close();
      connection.CommitTrans();
      return 0;
    });
  }

  // What links for the account are signed over: its stored password hash ("" for no account).
  std::string StampOf(const std::string& key) const {
    return OnConnection([&](ado::Connection& connection) {
      ado::Recordset rs;
      rs.Open(ado::Statement("SELECT Password FROM Users WHERE OwnerKey = ").Text(key), connection);
      return rs.Eof() ? std::string() : CStrOrBlank(rs.Fields("Password").Value());
    });
  }

  // The one hash of `password` the accounts of PasswordHashing::kOncePerProcess share.
  static std::string SharedHash(const std::string& password) {
    static std::mutex mutex;
    static std::map<std::string, std::string> hashes;
    std::lock_guard lock(mutex);
    auto found = hashes.find(password);
    if (found == hashes.end()) found = hashes.emplace(password, HashPassword(password)).first;
    return found->second;
  }

  const std::string& connection_string() const { return connection_string_; }

 private:
  // Runs `write` on the caller's connection, or on one opened for it alone.
  template <class Write>
  std::invoke_result_t<Write&, ado::Connection&> OnConnection(Write write) const {
    if (connection_ != nullptr) return write(*connection_);
    ado::Connection connection;
    connection.Open(connection_string_);
    return write(connection);
  }

  std::string StoredPassword(const Account& account) const {
    if (account.stored_password) return *account.stored_password;
    return hashing_ == PasswordHashing::kOncePerProcess ? SharedHash(account.password)
                                                        : HashPassword(account.password);
  }

  // Writes the item as a new row of the open Items recordset. A text left at nullopt and a
  // flag left false are not assigned at all: the row keeps the table's default (NULL, and 0
  // for the flags, which is also what false is stored as), and the tests of AddNew itself can
  // still see what an unassigned field becomes.
  static void AddItemRow(ado::Recordset& rs, const Item& item) {
    rs.AddNew();
    rs.Fields("OwnerKey").SetValue(item.owner);
    rs.Fields("DateStamp").SetValue(item.date);
    rs.Fields("TimeStamp").SetValue(item.hour);
    if (item.time_text) rs.Fields("TimeText").SetValue(*item.time_text);
    rs.Fields("Heading").SetValue(item.heading);
    if (item.description) rs.Fields("Description").SetValue(*item.description);
    if (item.urgent) rs.Fields("Urgent").SetValue(true);
    if (item.complete) rs.Fields("Complete").SetValue(true);
    rs.Update();
  }

  std::string connection_string_;
  ado::Connection* connection_ = nullptr;
  PasswordHashing hashing_ = PasswordHashing::kEachAccount;
};

}  // namespace tidewell::testing

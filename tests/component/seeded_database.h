#pragma once

#include <map>
#include <mutex>
#include <string>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/schema.h"
#include "data/statement.h"
#include "page/link_keys.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"

namespace tidewell::testing {

// What links for the account are signed over: its stored password hash ("" for no account).
inline std::string StoredStamp(const std::string& connection_string, const std::string& key) {
  ado::Connection connection;
  connection.Open(connection_string);
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT Password FROM Users WHERE OwnerKey = ").Text(key), connection);
  return rs.Eof() ? "" : CStrOrBlank(rs.Fields("Password").Value());
}

// What a test sees of a stored password: the password it is a hash of, among those the tests
// type, or "not a hash: " and the stored text, or "hash of another password". Each answer is
// kept, as a verification costs tens of milliseconds.
inline std::string TypedPassword(const std::string& stored) {
  static std::mutex mutex;
  static std::map<std::string, std::string> known;
  std::lock_guard lock(mutex);
  if (auto found = known.find(stored); found != known.end()) return found->second;
  std::string answer = "hash of another password";
  if (!IsPasswordHash(stored)) {
    answer = "not a hash: " + stored;
  } else {
    for (const char* typed : {"pw", "secret", "new", "changed", "dpw", "kept", "n&w", "tide", "y",
                              "password", "wrong", ""}) {
      if (VerifyPassword(stored, typed)) {
        answer = typed;
        break;
      }
    }
  }
  known.emplace(stored, answer);
  return answer;
}

// An account to put in a SeededDatabase; its password is stored hashed, as the calendar
// stores it.
struct Account {
  std::string key = "";  // "" for a freshly generated one
  std::string name;
  std::string password;
  long group = 0;
  bool administrator = false;
  long default_view = 0;
  std::string options = "0+8+0+0+0";
  std::string initials = "XX";
};

// A SQLite calendar database of its own in a temporary folder, with the tables made by
// CreateSchema, filled by the test with the groups and accounts it needs.
class SeededDatabase {
 public:
  SeededDatabase()
      : connection_string_("Provider=SQLite;Data Source=" + folder_.path() + "/calendar.db") {
    CreateSchema(connection_string_);
  }

  const std::string& connection_string() const { return connection_string_; }
  const std::string& folder() const { return folder_.path(); }

  long AddGroup(const std::string& name) {
    ado::Connection connection;
    connection.Open(connection_string_);
    connection.Execute(
        ado::Statement("INSERT INTO Groups (GroupName) VALUES (").Text(name).Add(")"));
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT GroupID FROM Groups WHERE GroupName = ").Text(name), connection);
    return CLng(rs.Fields("GroupID").Value());
  }

  // Adds the account under its key (a freshly generated one unless given) and answers the key.
  std::string AddUser(const Account& account) {
    std::string key = account.key.empty() ? GenerateOwnerKey() : account.key;
    ado::Connection connection;
    connection.Open(connection_string_);
    ado::Recordset rs;
    rs.Open(ado::Statement("Users"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
    rs.AddNew();
    rs.Fields("OwnerKey").SetValue(key);
    rs.Fields("Username").SetValue(account.name);
    rs.Fields("Password").SetValue(HashPassword(account.password));
    rs.Fields("Initials").SetValue(account.initials);
    rs.Fields("DefaultView").SetValue(account.default_view);
    rs.Fields("Options").SetValue(account.options);
    rs.Fields("GroupID").SetValue(account.group);
    rs.Fields("Administrator").SetValue(account.administrator);
    rs.Update();
    return key;
  }

  // What links for the account are signed over: its stored password hash ("" for no account).
  std::string StampOf(const std::string& key) const {
    return StoredStamp(connection_string_, key);
  }

  // Runs a statement made of fixed text, for a test that changes the data it seeded.
  void Execute(const char* statement) {
    ado::Connection connection;
    connection.Open(connection_string_);
    connection.Execute(ado::Statement(statement));
  }

 private:
  TempFolder folder_;
  std::string connection_string_;
};

}  // namespace tidewell::testing

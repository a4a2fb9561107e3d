#pragma once

#include <string>
#include <vector>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "page/link_keys.h"
#include "runtime/conversions.h"
#include "runtime/variant.h"
#include "tests/component/seeded_database.h"

namespace tidewell::testing {

// An item to put in a calendar database.
struct Item {
  std::string owner = "";  // "" for the signed-in user of the fixture
  Date date = {};
  long hour = 9;
  std::string time_text = "09:00";
  std::string heading = "Item";
  std::string description = "";
  bool urgent = false;
  bool complete = false;
};

// Groups, users and items written into any calendar database that has the tables (SQLite or
// PostgreSQL), through the data layer's own recordsets.
class CalendarData {
 public:
  explicit CalendarData(std::string connection_string)
      : connection_string_(std::move(connection_string)) {}

  long AddGroup(const std::string& name) {
    ado::Connection connection;
    connection.Open(connection_string_);
    ado::Recordset rs;
    rs.Open(ado::Statement("Groups"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
    rs.AddNew();
    rs.Fields("GroupName").SetValue(name);
    rs.Update();
    return CLng(rs.Fields("GroupID").Value());
  }

  // Adds a user (under `key`, or a fresh key) and answers the key.
  std::string AddUser(const std::string& name, long group, const std::string& initials,
                      const std::string& options = "0+8+0+0+0", bool administrator = false,
                      std::string key = "") {
    if (key.empty()) key = GenerateOwnerKey();
    ado::Connection connection;
    connection.Open(connection_string_);
    ado::Recordset rs;
    rs.Open(ado::Statement("Users"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
    rs.AddNew();
    rs.Fields("OwnerKey").SetValue(key);
    rs.Fields("Username").SetValue(name);
    rs.Fields("Password").SetValue(HashOfPw());
    rs.Fields("Initials").SetValue(initials);
    rs.Fields("DefaultView").SetValue(0);
    rs.Fields("Options").SetValue(options);
    rs.Fields("GroupID").SetValue(group);
    rs.Fields("Administrator").SetValue(administrator);
    rs.Update();
    return key;
  }

  // What links for the account are signed over: its stored password hash ("" for no account).
  std::string StampOf(const std::string& key) const {
    return StoredStamp(connection_string_, key);
  }

  // Every account here has the password "pw", hashed once per process: a hash costs tens of
  // milliseconds, and the busy month has many accounts.
  static const std::string& HashOfPw() {
    static const std::string hash = HashPassword("pw");
    return hash;
  }

  // Adds the item and answers its ItemID.
  long AddItem(const Item& item) {
    ado::Connection connection;
    connection.Open(connection_string_);
    ado::Recordset rs;
    rs.Open(ado::Statement("Items"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
    AddItemRow(rs, item);
    return CLng(rs.Fields("ItemID").Value());
  }

  // Adds the items through one connection in one transaction: a statement each, but no
  // connection or commit each, which is what makes hundreds of items slow on PostgreSQL.
  void AddItems(const std::vector<Item>& items) {
    ado::Connection connection;
    connection.Open(connection_string_);
    connection.BeginTrans();
    ado::Recordset rs;
    rs.Open(ado::Statement("Items"), connection, ado::adOpenDynamic, ado::adLockOptimistic);
    for (const Item& item : items) AddItemRow(rs, item);
    rs.Close();
    connection.CommitTrans();
  }

  const std::string& connection_string() const { return connection_string_; }

 private:
  // Writes the item as a new row of the open Items recordset.
  static void AddItemRow(ado::Recordset& rs, const Item& item) {
    rs.AddNew();
    rs.Fields("OwnerKey").SetValue(item.owner);
    rs.Fields("DateStamp").SetValue(item.date);
    rs.Fields("TimeStamp").SetValue(item.hour);
    rs.Fields("TimeText").SetValue(item.time_text);
    rs.Fields("Heading").SetValue(item.heading);
    rs.Fields("Description").SetValue(item.description);
    rs.Fields("Urgent").SetValue(item.urgent);
    rs.Fields("Complete").SetValue(item.complete);
    rs.Update();
  }

  std::string connection_string_;
};

}  // namespace tidewell::testing

#pragma once

// A small calendar database on each engine, and the statements the calendar runs on it in
// the engine's dialect, for the conformance suites that run against both providers.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/recordset.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

using ado::DatabaseError;
using ado::Recordset;
using ado::Statement;
namespace error_numbers = ado::error_numbers;

inline const Date kNov3 = DateSerial(2026, 11, 3);
inline const Date kNov4 = DateSerial(2026, 11, 4);

// One group, "Harbour", with the administrator alice (key k1, initials AC) and bob (k2, BO).
template <class Engine>
class CalendarDatabase : public ::testing::Test {
 protected:
  static constexpr ASPDataServer kDialect = Engine::kDialect;

  void SetUp() override {
    std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    connection_.Open(engine_.connection_string);
    group_ = seeder_.AddGroup("Harbour");
    // Stored as typed: the login statement below compares the Password column itself.
    seeder_.AddUser({.key = "k1",
                     .name = "alice",
                     .stored_password = "secret",
                     .group = group_,
                     .administrator = true,
                     .initials = "AC"});
    seeder_.AddUser(
        {.key = "k2", .name = "bob", .stored_password = "pw", .group = group_, .initials = "BO"});
  }

  // An item at a full hour; its flags stay unassigned unless urgent.
  long AddItem(const char* owner, Date day, long hour, const std::string& heading,
               bool urgent = false) {
    return seeder_.AddItem({.owner = owner,
                            .date = day,
                            .hour = hour,
                            .time_text = FormatTwoDigits(hour) + ":00",
                            .heading = heading,
                            .urgent = urgent});
  }

  // One column of every row a static read-only recordset returns, as text.
  std::vector<std::string> Column(const Statement& statement, const char* name) {
    Recordset rs;
    rs.Open(statement, connection_, ado::adOpenStatic, ado::adLockReadOnly);
    std::vector<std::string> values;
    for (; !rs.Eof(); rs.MoveNext()) values.push_back(CStr(rs.Fields(name).Value()));
    if (rs.State() == ado::adStateOpen) rs.Close();
    return values;
  }

  Statement LoginStatement(const char* name, const char* password) {
    return Statement("SELECT OwnerKey, DefaultView, Initials, Options FROM Users WHERE Username = ")
        .Text(name)
        .Add(" AND Password = ")
        .Text(password);
  }

  // The day list of one user, as the month view asks for it.
  Statement DayList(const char* top, Date day, const char* owner, const char* order) {
    return Statement(top)
        .Add(
            " ItemID, Heading, TimeStamp, TimeText, Urgent, Initials, Complete FROM Items "
            "INNER JOIN Users ON Items.OwnerKey = Users.OwnerKey WHERE DateStamp = ")
        .DateValue(day, kDialect)
        .Add(" AND Items.OwnerKey = ")
        .Text(owner)
        .Add(" ORDER BY ")
        .Add(order);
  }

  Statement Search(const std::string& pattern, Date from, Date to) {
    return Statement(
               "SELECT Items.*, Users.UserName, Users.GroupID FROM Items INNER JOIN Users "
               "ON Items.OwnerKey = Users.OwnerKey WHERE Items.Heading LIKE ")
        .Text(pattern)
        .Add(" AND Items.DateStamp >= ")
        .DateValue(from, kDialect)
        .Add(" AND Items.DateStamp <= ")
        .DateValue(to, kDialect)
        .Add(
            " ORDER BY Users.GroupID, Users.UserName, Items.DateStamp, Items.TimeStamp, "
            "Items.Urgent, Items.Heading");
  }

  Engine engine_;
  ado::Connection connection_;
  Seeder seeder_{connection_};
  long group_ = 0;
};

}  // namespace tidewell::testing

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/component/site_visit.h"

namespace tidewell::testing {

// A site with two groups and three accounts, for the administrator options screen and the
// account updates:
//   group 1 "Crew": admin (administrator, AD, WeekView, Options "1+8+0+1+0", password "pw")
//                   bob   (BB, DayView, Options "4+9+1+0+1", password "secret")
//   group 2 "Deck": carol (CA, MonthView, Options "0+8+0+0+0", password "pw")
// Bob and carol each have one item.
class AccountSite : public SiteTest {
 protected:
  void SetUp() override {
    SiteTest::SetUp();
    deck_ = database_.AddGroup("Deck");
    admin_ = database_.AddUser({.name = "admin",
                                .password = "pw",
                                .group = crew_,
                                .administrator = true,
                                .default_view = 1,
                                .options = "1+8+0+1+0",
                                .initials = "AD"});
    bob_ = database_.AddUser({.name = "bob",
                              .password = "secret",
                              .group = crew_,
                              .default_view = 2,
                              .options = "4+9+1+0+1",
                              .initials = "BB"});
    carol_ = database_.AddUser({.name = "carol",
                                .password = "pw",
                                .group = deck_,
                                .options = "0+8+0+0+0",
                                .initials = "CA"});
    AddItem(bob_, "Harbour");
    AddItem(carol_, "Anchor");
  }

  // The administrator options screen as a link of the administrator's pages opens it, with
  // `shown` in the user key field and `acting` in the administrator key field (both signed).
  SiteVisit Screen8(const std::string& shown, const std::string& acting) {
    SiteVisit visit = Visit();
    visit.Link("~8/0~11/21/2026~14~0~" + InLink(shown) + "~~" + InLink(acting) + "~");
    return visit;
  }
  SiteVisit AsAdministrator() { return Screen8(admin_, admin_); }

  // The values a browser posts with the administrator form, ready to be changed.
  using Fields = std::vector<std::pair<std::string, std::string>>;
  static Fields AccountForm(std::string name, std::string initials, std::string group_id) {
    return {{"username", std::move(name)},
            {"initials", std::move(initials)},
            {"groupid", std::move(group_id)},
            {"newgroup", ""},
            {"loadgroupdata", "1"},
            {"userdefaultstarthour", "8"},
            {"userhighlighttodaysdate", "0"},
            {"userhighlighttodaystime", "0"},
            {"usershow12hourday", "0"},
            {"defaultview", "0"},
            {"password", "pw"},
            {"confirm", "pw"}};
  }
  static void Set(Fields& fields, const std::string& name, std::string value) {
    for (auto& [field, current] : fields) {
      if (field == name) {
        current = std::move(value);
        return;
      }
    }
    fields.emplace_back(name, std::move(value));
  }
  static SiteVisit& Post(SiteVisit& visit, const Fields& fields) {
    for (const auto& [name, value] : fields) visit.Post(name, value);
    return visit;
  }

  // --- The tables, row by row ---

  std::vector<std::string> Rows(const char* statement, std::vector<const char*> columns) {
    ado::Connection connection;
    connection.Open(database_.connection_string());
    ado::Recordset rs;
    rs.Open(ado::Statement(statement), connection);
    std::vector<std::string> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
      std::string row;
      for (const char* column : columns) {
        const Variant& value = rs.Fields(column).Value();
        std::string text = value.IsNull() ? std::string("NULL") : CStr(value);
        if (std::string_view(column) == "Password") text = TypedPassword(text);
        row += (row.empty() ? "" : "|") + text;
      }
      rows.push_back(row);
    }
    return rows;
  }
  std::vector<std::string> Users() {
    return Rows("SELECT * FROM Users ORDER BY OwnerKey",
                {"OwnerKey", "Username", "Password", "Initials", "DefaultView", "Options",
                 "Administrator", "GroupID"});
  }
  std::vector<std::string> Groups() {
    return Rows("SELECT * FROM Groups ORDER BY GroupID", {"GroupID", "GroupName"});
  }
  std::vector<std::string> Items() {
    return Rows("SELECT * FROM Items ORDER BY ItemID", {"ItemID", "OwnerKey", "Heading"});
  }
  struct Tables {
    std::vector<std::string> users, groups, items;
    bool operator==(const Tables&) const = default;
  };
  Tables AllTables() { return {Users(), Groups(), Items()}; }

  // One account's row: "name|password|initials|view|options|administrator|group".
  std::string Account(const std::string& key) {
    for (const std::string& row : Users()) {
      if (row.rfind(key + "|", 0) == 0) return row.substr(key.size() + 1);
    }
    return "";
  }

  std::string KeyOf(const std::string& name) {
    for (const std::string& row : Users()) {
      const size_t bar = row.find('|');
      if (row.substr(bar + 1, row.find('|', bar + 1) - bar - 1) == name) return row.substr(0, bar);
    }
    return "";
  }

  // An item of `owner` on 21 November 2026 at 9:00, without a description.
  void AddItem(const std::string& owner, const std::string& heading) {
    database_.AddItem({.owner = owner,
                       .date = DateSerial(2026, 11, 21),
                       .heading = heading,
                       .description = std::nullopt});
  }

  long deck_ = 0;
  std::string admin_, bob_, carol_;
};

// The administrator options screen's own markup: from its validator script to its end
// comment; "" when the page does not hold the screen.
inline std::string AdminOptions(const std::string& html) {
  const size_t start_comment = html.find("<!-- AdminOptionsView  Start -->");
  const size_t end_comment = html.find("<!-- AdminOptionsView End -->");
  if (start_comment == std::string::npos || end_comment == std::string::npos) return "";
  const size_t start = html.rfind("\r\n<script language=javascript>", start_comment);
  if (start == std::string::npos) return "";
  const std::string end = "<!-- AdminOptionsView End -->";
  return html.substr(start, end_comment + end.size() - start);
}

// The outer table's height as the screen settled it.
inline std::string FrameHeight(const std::string& html) {
  const std::string before = "<table align=center valign=top width=620 height=";
  size_t at = html.find(before);
  if (at == std::string::npos) return "";
  at += before.size();
  return html.substr(at, html.find(' ', at) - at);
}

inline bool Contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

}  // namespace tidewell::testing

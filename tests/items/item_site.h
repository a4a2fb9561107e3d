#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/component/site_visit.h"
#include "tests/support/cast.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

// An item as a test reads it back from the Items table.
struct StoredItem {
  long id = 0;
  std::string owner = "";
  Date date = {};
  long hour = 0;
  std::string time_text = "";
  std::string heading = "";
  std::string description = "";
  bool urgent = false;
  bool complete = false;
};

// Requests about items on Saturday 21 November 2026, 2:05 PM (SiteTest's clock and signing):
// bob and carol of the group Crew, dave of Deck, and the administrator ann of Crew, each with
// a fixed key so that expected pages can name it.
class ItemSiteTest : public SiteTest {
 protected:
  static constexpr const char* kBob = cast::kBob;
  static constexpr const char* kCarol = cast::kCarol;
  static constexpr const char* kDave = cast::kDave;
  static constexpr const char* kAnn = cast::kAnn;

  void SetUp() override {
    SiteTest::SetUp();
    deck_ = database_.AddGroup("Deck");
    cast::Add(database_, cast::AccountsIn(crew_, deck_));
    connection_.Open(database_.connection_string());
  }
  void TearDown() override {
    connection_.Close();
    SiteTest::TearDown();
  }

  // Writes an item straight into the table and answers its ItemID.
  long AddItem(const Item& item) { return database_.AddItem(item); }

  // Every item in the table, in the order they were made.
  std::vector<StoredItem> Items() {
    std::vector<StoredItem> items;
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT * FROM Items ORDER BY ItemID"), connection_);
    for (; !rs.Eof(); rs.MoveNext()) {
      auto text = [&rs](const char* name) {
        const Variant& v = rs.Fields(name).Value();
        return v.IsNull() ? std::string("(null)") : CStr(v);
      };
      items.push_back({.id = CLng(rs.Fields("ItemID").Value()),
                       .owner = text("OwnerKey"),
                       .date = CDate(rs.Fields("DateStamp").Value()),
                       .hour = CLng(rs.Fields("TimeStamp").Value()),
                       .time_text = text("TimeText"),
                       .heading = text("Heading"),
                       .description = text("Description"),
                       .urgent = CBool(rs.Fields("Urgent").Value()),
                       .complete = CBool(rs.Fields("Complete").Value())});
    }
    return items;
  }

  // The marks the goldens write for signed keys.
  std::vector<std::pair<std::string, std::string>> Keys() const {
    return {{"bob", Expected(kBob)}, {"ann", Expected(kAnn)}};
  }

  ado::Connection connection_;
  long deck_ = 0;
};

// The item form as a page shows it: its two scripts (each opened by a CR LF) up to its end
// comment.
inline std::string ItemForm(const std::string& html) {
  return Between(html, "\r\n<script language=javascript>\r\n<!--", "<!-- AddModifyView End -->");
}

}  // namespace tidewell::testing

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/component/site_visit.h"
#include "tests/support/golden.h"

namespace tidewell::testing {

// An item as the Items table holds it.
struct SearchItem {
  std::string owner = "";
  Date date = {};
  long hour = 0;
  std::string time_text = "";
  std::string heading = "";
  bool urgent = false;
  bool complete = false;
};

// Searches on Saturday 21 November 2026, 2:05 PM (SiteTest's clock and signing) by the
// administrator ann, bob (who sees his whole group) and carol of the group Crew, and dave of
// Deck, each with a fixed key so that expected pages can name it.
class SearchSiteTest : public SiteTest {
 protected:
  static constexpr const char* kAnn = "0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a0a";
  static constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";
  static constexpr const char* kCarol = "0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c";
  static constexpr const char* kDave = "0d0d0d0d0d0d0d0d0d0d0d0d0d0d0d0d";

  void SetUp() override {
    SiteTest::SetUp();
    deck_ = database_.AddGroup("Deck");
    database_.AddUser({.key = kAnn,
                       .name = "ann",
                       .password = "pw",
                       .group = crew_,
                       .administrator = true,
                       .initials = "AA"});
    database_.AddUser({.key = kBob,
                       .name = "bob",
                       .password = "pw",
                       .group = crew_,
                       .options = "1+8+0+0+0",
                       .initials = "BB"});
    database_.AddUser(
        {.key = kCarol, .name = "carol", .password = "pw", .group = crew_, .initials = "CC"});
    database_.AddUser(
        {.key = kDave, .name = "dave", .password = "pw", .group = deck_, .initials = "DD"});
    connection_.Open(database_.connection_string());
  }
  void TearDown() override {
    connection_.Close();
    SiteTest::TearDown();
  }

  // Writes an item straight into the table and answers its ItemID.
  long AddItem(const SearchItem& item) {
    ado::Recordset rs;
    rs.Open(ado::Statement("Items"), connection_, ado::adOpenDynamic, ado::adLockOptimistic);
    rs.AddNew();
    rs.Fields("OwnerKey").SetValue(item.owner);
    rs.Fields("DateStamp").SetValue(item.date);
    rs.Fields("TimeStamp").SetValue(item.hour);
    rs.Fields("TimeText").SetValue(item.time_text);
    rs.Fields("Heading").SetValue(item.heading);
    rs.Fields("Description").SetValue("");
    rs.Fields("Urgent").SetValue(item.urgent);
    rs.Fields("Complete").SetValue(item.complete);
    rs.Update();
    return CLng(rs.Fields("ItemID").Value());
  }

  // An item of `owner` on a November 2026 day at 9:00.
  long AddNovemberItem(const char* owner, int day, std::string heading) {
    return AddItem({.owner = owner,
                    .date = DateSerial(2026, 11, day),
                    .hour = 9,
                    .time_text = "09:00",
                    .heading = std::move(heading)});
  }

  // `key` on the search screen, with the link a search button gives.
  SiteVisit SearchScreen(const char* key) {
    SiteVisit visit = Visit();
    visit.Link("~15/0~11/21/2026~14~0~" + InLink(key) + "~~~");
    return visit;
  }

  // `key` posting the search form: `owner` as "ownerkey", the two dates and the text.
  SiteVisit Search(const char* key, std::string owner, std::string text,
                   std::string start = "11/1/2026", std::string end = "11/30/2026") {
    SiteVisit visit = SearchScreen(key);
    visit.Post("ownerkey", std::move(owner))
        .Post("startdate", std::move(start))
        .Post("enddate", std::move(end))
        .Post("search", std::move(text))
        .Post("submit", "Search")
        .Post("action", "u");
    return visit;
  }

  // The marks the goldens write for signed keys.
  std::vector<std::pair<std::string, std::string>> Keys() const {
    return {{"ann", Expected(kAnn)},
            {"bob", Expected(kBob)},
            {"carol", Expected(kCarol)},
            {"dave", Expected(kDave)}};
  }

  ado::Connection connection_;
  long deck_ = 0;
};

// The text from `start` up to and including `end`, or "" when the page lacks either.
inline std::string Between(const std::string& html, const std::string& start,
                           const std::string& end) {
  size_t from = html.find(start);
  if (from == std::string::npos) return "";
  size_t to = html.find(end, from);
  if (to == std::string::npos) return "";
  return html.substr(from, to + end.size() - from);
}

// The search screen as a page shows it: its two scripts (each opened by a CR LF) up to its end
// comment.
inline std::string SearchForm(const std::string& html) {
  return Between(html, "\r\n<script language=javascript>\r\n<!--", "<!-- SearchScreenView End -->");
}

// What the search screen shows below its form: the result table or the empty-result message,
// then the screen's closing tags.
inline std::string SearchResultsOf(const std::string& html) {
  return Between(html, "</form>", "<!-- SearchScreenView End -->");
}

// The heading rows of a result table, "Crew - bob", in page order.
inline std::vector<std::string> UserHeadings(const std::string& html) {
  static const std::string kOpen = "<td class=text colspan=4 align=left >";
  std::vector<std::string> headings;
  for (size_t at = html.find(kOpen); at != std::string::npos; at = html.find(kOpen, at)) {
    at += kOpen.size();
    headings.push_back(html.substr(at, html.find("</td>", at) - at));
  }
  return headings;
}

// The headings of the items found, in page order (the text inside each result link).
inline std::vector<std::string> FoundHeadings(const std::string& html) {
  std::vector<std::string> headings;
  for (size_t at = html.find("<a class=search href="); at != std::string::npos;
       at = html.find("<a class=search href=", at)) {
    at = html.find(" >", at) + 2;
    headings.push_back(html.substr(at, html.find("</a>", at) - at));
  }
  return headings;
}

}  // namespace tidewell::testing

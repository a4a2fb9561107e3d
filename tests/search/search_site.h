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
#include "tests/support/cast.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

// Searches on Saturday 21 November 2026, 2:05 PM (SiteTest's clock and signing) by the
// administrator ann, bob (who sees his whole group) and carol of the group Crew, and dave of
// Deck, each with a fixed key so that expected pages can name it.
class SearchSiteTest : public SiteTest {
 protected:
  static constexpr const char* kAnn = cast::kAnn;
  static constexpr const char* kBob = cast::kBob;
  static constexpr const char* kCarol = cast::kCarol;
  static constexpr const char* kDave = cast::kDave;

  void SetUp() override {
    SiteTest::SetUp();
    deck_ = database_.AddGroup("Deck");
    cast::Accounts people = cast::AccountsIn(crew_, deck_);
    people.bob.options = "1+8+0+0+0";  // bob sees his whole group
    cast::Add(database_, people);
  }

  // Writes an item straight into the table and answers its ItemID.
  long AddItem(const Item& item) { return database_.AddItem(item); }

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

  long deck_ = 0;
};

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

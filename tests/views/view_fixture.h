#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "data/connection.h"
#include "frame/header.h"
#include "page/page.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/component/site_visit.h"
#include "tests/support/cast.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"
#include "tests/support/seeder.h"
#include "views/item_list.h"

namespace tidewell::testing {

// A page drawn straight by a view or the list builder, against a SQLite database seeded by the
// test, on Saturday 21 November 2026, 2:05 PM (SiteTest's clock and link signing). Signed in
// is bob (initials BB) of the group Crew, which carol (CC) shares; dave (DD) is in the group
// Deck. Links are not hex-encoded, the page is "default.asp?", images are under "images/",
// the default start hour is 8 and the current hour 9.
class ViewTest : public SiteTest {
 protected:
  static constexpr const char* kBob = cast::kBob;
  static constexpr const char* kCarol = cast::kCarol;
  static constexpr const char* kDave = cast::kDave;

  void SetUp() override {
    SiteTest::SetUp();
    deck_ = data_.AddGroup("Deck");
    const cast::Accounts people = cast::AccountsIn(crew_, deck_);
    for (const Account& account : {people.bob, people.carol, people.dave}) data_.AddUser(account);

    page_.props.ImagePath = "images/";
    page_.props.HexQueryString = false;
    page_.props.DefaultStartHour = 8;
    page_.props.ConnectionString = database_.connection_string();
    page_.signing = signing_;
    page_.ScriptName = "default.asp?";
    page_.CurrentDate = DateSerial(2026, 11, 21);
    page_.CurrentHour = 9;
    page_.UserKey = kBob;
    page_.Stamps.Set(kBob, data_.StampOf(kBob));  // as the key check leaves it
    page_.UserGroupId = crew_;
    page_.User.Username = "bob";
    page_.User.Initials = "BB";
    page_.Connection = std::make_shared<ado::Connection>();
    page_.Connection->Open(database_.connection_string());
  }

  void TearDown() override {
    if (page_.Connection) page_.Connection->Close();
    SiteTest::TearDown();
  }

  long AddItem(Item item) {
    if (item.owner.empty()) item.owner = kBob;
    return data_.AddItem(item);
  }

  // The list of `mode` for `day` and `hour`, as a view asks for it.
  std::string List(long mode, Date day, long hour = 0) {
    std::string text = CStr(day);
    return BuildItemList(page_, mode, text, hour);
  }

  // The frame's opening (with its height placeholder) and then the view, as the page driver
  // draws them.
  std::string Draw(void (*view)(Page&)) {
    page_.PageBuffer.clear();
    AppendFrameOpening(page_);
    view(page_);
    return page_.PageBuffer;
  }

  // A link of the page as the views write it: "default.asp?WS=~f1~f2~f3~f4~bob's key~f6~~".
  std::string Href(const std::string& screen, const std::string& date, long hour,
                   const std::string& item = "0", const std::string& sort = "") const {
    return "default.asp?WS=~" + screen + "~" + date + "~" + std::to_string(hour) + "~" + item +
           "~" + Expected(kBob) + "~" + sort + "~~";
  }

  // The marks the goldens write for signed keys.
  std::vector<std::pair<std::string, std::string>> Keys() const {
    return {{"bob", Expected(kBob)}, {"carol", Expected(kCarol)}, {"dave", Expected(kDave)}};
  }

  Seeder data_{database_.connection_string(), PasswordHashing::kOncePerProcess};
  long deck_ = 0;
  Page page_;
};

// Every href of the page, in page order (the values are not quoted).
inline std::vector<std::string> Hrefs(const std::string& html) {
  std::vector<std::string> links;
  for (size_t at = html.find("href="); at != std::string::npos; at = html.find("href=", at + 5)) {
    size_t start = at + 5;
    links.push_back(html.substr(start, html.find_first_of(" >", start) - start));
  }
  return links;
}

// The outer table's height as the view settled it.
inline std::string FrameHeight(const std::string& html) {
  const std::string before = "<table align=center valign=top width=620 height=";
  size_t at = html.find(before);
  if (at == std::string::npos) return "";
  at += before.size();
  return html.substr(at, html.find(' ', at) - at);
}

}  // namespace tidewell::testing

// The user options screen (screen 7) through Show against a seeded database: its markup with
// and without the users' own display options, the show-all row as a select or as a word, and
// the form's post stored by the account processing in its user form.

#include "accounts/user_options_screen.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/accounts/account_site.h"
#include "tests/support/golden.h"
#include "tests/support/page_text.h"

namespace tidewell {
namespace {

using testing::AccountSite;
using testing::Contains;
using testing::Count;
using testing::FrameHeight;
using testing::MatchesGolden;
using testing::SiteVisit;

// The screen's own markup: from its validator script to its end comment; "" when the page does
// not hold the screen.
std::string UserOptions(const std::string& html) {
  const size_t start_comment = html.find("<!-- UserOptionsView  Start -->");
  const std::string end = "<!-- UserOptionsView End -->";
  const size_t end_comment = html.find(end);
  if (start_comment == std::string::npos || end_comment == std::string::npos) return "";
  const size_t start = html.rfind("\r\n<script language=javascript>", start_comment);
  if (start == std::string::npos) return "";
  return html.substr(start, end_comment + end.size() - start);
}

class UserOptionsScreen : public AccountSite {
 protected:
  // Screen 7 as the user's own pages link to it, returning to `return_view`.
  SiteVisit Screen7(const std::string& user, long return_view, bool own_defaults,
                    const std::string& admin = "") {
    SiteVisit visit = Visit();
    visit.Link("~7/" + std::to_string(return_view) + "~11/21/2026~14~0~" + InLink(user) + "~~" +
               (admin.empty() ? "" : InLink(admin)) + "~");
    visit.Configure([own_defaults](ASPTidewell& component) {
      component.SetAllowUserOwnDefaults(own_defaults);
    });
    return visit;
  }

  void SetOptions(const std::string& key, const std::string& options) {
    const std::string statement =
        "UPDATE Users SET Options = '" + options + "' WHERE OwnerKey = '" + key + "'";
    database_.Execute(statement.c_str());
  }

  // The field values a browser sends back from bob's form as it was drawn.
  static Fields BobsFormAsDrawn(bool own_defaults) {
    Fields form = {{"loadgroupdata", "1"}};
    if (own_defaults) {
      form.insert(form.end(), {{"userdefaultstarthour", "9"},
                               {"userhighlighttodaysdate", "1"},
                               {"userhighlighttodaystime", "0"},
                               {"usershow12hourday", "1"}});
    }
    form.insert(form.end(), {{"defaultview", "2"},
                             {"password", "secret"},
                             {"confirm", "secret"},
                             {"submit", "Update"},
                             {"action", "u"}});
    return form;
  }
};

TEST_F(UserOptionsScreen, WithTheUsersOwnDefaults) {
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  EXPECT_TRUE(MatchesGolden(UserOptions(visit.Show()), "user_options_own_defaults.html",
                            {{"bob", Expected(bob_)}, {"standin", StandInOf(bob_)}}));
}

TEST_F(UserOptionsScreen, AnAdministratorWithoutTheUsersOwnDefaults) {
  SiteVisit visit = Screen7(admin_, 1, /*own_defaults=*/false, admin_);
  EXPECT_TRUE(MatchesGolden(UserOptions(visit.Show()),
                            "user_options_administrator_without_own_defaults.html",
                            {{"admin", Expected(admin_)}, {"standin", StandInOf(admin_)}}));
}

TEST_F(UserOptionsScreen, ALockedShowAllSettingIsAWord) {
  SiteVisit visit = Screen7(carol_, 0, /*own_defaults=*/false);
  EXPECT_TRUE(MatchesGolden(UserOptions(visit.Show()), "user_options_locked_show_all.html",
                            {{"carol", Expected(carol_)}, {"standin", StandInOf(carol_)}}));
}

// Without the users' own defaults the only inputs a user can change are the default view and
// the two password fields.
TEST_F(UserOptionsScreen, WithoutOwnDefaultsOnlyTheViewAndPasswordsAreEditable) {
  SiteVisit visit = Screen7(carol_, 0, /*own_defaults=*/false);
  const std::string screen = UserOptions(visit.Show());
  ASSERT_FALSE(screen.empty());
  EXPECT_EQ(Count(screen, "<select"), 1u);
  EXPECT_TRUE(Contains(screen, "<select class=text name=defaultview >"));
  EXPECT_EQ(Count(screen, "<input"), 4u);
  EXPECT_TRUE(Contains(screen, "type=password name=password "));
  EXPECT_TRUE(Contains(screen, "type=password name=confirm "));
  EXPECT_TRUE(Contains(screen, "type=submit name=submit value=Update "));
  EXPECT_TRUE(Contains(screen, "type=hidden name=action value=u "));
  for (const char* name : {"userdefaultstarthour", "userhighlighttodaysdate",
                           "userhighlighttodaystime", "usershow12hourday", "loadgroupdata"}) {
    EXPECT_FALSE(Contains(screen, name)) << name;
  }
}

TEST_F(UserOptionsScreen, ShowAllLockedOffByTheAdministratorShowsFalseWithoutASelect) {
  SetOptions(bob_, "0+9+1+0+1");
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  const std::string screen = UserOptions(visit.Show());
  EXPECT_TRUE(Contains(screen, "<td class=text>False</td></tr></table><br>"));
  EXPECT_FALSE(Contains(screen, "name=loadgroupdata"));
}

TEST_F(UserOptionsScreen, ShowAllFlagsOneThreeAndFourShowTheSelect) {
  struct Case {
    const char* options;
    const char* selected;  // the option marked
  };
  for (const Case& c : {Case{"1+9+1+0+1", "<option class=text value=1 SELECTED  >True</option>"},
                        Case{"3+9+1+0+1", "<option class=text value=0 SELECTED  >False</option>"},
                        Case{"4+9+1+0+1", "<option class=text value=1 SELECTED  >True</option>"}}) {
    SCOPED_TRACE(c.options);
    SetOptions(bob_, c.options);
    SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/false);
    const std::string screen = UserOptions(visit.Show());
    EXPECT_TRUE(Contains(screen, "<td class=text><select class=text name=loadgroupdata >"));
    const size_t start = screen.find("name=loadgroupdata");
    ASSERT_NE(start, std::string::npos);
    const std::string select = screen.substr(start, screen.find("</select>", start) - start);
    EXPECT_TRUE(Contains(select, c.selected));
    EXPECT_EQ(Count(select, "SELECTED"), 1u);
  }
}

TEST_F(UserOptionsScreen, TheStartHourSelectHasTwentyFourHours) {
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  const std::string screen = UserOptions(visit.Show());
  const size_t start = screen.find("<select class=text name=userdefaultstarthour >");
  ASSERT_NE(start, std::string::npos);
  const std::string select = screen.substr(start, screen.find("</select>", start) - start);
  EXPECT_EQ(Count(select, "<option "), 24u);
  for (int hour = 0; hour < 24; ++hour) {
    char text[8];
    std::snprintf(text, sizeof text, "%02d:00", hour);
    EXPECT_TRUE(Contains(select, std::string(" >") + text + "</option>")) << text;
  }
  EXPECT_TRUE(Contains(select, "<option class=text value=0 >00:00</option>"));
  EXPECT_TRUE(Contains(select, "<option class=text value=23 >23:00</option>"));
}

TEST_F(UserOptionsScreen, UpdateWithoutTypingKeepsThePassword) {
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  const std::string screen = UserOptions(visit.Show());
  const std::string stand_in = StandInOf(bob_);
  EXPECT_TRUE(Contains(screen, "name=password value=\"" + stand_in + "\" size=18 >"));
  EXPECT_TRUE(Contains(screen, "name=confirm value=\"" + stand_in + "\" size=18 >"));
  EXPECT_FALSE(Contains(screen, "secret"));

  // The stand-in sent back keeps the very hash that was stored.
  const std::string stored = database_.StampOf(bob_);
  Fields form = BobsFormAsDrawn(true);
  for (auto& [name, value] : form) {
    if (name == "password" || name == "confirm") value = stand_in;
  }
  SiteVisit update = Screen7(bob_, 2, /*own_defaults=*/true);
  Post(update, form);
  update.Show();
  EXPECT_FALSE(update.page().Error.Raised());
  EXPECT_EQ(database_.StampOf(bob_), stored);
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4+9+1+0+1|False|1");
}

TEST_F(UserOptionsScreen, ATypedPasswordIsStoredHashedAndEndsTheLinksSignedBefore) {
  const std::string old_link = InLink(bob_);
  Fields form = BobsFormAsDrawn(true);
  for (auto& [name, value] : form) {
    if (name == "password" || name == "confirm") value = "changed";
  }
  SiteVisit update = Screen7(bob_, 2, /*own_defaults=*/true);
  Post(update, form);
  const std::string page = update.Show();
  EXPECT_EQ(Account(bob_), "bob|changed|BB|2|4+9+1+0+1|False|1");
  // The page that answers the change links with the new signature: the user stays signed in.
  EXPECT_TRUE(Contains(page, Expected(bob_))) << page;
  // A link signed before the change opens nothing.
  SiteVisit after = Visit();
  after.Link("~0~11/21/2026~14~0~" + old_link + "~~~");
  after.Show();
  EXPECT_EQ(after.page().UserKey, "");
  EXPECT_EQ(after.page().Screen, screens::kLogin);
}

// --- The post, stored by the account processing in its user form ---

TEST_F(UserOptionsScreen, PostingShowAllOffStoresThree) {
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  Fields form = BobsFormAsDrawn(true);
  Set(form, "loadgroupdata", "0");
  Set(form, "userdefaultstarthour", "7");
  Set(form, "defaultview", "3");
  Set(form, "password", "new");
  Set(form, "confirm", "new");
  Post(visit, form);
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|new|BB|3|3+7+1+0+1|False|1");
  // The next screen is the view the user had chosen before this post.
  EXPECT_EQ(visit.page().Screen, screens::kDayView);
}

TEST_F(UserOptionsScreen, PostingShowAllOnStoresFour) {
  SetOptions(bob_, "3+9+1+0+1");
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/true);
  Post(visit, BobsFormAsDrawn(true));
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4+9+1+0+1|False|1");
}

TEST_F(UserOptionsScreen, ALockedUserPostsNoFlagAndKeepsTheStoredOne) {
  SiteVisit visit = Screen7(carol_, 0, /*own_defaults=*/true);
  Post(visit, {{"userdefaultstarthour", "6"},
               {"userhighlighttodaysdate", "1"},
               {"userhighlighttodaystime", "1"},
               {"usershow12hourday", "0"},
               {"defaultview", "1"},
               {"password", "pw"},
               {"confirm", "pw"},
               {"submit", "Update"},
               {"action", "u"}});
  visit.Show();
  EXPECT_EQ(Account(carol_), "carol|pw|CA|1|0+6+1+1+0|False|2");
}

TEST_F(UserOptionsScreen, WithoutOwnDefaultsAnUpdateLeavesTheFlagAlone) {
  SiteVisit visit = Screen7(bob_, 2, /*own_defaults=*/false);
  Post(visit, BobsFormAsDrawn(false));
  visit.Show();
  EXPECT_EQ(Account(bob_), "bob|secret|BB|2|4|False|1");
}

TEST_F(UserOptionsScreen, HeightFollowsTheBrowser) {
  EXPECT_EQ(FrameHeight(Screen7(bob_, 2, false).Show()), "545");
  EXPECT_EQ(
      FrameHeight(Screen7(bob_, 2, false).Agent("Mozilla/4.78 [en] (Nav; Windows NT 5.0)").Show()),
      "554");
  EXPECT_EQ(
      FrameHeight(
          Screen7(bob_, 2, false).Agent("Opera/9.80 (Windows NT 6.1; U; en) Presto/2.2.15").Show()),
      "555");
}

TEST_F(UserOptionsScreen, UserTextIsEscaped) {
  const std::string statement =
      "UPDATE Users SET Username = 'b<o>b', Password = 'a\"b' WHERE OwnerKey = '" + bob_ + "'";
  database_.Execute(statement.c_str());
  const std::string screen = UserOptions(Screen7(bob_, 2, false).Show());
  EXPECT_TRUE(Contains(screen, "&nbsp;<b>b&lt;o&gt;b Options.</b>"));
  // The stored password never reaches the page, escaped or not.
  EXPECT_FALSE(Contains(screen, "a&quot;b"));
  EXPECT_FALSE(Contains(screen, "a\"b"));
  EXPECT_FALSE(Contains(screen, "b<o>b"));
}

}  // namespace
}  // namespace tidewell

namespace tidewell {
namespace {

using testing::FormAction;

constexpr const char* kFeedStart = "https://cal.example.org/feed/";

// Bob's stored feed token, "" when he has none yet.
std::string StoredFeedToken(const std::string& connection_string, const std::string& key) {
  ado::Connection connection;
  connection.Open(connection_string);
  ado::Recordset rs;
  rs.Open(ado::Statement("SELECT Token FROM TidewellFeedTokens WHERE OwnerKey = ").Text(key),
          connection);
  return rs.Eof() ? "" : CStrOrBlank(rs.Fields("Token").Value());
}

class UserOptionsFeedRow : public UserOptionsScreen {
 protected:
  // Screen 7 of `user` as a host that serves feeds draws it.
  std::string ShowWithFeeds(const std::string& user, const std::string& renew = "") {
    SiteVisit visit = Screen7(user, 2, /*own_defaults=*/true);
    visit.Configure([](ASPTidewell& component) {  // in place of Screen7's own
      component.SetAllowUserOwnDefaults(true);
      component.SetFeedAddressStart(kFeedStart);
    });
    if (!renew.empty()) visit.Post("feedaction", renew);
    return visit.Show();
  }
  std::string TokenOf(const std::string& key) {
    return StoredFeedToken(database_.connection_string(), key);
  }
};

// With feeds on, the screen is the one without them plus exactly one row below the form (and
// a frame that much taller); the address holds the token made for him on this first visit.
TEST_F(UserOptionsFeedRow, FeedsOnAddOneRowBelowTheFormAndNothingElse) {
  const std::string off_page = Screen7(bob_, 2, /*own_defaults=*/true).Show();
  EXPECT_EQ(TokenOf(bob_), "");
  const std::string on_page = ShowWithFeeds(bob_);
  const std::string token = TokenOf(bob_);
  ASSERT_EQ(token.size(), 32u);
  const std::string on = UserOptions(on_page);
  const std::string off = UserOptions(off_page);
  const size_t row_start = on.find("<br><table cellpadding=1 cellspacing=1 border=0 width=100%>"
                                   "<tr bgcolor=#DEE7F7><td width=200 class=text><b>Calendar "
                                   "Feed:</b>");
  ASSERT_NE(row_start, std::string::npos) << on;
  EXPECT_EQ(row_start, on.find("</form>") + 7);
  const size_t row_end = on.find("</table>", row_start) + 8;
  const std::string row = on.substr(row_start, row_end - row_start);
  EXPECT_EQ(on.substr(0, row_start) + on.substr(row_end), off);
  const std::string action = FormAction(on);
  EXPECT_EQ(row,
            "<br><table cellpadding=1 cellspacing=1 border=0 width=100%><tr bgcolor=#DEE7F7>"
            "<td width=200 class=text><b>Calendar Feed:</b></td><td class=text><input "
            "class=text type=text name=feedaddress readonly size=60 value=\"" +
                std::string(kFeedStart) + token +
                ".ics\" >&nbsp;<form action=" + action +
                " method=post name=feedrenewal style=\"display:inline\" onsubmit=\"return "
                "confirm('Replace your feed address? Programs subscribed to the old one stop "
                "receiving your calendar.')\" ><input type=hidden name=feedaction value=renew "
                "><input class=text type=submit value=\"New Address\" ></form></td></tr>"
                "</table>");
  EXPECT_EQ(std::stol(FrameHeight(on_page)), std::stol(FrameHeight(off_page)) + 34);
  // A second visit shows the same address.
  EXPECT_NE(UserOptions(ShowWithFeeds(bob_)).find(token + ".ics"), std::string::npos);
}

TEST_F(UserOptionsFeedRow, TheButtonsPostReplacesTheTokenOnlyWhileFeedsAreOn) {
  ShowWithFeeds(bob_);
  const std::string first = TokenOf(bob_);
  SiteVisit off = Screen7(bob_, 2, true);
  off.Post("feedaction", "renew").Show();  // feeds off: nothing happens
  EXPECT_EQ(TokenOf(bob_), first);
  const std::string screen = UserOptions(ShowWithFeeds(bob_, "renew"));
  const std::string second = TokenOf(bob_);
  EXPECT_NE(second, first);
  EXPECT_NE(screen.find(second + ".ics"), std::string::npos);
  EXPECT_EQ(screen.find(first), std::string::npos);
}

}  // namespace
}  // namespace tidewell

// A user's own options and the administrator's groups through the real server, with the forms
// posted as a browser posts them: a user changes his default view and password and signs in
// again with them; an administrator adds, renames and deletes a group while the account lists
// follow.

#include <gtest/gtest.h>
#include <httplib.h>

#include <cctype>
#include <fstream>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "page/link_codec.h"
#include "tests/component/site_visit.h"
#include "tests/data/engines.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"

namespace tidewell {
namespace {

using testing::AccountForm;
using testing::FormAction;
using testing::FormEncoded;
using testing::OptionValue;
using testing::LinkTitled;
using testing::ServerProcess;
using Fields = std::vector<std::pair<std::string, std::string>>;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

bool Contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

// The part of a page between `from` and the next `to`.
std::string Section(const std::string& html, const std::string& from, const std::string& to) {
  const size_t start = html.find(from);
  if (start == std::string::npos) return "";
  return html.substr(start, html.find(to, start) - start);
}

// A site set up through its own forms: the first administrator "boss" in group "Bridge",
// and "deckhand" (password "pw", month view) in the same group.
class OptionsOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string config = folder_.path() + "/site.conf";
    std::ofstream(config) << "Visible = True\nImagePath = images/\nAllowUserOwnDefaults = True\n"
                          << "ConnectionString = Provider=SQLite;Data Source=" << folder_.path()
                          << "/calendar.db\nLinkSecret = options-test-secret-0123456789\n";
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server_->WaitForPort();
    ASSERT_NE(port_, 0) << server_->Log();

    std::string welcome = Get("");
    std::string first_form = PostForm(FormAction(welcome), {{"submit", "Next"}, {"welcome", "y"}});
    Fields first = AccountForm("boss", "BO", "", "Bridge", "Add New User");
    first.emplace_back("welcome", "y");
    boss_page_ = PostForm(FormAction(first_form), first);
    ASSERT_TRUE(Contains(boss_page_, "<!-- AdminOptionsView  Start -->")) << boss_page_;
    std::string new_form = PostForm(FormAction(boss_page_), {{"submit", "New User"}});
    const std::string bridge = OptionValue(new_form, "Bridge");
    ASSERT_FALSE(bridge.empty());
    std::string deckhand =
        PostForm(FormAction(new_form), AccountForm("deckhand", "DH", bridge, "", "Add New User"));
    ASSERT_TRUE(Contains(deckhand, "Bridge - deckhand")) << deckhand;
    // Back on his own account.
    boss_page_ =
        PostForm(FormAction(deckhand),
                 {{"submit", "Change User"}, {"ownerkey", OptionValue(deckhand, "Bridge - boss")}});
  }

  std::string Get(const std::string& link) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Get(("/" + link).c_str());
    EXPECT_TRUE(res && res->status == 200) << link;
    return res && res->status == 200 ? res->body : "";
  }
  std::string PostForm(const std::string& action, const Fields& fields) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Post(("/" + action).c_str(), FormEncoded(fields),
                           "application/x-www-form-urlencoded");
    EXPECT_TRUE(res && res->status == 200) << action;
    return res && res->status == 200 ? res->body : "";
  }

  // The login form of a fresh visit, filled in and sent.
  std::string LogIn(const std::string& name, const std::string& password) {
    std::string login = Get("");
    EXPECT_TRUE(Contains(login, "<!-- LoginScreen  Start -->")) << login;
    return PostForm(FormAction(login),
                    {{"username", name}, {"password", password}, {"login", "y"}});
  }

  testing::TempFolder folder_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
  std::string boss_page_;  // the administrator options screen on boss's own account
};

TEST_F(OptionsOverHttp, AUserChangesHisDefaultViewAndPasswordAndSignsInAgain) {
  std::string calendar = LogIn("deckhand", "pw");
  ASSERT_TRUE(Contains(calendar, "<!-- MonthView  Start -->")) << calendar;

  std::string options = Get(LinkTitled(calendar, "User Options"));
  ASSERT_TRUE(Contains(options, "<!-- UserOptionsView  Start -->")) << options;
  EXPECT_TRUE(Contains(options, "&nbsp;<b>deckhand Options.</b>"));
  // The password fields carry a stand-in, never the password or its hash.
  EXPECT_FALSE(Contains(options, "value=\"pw\""));
  EXPECT_FALSE(Contains(options, "$argon2id$"));
  EXPECT_TRUE(std::regex_search(
      options, std::regex("name=password value=\"[0-9a-f]{15}\" size=18 >")));

  // The week view after signing in, and a new password.
  std::string after = PostForm(FormAction(options), {{"loadgroupdata", "1"},
                                                     {"userdefaultstarthour", "8"},
                                                     {"userhighlighttodaysdate", "0"},
                                                     {"userhighlighttodaystime", "0"},
                                                     {"usershow12hourday", "0"},
                                                     {"defaultview", "1"},
                                                     {"password", "tide"},
                                                     {"confirm", "tide"},
                                                     {"submit", "Update"},
                                                     {"action", "u"}});
  EXPECT_TRUE(Contains(after, "<b>Group:</b> Bridge | <b>User:</b> deckhand")) << after;

  // The old password no longer signs in; the new one does, into the week view.
  std::string refused = LogIn("deckhand", "pw");
  EXPECT_TRUE(Contains(refused, "<!-- LoginScreen  Start -->"));
  EXPECT_FALSE(Contains(refused, "<b>User:</b> deckhand"));
  std::string signed_in = LogIn("deckhand", "tide");
  EXPECT_TRUE(Contains(signed_in, "<!-- WeekView  start -->")) << signed_in;
  EXPECT_TRUE(Contains(signed_in, "<b>Group:</b> Bridge | <b>User:</b> deckhand"));
}

TEST_F(OptionsOverHttp, AnAdministratorAddsRenamesAndDeletesAGroup) {
  std::string groups = PostForm(FormAction(boss_page_), {{"submit", "Manage"}});
  ASSERT_TRUE(Contains(groups, "<!-- GroupOptionsView  Start -->")) << groups;
  EXPECT_TRUE(Contains(groups, "No Groups Unassigned"));
  const std::string bridge = OptionValue(groups, "Bridge");
  ASSERT_FALSE(bridge.empty());

  // Added: offered for deletion, since nobody belongs to it yet.
  std::string added = PostForm(FormAction(groups), {{"newgroup", "Galley"},
                                                    {"groupid", bridge},
                                                    {"groupname", ""},
                                                    {"submit", "Add"},
                                                    {"groupaction", "u"}});
  const std::string unassigned = Section(added, "name=rgroupid", "</select>");
  EXPECT_TRUE(Contains(unassigned, " >Galley</option>")) << added;
  const std::string galley = OptionValue(unassigned, "Galley");
  ASSERT_FALSE(galley.empty());

  // A second "Galley" is refused with the message.
  std::string again = PostForm(
      FormAction(added),
      {{"newgroup", "Galley"}, {"groupid", bridge}, {"submit", "Add"}, {"groupaction", "u"}});
  EXPECT_TRUE(Contains(again,
                       "<font color=#b22222><b><br>There is already a group named: "
                       "Galley</b></font>"));

  // Renamed: both members follow.
  std::string renamed = PostForm(FormAction(again), {{"newgroup", ""},
                                                     {"groupid", bridge},
                                                     {"groupname", "Helm"},
                                                     {"submit", "Update"},
                                                     {"groupaction", "u"}});
  EXPECT_TRUE(Contains(renamed, "<b>Group:</b> Helm | <b>User:</b> boss"));
  std::string back = PostForm(FormAction(renamed),
                              {{"newgroup", "Ignored"}, {"submit", "Back"}, {"groupaction", "u"}});
  ASSERT_TRUE(Contains(back, "<!-- AdminOptionsView  Start -->")) << back;
  EXPECT_TRUE(Contains(back, " >Helm - boss</option>"));
  EXPECT_TRUE(Contains(back, " >Helm - deckhand</option>"));
  EXPECT_FALSE(Contains(back, "Bridge"));
  // "Back" made no group of the name left in the field.
  EXPECT_FALSE(Contains(back, " >Ignored</option>"));
  EXPECT_TRUE(Contains(Section(back, "name=groupid", "</select>"), " >Galley</option>"));

  // Deleted: gone from every list.
  groups = PostForm(FormAction(back), {{"submit", "Manage"}});
  std::string deleted = PostForm(FormAction(groups), {{"newgroup", ""},
                                                      {"groupid", bridge},
                                                      {"groupname", ""},
                                                      {"rgroupid", galley},
                                                      {"submit", "Delete"},
                                                      {"groupaction", "u"}});
  EXPECT_TRUE(Contains(deleted, "No Groups Unassigned")) << deleted;
  EXPECT_FALSE(Contains(deleted, "Galley"));
  back = PostForm(FormAction(deleted), {{"submit", "Back"}, {"groupaction", "u"}});
  EXPECT_FALSE(Contains(back, "Galley"));
  EXPECT_TRUE(Contains(back, " >Helm - deckhand</option>"));
}

TEST_F(OptionsOverHttp, AUserCannotReachTheGroupsOrChangeThem) {
  std::string calendar = LogIn("deckhand", "pw");
  std::string options = Get(LinkTitled(calendar, "User Options"));
  // His own link (hex-encoded, as the site writes links) with the screen changed to 10.
  const std::string action = FormAction(options);
  std::string payload = DecodeQueryString(action.substr(action.find("WS=") + 3), /*hex=*/true);
  ASSERT_EQ(payload.rfind("~7/0~", 0), 0u) << payload;
  payload.replace(0, 5, "~10/0~");
  const std::string link = "?WS=" + EncodeQueryString(payload, /*hex=*/true);
  std::string screen = Get(link);
  EXPECT_TRUE(Contains(screen, "<!-- LoginScreen  Start -->")) << screen;
  EXPECT_FALSE(Contains(screen, "GroupOptionsView"));
  for (const char* button : {"Add", "Update", "Delete"}) {
    SCOPED_TRACE(button);
    std::string answer = PostForm(link, {{"newgroup", "Galley"},
                                         {"groupid", "1"},
                                         {"groupname", "Mutiny"},
                                         {"rgroupid", "1"},
                                         {"submit", button},
                                         {"groupaction", "u"}});
    EXPECT_TRUE(Contains(answer, "<!-- LoginScreen  Start -->"));
  }
  // Nothing changed: boss's pages still show the one group by its name.
  std::string boss = LogIn("boss", "pw");
  EXPECT_TRUE(Contains(boss, "<b>Group:</b> Bridge | <b>User:</b> boss")) << boss;
  std::string groups =
      PostForm(FormAction(Get(LinkTitled(boss, "Administrator Options"))), {{"submit", "Manage"}});
  EXPECT_TRUE(Contains(groups, "No Groups Unassigned"));
  EXPECT_FALSE(Contains(groups, "Galley"));
  EXPECT_FALSE(Contains(groups, "Mutiny"));
}

}  // namespace
}  // namespace tidewell

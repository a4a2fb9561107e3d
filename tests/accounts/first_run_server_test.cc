// The first run of a site through the real server, with the forms posted as a browser posts
// them: an empty database, the welcome screen, the first administrator, his calendar; then a
// second account created, switched to, changed and deleted.

#include <gtest/gtest.h>
#include <httplib.h>

#include <cctype>
#include <fstream>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
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
using testing::LinkFields;
using testing::LinkTitled;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

bool Contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

class FirstRunOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    database_path_ = folder_.path() + "/calendar.db";
    std::string config = folder_.path() + "/site.conf";
    std::ofstream(config) << "Visible = True\nImagePath = images/\n"
                          << "ConnectionString = Provider=SQLite;Data Source=" << database_path_
                          << "\nLinkSecret = first-run-test-secret-0123456789\n";
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server_->WaitForPort();
  }

  std::string Get(const std::string& link) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Get(("/" + link).c_str());
    EXPECT_TRUE(res && res->status == 200) << link;
    return res && res->status == 200 ? res->body : "";
  }
  std::string PostForm(const std::string& action,
                       const std::vector<std::pair<std::string, std::string>>& fields) {
    httplib::Client client("127.0.0.1", port_);
    auto res = client.Post(("/" + action).c_str(), FormEncoded(fields),
                           "application/x-www-form-urlencoded");
    EXPECT_TRUE(res && res->status == 200) << action;
    return res && res->status == 200 ? res->body : "";
  }

  // The rows of Users as "name|initials|administrator|group name", by name.
  std::vector<std::string> Accounts() {
    ado::Connection connection;
    connection.Open("Provider=SQLite;Data Source=" + database_path_);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT Users.Username, Users.Initials, Users.Administrator, "
                           "Groups.GroupName FROM Users INNER JOIN Groups ON Users.GroupID = "
                           "Groups.GroupID ORDER BY Users.Username"),
            connection);
    std::vector<std::string> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
      rows.push_back(CStr(rs.Fields("Username").Value()) + "|" +
                     CStr(rs.Fields("Initials").Value()) + "|" +
                     (CBool(rs.Fields("Administrator").Value()) ? "admin" : "-") + "|" +
                     CStr(rs.Fields("GroupName").Value()));
    }
    return rows;
  }

  testing::TempFolder folder_;
  std::string database_path_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
};

TEST_F(FirstRunOverHttp, FromTheWelcomeScreenToASecondAccountAndBack) {
  ASSERT_NE(port_, 0) << server_->Log();

  // An empty database: the welcome screen, whose "Next" opens the first-administrator form.
  std::string welcome = Get("");
  ASSERT_TRUE(Contains(welcome, "<!-- WelcomeScreen  Start -->")) << welcome;
  std::string first_form = PostForm(FormAction(welcome), {{"submit", "Next"}, {"welcome", "y"}});
  ASSERT_TRUE(Contains(first_form, "<b>New Administrator/User Account.</b>")) << first_form;
  EXPECT_TRUE(Contains(first_form, "<input type=hidden name=welcome value=y />"));
  EXPECT_FALSE(Contains(first_form, "name=ownerkey"));

  // "Add New User": the first administrator, shown on his own account.
  auto first = AccountForm("boss", "BO", "", "Bridge", "Add New User");
  first.emplace_back("welcome", "y");
  std::string own = PostForm(FormAction(first_form), first);
  EXPECT_EQ(Accounts(), std::vector<std::string>{"boss|BO|admin|Bridge"});
  ASSERT_TRUE(Contains(own, "<!-- AdminOptionsView  Start -->")) << own;
  EXPECT_TRUE(Contains(own,
                       "name=username value=\"boss\" size=18 >&nbsp;<font color=#b22222>"
                       "<b>(Administrator)</b></font>"));

  // His calendar, through the view tabs.
  std::string calendar = Get(LinkTitled(own, "Display MonthView"));
  ASSERT_TRUE(Contains(calendar, "<!-- MonthView  Start -->")) << calendar;
  EXPECT_TRUE(Contains(calendar, "<b>Group:</b> Bridge | <b>User:</b> boss"));

  // Nobody else meets the welcome screen any more.
  EXPECT_TRUE(Contains(Get(""), "<!-- LoginScreen  Start -->"));

  // A second account: "New User", then "Add New User" in the administrator's group.
  std::string options = Get(LinkTitled(calendar, "Administrator Options"));
  ASSERT_TRUE(Contains(options, "<!-- AdminOptionsView  Start -->")) << options;
  const std::string bridge = OptionValue(options, "Bridge");
  ASSERT_FALSE(bridge.empty());
  std::string new_form = PostForm(FormAction(options), {{"submit", "New User"}});
  ASSERT_TRUE(Contains(new_form, "value=\"Add New User\" >")) << new_form;
  std::string deckhand_page =
      PostForm(FormAction(new_form), AccountForm("deckhand", "DH", bridge, "", "Add New User"));
  EXPECT_EQ(Accounts(), (std::vector<std::string>{"boss|BO|admin|Bridge", "deckhand|DH|-|Bridge"}));
  EXPECT_TRUE(Contains(deckhand_page, "name=username value=\"deckhand\""));
  EXPECT_TRUE(Contains(deckhand_page, "value=\"Delete This User\""));

  // Switched back to the administrator, then to the new account, whose calendar opens.
  const std::string boss_key = OptionValue(deckhand_page, "Bridge - boss");
  const std::string deckhand_key = OptionValue(deckhand_page, "Bridge - deckhand");
  ASSERT_FALSE(boss_key.empty());
  ASSERT_FALSE(deckhand_key.empty());
  std::string back =
      PostForm(FormAction(deckhand_page), {{"submit", "Change User"}, {"ownerkey", boss_key}});
  EXPECT_TRUE(Contains(back, "name=username value=\"boss\""));
  std::string switched =
      PostForm(FormAction(back), {{"submit", "Change User"}, {"ownerkey", deckhand_key}});
  EXPECT_TRUE(Contains(switched, "name=username value=\"deckhand\""));
  std::string deckhand_calendar = Get(LinkTitled(switched, "Display MonthView"));
  EXPECT_TRUE(Contains(deckhand_calendar, "<b>Group:</b> Bridge | <b>User:</b> deckhand"));

  // Changed: a new name and initials, and a new group.
  std::string changed =
      PostForm(FormAction(switched), AccountForm("mate", "MT", bridge, "Galley", "Update"));
  EXPECT_EQ(Accounts(), (std::vector<std::string>{"boss|BO|admin|Bridge", "mate|MT|-|Galley"}));
  EXPECT_TRUE(Contains(changed, "<b>Group:</b> Galley | <b>User:</b> mate"));

  // Deleted: the administrator is back on his own account.
  std::string after = PostForm(FormAction(changed), {{"submit", "Delete This User"}});
  EXPECT_EQ(Accounts(), std::vector<std::string>{"boss|BO|admin|Bridge"});
  EXPECT_TRUE(Contains(after, "name=username value=\"boss\""));
  EXPECT_FALSE(Contains(after, "Galley - mate"));
}

}  // namespace
}  // namespace tidewell

// Signing in through the real server: a posted login form, then the links it answers with.

#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <fstream>

#include "host/site_setup.h"
#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::LinkTitled;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

// The link of the selected tab, the view the page shows.
std::string SelectedTabLink(const std::string& html) {
  const std::string selected = "class=tabs bgcolor=#172676 nowrap><a class=tabs href=";
  size_t at = html.find(selected);
  if (at == std::string::npos) return "";
  at += selected.size();
  return html.substr(at, html.find(' ', at) - at);
}

std::string BareKey(const std::string& signed_key) {
  return signed_key.substr(0, signed_key.find('.'));
}

class LoginOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    long crew = database_.AddGroup("Crew");
    database_.AddUser({.name = "admin", .password = "pw", .group = crew, .administrator = true});
    bob_ =
        database_.AddUser({.name = "bob", .password = "secret", .group = crew, .default_view = 2});
  }

  // A configuration file for the seeded database; `secret_line` names the LinkSecret or not.
  std::string Config(const std::string& name, const std::string& secret_line) {
    std::string path = database_.folder() + "/" + name;
    std::ofstream(path) << "Visible = True\nImagePath = images/\n"
                        << "ConnectionString = Provider=SQLite;Data Source=" << database_.folder()
                        << "/calendar.db\n"
                        << secret_line;
    return path;
  }
  std::unique_ptr<ServerProcess> Start(const std::string& config) {
    auto server = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    return server;
  }

  // Signs bob in on the server at `port` with the login form and answers the page it returns.
  std::string LogIn(int port) {
    httplib::Client client("127.0.0.1", port);
    auto first = client.Get("/");
    EXPECT_TRUE(first);
    if (!first) return "";
    EXPECT_NE(first->body.find("<!-- LoginScreen  Start -->"), std::string::npos);
    std::string action = testing::FormAction(first->body);
    EXPECT_EQ(LinkFields(action, true).at(1), "6");
    auto answer =
        client.Post(("/" + action).c_str(), "username=bob&password=secret&submit=Login&login=y",
                    "application/x-www-form-urlencoded");
    EXPECT_TRUE(answer);
    EXPECT_EQ(answer->status, 200);
    return answer ? answer->body : "";
  }

  static std::string Get(int port, const std::string& link) {
    httplib::Client client("127.0.0.1", port);
    auto res = client.Get(("/" + link).c_str());
    return res && res->status == 200 ? res->body : "";
  }

  testing::SeededDatabase database_;
  std::string bob_;
};

TEST_F(LoginOverHttp, ThePostedFormOpensTheUsersDefaultViewAndItsLinksKeepItOpen) {
  auto server = Start(Config("site.conf", "LinkSecret = shared-secret-0123456789\n"));
  int port = server->WaitForPort();
  ASSERT_NE(port, 0) << server->Log();

  std::string page = LogIn(port);
  EXPECT_NE(page.find("<b>Group:</b> Crew | <b>User:</b> bob"), std::string::npos);
  std::vector<std::string> tab = LinkFields(SelectedTabLink(page), true);
  ASSERT_GE(tab.size(), 8u) << page;
  EXPECT_EQ(tab[1], "2/n");  // the DayView tab is the selected one
  EXPECT_EQ(BareKey(tab[5]), bob_);
  EXPECT_NE(tab[5], bob_);  // signed, never bare

  // Following the links: the next month, then the DayView tab of that page.
  std::string next_month = LinkTitled(page, "Next Month");
  EXPECT_EQ(LinkFields(next_month, true).at(1), "2/n");
  std::string december = Get(port, next_month);
  EXPECT_NE(december.find("<b>December 2026</b>"), std::string::npos);
  EXPECT_NE(december.find("<b>User:</b> bob"), std::string::npos);
  EXPECT_EQ(LinkFields(SelectedTabLink(december), true).at(1), "2/n");

  std::string day_tab = Get(port, LinkTitled(december, "Display DayView"));
  EXPECT_NE(day_tab.find("<b>User:</b> bob"), std::string::npos);
  EXPECT_EQ(LinkFields(SelectedTabLink(day_tab), true).at(1), "2/n");

  // And out again.
  std::string logout = Get(port, LinkTitled(day_tab, "Logout / Change User"));
  EXPECT_NE(logout.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_EQ(logout.find("<b>User:</b>"), std::string::npos);
}

TEST_F(LoginOverHttp, ServersSharingTheSecretAcceptEachOthersLinks) {
  std::string shared = Config("a.conf", "LinkSecret = shared-secret-0123456789\n");
  auto a = Start(shared);
  auto b = Start(Config("b.conf", "LinkSecret = shared-secret-0123456789\n"));
  auto c = Start(Config("c.conf", "LinkSecret = another-secret-0123456789\n"));
  int port_a = a->WaitForPort(), port_b = b->WaitForPort(), port_c = c->WaitForPort();
  ASSERT_TRUE(port_a && port_b && port_c) << a->Log() << b->Log() << c->Log();

  std::string link = LinkTitled(LogIn(port_a), "Next Month");
  std::string on_b = Get(port_b, link);
  EXPECT_NE(on_b.find("<b>User:</b> bob"), std::string::npos);
  EXPECT_EQ(LinkFields(SelectedTabLink(on_b), true).at(1), "2/n");

  std::string on_c = Get(port_c, link);
  EXPECT_NE(on_c.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_EQ(on_c.find("<b>User:</b>"), std::string::npos);
}

// The access log names each request's path and the screen drawn, never the query string that
// carries the signed key, nor anything posted.
TEST_F(LoginOverHttp, TheAccessLogKeepsPathAndScreenButNoKeysOrFormValues) {
  auto server = Start(Config("site.conf", "LinkSecret = shared-secret-0123456789\n"));
  int port = server->WaitForPort();
  ASSERT_NE(port, 0) << server->Log();
  std::string link = LinkTitled(LogIn(port), "Next Month");  // "default.asp?WS=..." or "?WS="
  size_t query = link.find('?');
  ASSERT_NE(query, std::string::npos) << link;
  std::string signed_key = LinkFields(link, true).at(5);
  ASSERT_NE(signed_key.find('.'), std::string::npos);  // a signed key rides in the link
  ASSERT_NE(Get(port, link), "");
  EXPECT_EQ(server->Stop(SIGTERM), 0);

  std::string log = server->Log();
  EXPECT_NE(log.find("\"POST / HTTP/1.1\" 200 "), std::string::npos) << log;
  // The link opens the day view (screen 2), logged by its path alone.
  EXPECT_NE(log.find("\"GET / HTTP/1.1\" 200 "), std::string::npos) << log;
  EXPECT_NE(log.find(" screen=2 "), std::string::npos) << log;
  EXPECT_EQ(log.find(link.substr(query + 1)), std::string::npos) << log;
  EXPECT_EQ(log.find("WS="), std::string::npos) << log;
  EXPECT_EQ(log.find(signed_key), std::string::npos) << log;
  EXPECT_EQ(log.find(BareKey(signed_key)), std::string::npos) << log;
  EXPECT_EQ(log.find(bob_), std::string::npos) << log;
  EXPECT_EQ(log.find("password"), std::string::npos) << log;
  EXPECT_EQ(log.find("username"), std::string::npos) << log;
  EXPECT_EQ(log.find("bob"), std::string::npos) << log;
}

// Without LinkSecret the secret is made on the first start and kept beside the database, so
// links outlive a restart.
TEST_F(LoginOverHttp, TheSecretKeptInTheDatabaseOutlivesARestart) {
  std::string config = Config("site.conf", "");
  std::string link;
  {
    auto first = Start(config);
    int port = first->WaitForPort();
    ASSERT_NE(port, 0) << first->Log();
    link = LinkTitled(LogIn(port), "Next Month");
  }
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(database_.folder()) /
                                       "tidewell-link.secret"));

  auto second = Start(config);
  int port = second->WaitForPort();
  ASSERT_NE(port, 0) << second->Log();
  EXPECT_NE(Get(port, link).find("<b>User:</b> bob"), std::string::npos);

  // The kept secret is the one that signed.
  std::string secret = SiteLinkSecret(database_.connection_string());
  auto named = Start(Config("named.conf", "LinkSecret = " + secret + "\n"));
  int named_port = named->WaitForPort();
  ASSERT_NE(named_port, 0) << named->Log();
  EXPECT_NE(Get(named_port, link).find("<b>User:</b> bob"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

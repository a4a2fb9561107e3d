// What the real server tells a load balancer, a monitor and its log: /healthz, /readyz,
// /metrics, the access lines in either format, and the client address behind a proxy.

#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>

#include "tests/component/seeded_database.h"
#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::FormAction;
using testing::LinkTitled;
using testing::ServerProcess;

constexpr const char* kNow = "TIDEWELL_NOW=2026-11-21 09:30:00";

// The value of one series in an exposition ("name{labels}" as written), or -1 when absent.
double SeriesValue(const std::string& exposition, const std::string& series) {
  std::istringstream lines(exposition);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind(series + " ", 0) == 0) return std::stod(line.substr(series.size() + 1));
  }
  return -1;
}

class ObservedSite : public ::testing::Test {
 protected:
  void SetUp() override {
    long crew = database_.AddGroup("Crew");
    database_.AddUser({.name = "admin", .password = "pw", .group = crew, .administrator = true});
    database_.AddUser({.name = "bob", .password = "secret", .group = crew});
  }

  std::unique_ptr<ServerProcess> Start(const std::string& extra_lines,
                                       const std::string& secret = "observe-secret-0123456789") {
    std::string path = database_.folder() + "/site" + std::to_string(++configs_) + ".conf";
    std::ofstream(path) << "Visible = True\nImagePath = images/\n"
                        << "ConnectionString = " << database_.connection_string() << "\n"
                        << "LinkSecret = " << secret << "\n"
                        << extra_lines;
    auto server = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", path, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{kNow});
    port_ = server->WaitForPort();
    return server;
  }

  httplib::Result Get(const std::string& target, const httplib::Headers& headers = {}) {
    httplib::Client client("127.0.0.1", port_);
    return client.Get(target.c_str(), headers);
  }

  // The login form of a fresh visit, sent with the name and password; the page answered.
  std::string LogIn(const std::string& name, const std::string& password,
                    const httplib::Headers& headers = {}) {
    httplib::Client client("127.0.0.1", port_);
    auto first = client.Get("/", headers);
    if (!first) return "";
    auto answer = client.Post(("/" + FormAction(first->body)).c_str(), headers,
                              testing::FormEncoded({{"username", name},
                                                    {"password", password},
                                                    {"login", "y"}}),
                              "application/x-www-form-urlencoded");
    return answer && answer->status == 200 ? answer->body : "";
  }

  testing::SeededDatabase database_;
  int configs_ = 0;
  int port_ = 0;
};

TEST_F(ObservedSite, HealthAndReadinessAnswerAtTheRootUncachedAndAreLogged) {
  auto server = Start("");
  ASSERT_NE(port_, 0) << server->Log();
  auto health = Get("/healthz");
  ASSERT_TRUE(health);
  EXPECT_EQ(health->status, 200);
  EXPECT_EQ(health->body, "ok\n");
  EXPECT_EQ(health->get_header_value("Cache-Control"), "no-store");
  auto ready = Get("/readyz");
  ASSERT_TRUE(ready);
  EXPECT_EQ(ready->status, 200);
  EXPECT_EQ(ready->body, "ready\n");
  EXPECT_EQ(ready->get_header_value("Cache-Control"), "no-store");
  EXPECT_TRUE(server->WaitForLog("\"GET /healthz HTTP/1.1\" 200 3 screen=- statements=-"))
      << server->Log();
  EXPECT_TRUE(server->WaitForLog("\"GET /readyz HTTP/1.1\" 200 6 screen=- statements=-"))
      << server->Log();
}

TEST_F(ObservedSite, ReadinessFailsWithTheReasonButNeverThePassword) {
  // A later ConnectionString line wins: a database nobody listens for, with a password.
  auto server = Start(
      "ConnectionString = Provider=PostgreSQL;host=127.0.0.1;port=1;dbname=none;user=u;"
      "password=Marker-Secret-4711\n");
  ASSERT_NE(port_, 0) << server->Log();
  auto health = Get("/healthz");
  ASSERT_TRUE(health);
  EXPECT_EQ(health->status, 200);
  auto ready = Get("/readyz");
  ASSERT_TRUE(ready);
  EXPECT_EQ(ready->status, 503);
  EXPECT_EQ(ready->get_header_value("Cache-Control"), "no-store");
  EXPECT_EQ(ready->body.rfind("not ready: ", 0), 0u) << ready->body;
  EXPECT_GT(ready->body.size(), std::string("not ready: ").size());
  EXPECT_EQ(ready->body.find("Marker-Secret-4711"), std::string::npos) << ready->body;
}

TEST_F(ObservedSite, MetricsAreAbsentUnlessTurnedOn) {
  auto server = Start("");
  ASSERT_NE(port_, 0) << server->Log();
  auto metrics = Get("/metrics");
  ASSERT_TRUE(metrics);
  EXPECT_EQ(metrics->status, 404);
  EXPECT_EQ(metrics->body, "Not found.\n");
}

// Real traffic, then the exposition: promtool must accept it, and the counters must say what
// happened.
TEST_F(ObservedSite, MetricsCountRealTrafficAndPassPromtool) {
  // A link signed with another secret: its key is refused here.
  std::string foreign_link;
  {
    auto other = Start("", "another-secret-0123456789");
    ASSERT_NE(port_, 0) << other->Log();
    foreign_link = LinkTitled(LogIn("bob", "secret"), "Next Month");
    ASSERT_FALSE(foreign_link.empty());
  }
  auto server = Start("Metrics = on\n");
  ASSERT_NE(port_, 0) << server->Log();
  std::string month = LogIn("admin", "pw");
  ASSERT_NE(month.find("<!-- MonthView"), std::string::npos) << month.substr(0, 2000);
  std::string refused_login = LogIn("admin", "wrong password");
  EXPECT_NE(refused_login.find("is invalid."), std::string::npos);
  auto refused_key = Get("/" + foreign_link);
  ASSERT_TRUE(refused_key);
  EXPECT_NE(refused_key->body.find("<!-- LoginScreen  Start -->"), std::string::npos);
  auto missing = Get("/nothing-here");
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->status, 404);
  // Two logins (a GET and a POST each), the link, the 404: six answers before /metrics.
  ASSERT_TRUE(server->WaitForLog("\"GET /nothing-here HTTP/1.1\" 404"));

  auto metrics = Get("/metrics");
  ASSERT_TRUE(metrics);
  ASSERT_EQ(metrics->status, 200);
  EXPECT_EQ(metrics->get_header_value("Content-Type"), "text/plain; version=0.0.4; charset=utf-8");
  EXPECT_EQ(metrics->get_header_value("Cache-Control"), "no-store");
  const std::string& text = metrics->body;

  std::string file = database_.folder() + "/metrics.txt";
  std::ofstream(file) << text;
  testing::CommandResult promtool = testing::RunShell("promtool check metrics < " + file);
  EXPECT_EQ(promtool.status, 0) << promtool.out << text;

  EXPECT_EQ(SeriesValue(text, "tidewell_requests_total{screen=\"0\",status=\"200\"}"), 1) << text;
  EXPECT_EQ(SeriesValue(text, "tidewell_requests_total{screen=\"6\",status=\"200\"}"), 4) << text;
  EXPECT_EQ(SeriesValue(text, "tidewell_requests_total{screen=\"-\",status=\"404\"}"), 1) << text;
  EXPECT_EQ(SeriesValue(text, "tidewell_request_duration_seconds_count"), 6) << text;
  EXPECT_EQ(SeriesValue(text, "tidewell_request_duration_seconds_bucket{le=\"+Inf\"}"), 6);
  EXPECT_EQ(SeriesValue(text, "tidewell_logins_refused_total{reason=\"credentials\"}"), 1);
  EXPECT_EQ(SeriesValue(text, "tidewell_logins_refused_total{reason=\"throttled\"}"), 0);
  EXPECT_EQ(SeriesValue(text, "tidewell_link_keys_refused_total"), 1) << text;
  EXPECT_EQ(SeriesValue(text, "tidewell_database_errors_total{kind=\"DB\"}"), 0);
  EXPECT_GE(SeriesValue(text, "tidewell_statements_total"), 3);
  EXPECT_EQ(SeriesValue(text, "tidewell_pool_sessions_in_use"), 0);
  EXPECT_GE(SeriesValue(text, "tidewell_pool_sessions_idle"), 1);
  EXPECT_EQ(SeriesValue(text, "tidewell_pool_requests_waiting"), 0);

  // The statements counted are the ones the access lines show.
  std::regex statements(" statements=([0-9]+) ");
  std::string log = server->Log();
  long logged = 0;
  for (auto it = std::sregex_iterator(log.begin(), log.end(), statements);
       it != std::sregex_iterator(); ++it) {
    logged += std::stol((*it)[1]);
  }
  EXPECT_EQ(SeriesValue(text, "tidewell_statements_total"), logged) << log;
}

// Behind a trusted proxy, the forwarded client is who /metrics is decided for: loopback and
// the MetricsAllow networks see it, anyone else finds nothing there.
TEST_F(ObservedSite, MetricsAnswerOnlyLoopbackAndAllowedClients) {
  auto server = Start("Metrics = on\nMetricsAllow = 203.0.113.0/24, 2001:db8::/32\n"
                      "TrustedProxies = 127.0.0.1\n");
  ASSERT_NE(port_, 0) << server->Log();
  auto direct = Get("/metrics");
  ASSERT_TRUE(direct);
  EXPECT_EQ(direct->status, 200);
  auto outsider = Get("/metrics", {{"X-Forwarded-For", "198.51.100.7"}});
  ASSERT_TRUE(outsider);
  EXPECT_EQ(outsider->status, 404);
  EXPECT_EQ(outsider->body, "Not found.\n");
  auto allowed = Get("/metrics", {{"X-Forwarded-For", "198.51.100.7, 203.0.113.9"}});
  ASSERT_TRUE(allowed);
  EXPECT_EQ(allowed->status, 200);
  auto allowed_v6 = Get("/metrics", {{"X-Forwarded-For", "2001:db8::5"}});
  ASSERT_TRUE(allowed_v6);
  EXPECT_EQ(allowed_v6->status, 200);
  // A client cannot pass for allowed by writing the address first: the proxy's entry is last.
  auto forged = Get("/metrics", {{"X-Forwarded-For", "203.0.113.9, 198.51.100.7"}});
  ASSERT_TRUE(forged);
  EXPECT_EQ(forged->status, 404);
  EXPECT_TRUE(server->WaitForLog(" 198.51.100.7 \"GET /metrics HTTP/1.1\" 404 ")) << server->Log();
  EXPECT_TRUE(server->WaitForLog(" 203.0.113.9 \"GET /metrics HTTP/1.1\" 200 ")) << server->Log();
}

TEST_F(ObservedSite, AnUntrustedPeersForwardedForIsIgnored) {
  auto server = Start("Metrics = on\nTrustedProxies = 10.0.0.0/8\n");
  ASSERT_NE(port_, 0) << server->Log();
  auto metrics = Get("/metrics", {{"X-Forwarded-For", "198.51.100.7"}});
  ASSERT_TRUE(metrics);
  EXPECT_EQ(metrics->status, 200);  // the peer, 127.0.0.1, asked
  EXPECT_TRUE(server->WaitForLog(" 127.0.0.1 \"GET /metrics HTTP/1.1\" 200 ")) << server->Log();
  EXPECT_EQ(server->Log().find("198.51.100.7"), std::string::npos) << server->Log();
}

// The login throttle counts failures by the forwarded client's address, so one client behind
// the proxy is stopped without stopping another.
TEST_F(ObservedSite, TheLoginThrottleCountsTheForwardedClient) {
  auto server = Start("Metrics = on\nTrustedProxies = 127.0.0.1\n");
  ASSERT_NE(port_, 0) << server->Log();
  const httplib::Headers guesser = {{"X-Forwarded-For", "198.51.100.7"}};
  const httplib::Headers other = {{"X-Forwarded-For", "198.51.100.8"}};
  for (int i = 0; i < 20; ++i) LogIn("nobody" + std::to_string(i), "guess", guesser);
  EXPECT_NE(LogIn("bob", "secret", guesser).find("is invalid."), std::string::npos);
  EXPECT_NE(LogIn("bob", "secret", other).find("<b>User:</b> bob"), std::string::npos);
  auto metrics = Get("/metrics");
  ASSERT_TRUE(metrics);
  EXPECT_EQ(SeriesValue(metrics->body, "tidewell_logins_refused_total{reason=\"credentials\"}"),
            20);
  EXPECT_EQ(SeriesValue(metrics->body, "tidewell_logins_refused_total{reason=\"throttled\"}"), 1);
}

// JSON access lines parse with an independent parser, whatever bytes the path held.
TEST_F(ObservedSite, JsonAccessLinesParseAndKeepEveryField) {
  auto server = Start("LogFormat = json\n");
  ASSERT_NE(port_, 0) << server->Log();
  ASSERT_TRUE(Get("/"));
  ASSERT_TRUE(Get("/we%22ird%5Cpath%0A%C3%A9%FF%01?WS=secret-query"));
  EXPECT_EQ(server->Stop(SIGTERM), 0);

  std::string lines;
  std::istringstream log(server->Log());
  for (std::string line; std::getline(log, line);) {
    if (!line.empty() && line[0] == '{') lines += line + "\n";
  }
  std::string file = database_.folder() + "/access.jsonl";
  std::ofstream(file) << lines;
  testing::CommandResult parsed = testing::RunShell(
      "python3 -c 'import json, sys\n"
      "for line in open(sys.argv[1]):\n"
      "    r = json.loads(line)\n"
      "    assert sorted(r) == sorted([\"time\", \"remote\", \"method\", \"path\", \"status\", "
      "\"bytes\", \"screen\", \"statements\", \"duration_ms\"]), r\n"
      "    print(json.dumps([r[\"remote\"], r[\"method\"], r[\"path\"], r[\"status\"], r[\"screen\"], "
      "r[\"statements\"] is None, type(r[\"bytes\"]).__name__, type(r[\"duration_ms\"]).__name__]))\n"
      "' " + file);
  ASSERT_EQ(parsed.status, 0) << parsed.out << lines;
  EXPECT_EQ(parsed.out,
            "[\"127.0.0.1\", \"GET\", \"/\", 200, \"6\", false, \"int\", \"float\"]\n"
            "[\"127.0.0.1\", \"GET\", \"/we\\\"ird\\\\path\\n\\u00e9\\ufffd\\u0001\", 404, \"-\", "
            "true, \"int\", \"float\"]\n")
      << lines;
  EXPECT_EQ(lines.find("secret-query"), std::string::npos);
}

// Nothing a visitor types or a link carries reaches the log: not the password of a login form,
// not the fields of an item, not the signed key.
TEST_F(ObservedSite, NoLogLineCarriesKeysPasswordsOrFormValues) {
  auto server = Start("LogFormat = json\n");
  ASSERT_NE(port_, 0) << server->Log();
  EXPECT_NE(LogIn("admin", "Marker-Wrong-9931").find("is invalid."), std::string::npos);
  std::string month = LogIn("admin", "pw");
  std::string add = LinkTitled(month, "Add New Item");
  ASSERT_FALSE(add.empty());
  std::string signed_key = testing::LinkFields(add, true).at(5);
  auto form = Get("/" + add);
  ASSERT_TRUE(form);
  httplib::Client client("127.0.0.1", port_);
  auto posted = client.Post(
      ("/" + FormAction(form->body)).c_str(),
      "datestamp=11%2F25%2F2026&timestamp=10&timetext=30&heading=Marker-Heading-5521"
      "&description=Marker-Description-7730&submit=Add&action=a",
      "application/x-www-form-urlencoded");
  ASSERT_TRUE(posted);
  EXPECT_NE(posted->body.find("Marker-Heading-5521"), std::string::npos);  // the item was added
  EXPECT_EQ(server->Stop(SIGTERM), 0);
  std::string log = server->Log();
  for (const std::string& marker :
       {std::string("Marker-"), std::string("admin"), std::string("pw"), signed_key,
        signed_key.substr(0, signed_key.find('.')), std::string("WS=")}) {
    EXPECT_EQ(log.find(marker), std::string::npos) << marker << "\n" << log;
  }
}

}  // namespace
}  // namespace tidewell

// Starts the real `tidewell serve` and talks HTTP to it.

#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <regex>
#include <thread>

#include "page/link_codec.h"
#include "tests/host/server_process.h"

namespace tidewell {
namespace {

class Server : public ::testing::Test {
 protected:
  void SetUp() override {
    folder_ = std::filesystem::path(::testing::TempDir()) /
              ("tidewell_server_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_);
    config_ = (folder_ / "tidewell.conf").string();
    std::ofstream(config_) << "Visible = True\nImagePath = images/\n"
                              "ConnectionString = Provider=SQLite;Data Source="
                           << (folder_ / "cal.db").string()
                           << "\n"
                              "LinkSecret = server-test-secret-0123456789\n"
                              "[page /cal/default.asp]\nTidewellColor = #000000\n";
    server_ = std::make_unique<testing::ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config_, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{"TIDEWELL_NOW=2026-11-21 09:30:00"});
    port_ = server_->WaitForPort();
    ASSERT_NE(port_, 0) << server_->Log();
    client_ = std::make_unique<httplib::Client>("127.0.0.1", port_);
  }
  void TearDown() override {
    client_.reset();
    server_.reset();
    std::filesystem::remove_all(folder_);
  }

  std::filesystem::path folder_;
  std::string config_;
  std::unique_ptr<testing::ServerProcess> server_;
  int port_ = 0;
  std::unique_ptr<httplib::Client> client_;
};

TEST_F(Server, AnswersThePageInsideTheTemplate) {
  auto res = client_->Get("/");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_EQ(res->get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_NE(res->body.find("<link rel=\"stylesheet\" type=\"text/css\" href=\"tidewell.css\">"),
            std::string::npos);
  EXPECT_NE(res->body.find("<div id=ws_vis ><div id=ws_pos ><!-- Outer Table Start -->"),
            std::string::npos);
  EXPECT_NE(res->body.find("<!-- WelcomeScreen  Start -->"), std::string::npos);  // a fresh site
  EXPECT_NE(res->body.find("<!-- Outer Table End --></div></div>"), std::string::npos);
}

TEST_F(Server, ServesConfiguredPagePaths) {
  auto res = client_->Get("/cal/default.asp");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_EQ(client_->Get("/elsewhere.asp")->status, 404);
}

TEST_F(Server, ServesImagesAndTheStyleSheet) {
  auto image = client_->Get("/images/nav_line.gif");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->status, 200);
  EXPECT_EQ(image->get_header_value("Content-Type"), "image/gif");
  EXPECT_EQ(image->body.substr(0, 6), "GIF89a");
  auto under_page = client_->Get("/cal/images/nav_line.gif");
  ASSERT_TRUE(under_page);
  EXPECT_EQ(under_page->body, image->body);
  auto sheet = client_->Get("/tidewell.css");
  ASSERT_TRUE(sheet);
  EXPECT_EQ(sheet->status, 200);
  EXPECT_EQ(sheet->get_header_value("Content-Type"), "text/css; charset=utf-8");
  EXPECT_NE(sheet->body.find(".text"), std::string::npos);
}

TEST_F(Server, MalformedLinkIsABadRequestAndTheServerCarriesOn) {
  auto bad = client_->Get("/?WS=7E36ZZ");
  ASSERT_TRUE(bad);
  EXPECT_EQ(bad->status, 400);
  EXPECT_EQ(bad->body, "Bad request: run-time error 13, Type mismatch.\n");
  auto short_link = client_->Get(("/?WS=" + EncodeQueryString("~6~", true)).c_str());
  ASSERT_TRUE(short_link);
  EXPECT_EQ(short_link->status, 400);
  auto good = client_->Get("/");
  ASSERT_TRUE(good);
  EXPECT_EQ(good->status, 200);
}

TEST_F(Server, FormPostsReachTheComponent) {
  auto res = client_->Post("/", "login=Login&username=alice&password=pw",
                           "application/x-www-form-urlencoded");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
}

TEST_F(Server, LogsOneLinePerRequest) {
  client_->Get("/");
  client_->Get("/images/nav_line.gif");
  client_->Get("/elsewhere.asp?x=1");
  server_->Stop(SIGTERM);
  std::string log = server_->Log();
  // Time, peer, request without its query, status, bytes, the screen drawn, duration.
  std::regex page_line(
      "2026-11-21 09:30:00 127\\.0\\.0\\.1 \"GET / HTTP/1\\.1\" 200 [0-9]+ screen=9 statements=[0-9]+ [0-9.]+ms\n");
  EXPECT_TRUE(std::regex_search(log, page_line)) << log;  // the welcome screen of a fresh site
  EXPECT_NE(log.find("\"GET /images/nav_line.gif HTTP/1.1\" 200 56 screen=- statements=- "), std::string::npos)
      << log;
  EXPECT_NE(log.find("\"GET /elsewhere.asp HTTP/1.1\" 404 11 screen=- statements=- "), std::string::npos) << log;
}

// A path cannot write lines of its own into the log: control characters stay escaped.
TEST_F(Server, PathsCannotForgeLogLines) {
  auto res = client_->Get("/x%0A2026-11-21%2009:30:00%20forged%22");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 404);
  server_->Stop(SIGTERM);
  std::string log = server_->Log();
  EXPECT_NE(log.find("\"GET /x%0A2026-11-21%2009:30:00%20forged%22 HTTP/1.1\" 404"),
            std::string::npos)
      << log;
  EXPECT_EQ(log.find("\n2026-11-21 09:30:00 forged"), std::string::npos) << log;
}

TEST_F(Server, HeadAnswersFilesAndPagesWithoutTheBody) {
  for (const char* path : {"/images/nav_line.gif", "/tidewell.css", "/"}) {
    auto get = client_->Get(path);
    auto head = client_->Head(path);
    ASSERT_TRUE(get && head) << path;
    EXPECT_EQ(head->status, 200) << path;
    EXPECT_EQ(head->body, "") << path;
    EXPECT_EQ(head->get_header_value("Content-Type"), get->get_header_value("Content-Type"));
    if (std::string(path) != "/") {
      EXPECT_EQ(head->get_header_value("Content-Length"), std::to_string(get->body.size()));
    }
  }
  auto after = client_->Get("/tidewell.css");  // the connection is still in step
  ASSERT_TRUE(after);
  EXPECT_EQ(after->status, 200);
}

TEST_F(Server, OtherMethodsAreNotAllowed) {
  auto res = client_->Delete("/");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 405);
  EXPECT_EQ(res->get_header_value("Allow"), "GET, HEAD, POST");
}

// Every answer, page, file or error, says what it is and that nobody may frame it or learn
// its link; the page's policy allows only what the screens use.
TEST_F(Server, SecurityHeadersGoWithPagesFilesAndErrors) {
  const std::string policy =
      "default-src 'none'; script-src 'unsafe-inline'; style-src 'self' 'unsafe-inline'; "
      "style-src-elem 'self'; img-src 'self'; form-action 'self'; base-uri 'none'; "
      "frame-ancestors 'none'";
  for (const char* path : {"/", "/cal/default.asp", "/images/nav_line.gif", "/tidewell.css",
                           "/elsewhere.asp", "/?WS=7E36ZZ"}) {
    auto res = client_->Get(path);
    ASSERT_TRUE(res) << path;
    EXPECT_EQ(res->get_header_value("X-Content-Type-Options"), "nosniff") << path;
    EXPECT_EQ(res->get_header_value("Referrer-Policy"), "no-referrer") << path;
    EXPECT_EQ(res->get_header_value("X-Frame-Options"), "DENY") << path;
    EXPECT_EQ(res->get_header_value("Content-Security-Policy"), policy) << path;
  }
}

TEST_F(Server, StopsCleanlyOnSigterm) {
  EXPECT_EQ(server_->Stop(SIGTERM), 0);
}

TEST_F(Server, AStraySigusr1NeitherStopsNorDeafensTheServer) {
  server_->Send(SIGUSR1);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  auto res = client_->Get("/");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_EQ(server_->Stop(SIGTERM), 0);
}

TEST_F(Server, StopsCleanlyOnSigint) {
  EXPECT_EQ(server_->Stop(SIGINT), 0);
}

// FrameAncestors lets the named origins frame the pages: they stand in frame-ancestors and
// X-Frame-Options, which cannot name them, is left out.
TEST(ServerStart, FrameAncestorsAllowsTheNamedOrigins) {
  std::string config = ::testing::TempDir() + "/framed_tidewell.conf";
  std::ofstream(config) << "ConnectionString = Provider=SQLite;Data Source="
                        << ::testing::TempDir() << "/framed_" << getpid() << ".db\n"
                        << "FrameAncestors = https://intranet.example, https://wiki.example\n";
  testing::ServerProcess server(TIDEWELL_BINARY,
                                {"serve", "--config", config, "--listen", "127.0.0.1:0"});
  int port = server.WaitForPort();
  ASSERT_NE(port, 0) << server.Log();
  httplib::Client client("127.0.0.1", port);
  for (const char* path : {"/", "/tidewell.css"}) {
    auto res = client.Get(path);
    ASSERT_TRUE(res) << path;
    std::string policy = res->get_header_value("Content-Security-Policy");
    EXPECT_NE(policy.find("; frame-ancestors https://intranet.example https://wiki.example"),
              std::string::npos)
        << policy;
    EXPECT_EQ(policy.find("frame-ancestors 'none'"), std::string::npos) << policy;
    EXPECT_FALSE(res->has_header("X-Frame-Options")) << path;
    EXPECT_EQ(res->get_header_value("X-Content-Type-Options"), "nosniff") << path;
  }
}

TEST(ServerStart, ListensOnTheIpv6Loopback) {
  std::string config = ::testing::TempDir() + "/ipv6_tidewell.conf";
  std::ofstream(config) << "ConnectionString = Provider=SQLite;Data Source="
                        << ::testing::TempDir() << "/ipv6_" << getpid() << ".db\n";
  testing::ServerProcess server(TIDEWELL_BINARY,
                                {"serve", "--config", config, "--listen", "[::1]:0"});
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  int port = 0;
  for (int i = 0; i < 100 && port == 0; ++i) {
    std::smatch match;
    std::string log = server.Log();
    if (std::regex_search(log, match, std::regex("serving http://\\[::1\\]:([0-9]+)/"))) {
      port = std::stoi(match[1]);
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }
  ASSERT_NE(port, 0) << server.Log();
  httplib::Client client("::1", port);
  auto res = client.Get("/tidewell.css");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_EQ(server.Stop(SIGTERM), 0);
}

TEST(ServerStart, BadConfigurationStopsWithTheLine) {
  std::string config = ::testing::TempDir() + "/bad_tidewell.conf";
  std::ofstream(config) << "Visible = True\nVisible = sometimes\n";
  testing::ServerProcess server(TIDEWELL_BINARY,
                                {"serve", "--config", config, "--listen", "127.0.0.1:0"});
  EXPECT_EQ(server.WaitForPort(std::chrono::seconds(10)), 0);
  EXPECT_EQ(server.Stop(0), 1);
  EXPECT_NE(server.Log().find("bad_tidewell.conf:2: bad value for Visible"), std::string::npos)
      << server.Log();
}

// A fresh site: the configured SQLite file and the link secret beside it are made on start.
TEST(ServerStart, CreatesTheEmbeddedDatabaseReadableByItsOwnerOnly) {
  std::filesystem::path folder =
      std::filesystem::path(::testing::TempDir()) / ("tidewell_fresh_" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  std::string config = (folder / "tidewell.conf").string();
  std::ofstream(config) << "ConnectionString = Provider=SQLite;Data Source="
                        << (folder / "cal.db").string() << "\n";
  {
    testing::ServerProcess server(TIDEWELL_BINARY,
                                  {"serve", "--config", config, "--listen", "127.0.0.1:0"});
    ASSERT_NE(server.WaitForPort(), 0) << server.Log();
    EXPECT_TRUE(std::filesystem::exists(folder / "cal.db"));
    // The link secret is kept in the database, which holds the password hashes too.
    EXPECT_FALSE(std::filesystem::exists(folder / "tidewell-link.secret"));
    httplib::Client client("127.0.0.1", server.WaitForPort());
    auto res = client.Get("/");
    ASSERT_TRUE(res);
    EXPECT_EQ(res->body.find("ErrorScreen"), std::string::npos);
    for (const char* file : {"cal.db", "cal.db-wal", "cal.db-shm"}) {
      ASSERT_TRUE(std::filesystem::exists(folder / file)) << file;
      auto perms = std::filesystem::status(folder / file).permissions();
      EXPECT_EQ(perms & (std::filesystem::perms::group_all | std::filesystem::perms::others_all),
                std::filesystem::perms::none)
          << file;
    }
  }
  std::filesystem::remove_all(folder);
}

// A database that cannot be made is logged; the server serves the error screen instead.
TEST(ServerStart, MissingDatabaseFolderIsLoggedAndShownAsTheErrorScreen) {
  std::string config = ::testing::TempDir() + "/missing_folder_tidewell.conf";
  std::ofstream(config)
      << "ConnectionString = Provider=SQLite;Data Source=/no/such/folder/cal.db\n";
  testing::ServerProcess server(TIDEWELL_BINARY,
                                {"serve", "--config", config, "--listen", "127.0.0.1:0"});
  int port = server.WaitForPort();
  ASSERT_NE(port, 0) << server.Log();
  httplib::Client client("127.0.0.1", port);
  auto res = client.Get("/");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_NE(res->body.find("<!-- ErrorScreen Start -->"), std::string::npos);
  EXPECT_NE(server.Log().find("/no/such/folder/cal.db"), std::string::npos) << server.Log();
}

}  // namespace
}  // namespace tidewell

// Two servers on one PostgreSQL database behind nginx, which deals requests to them in turn:
// a visitor's session goes back and forth between them as if there were one, and goes on
// through the other when one of them stops in the middle of it.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/component/site_visit.h"
#include "tests/data/engines.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/page_text.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

using testing::Count;
using testing::FormAction;
using testing::LinkTitled;
using testing::ServerProcess;
using testing::SiteClient;

// A port nobody listens on now, for nginx.
int FreePort() {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t size = sizeof address;
  getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
  close(fd);
  return ntohs(address.sin_port);
}

bool Accepts(int port) {
  int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool connected = connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(fd);
  return connected;
}

class ScaleOut : public ::testing::Test {
 protected:
  void SetUp() override {
    const std::string skip = engine_.Start();
    if (!skip.empty()) GTEST_SKIP() << skip;
    if (!std::filesystem::exists(TIDEWELL_NGINX)) {
      GTEST_SKIP() << "nginx is missing: scripts/setup.sh installs it";
    }
    testing::Seeder data(engine_.connection_string, testing::PasswordHashing::kOncePerProcess);
    bob_ = data.AddUser({.name = "bob", .group = data.AddGroup("Crew"), .initials = "BB"});
    folder_ = std::filesystem::path(::testing::TempDir()) /
              ("tidewell_scale_out_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder_ / "nginx");
    const std::string config = (folder_ / "tidewell.conf").string();
    // No LinkSecret: the servers sign with the secret the database keeps, as a site does.
    std::ofstream(config) << "Visible = True\nImagePath = images/\nDataServer = 1\n"
                          << "ConnectionString = " << engine_.connection_string << "\n";
    for (auto* server : {&first_, &second_}) {
      *server = std::make_unique<ServerProcess>(
          TIDEWELL_BINARY,
          std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
          std::vector<std::string>{"TIDEWELL_NOW=2026-11-21 09:30:00"});
    }
    const int first_port = first_->WaitForPort();
    const int second_port = second_->WaitForPort();
    ASSERT_NE(first_port, 0) << first_->Log();
    ASSERT_NE(second_port, 0) << second_->Log();
    StartNginx(first_port, second_port);
  }

  // nginx hands requests to the two servers in turn. A request that cannot reach a server
  // (its port closed) goes to the other, posts too: a server that stops answers every
  // request it has read, so a request that never reached it was never run.
  void StartNginx(int first_port, int second_port) {
    port_ = FreePort();
    const std::string work = (folder_ / "nginx").string();
    const std::string config = work + "/nginx.conf";
    std::ofstream(config)
        << "daemon off;\nworker_processes 1;\npid " << work << "/nginx.pid;\n"
        << "error_log " << work << "/error.log;\n" << (getuid() == 0 ? "user root;\n" : "")
        << "events { worker_connections 256; }\n"
        << "http {\n  access_log off;\n"
        << "  client_body_temp_path " << work << "; proxy_temp_path " << work << ";\n"
        << "  fastcgi_temp_path " << work << "; uwsgi_temp_path " << work
        << "; scgi_temp_path " << work << ";\n"
        << "  upstream tidewell {\n"
        << "    server 127.0.0.1:" << first_port << ";\n"
        << "    server 127.0.0.1:" << second_port << ";\n  }\n"
        << "  server {\n    listen 127.0.0.1:" << port_ << ";\n"
        << "    location / {\n      proxy_pass http://tidewell;\n"
        << "      proxy_next_upstream error timeout non_idempotent;\n"
        << "      proxy_set_header Host $host;\n    }\n  }\n}\n";
    nginx_ = std::make_unique<ServerProcess>(
        TIDEWELL_NGINX, std::vector<std::string>{"-c", config, "-p", work});
    for (int i = 0; i < 100 && !Accepts(port_); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_TRUE(Accepts(port_)) << nginx_->Log();
  }

  void TearDown() override {
    nginx_.reset();
    first_.reset();
    second_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  // The item form's post of a new item on 25 November 2026 at 10:30.
  std::string AddItem(const SiteClient& site, const std::string& page,
                      const std::string& heading) {
    const std::string form = site.Get(LinkTitled(page, "Add New Item"));
    return site.PostForm(FormAction(form), {{"ownerkey", bob_},
                                            {"datestamp", "11/25/2026"},
                                            {"timestamp", "10"},
                                            {"timetext", "30"},
                                            {"heading", heading},
                                            {"description", ""},
                                            {"submit", "Add"},
                                            {"action", "a"}});
  }

  // Access lines of calendar pages the server wrote.
  static size_t PagesServed(ServerProcess& server) { return Count(server.Log(), " screen="); }

  // The log reaches the test through a pipe: waits up to two seconds until the two servers
  // have logged `pages` pages between them.
  void WaitForPages(size_t pages) {
    for (int i = 0; i < 100 && PagesServed(*first_) + PagesServed(*second_) < pages; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
  }

  testing::PostgresEngine engine_;
  std::string bob_;
  std::filesystem::path folder_;
  std::unique_ptr<ServerProcess> first_, second_, nginx_;
  int port_ = 0;
};

TEST_F(ScaleOut, ASessionGoesBackAndForthBetweenTwoServersAsIfThereWereOne) {
  SiteClient site(port_);
  const std::string month = site.LogIn("bob", "pw");
  ASSERT_NE(month.find("<!-- MonthView  Start -->"), std::string::npos) << month;
  // Signed in on one, added through the other: the links of one server's page are good on
  // the other, and the item is in the database both read.
  const std::string added = AddItem(site, month, "Harbour");
  ASSERT_NE(added.find(">Harbour</a>"), std::string::npos) << added;
  const std::string link = LinkTitled(added, "Display MonthView");
  for (int i = 0; i < 6; ++i) {
    const std::string again = site.Get(link);
    EXPECT_NE(again.find(">Harbour</a>"), std::string::npos) << "request " << i;
    EXPECT_EQ(again.find("name=password"), std::string::npos) << "signed out on request " << i;
  }
  // Round robin: each server drew about half of the ten pages.
  WaitForPages(10);
  EXPECT_EQ(PagesServed(*first_) + PagesServed(*second_), 10u);
  EXPECT_GE(PagesServed(*first_), 4u) << first_->Log();
  EXPECT_GE(PagesServed(*second_), 4u) << second_->Log();
}

TEST_F(ScaleOut, WhenOneServerStopsTheSessionGoesOnThroughTheOther) {
  SiteClient site(port_);
  const std::string month = site.LogIn("bob", "pw");
  ASSERT_NE(month.find("<!-- MonthView  Start -->"), std::string::npos) << month;
  const std::string link = LinkTitled(month, "Display MonthView");
  ASSERT_FALSE(link.empty());

  // Four visitors' worth of requests keep coming while the first server stops.
  std::atomic<int> answered{0}, failed{0};
  std::atomic<bool> done{false};
  std::vector<std::thread> visitors;
  for (int v = 0; v < 4; ++v) {
    visitors.emplace_back([&] {
      for (int i = 0; i < 40 && !done; ++i) {
        const std::string page = site.Get(link);
        if (page.find("<!-- MonthView End -->") == std::string::npos) {
          ++failed;
        } else {
          ++answered;
        }
      }
    });
  }
  while (answered < 20 && failed == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_EQ(first_->Stop(SIGTERM), 0) << first_->Log();
  for (std::thread& visitor : visitors) visitor.join();
  WaitForPages(162);  // the login and the 160 views
  const size_t second_before = PagesServed(*second_);
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(answered, 160);

  // The rest of the session, an item added included, is the second server's.
  const std::string added = AddItem(site, month, "After");
  EXPECT_NE(added.find(">After</a>"), std::string::npos) << added;
  WaitForPages(164);
  EXPECT_EQ(PagesServed(*second_), second_before + 2);
  EXPECT_NE(first_->Log().find("SIGTERM received, stopping"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

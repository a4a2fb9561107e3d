// Passwords set by `tidewell user`: typed on a terminal, and used to sign in to the real server.

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <string>
#include <vector>

#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "tests/data/engines.h"
#include "tests/host/server_process.h"
#include "tests/host/site_client.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::RunBinary;

class UserPassword : public ::testing::Test {
 protected:
  void SetUp() override { engine_.Start(); }

  std::vector<std::string> Words(std::vector<std::string> words) {
    words.insert(words.begin(), "user");
    words.push_back("--connection");
    words.push_back(engine_.connection_string);
    return words;
  }

  std::string StoredHash(const std::string& name) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT Password FROM Users WHERE UserName = ").Text(name), connection);
    return rs.Eof() ? "" : CStrOrBlank(rs.Fields("Password").Value());
  }

  testing::SqliteEngine engine_;
};

// The binary on a pseudo-terminal: `answers` are typed, each after the prompt before it has
// appeared. Answers the exit code and everything the terminal showed.
struct TerminalRun {
  int status = -1;
  std::string screen;
};

TerminalRun RunOnTerminal(const std::vector<std::string>& args,
                          const std::vector<std::pair<std::string, std::string>>& prompts) {
  int master = -1;
  pid_t pid = forkpty(&master, nullptr, nullptr, nullptr);
  if (pid == 0) {
    std::vector<char*> argv{const_cast<char*>(TIDEWELL_BINARY)};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(TIDEWELL_BINARY, argv.data());
    _exit(127);
  }
  TerminalRun run;
  size_t next = 0;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (std::chrono::steady_clock::now() < deadline) {
    pollfd fd = {master, POLLIN, 0};
    if (poll(&fd, 1, 200) <= 0) continue;
    char buffer[1024];
    ssize_t n = read(master, buffer, sizeof buffer);
    if (n <= 0) break;  // the child has gone and the terminal closed
    run.screen.append(buffer, n);
    if (next < prompts.size() && run.screen.find(prompts[next].first) != std::string::npos &&
        run.screen.rfind(prompts[next].first) + prompts[next].first.size() == run.screen.size()) {
      const std::string& answer = prompts[next++].second;
      if (write(master, answer.data(), answer.size()) < 0) break;
    }
  }
  close(master);
  int status = 0;
  waitpid(pid, &status, 0);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}

TEST_F(UserPassword, TypedTwiceOnATerminalWithoutEcho) {
  ASSERT_EQ(RunBinary(TIDEWELL_BINARY,
                      Words({"add", "alice", "--group", "Crew", "--password-stdin"}), "old\n")
                .status,
            0);
  TerminalRun run = RunOnTerminal(
      Words({"passwd", "alice"}),
      {{"New password: ", "tty-secret\n"}, {"Repeat the password: ", "tty-secret\n"}});
  EXPECT_EQ(run.status, 0) << run.screen;
  EXPECT_EQ(run.screen.find("tty-secret"), std::string::npos) << run.screen;  // never echoed
  EXPECT_NE(run.screen.find("changed the password of alice"), std::string::npos) << run.screen;
  EXPECT_TRUE(VerifyPassword(StoredHash("alice"), "tty-secret"));
}

TEST_F(UserPassword, TwoDifferentAnswersOnATerminalChangeNothing) {
  ASSERT_EQ(RunBinary(TIDEWELL_BINARY,
                      Words({"add", "alice", "--group", "Crew", "--password-stdin"}), "old\n")
                .status,
            0);
  const std::string before = StoredHash("alice");
  TerminalRun run = RunOnTerminal(Words({"passwd", "alice"}), {{"New password: ", "one\n"},
                                                               {"Repeat the password: ", "two\n"}});
  EXPECT_EQ(run.status, 1) << run.screen;
  EXPECT_NE(run.screen.find("the two passwords differ. Nothing was changed."), std::string::npos)
      << run.screen;
  EXPECT_EQ(StoredHash("alice"), before);
}

TEST_F(UserPassword, APasswordSetByTheCommandSignsInThroughTheLoginForm) {
  ASSERT_EQ(RunBinary(TIDEWELL_BINARY,
                      Words({"add", "alice", "--group", "Crew", "--admin", "--password-stdin"}),
                      "first\n")
                .status,
            0);
  ASSERT_EQ(
      RunBinary(TIDEWELL_BINARY, Words({"passwd", "alice", "--password-stdin"}), "second\n").status,
      0);
  const std::string config = engine_.folder.path() + "/site.conf";
  std::ofstream(config) << "Visible = True\nImagePath = images/\nConnectionString = "
                        << engine_.connection_string << "\n";
  testing::ServerProcess server(TIDEWELL_BINARY,
                                {"serve", "--config", config, "--listen", "127.0.0.1:0"},
                                {"TIDEWELL_NOW=2026-11-21 09:30:00"});
  const int port = server.WaitForPort();
  ASSERT_NE(port, 0) << server.Log();
  testing::SiteClient client(port);

  const std::string signed_in = client.LogIn("alice", "second");
  EXPECT_NE(signed_in.find("<b>Group:</b> Crew | <b>User:</b> alice"), std::string::npos)
      << signed_in;
  const std::string refused = client.LogIn("alice", "first");
  EXPECT_NE(refused.find("<!-- LoginScreen  Start -->"), std::string::npos);
  EXPECT_EQ(refused.find("<b>User:</b> alice"), std::string::npos);
}

}  // namespace
}  // namespace tidewell

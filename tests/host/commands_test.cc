// The tidewell binary's other commands, run as a user would run them.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

namespace tidewell {
namespace {

struct CommandRun {
  int status;
  std::string output;  // standard output and standard error together
};

CommandRun RunTidewell(const std::string& arguments) {
  std::string command = std::string(TIDEWELL_BINARY) + " " + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer;
  while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe)) output.append(buffer.data(), n);
  int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

TEST(InitDb, CreatesTheTablesOnceAndThenRefuses) {
  std::string db = ::testing::TempDir() + "/init_db_test_" + std::to_string(getpid()) + ".db";
  std::string connection = "--connection 'Provider=SQLite;Data Source=" + db + "'";
  CommandRun first = RunTidewell("init-db " + connection);
  EXPECT_EQ(first.status, 0) << first.output;
  EXPECT_EQ(first.output,
            "tidewell init-db: created the tables Groups, Users and Items, and the site's own "
            "TidewellSettings (with a new link secret) and LoginFailures\n");
  CommandRun second = RunTidewell("init-db " + connection);
  EXPECT_EQ(second.status, 1);
  EXPECT_NE(second.output.find("Nothing was changed."), std::string::npos) << second.output;
  std::filesystem::remove(db);
}

TEST(InitDb, WithoutAConnectionIsAUsageError) {
  CommandRun run = RunTidewell("init-db");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.output, "tidewell init-db: give --connection STRING or --config FILE\n");
}

TEST(Help, EveryCommandHasIt) {
  for (const char* command : {"--help", "serve --help", "render --help", "init-db --help",
                              "user --help", "version --help"}) {
    CommandRun run = RunTidewell(command);
    EXPECT_EQ(run.status, 0) << command;
    EXPECT_EQ(run.output.rfind("Usage: tidewell", 0), 0u) << command << ": " << run.output;
  }
}

TEST(Commands, UnknownCommandOrOptionIsAUsageError) {
  EXPECT_EQ(RunTidewell("frobnicate").status, 2);
  EXPECT_EQ(RunTidewell("serve --colour blue").status, 2);
}

TEST(Render, PrintsTheComponentsText) {
  CommandRun run = RunTidewell("render --url /cal/default.asp --query WS=7E3G");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.output.find("run-time error 13: Type mismatch"), std::string::npos) << run.output;
}

}  // namespace
}  // namespace tidewell

// The tidewell binary's other commands, run as a user would run them.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::CommandResult;
using testing::RunTidewell;

TEST(InitDb, CreatesTheTablesOnceAndThenRefuses) {
  std::string db = ::testing::TempDir() + "/init_db_test_" + std::to_string(getpid()) + ".db";
  std::string connection = "--connection 'Provider=SQLite;Data Source=" + db + "'";
  CommandResult first = RunTidewell("init-db " + connection);
  EXPECT_EQ(first.status, 0) << first.out;
  EXPECT_EQ(first.out,
            "tidewell init-db: created the tables Groups, Users and Items, and the site's own "
            "TidewellSettings (with a new link secret), LoginFailures, TidewellFeedTokens and "
            "TidewellImportedEvents, at schema version 5\n");
  CommandResult second = RunTidewell("init-db " + connection);
  EXPECT_EQ(second.status, 1);
  EXPECT_NE(second.out.find("Nothing was changed."), std::string::npos) << second.out;
  std::filesystem::remove(db);
}

TEST(InitDb, WithoutAConnectionIsAUsageError) {
  CommandResult run = RunTidewell("init-db");
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "tidewell init-db: give --connection STRING or --config FILE\n");
}

TEST(Help, EveryCommandHasIt) {
  for (const char* command : {"--help", "serve --help", "render --help", "init-db --help",
                              "migrate --help", "backup --help", "config --help",
                              "user --help", "version --help"}) {
    CommandResult run = RunTidewell(command);
    EXPECT_EQ(run.status, 0) << command;
    EXPECT_EQ(run.out.rfind("Usage: tidewell", 0), 0u) << command << ": " << run.out;
  }
}

TEST(Commands, UnknownCommandOrOptionIsAUsageError) {
  EXPECT_EQ(RunTidewell("frobnicate").status, 2);
  EXPECT_EQ(RunTidewell("serve --colour blue").status, 2);
}

TEST(Render, PrintsTheComponentsText) {
  CommandResult run = RunTidewell("render --url /cal/default.asp --query WS=7E3G");
  EXPECT_EQ(run.status, 1);
  EXPECT_NE(run.out.find("run-time error 13: Type mismatch"), std::string::npos) << run.out;
}

TEST(Config, PrintsWhatTheServerWouldRunWithSecretsMasked) {
  const std::string file = ::testing::TempDir() + "/config_command_" + std::to_string(getpid());
  std::FILE* out = std::fopen(file.c_str(), "w");
  std::fputs("Workers = 4\nLinkSecret = file-secret-0123456789\n"
             "ConnectionString = Provider=PostgreSQL;host=db;Password=hunter2;dbname=t\n",
             out);
  std::fclose(out);
  CommandResult run = RunTidewell("config --config " + file);
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_NE(run.out.find("Workers = 4\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("LinkSecret = ********\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("host=db;Password=********;dbname=t\n"), std::string::npos)
      << run.out;
  EXPECT_EQ(run.out.find("hunter2"), std::string::npos);
  EXPECT_EQ(run.out.find("file-secret"), std::string::npos);
  EXPECT_NE(run.out.find("Feeds = off\nTimeZone = "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("FeedDaysBack = 90\nFeedDaysAhead = 400\n"), std::string::npos);

  run = RunTidewell("config --config " + file, "TIDEWELL_WORKERS=7");
  EXPECT_EQ(run.status, 0) << run.out;
  EXPECT_NE(run.out.find("Workers = 7\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find(", TIDEWELL_WORKERS"), std::string::npos) << run.out;

  run = RunTidewell("config --config " + file, "TIDEWELL_WORKERS=0");
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out,
            "tidewell config: environment TIDEWELL_WORKERS: Workers is a whole number from 1 to "
            "256, not 0\n");
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace tidewell

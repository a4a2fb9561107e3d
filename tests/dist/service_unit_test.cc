// The systemd unit and the configuration in dist/: systemd's own checker reads the unit as
// systemd would, and rates its sandboxing; the configuration loads as the service loads it.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "host/config.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

const std::string kDist = std::string(TIDEWELL_SOURCE_DIR) + "/dist/";

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

using testing::CommandResult;
using testing::RunShell;

class ServiceUnit : public ::testing::Test {
 protected:
  void SetUp() override {
    if (RunShell("command -v systemd-analyze").status != 0) {
      GTEST_SKIP() << "systemd-analyze is missing: scripts/setup.sh installs systemd";
    }
    unit_ = ReadFile(kDist + "tidewell.service");
    ASSERT_FALSE(unit_.empty());
    // The unit as installed names /usr/local/bin/tidewell; the checker wants a binary there,
    // so the copy it reads names the one just built.
    std::string copy = unit_;
    const std::string installed = "/usr/local/bin/tidewell";
    const size_t at = copy.find("ExecStart=" + installed);
    ASSERT_NE(at, std::string::npos);
    copy.replace(at + 10, installed.size(), TIDEWELL_BINARY);
    folder_ = std::filesystem::temp_directory_path() /
              ("tidewell-unit-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder_);
    std::ofstream(folder_ / "tidewell.service") << copy;
  }

  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string UnitPath() const { return (folder_ / "tidewell.service").string(); }

  std::string unit_;
  std::filesystem::path folder_;
};

TEST_F(ServiceUnit, SystemdReadsItWithoutAWord) {
  const CommandResult verified = RunShell("systemd-analyze verify --man=no " + UnitPath());
  EXPECT_EQ(verified.status, 0) << verified.out;
  // An unknown or misspelt key is only a warning to systemd: any word at all fails here.
  EXPECT_EQ(verified.out, "");
}

// systemd rates a unit's exposure from 0 (locked down) to 10; 2 and below it calls "OK".
TEST_F(ServiceUnit, ItsSandboxRatesAsLowExposure) {
  const CommandResult rated =
      RunShell("systemd-analyze security --offline=true --threshold=20 " + UnitPath());
  EXPECT_EQ(rated.status, 0) << rated.out;
  EXPECT_NE(rated.out.find("Overall exposure level"), std::string::npos) << rated.out;
}

TEST_F(ServiceUnit, RunsAsItsOwnUserWithItsStateFolderAndNothingElseWritable) {
  for (const char* line :
       {"User=tidewell\n", "StateDirectory=tidewell\n", "WorkingDirectory=/var/lib/tidewell\n",
        "ProtectSystem=strict\n", "NoNewPrivileges=yes\n", "PrivateTmp=yes\n",
        "ProtectHome=yes\n", "CapabilityBoundingSet=\n", "KillSignal=SIGTERM\n",
        "ExecStart=/usr/local/bin/tidewell serve --config /etc/tidewell/tidewell.conf\n"}) {
    EXPECT_NE(unit_.find(line), std::string::npos) << line;
  }
  // The user it runs as is the one dist/tidewell.sysusers makes.
  EXPECT_NE(ReadFile(kDist + "tidewell.sysusers").find("u tidewell - "), std::string::npos);
}

TEST(ServiceConfiguration, KeepsTheDatabaseInTheStateFolderAndListensOnLoopback) {
  const SiteConfig config = LoadConfig(kDist + "tidewell.conf");
  EXPECT_EQ(config.listen, "127.0.0.1:8080");
  EXPECT_EQ(config.pages.front().PropertyValue("ConnectionString"),
            "Provider=SQLite;Data Source=/var/lib/tidewell/tidewell.db");
}

}  // namespace
}  // namespace tidewell

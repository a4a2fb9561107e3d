// tidewell --version and tidewell version.

#include <gtest/gtest.h>

#include <string>

#include "data/engine_versions.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

TEST(Version, NamesTheProjectVersionAndTheLinkedLibraries) {
  // The libraries the test is linked with are the ones the binary is linked with.
  const std::string expected = std::string("tidewell ") + TIDEWELL_PROJECT_VERSION + "\nSQLite " +
                               ado::SqliteLibraryVersion() + "\nlibpq " +
                               ado::PostgresLibraryVersion() + "\n";
  EXPECT_NE(ado::SqliteLibraryVersion().find('.'), std::string::npos);
  for (const char* word : {"--version", "version"}) {
    testing::CommandResult run = testing::RunBinary(TIDEWELL_BINARY, {word});
    EXPECT_EQ(run.status, 0) << word;
    EXPECT_EQ(run.out, expected) << word;
  }
}

}  // namespace
}  // namespace tidewell

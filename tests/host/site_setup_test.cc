#include "host/site_setup.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "data/schema.h"
#include "host/config.h"
#include "tests/data/engines.h"

namespace tidewell {
namespace {

SiteConfig ConfigFor(const std::string& text) {
  return ParseConfig(text, "site.conf");
}

TEST(PrepareSigning, TheConfiguredSecretAndLifetimeWin) {
  testing::TempFolder folder;
  SiteConfig config =
      ConfigFor("ConnectionString = Provider=SQLite;Data Source=" + folder.path() +
                "/cal.db\nLinkSecret = configured-secret-0123\nLinkLifetime = 600\n");
  CreateSchema(config.pages[0].PropertyValue("ConnectionString"));
  LinkSigning signing = PrepareSigning(config);
  EXPECT_EQ(signing.secret, "configured-secret-0123");
  EXPECT_EQ(signing.lifetime_seconds, 600);
  EXPECT_FALSE(std::filesystem::exists(folder.path() + "/tidewell-link.secret"));
}

TEST(PrepareSigning, WithoutOneASecretIsMadeInTheDatabaseAndKept) {
  testing::TempFolder folder;
  SiteConfig config =
      ConfigFor("ConnectionString = Provider=SQLite;Data Source=" + folder.path() + "/cal.db\n");
  CreateSchema(config.pages[0].PropertyValue("ConnectionString"));
  LinkSigning first = PrepareSigning(config);
  EXPECT_EQ(first.secret.size(), 64u);
  EXPECT_EQ(first.lifetime_seconds, 12 * 60 * 60);
  EXPECT_EQ(SiteLinkSecret(config.pages[0].PropertyValue("ConnectionString")), first.secret);
  EXPECT_EQ(PrepareSigning(config).secret, first.secret);
  EXPECT_FALSE(std::filesystem::exists(folder.path() + "/tidewell-link.secret"));
}

// Every server of a site shares the one database, and so the secret, with no configuration.
TEST(PrepareSigning, ServersOnOnePostgresDatabaseShareTheSecretTheFirstOneMade) {
  testing::PostgresEngine engine;
  if (std::string skip = engine.Start(); !skip.empty()) GTEST_SKIP() << skip;
  SiteConfig config = ConfigFor("ConnectionString = " + engine.connection_string + "\n");
  std::string first = PrepareSigning(config).secret;
  EXPECT_EQ(first.size(), 64u);
  EXPECT_EQ(PrepareSigning(config).secret, first);
}

// Servers and their database may start in any order: a server that found its database down
// signs with a secret of its own until the database answers, then with the site's.
TEST(SiteSigning, TakesTheDatabasesSecretOnceTheDatabaseAnswers) {
  testing::TempFolder folder;
  const std::string database = folder.path() + "/later/cal.db";
  SiteConfig config = ConfigFor("ConnectionString = Provider=SQLite;Data Source=" + database + "\n");
  SiteSigning signing(config, std::chrono::milliseconds(0));
  EXPECT_EQ(signing.Current().secret, "");  // the component's own process secret
  std::filesystem::create_directory(folder.path() + "/later");
  CreateSchema("Provider=SQLite;Data Source=" + database);
  const std::string kept = signing.Current().secret;
  EXPECT_EQ(kept.size(), 64u);
  EXPECT_EQ(kept, SiteLinkSecret("Provider=SQLite;Data Source=" + database));
  EXPECT_EQ(signing.Current().secret, kept);
}

TEST(SiteSigning, AConfiguredSecretIsSettledAtOnce) {
  SiteConfig config = ConfigFor(
      "ConnectionString = Provider=SQLite;Data Source=/no/such/folder/cal.db\n"
      "LinkSecret = configured-secret-0123\n");
  SiteSigning signing(config, std::chrono::milliseconds(0));
  EXPECT_EQ(signing.Current().secret, "configured-secret-0123");
}

// An in-memory database has no tables at start, so no secret to keep.
TEST(PrepareSigning, WithoutAFileDatabaseTheSecretLastsAsLongAsTheProcess) {
  SiteConfig config = ConfigFor("ConnectionString = Provider=SQLite;Data Source=:memory:\n");
  EXPECT_EQ(PrepareSigning(config).secret, "");
}

}  // namespace
}  // namespace tidewell

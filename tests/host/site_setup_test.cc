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

TEST(PrepareSigning, WithoutOneASecretIsMadeBesideTheDatabaseAndKept) {
  testing::TempFolder folder;
  SiteConfig config =
      ConfigFor("ConnectionString = Provider=SQLite;Data Source=" + folder.path() + "/cal.db\n");
  CreateSchema(config.pages[0].PropertyValue("ConnectionString"));
  LinkSigning first = PrepareSigning(config);
  EXPECT_EQ(first.secret.size(), 64u);
  EXPECT_EQ(first.lifetime_seconds, 12 * 60 * 60);
  std::string file = folder.path() + "/tidewell-link.secret";
  struct stat info;
  ASSERT_EQ(::stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0077, 0u);  // readable by the server's user only
  EXPECT_EQ(PrepareSigning(config).secret, first.secret);
}

TEST(PrepareSigning, ASecretFileTooShortIsNotUsed) {
  testing::TempFolder folder;
  SiteConfig config =
      ConfigFor("ConnectionString = Provider=SQLite;Data Source=" + folder.path() + "/cal.db\n");
  CreateSchema(config.pages[0].PropertyValue("ConnectionString"));
  std::ofstream(folder.path() + "/tidewell-link.secret") << "short\n";
  EXPECT_EQ(PrepareSigning(config).secret, "");  // the component signs with a process secret
}

TEST(PrepareSigning, WithoutAFileDatabaseTheSecretLastsAsLongAsTheProcess) {
  SiteConfig config = ConfigFor("ConnectionString = Provider=SQLite;Data Source=:memory:\n");
  EXPECT_EQ(PrepareSigning(config).secret, "");
}

}  // namespace
}  // namespace tidewell

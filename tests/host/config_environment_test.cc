// Configuration from the environment: TIDEWELL_<NAME> and TIDEWELL_<NAME>_FILE.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/config.h"

namespace tidewell {
namespace {

// A NULL-terminated environment as environ holds it.
class Environment {
 public:
  explicit Environment(std::vector<std::string> entries) : entries_(std::move(entries)) {
    for (std::string& entry : entries_) pointers_.push_back(entry.data());
    pointers_.push_back(nullptr);
  }
  char** get() { return pointers_.data(); }

 private:
  std::vector<std::string> entries_;
  std::vector<char*> pointers_;
};

std::string ErrorOf(SiteConfig& config, std::vector<std::string> entries) {
  Environment environment(std::move(entries));
  try {
    ApplyEnvironment(config, environment.get());
  } catch (const ConfigError& e) {
    return e.what();
  }
  return "";
}

TEST(ConfigEnvironment, HostKeysAndPropertiesWinOverTheFileOnEveryPage) {
  SiteConfig config = ParseConfig(
      "Workers = 4\nConnectionString = Provider=SQLite;Data Source=a.db\n"
      "[page /other]\nConnectionString = Provider=SQLite;Data Source=b.db\n",
      "site.conf");
  Environment environment({"TIDEWELL_WORKERS=6", "PATH=/bin",
                           "TIDEWELL_CONNECTIONSTRING=Provider=SQLite;Data Source=c.db",
                           "TIDEWELL_NOW=2026-11-21 09:30:00", "TIDEWELL_TEST_POSTGRES=x"});
  const std::vector<std::string> used = ApplyEnvironment(config, environment.get());
  EXPECT_EQ(used, (std::vector<std::string>{"TIDEWELL_WORKERS", "TIDEWELL_CONNECTIONSTRING"}));
  EXPECT_EQ(config.workers, 6);
  for (const PageConfig& page : config.pages) {
    EXPECT_EQ(page.PropertyValue("ConnectionString"), "Provider=SQLite;Data Source=c.db")
        << page.path;
  }
}

TEST(ConfigEnvironment, ASecretComesFromAFileWithoutItsLineEnd) {
  const std::filesystem::path secret =
      std::filesystem::temp_directory_path() / ("tidewell-secret-" + std::to_string(getpid()));
  std::ofstream(secret) << "a-secret-of-enough-length\n";
  SiteConfig config = DefaultConfig();
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_LINKSECRET_FILE=" + secret.string()}), "");
  EXPECT_EQ(config.link_secret, "a-secret-of-enough-length");
  std::filesystem::remove(secret);
}

TEST(ConfigEnvironment, ABadValueOrAMissingFileNamesTheVariable) {
  SiteConfig config = DefaultConfig();
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_WORKERS=many"}),
            "environment TIDEWELL_WORKERS: expected a whole number, not many");
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_LINKSECRET=short"}),
            "environment TIDEWELL_LINKSECRET: LinkSecret needs at least 16 characters");
  EXPECT_NE(ErrorOf(config, {"TIDEWELL_LINKSECRET_FILE=/nonexistent/secret"})
                .rfind("environment TIDEWELL_LINKSECRET_FILE: ", 0),
            std::string::npos);
  EXPECT_NE(ErrorOf(config, {"TIDEWELL_VISIBLE=perhaps"}).rfind("environment TIDEWELL_VISIBLE: ", 0),
            std::string::npos);
  EXPECT_EQ(config.workers, 0);
  EXPECT_FALSE(config.link_secret);
}

TEST(ConfigEnvironment, FeedKeysComeFromTheEnvironmentAndAnUnknownZoneNamesTheVariable) {
  SiteConfig config = DefaultConfig();
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_FEEDS=on", "TIDEWELL_TIMEZONE=America/New_York",
                             "TIDEWELL_FEEDDAYSBACK=3", "TIDEWELL_FEEDDAYSAHEAD=5"}),
            "");
  EXPECT_TRUE(config.feeds);
  EXPECT_EQ(config.time_zone, "America/New_York");
  EXPECT_EQ(config.feed_days_back, 3);
  EXPECT_EQ(config.feed_days_ahead, 5);
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_TIMEZONE=Moon/Tranquility"}),
            "environment TIDEWELL_TIMEZONE: TimeZone names a zone such as Europe/Berlin or UTC; "
            "unknown time zone Moon/Tranquility");
  EXPECT_EQ(config.time_zone, "America/New_York");
}

TEST(ConfigEnvironment, NamesMatchWithoutRegardToCase) {
  SiteConfig config = DefaultConfig();
  EXPECT_EQ(ErrorOf(config, {"TIDEWELL_maxconnections=50", "TIDEWELL_LOCALE=en-GB"}), "");
  EXPECT_EQ(config.max_connections, 50);
  EXPECT_EQ(config.locale, "en-GB");
}

}  // namespace
}  // namespace tidewell

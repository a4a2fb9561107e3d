#include "host/site_setup.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <vector>

#include "accounts/stored_passwords.h"
#include "data/database_error.h"
#include "data/schema.h"
#include "data/schema_migrations.h"
#include "data/site_settings.h"
#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

constexpr const char* kLinkSecretSetting = "LinkSecret";

// The distinct connection strings of the configured pages, the "/" page's first.
std::vector<std::string> ConfiguredDatabases(const SiteConfig& config) {
  std::vector<std::string> databases;
  for (const PageConfig& page : config.pages) {
    std::string connection_string = page.PropertyValue("ConnectionString");
    if (std::find(databases.begin(), databases.end(), connection_string) == databases.end()) {
      databases.push_back(std::move(connection_string));
    }
  }
  return databases;
}

// Makes one configured database ready: creates a SQLite file that is missing, refuses a
// database of another schema version (throws std::runtime_error), and hashes passwords it
// kept as typed. A database that cannot be reached is logged, not fatal: the pages then show
// the error screen with its advice, as they would for any database trouble.
void PrepareDatabase(const SiteConfig& config, const std::string& connection_string) {
  EmbeddedDatabaseReport report = PrepareEmbeddedDatabase(connection_string);
  using Outcome = EmbeddedDatabaseReport::Outcome;
  if (report.outcome == Outcome::kCreated || report.outcome == Outcome::kFailed) {
    std::fprintf(stderr, "tidewell: %s\n", report.message.c_str());
  }
  if (report.outcome == Outcome::kFailed) return;
  if (!RefuseOtherSchemaVersion(config, connection_string)) return;
  try {
    if (std::string warning = SharedNamesWarning(connection_string); !warning.empty()) {
      std::fprintf(stderr, "tidewell: warning: %s\n", warning.c_str());
    }
    if (int hashed = HashPasswordsKeptAsTyped(connection_string); hashed > 0) {
      std::fprintf(stderr, "tidewell: replaced %d stored password%s with %s hash\n", hashed,
                   hashed == 1 ? "" : "s", hashed == 1 ? "its" : "their");
    }
  } catch (const ado::DatabaseError& error) {
    std::fprintf(stderr, "tidewell: cannot prepare the database: %s\n", error.what());
  }
}

// How the refusal tells the operator to name the database to migrate.
std::string MigrateArguments(const SiteConfig& config, const std::string& connection_string) {
  return config.file.empty() ? "--connection '" + connection_string + "'"
                             : "--config " + config.file;
}

}  // namespace

bool RefuseOtherSchemaVersion(const SiteConfig& config, const std::string& connection_string) {
  std::optional<int> version;
  try {
    version = ReadSchemaVersion(connection_string);
  } catch (const ado::DatabaseError& error) {
    std::fprintf(stderr, "tidewell: cannot read the database's schema version: %s\n",
                 error.what());
    return false;
  }
  if (!version) {
    std::fprintf(stderr,
                 "tidewell: the database has none of the calendar's tables: create them with "
                 "`tidewell init-db %s`\n",
                 MigrateArguments(config, connection_string).c_str());
    return false;
  }
  if (*version < kSchemaVersion) {
    throw std::runtime_error("the database has schema version " + std::to_string(*version) +
                             ", this tidewell needs " + std::to_string(kSchemaVersion) +
                             ": run `tidewell migrate " +
                             MigrateArguments(config, connection_string) + "`");
  }
  if (*version > kSchemaVersion) {
    throw std::runtime_error("the database was upgraded by a newer tidewell (version " +
                             std::to_string(*version) + "); this one knows up to " +
                             std::to_string(kSchemaVersion) + ": run the newer tidewell");
  }
  return true;
}

std::string DefaultAssetFolder() {
  return TIDEWELL_ASSET_DIR;
}

void PrepareRegionalSettings(const SiteConfig& config) {
  if (!SetRegionalSettings(config.locale)) {
    throw std::runtime_error("unknown locale " + config.locale);
  }
}

std::string SiteLinkSecret(const std::string& connection_string) {
  return ReadOrStoreSetting(connection_string, kLinkSecretSetting, GenerateLinkSecret());
}

LinkSigning PrepareSigning(const SiteConfig& config) {
  LinkSigning signing;
  signing.lifetime_seconds = config.link_lifetime_seconds;
  if (config.link_secret) {
    signing.secret = *config.link_secret;
    return signing;
  }
  // Every page signs with the secret of the "/" page's database: any secret serves, as long
  // as every server of the site signs with the same one.
  const std::string connection_string = config.pages.front().PropertyValue("ConnectionString");
  try {
    signing.secret = SiteLinkSecret(connection_string);
  } catch (const ado::DatabaseError& error) {
    // The component then signs with a secret of its own that lives as long as this process.
    std::fprintf(stderr,
                 "tidewell: no LinkSecret configured and the database cannot give its own (%s); "
                 "links signed until it can stay valid on this server only\n",
                 error.what());
  }
  return signing;
}

PreparedSite PrepareSite(const SiteConfig& config) {
  PrepareRegionalSettings(config);
  for (const std::string& connection_string : ConfiguredDatabases(config)) {
    PrepareDatabase(config, connection_string);
  }
  std::string folder = config.asset_folder.empty() ? DefaultAssetFolder() : config.asset_folder;
  return {std::make_unique<SiteSigning>(config), StaticAssets::Load(folder)};
}

}  // namespace tidewell

#include "host/site_setup.h"

#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <stdexcept>

#include "data/connection_string.h"
#include "data/database_error.h"
#include "data/schema.h"
#include "runtime/regional_settings.h"

namespace tidewell {
namespace {

namespace fs = std::filesystem;

// The SQLite file a connection string names, if it names one.
std::optional<fs::path> EmbeddedDatabaseFile(const std::string& connection_string) {
  try {
    ado::ConnectionSettings settings = ado::ParseConnectionString(connection_string);
    if (!EqualsIgnoringCase(settings.provider, "SQLite")) return std::nullopt;
    std::optional<std::string> file = settings.Get("Data Source");
    if (!file || file->empty() || *file == ":memory:") return std::nullopt;
    return fs::path(*file);
  } catch (const ado::DatabaseError&) {
    return std::nullopt;
  }
}

// Creates each configured SQLite file that is missing. A failure is logged, not fatal: the
// pages then show the error screen with its advice, as they would for any database trouble.
void PrepareEmbeddedDatabases(const SiteConfig& config) {
  std::set<std::string> seen;
  for (const PageConfig& page : config.pages) {
    std::string connection_string = page.PropertyValue("ConnectionString");
    if (!seen.insert(connection_string).second) continue;
    EmbeddedDatabaseReport report = PrepareEmbeddedDatabase(connection_string);
    using Outcome = EmbeddedDatabaseReport::Outcome;
    if (report.outcome == Outcome::kCreated || report.outcome == Outcome::kFailed) {
      std::fprintf(stderr, "tidewell: %s\n", report.message.c_str());
    }
  }
}

// The secret kept beside the embedded database, made on the first start. Every server that
// uses the file then signs alike, across restarts.
std::optional<std::string> KeptSecret(const fs::path& database) {
  fs::path file = database.parent_path() / "tidewell-link.secret";
  if (std::ifstream in(file); in) {
    std::string secret;
    std::getline(in, secret);
    if (secret.size() >= 16) return secret;
    std::fprintf(stderr, "tidewell: %s holds no usable secret\n", file.string().c_str());
    return std::nullopt;
  }
  std::string secret = GenerateLinkSecret();
  mode_t previous = umask(077);
  std::ofstream out(file);
  out << secret << "\n";
  out.close();
  umask(previous);
  if (!out) {
    std::fprintf(stderr, "tidewell: cannot keep a link secret in %s\n", file.string().c_str());
    return std::nullopt;
  }
  std::fprintf(stderr, "tidewell: made a new link secret in %s\n", file.string().c_str());
  return secret;
}

std::optional<std::string> SecretBesideTheDatabase(const SiteConfig& config) {
  for (const PageConfig& page : config.pages) {
    auto database = EmbeddedDatabaseFile(page.PropertyValue("ConnectionString"));
    if (database && fs::exists(*database)) return KeptSecret(*database);
  }
  return std::nullopt;
}

}  // namespace

std::string DefaultAssetFolder() {
  return TIDEWELL_ASSET_DIR;
}

void PrepareRegionalSettings(const SiteConfig& config) {
  if (!SetRegionalSettings(config.locale)) {
    throw std::runtime_error("unknown locale " + config.locale);
  }
}

LinkSigning PrepareSigning(const SiteConfig& config) {
  LinkSigning signing;
  signing.lifetime_seconds = config.link_lifetime_seconds;
  if (config.link_secret) {
    signing.secret = *config.link_secret;
  } else if (auto kept = SecretBesideTheDatabase(config)) {
    signing.secret = *kept;
  } else {
    // The component then signs with a secret of its own that lives as long as this process.
    std::fprintf(stderr,
                 "tidewell: no LinkSecret configured and no database to keep one beside; "
                 "links stay valid until this server stops\n");
  }
  return signing;
}

PreparedSite PrepareSite(const SiteConfig& config) {
  PrepareRegionalSettings(config);
  PrepareEmbeddedDatabases(config);
  std::string folder = config.asset_folder.empty() ? DefaultAssetFolder() : config.asset_folder;
  return {PrepareSigning(config), StaticAssets::Load(folder)};
}

}  // namespace tidewell

#pragma once

#include <memory>
#include <string>

#include "host/config.h"
#include "host/site_signing.h"
#include "host/static_assets.h"
#include "page/link_keys.h"

namespace tidewell {

// What the server makes ready once before it takes requests.
struct PreparedSite {
  std::unique_ptr<SiteSigning> signing;
  StaticAssets assets;
};

// Puts the configured regional settings in force, makes each configured database ready (a
// SQLite file that does not exist yet is created, a database of another schema version is
// refused, passwords kept as typed are hashed), reads the images and the style sheet, and
// settles the secret that signs keys in links. Throws std::runtime_error saying what is wrong.
PreparedSite PrepareSite(const SiteConfig& config);

// Throws std::runtime_error, saying what to run, when the database has an older or a newer
// schema version than this tidewell's. Answers whether the version could be read and is the
// current one; a database that cannot be read or has no tables yet is only logged, as the
// pages then show the error screen for it.
bool RefuseOtherSchemaVersion(const SiteConfig& config, const std::string& connection_string);

// The asset folder of this build, used when the configuration names none.
std::string DefaultAssetFolder();

// The secret that signs keys in links: LinkSecret when configured, else the one kept in the
// "/" page's database (made there by the first server that needs it), else, while that
// database cannot be reached, one that lasts as long as the process.
LinkSigning PrepareSigning(const SiteConfig& config);

// The link secret kept in the database, stored first when there is none. Throws
// ado::DatabaseError.
std::string SiteLinkSecret(const std::string& connection_string);
void PrepareRegionalSettings(const SiteConfig& config);

}  // namespace tidewell

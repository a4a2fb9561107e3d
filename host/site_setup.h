#pragma once

#include <string>

#include "component/link_keys.h"
#include "host/config.h"
#include "host/static_assets.h"

namespace tidewell {

// What the server makes ready once before it takes requests.
struct PreparedSite {
  LinkSigning signing;
  StaticAssets assets;
};

// Puts the configured regional settings in force, creates a configured SQLite database that
// does not exist yet, reads the images and the style sheet, and settles the secret that signs
// keys in links. Throws std::runtime_error saying what is wrong.
PreparedSite PrepareSite(const SiteConfig& config);

// The asset folder of this build, used when the configuration names none.
std::string DefaultAssetFolder();

// The secret that signs keys in links: LinkSecret when configured, else the one kept beside
// the embedded database (made on first use), else one that lasts as long as the process.
LinkSigning PrepareSigning(const SiteConfig& config);
void PrepareRegionalSettings(const SiteConfig& config);

}  // namespace tidewell

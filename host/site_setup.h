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

// Puts the configured regional settings in force, reads the images and the style sheet, and
// settles the secret that signs keys in links. Throws std::runtime_error saying what is wrong.
PreparedSite PrepareSite(const SiteConfig& config);

// The asset folder of this build, used when the configuration names none.
std::string DefaultAssetFolder();

// The regional settings and link signing alone, for `tidewell render`.
LinkSigning PrepareSigning(const SiteConfig& config);
void PrepareRegionalSettings(const SiteConfig& config);

}  // namespace tidewell

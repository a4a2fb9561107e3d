#include "host/site_setup.h"

#include <cstdio>
#include <stdexcept>

#include "runtime/regional_settings.h"

namespace tidewell {

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
  // Without a configured secret the component signs with one of its own that lives as long
  // as this process: links then last until the server restarts.
  if (config.link_secret) signing.secret = *config.link_secret;
  return signing;
}

PreparedSite PrepareSite(const SiteConfig& config) {
  PrepareRegionalSettings(config);
  std::string folder = config.asset_folder.empty() ? DefaultAssetFolder() : config.asset_folder;
  if (!config.link_secret) {
    std::fprintf(stderr,
                 "tidewell: no LinkSecret configured; links stay valid until this server stops\n");
  }
  return {PrepareSigning(config), StaticAssets::Load(folder)};
}

}  // namespace tidewell

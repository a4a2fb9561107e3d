#include "page/properties.h"

namespace tidewell {

std::string property_kind::Folder::Stored(std::string folder) {
  if (!folder.empty() && folder.back() != '/') folder += '/';
  return folder;
}

void ResetPropertyDefaults(Properties& p) {
  const Properties defaults;
#define TIDEWELL_PROPERTY(kind, Name, default_value, at_start) \
  if constexpr (AtStartPage::at_start == AtStartPage::kReset) p.Name = defaults.Name;
#include "page/property_list.h"
#undef TIDEWELL_PROPERTY
}

}  // namespace tidewell

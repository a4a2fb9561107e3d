#include "runtime/regional_settings.h"

#include <atomic>
#include <stdexcept>

namespace tidewell {
namespace {

const RegionalSettings kUnitedStates{"en-US", true, false, true};
const RegionalSettings kBritain{"en-GB", false, true, false};

std::atomic<const RegionalSettings*> current{&kUnitedStates};

const RegionalSettings* Find(std::string_view name) {
  if (name == "en-US") return &kUnitedStates;
  if (name == "en-GB") return &kBritain;
  return nullptr;
}

}  // namespace

const RegionalSettings& Regional() {
  return *current.load(std::memory_order_relaxed);
}

bool SetRegionalSettings(std::string_view name) {
  const RegionalSettings* found = Find(name);
  if (found == nullptr) return false;
  current.store(found, std::memory_order_relaxed);
  return true;
}

ScopedRegionalSettings::ScopedRegionalSettings(std::string_view name) : previous_(Regional().name) {
  if (!SetRegionalSettings(name))
    throw std::invalid_argument("unknown locale " + std::string(name));
}

ScopedRegionalSettings::~ScopedRegionalSettings() {
  SetRegionalSettings(previous_);
}

}  // namespace tidewell

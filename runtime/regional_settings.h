#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tidewell {

// The server's regional settings, as the automation run time read them from the system: the
// order and padding of the short date and the clock of the long time. Process-wide, like the
// operating system's own; the host sets them once at start from its `Locale` key.
struct RegionalSettings {
  std::string name;        // "en-US"
  bool month_first;        // m/d/yyyy rather than d/m/yyyy
  bool padded_day_month;   // dd/mm/yyyy rather than d/m/yyyy
  bool twelve_hour_clock;  // "1:05:00 PM" rather than "13:05:00"
};

const RegionalSettings& Regional();

// Selects the settings named "en-US" or "en-GB"; false for any other name.
bool SetRegionalSettings(std::string_view name);

// While alive, the named settings are in force; the previous ones come back afterwards.
class ScopedRegionalSettings {
 public:
  explicit ScopedRegionalSettings(std::string_view name);
  ~ScopedRegionalSettings();
  ScopedRegionalSettings(const ScopedRegionalSettings&) = delete;
  ScopedRegionalSettings& operator=(const ScopedRegionalSettings&) = delete;

 private:
  std::string previous_;
};

}  // namespace tidewell

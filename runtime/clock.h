#pragma once

#include <optional>

#include "runtime/variant.h"

namespace tidewell {

// The present moment in the server's local time. When the environment variable TIDEWELL_NOW
// holds "YYYY-MM-DD HH:MM:SS", that moment stands still for the whole process; tests and
// demonstrations rely on it. Nothing else in the system reads the system clock.
Date Now();
// Now() without its time of day.
Date Today();

// Throws std::runtime_error naming the problem when TIDEWELL_NOW is set but unreadable; the
// host calls it at start so that a typo stops the server instead of being ignored.
void CheckClockEnvironment();

// For tests: fixes the clock at `moment`, or sets it running on the system clock.
void SetFixedNow(std::optional<Date> moment);

}  // namespace tidewell

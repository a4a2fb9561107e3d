#pragma once

#include <string>

#include "host/config.h"

namespace tidewell {

// `tidewell serve`: answers each configured page path with the component, serves the images
// and the style sheet, logs one line per request on standard error, and stops cleanly on
// SIGINT or SIGTERM. `listen` is HOST:PORT; port 0 takes any free port. The address it
// listens on is printed to standard error once it accepts connections. Returns the exit code.
int Serve(const SiteConfig& config, const std::string& listen);

}  // namespace tidewell

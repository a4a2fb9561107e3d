// The database a command names: --connection STRING or --config FILE.

#include <stdexcept>
#include <string>

#include "host/commands.h"

namespace tidewell {

std::string ConnectionFrom(const Arguments& args) {
  if (std::optional<std::string> connection = args.Get("connection")) return *connection;
  if (args.Has("config")) return ConfigFrom(args).pages.front().PropertyValue("ConnectionString");
  throw std::invalid_argument("give --connection STRING or --config FILE");
}

}  // namespace tidewell

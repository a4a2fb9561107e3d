// tidewell: the calendar server and its tools.

#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

#include "host/commands.h"
#include "runtime/automation_error.h"
#include "runtime/clock.h"

namespace tidewell {
namespace {

constexpr Command kCommands[] = {
    {"serve", "run the calendar web server", ServeCommand},
    {"render", "print the HTML the calendar writes for one request", RenderCommand},
    {"init-db", "create the calendar's tables on an empty database", InitDbCommand},
    {"config", "print the effective configuration, secrets masked", ConfigCommand},
    {"migrate", "bring the database's schema up to this tidewell's version", MigrateCommand},
    {"backup", "copy the embedded database while the server runs", BackupCommand},
    {"user", "list, add, change and delete accounts; their feed addresses", UserCommand},
    {"import", "make items of the events of an iCalendar file for a user", ImportCommand},
    {"version", "print the versions of tidewell and of its database libraries", VersionCommand},
};

void PrintUsage(std::FILE* to) {
  std::fputs("Usage: tidewell COMMAND [OPTIONS]\n\nCommands:\n", to);
  for (const Command& command : kCommands) {
    std::fprintf(to, "  %-9s %s\n", command.name, command.summary);
  }
  std::fputs(
      "\nRun 'tidewell COMMAND --help' for a command's options; 'tidewell --version'\n"
      "prints the versions.\n",
      to);
}

const Command* FindCommand(const std::string& name) {
  for (const Command& command : kCommands) {
    if (name == command.name) return &command;
  }
  return nullptr;
}

int Main(int argc, char** argv) {
  std::string name = argc > 1 ? argv[1] : "";
  if (name == "--help" || name == "-h" || name == "help") return PrintUsage(stdout), 0;
  if (name == "--version") name = "version";
  const Command* command = FindCommand(name);
  if (command == nullptr) return PrintUsage(stderr), 2;
  try {
    CheckClockEnvironment();
    return command->run(argc - 2, argv + 2);
  } catch (const std::invalid_argument& e) {
    std::fprintf(stderr, "tidewell %s: %s\n", name.c_str(), e.what());
    return 2;
  } catch (const AutomationError& e) {
    std::fprintf(stderr, "tidewell %s: run-time error %ld: %s\n", name.c_str(), e.number(),
                 e.what());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "tidewell %s: %s\n", name.c_str(), e.what());
    return 1;
  }
}

}  // namespace
}  // namespace tidewell

int main(int argc, char** argv) {
  return tidewell::Main(argc, argv);
}

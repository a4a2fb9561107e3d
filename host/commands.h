#pragma once

#include <string>
#include <vector>

#include "host/command_line.h"
#include "host/config.h"

namespace tidewell {

// The commands of the tidewell binary. Each receives the words after its name and answers
// the process's exit code: 0 done, 1 refused or failed (with the reason on standard error),
// 2 bad usage. A command throws std::invalid_argument for bad usage; main prints it and
// answers 2.
using CommandFunction = int (*)(int argc, char** argv);

struct Command {
  const char* name;
  const char* summary;  // one line for `tidewell --help`
  CommandFunction run;
};

int ServeCommand(int argc, char** argv);
int RenderCommand(int argc, char** argv);
int InitDbCommand(int argc, char** argv);
int MigrateCommand(int argc, char** argv);
int BackupCommand(int argc, char** argv);
int UserCommand(int argc, char** argv);
int ImportCommand(int argc, char** argv);
int VersionCommand(int argc, char** argv);

int ConfigCommand(int argc, char** argv);

// --config FILE when given, else the built-in defaults; then the TIDEWELL_ variables of the
// environment (host/config.h, ApplyEnvironment), whose names go to `variables` when given.
SiteConfig ConfigFrom(const Arguments& args, std::vector<std::string>* variables = nullptr);

// The database a command works on: --connection STRING, else the ConnectionString of the
// page at / of --config FILE. Throws std::invalid_argument when neither is given.
std::string ConnectionFrom(const Arguments& args);

}  // namespace tidewell

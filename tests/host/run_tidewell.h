#pragma once

#include <string>

#include "tests/host/command_run.h"

namespace tidewell::testing {

struct CommandRun {
  int status;
  std::string output;  // standard output and standard error together
};

// Runs the real binary with `arguments` (words for the shell) and waits for it.
// `environment`: variables for the command, "NAME=value ..." as a shell takes them.
inline CommandRun RunTidewell(const std::string& arguments, const std::string& environment = "") {
  const CommandResult run = RunShell(environment + " " + TIDEWELL_BINARY + " " + arguments);
  return {run.status, run.out};
}

}  // namespace tidewell::testing

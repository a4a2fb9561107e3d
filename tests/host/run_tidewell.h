#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <string>

namespace tidewell::testing {

struct CommandRun {
  int status;
  std::string output;  // standard output and standard error together
};

// Runs the real binary with `arguments` (words for the shell) and waits for it.
// `environment`: variables for the command, "NAME=value ..." as a shell takes them.
inline CommandRun RunTidewell(const std::string& arguments, const std::string& environment = "") {
  std::string command = environment + " " + TIDEWELL_BINARY + " " + arguments + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  std::string output;
  std::array<char, 4096> buffer;
  while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe)) output.append(buffer.data(), n);
  int status = pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

}  // namespace tidewell::testing

#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace tidewell::testing {

// What a run of a program left: its exit code (-1 when it did not exit normally) and what it
// wrote to each stream (both in `out` when they were joined).
struct CommandResult {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs `binary` with `args` (no shell in between), hands it `input` on standard input, which
// is then closed, and collects both output streams until it exits.
inline CommandResult RunBinary(const std::string& binary, const std::vector<std::string>& args,
                               const std::string& input = "") {
  int in[2], out[2], err[2];
  if (pipe(in) != 0 || pipe(out) != 0 || pipe(err) != 0) throw std::runtime_error("pipe failed");
  pid_t pid = fork();
  if (pid == 0) {
    dup2(in[0], STDIN_FILENO);
    dup2(out[1], STDOUT_FILENO);
    dup2(err[1], STDERR_FILENO);
    for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) close(fd);
    std::vector<char*> argv{const_cast<char*>(binary.c_str())};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(binary.c_str(), argv.data());
    _exit(127);
  }
  close(in[0]);
  close(out[1]);
  close(err[1]);
  // The input is a line or two: it fits the pipe's buffer, so writing it first cannot block.
  if (!input.empty() && write(in[1], input.data(), input.size()) < 0) {
    throw std::runtime_error("write failed");
  }
  close(in[1]);
  CommandResult result;
  pollfd fds[2] = {{out[0], POLLIN, 0}, {err[0], POLLIN, 0}};
  std::string* sinks[2] = {&result.out, &result.err};
  int open_streams = 2;
  while (open_streams > 0 && poll(fds, 2, 30000) > 0) {
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || fds[i].revents == 0) continue;
      char buffer[4096];
      ssize_t n = read(fds[i].fd, buffer, sizeof buffer);
      if (n > 0) {
        sinks[i]->append(buffer, n);
      } else {
        close(fds[i].fd);
        fds[i].fd = -1;
        --open_streams;
      }
    }
  }
  for (const pollfd& fd : fds) {
    if (fd.fd >= 0) close(fd.fd);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

// Runs `command` with /bin/sh, its standard error joined to its standard output in `out`.
inline CommandResult RunShell(const std::string& command) {
  return RunBinary("/bin/sh", {"-c", command + " 2>&1"});
}

#ifdef TIDEWELL_BINARY
// Runs the tidewell binary the tests were built with and waits for it. `arguments` are words
// for the shell; `environment` holds variables for the command, "NAME=value ..." as a shell
// takes them. Standard error is joined to standard output in `out`.
inline CommandResult RunTidewell(const std::string& arguments,
                                 const std::string& environment = "") {
  return RunShell(environment + " " + TIDEWELL_BINARY + " " + arguments);
}
#endif

}  // namespace tidewell::testing

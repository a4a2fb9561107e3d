#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tidewell::testing {

// `tidewell serve` in a child process on a free port. Its standard error is read all along
// (so its log never blocks it) and kept for the test to look at.
class ServerProcess {
 public:
  ServerProcess(const std::string& binary, const std::vector<std::string>& args,
                const std::vector<std::string>& environment = {}) {
    int pipe_fds[2];
    if (pipe(pipe_fds) != 0) throw std::runtime_error("pipe failed");
    pid_ = fork();
    if (pid_ == 0) {
      dup2(pipe_fds[1], STDERR_FILENO);
      close(pipe_fds[0]);
      close(pipe_fds[1]);
      for (const std::string& variable : environment) putenv(const_cast<char*>(variable.c_str()));
      std::vector<char*> argv{const_cast<char*>(binary.c_str())};
      for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
      argv.push_back(nullptr);
      execv(binary.c_str(), argv.data());
      _exit(127);
    }
    close(pipe_fds[1]);
    reader_ = std::thread([this, fd = pipe_fds[0]] { ReadLog(fd); });
  }

  ~ServerProcess() {
    if (pid_ > 0 && !exited_) Stop(SIGTERM);
    if (reader_.joinable()) reader_.join();
  }

  // The port from the "serving http://HOST:PORT/" line; 0 when none came within the wait.
  int WaitForPort(std::chrono::seconds wait = std::chrono::seconds(20)) {
    std::unique_lock lock(mutex_);
    std::smatch match;
    changed_.wait_for(lock, wait, [&] {
      return std::regex_search(log_, match, std::regex("serving http://[^:]+:([0-9]+)/")) || eof_;
    });
    return match.empty() ? 0 : std::stoi(match[1]);
  }

  // Sends `signal` and goes on.
  void Send(int signal) { kill(pid_, signal); }

  // Sends `signal` and returns the exit status (-1 when it did not exit normally in time).
  // Everything the server wrote is in Log() afterwards.
  int Stop(int signal) {
    kill(pid_, signal);
    int result = -1;
    bool done = false;
    for (int i = 0; i < 200 && !done; ++i) {
      int status = 0;
      if (waitpid(pid_, &status, WNOHANG) == pid_) {
        result = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        done = true;
      } else {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
      }
    }
    if (!done) {
      kill(pid_, SIGKILL);
      waitpid(pid_, nullptr, 0);
    }
    exited_ = true;
    if (reader_.joinable()) reader_.join();  // the log up to the end of the pipe
    return result;
  }

  // Whether the log holds `text`, waiting for it up to `wait`: the server writes some lines
  // after the answer or the close that a test saw.
  bool WaitForLog(const std::string& text, std::chrono::seconds wait = std::chrono::seconds(5)) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, wait,
                             [&] { return log_.find(text) != std::string::npos || eof_; }) &&
           log_.find(text) != std::string::npos;
  }

  std::string Log() {
    std::lock_guard lock(mutex_);
    return log_;
  }

 private:
  void ReadLog(int fd) {
    char buffer[4096];
    ssize_t n;
    while ((n = read(fd, buffer, sizeof buffer)) > 0) {
      std::lock_guard lock(mutex_);
      log_.append(buffer, static_cast<size_t>(n));
      changed_.notify_all();
    }
    close(fd);
    std::lock_guard lock(mutex_);
    eof_ = true;
    changed_.notify_all();
  }

  pid_t pid_ = -1;
  bool exited_ = false;
  std::thread reader_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::string log_;
  bool eof_ = false;
};

}  // namespace tidewell::testing

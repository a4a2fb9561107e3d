#include "host/password_input.h"

#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <stdexcept>

namespace tidewell {
namespace {

// Turns the terminal's echo off for as long as it lives.
class EchoOff {
 public:
  explicit EchoOff(int fd) : fd_(fd) {
    if (tcgetattr(fd_, &saved_) != 0)
      throw std::runtime_error("cannot read the terminal's settings");
    termios quiet = saved_;
    quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    // Keep ECHONL so that the user's Enter still moves to the next line.
    quiet.c_lflag |= ECHONL;
    if (tcsetattr(fd_, TCSAFLUSH, &quiet) != 0) {
      throw std::runtime_error("cannot turn the terminal's echo off");
    }
  }
  ~EchoOff() { tcsetattr(fd_, TCSADRAIN, &saved_); }
  EchoOff(const EchoOff&) = delete;
  EchoOff& operator=(const EchoOff&) = delete;

 private:
  int fd_;
  termios saved_;
};

// One line of standard input without its line end; nothing at the end of the input.
bool ReadLine(std::string& line) {
  if (!std::getline(std::cin, line)) return false;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

// Echo goes off before the prompt shows, so that nothing typed after the prompt is echoed.
std::string AskQuietly(const char* prompt) {
  std::string answer;
  bool read;
  {
    EchoOff quiet(STDIN_FILENO);
    std::fputs(prompt, stderr);
    std::fflush(stderr);
    read = ReadLine(answer);
  }
  if (!read) throw std::runtime_error("no password was typed. Nothing was changed.");
  return answer;
}

}  // namespace

std::string ReadNewPassword(PasswordSource source) {
  std::string password;
  if (source == PasswordSource::kStandardInput) {
    if (!ReadLine(password)) {
      throw std::runtime_error("standard input held no password. Nothing was changed.");
    }
  } else {
    if (!isatty(STDIN_FILENO)) {
      throw std::invalid_argument(
          "standard input is not a terminal: give --password-stdin to read the password from it");
    }
    password = AskQuietly("New password: ");
    if (AskQuietly("Repeat the password: ") != password) {
      throw std::runtime_error("the two passwords differ. Nothing was changed.");
    }
  }
  if (password.empty()) throw std::runtime_error("the password is empty. Nothing was changed.");
  return password;
}

}  // namespace tidewell

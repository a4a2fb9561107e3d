#pragma once

#include <string>

namespace tidewell {

// Where a command reads a new password: never from its command line, where other users of the
// machine could see it.
enum class PasswordSource {
  kTerminal,       // asked twice without echo on the terminal at standard input
  kStandardInput,  // the first line of standard input, its line end ("\n" or "\r\n") removed
};

// Reads the password. On the terminal the prompts go to standard error, the two answers must
// match, and echo comes back on afterwards. Throws std::invalid_argument when the terminal is
// asked for but standard input is none, and std::runtime_error (a refusal) when the two
// answers differ, the password is empty or nothing could be read.
std::string ReadNewPassword(PasswordSource source);

}  // namespace tidewell

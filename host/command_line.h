#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tidewell {

// Whether a command takes words that are no options ("tidewell user add NAME").
enum class PositionalWords {
  kRefused,    // a stray word is bad usage
  kCollected,  // kept in order for Positionals(); every word after "--" is one too
};

// A subcommand's arguments: options "--name value" (or "--name=value"), flags such as
// "--help" and, for a command that takes them, positional words. Options may repeat; `All`
// returns every value in order.
class Arguments {
 public:
  // Parses argv from `first`; `flags` are the options that take no value. Throws
  // std::invalid_argument for an option missing its value, or a stray word when positional
  // words are refused.
  Arguments(int argc, char** argv, int first, std::vector<std::string> flags = {"help"},
            PositionalWords positional_words = PositionalWords::kRefused);

  bool Has(const std::string& name) const;
  std::optional<std::string> Get(const std::string& name) const;
  std::vector<std::string> All(const std::string& name) const;
  // Throws std::invalid_argument naming the first option not in `known`.
  void Expect(const std::vector<std::string>& known) const;
  // The words that are no options, in order (always empty when they are refused).
  const std::vector<std::string>& Positionals() const { return positionals_; }

 private:
  std::vector<std::pair<std::string, std::string>> options_;
  std::vector<std::string> positionals_;
};

}  // namespace tidewell

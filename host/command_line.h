#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tidewell {

// A subcommand's arguments: options "--name value" (or "--name=value") and flags such as
// "--help". Options may repeat; `All` returns every value in order.
class Arguments {
 public:
  // Parses argv from `first`; `flags` are the options that take no value. Throws
  // std::invalid_argument for an option missing its value or a stray word.
  Arguments(int argc, char** argv, int first, std::vector<std::string> flags = {"help"});

  bool Has(const std::string& name) const;
  std::optional<std::string> Get(const std::string& name) const;
  std::vector<std::string> All(const std::string& name) const;
  // Throws std::invalid_argument naming the first option not in `known`.
  void Expect(const std::vector<std::string>& known) const;

 private:
  std::vector<std::pair<std::string, std::string>> options_;
};

}  // namespace tidewell

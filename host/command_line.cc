#include "host/command_line.h"

#include <algorithm>
#include <stdexcept>

namespace tidewell {

Arguments::Arguments(int argc, char** argv, int first, std::vector<std::string> flags,
                     PositionalWords positional_words) {
  const bool collect = positional_words == PositionalWords::kCollected;
  for (int i = first; i < argc; ++i) {
    std::string word = argv[i];
    if (collect && word == "--") {
      // The rest are words even when they look like options: a user named "--x".
      positionals_.insert(positionals_.end(), argv + i + 1, argv + argc);
      return;
    }
    if (word.rfind("--", 0) != 0) {
      if (!collect) throw std::invalid_argument("unexpected argument " + word);
      positionals_.push_back(word);
      continue;
    }
    std::string name = word.substr(2);
    std::string value;
    if (size_t eq = name.find('='); eq != std::string::npos) {
      value = name.substr(eq + 1);
      name = name.substr(0, eq);
    } else if (std::find(flags.begin(), flags.end(), name) == flags.end()) {
      if (i + 1 >= argc) throw std::invalid_argument("--" + name + " needs a value");
      value = argv[++i];
    }
    options_.emplace_back(name, value);
  }
}

bool Arguments::Has(const std::string& name) const {
  return std::any_of(options_.begin(), options_.end(),
                     [&](const auto& option) { return option.first == name; });
}

std::optional<std::string> Arguments::Get(const std::string& name) const {
  std::optional<std::string> last;
  for (const auto& [key, value] : options_) {
    if (key == name) last = value;
  }
  return last;
}

std::vector<std::string> Arguments::All(const std::string& name) const {
  std::vector<std::string> values;
  for (const auto& [key, value] : options_) {
    if (key == name) values.push_back(value);
  }
  return values;
}

void Arguments::Expect(const std::vector<std::string>& known) const {
  for (const auto& option : options_) {
    if (std::find(known.begin(), known.end(), option.first) == known.end()) {
      throw std::invalid_argument("unknown option --" + option.first);
    }
  }
}

}  // namespace tidewell

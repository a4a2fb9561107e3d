#include "runtime/strings.h"

namespace tidewell {

std::vector<std::string> Split(std::string_view text, char delimiter) {
  std::vector<std::string> pieces;
  size_t start = 0;
  while (true) {
    size_t end = text.find(delimiter, start);
    if (end == std::string_view::npos) {
      pieces.emplace_back(text.substr(start));
      return pieces;
    }
    pieces.emplace_back(text.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace tidewell

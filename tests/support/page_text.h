#pragma once

// Readings of a page's text that many suites make.

#include <string>
#include <string_view>

namespace tidewell::testing {

// How often `piece` occurs in `text`, overlapping occurrences included.
inline size_t Count(std::string_view text, std::string_view piece) {
  size_t n = 0;
  for (size_t at = text.find(piece); at != std::string_view::npos; at = text.find(piece, at + 1)) {
    ++n;
  }
  return n;
}

// The text from `start` up to and including the first `end` after it, or "" when the page
// lacks either.
inline std::string Between(const std::string& html, const std::string& start,
                           const std::string& end) {
  const size_t from = html.find(start);
  if (from == std::string::npos) return "";
  const size_t to = html.find(end, from);
  if (to == std::string::npos) return "";
  return html.substr(from, to + end.size() - from);
}

}  // namespace tidewell::testing

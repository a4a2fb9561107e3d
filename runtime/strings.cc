#include "runtime/strings.h"

#include <string.h>

#include <cstring>

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

namespace {

// A-Z folded here rather than by the C library's tolower, which follows the locale.
char Folded(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (Folded(a[i]) != Folded(b[i])) return false;
  }
  return true;
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = Folded(c);
  return lower;
}

namespace {

// memmem skips through text by pairs of bytes; markup, with a "<" every few bytes, would stop
// a search for the first character at each of them.
size_t Find(std::string_view text, std::string_view find, size_t from) {
  const void* found = ::memmem(text.data() + from, text.size() - from, find.data(), find.size());
  return found == nullptr ? std::string_view::npos
                          : static_cast<size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace

std::string Replace(std::string text, std::string_view find, std::string_view replacement) {
  if (find.empty()) return text;
  size_t at = Find(text, find, 0);
  if (at == std::string_view::npos) return text;
  if (replacement.size() <= find.size()) {
    // Nothing grows: the text is closed up in its own buffer, which keeps its spare room (a
    // page's height written in goes on to have more appended).
    char* const data = text.data();
    size_t to = at;
    size_t from = at;
    for (; at != std::string_view::npos; at = Find(text, find, from)) {
      std::memmove(data + to, data + from, at - from);
      to += at - from;
      std::memcpy(data + to, replacement.data(), replacement.size());
      to += replacement.size();
      from = at + find.size();
    }
    std::memmove(data + to, data + from, text.size() - from);
    text.resize(to + text.size() - from);
    return text;
  }
  std::string replaced;
  replaced.reserve(text.size() + replacement.size());
  size_t from = 0;
  for (; at != std::string_view::npos; at = Find(text, find, from)) {
    replaced.append(text, from, at - from);
    replaced += replacement;
    from = at + find.size();
  }
  replaced.append(text, from, std::string::npos);
  return replaced;
}

}  // namespace tidewell

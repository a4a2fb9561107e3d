#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace tidewell::testing {

// Expected markup kept under tests/golden/. The pages carry no line breaks, so the files break
// their lines where a reader would like and the breaks are dropped when read.
inline std::string ReadGolden(const std::string& name) {
  std::ifstream file(std::string(TIDEWELL_GOLDEN_DIR) + "/" + name, std::ios::binary);
  std::stringstream content;
  content << file.rdbuf();
  std::string text;
  for (char c : content.str()) {
    if (c != '\n') text += c;
  }
  return text;
}

// The markup cut before every "<", one piece a line, for a diff a reader can follow.
inline std::vector<std::string> MarkupLines(const std::string& html) {
  std::vector<std::string> lines;
  for (char c : html) {
    if (c == '<' || lines.empty()) lines.emplace_back();
    lines.back() += c;
  }
  return lines;
}

// Fails with the first differing piece of markup and its neighbours when `actual` differs.
inline ::testing::AssertionResult MatchesGolden(const std::string& actual,
                                                const std::string& name) {
  const std::string expected = ReadGolden(name);
  if (expected.empty())
    return ::testing::AssertionFailure() << "golden file " << name << " is missing or empty";
  if (actual == expected) return ::testing::AssertionSuccess();
  std::vector<std::string> want = MarkupLines(expected), got = MarkupLines(actual);
  size_t i = 0;
  while (i < want.size() && i < got.size() && want[i] == got[i]) ++i;
  auto result = ::testing::AssertionFailure();
  result << "differs from " << name << " at piece " << i << ":\n";
  for (size_t j = i > 2 ? i - 2 : 0; j < i; ++j) result << "    " << want[j] << "\n";
  result << "  - " << (i < want.size() ? want[i] : "(end)") << "\n";
  result << "  + " << (i < got.size() ? got[i] : "(end)") << "\n";
  return result;
}

}  // namespace tidewell::testing

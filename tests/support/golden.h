#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace tidewell::testing {

// Expected markup kept under tests/golden/. The pages carry almost no line breaks, so the files
// break their lines where a reader would like and those breaks (a bare LF) are dropped when
// read. The few the page does carry (the CR LF after each line of a form's validator script)
// stand in the file as CR LF and are kept; .gitattributes keeps git from changing them.
inline std::string ReadGolden(const std::string& name) {
  std::ifstream file(std::string(TIDEWELL_GOLDEN_DIR) + "/" + name, std::ios::binary);
  std::stringstream content;
  content << file.rdbuf();
  std::string text;
  for (char c : content.str()) {
    if (c != '\n' || (!text.empty() && text.back() == '\r')) text += c;
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

// `text` with every "{name}" replaced by its value: goldens write "{bob}" where a page carries
// something only the test knows, such as a signed key.
inline std::string FillIn(std::string text,
                          const std::vector<std::pair<std::string, std::string>>& values) {
  for (const auto& [name, value] : values) {
    const std::string mark = "{" + name + "}";
    for (size_t at = text.find(mark); at != std::string::npos;
         at = text.find(mark, at + value.size())) {
      text.replace(at, mark.size(), value);
    }
  }
  return text;
}

// Fails with the first differing piece of markup and its neighbours when `actual` differs
// from `expected` (named `name` in the message).
inline ::testing::AssertionResult MatchesMarkup(const std::string& actual,
                                                const std::string& expected,
                                                const std::string& name) {
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

// The golden file `name`, its "{name}" marks filled in with `values`, against `actual`.
inline ::testing::AssertionResult MatchesGolden(
    const std::string& actual, const std::string& name,
    const std::vector<std::pair<std::string, std::string>>& values = {}) {
  const std::string expected = ReadGolden(name);
  if (expected.empty())
    return ::testing::AssertionFailure() << "golden file " << name << " is missing or empty";
  return MatchesMarkup(actual, FillIn(expected, values), name);
}

}  // namespace tidewell::testing

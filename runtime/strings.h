#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

// The run time's Split: the pieces between the delimiters, empty ones included, so "a~~b"
// gives three pieces and "" gives one empty piece.
std::vector<std::string> Split(std::string_view text, char delimiter);

// Whether the two are the same text but for the case of A-Z: names of columns, providers,
// keywords and the like, which are ASCII.
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// The text with A-Z made lower case.
std::string Lower(std::string_view text);

// The run time's Replace: every occurrence of `find`, left to right, with `replacement`; text
// a replacement wrote is not searched again. An empty `find` changes nothing. A page of tens
// of kilobytes costs one pass whatever the number of occurrences: a replacement no longer than
// `find` closes the text up in its own buffer, keeping its spare room; a longer one copies it.
std::string Replace(std::string text, std::string_view find, std::string_view replacement);

}  // namespace tidewell

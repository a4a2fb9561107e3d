#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

// The run time's Split: the pieces between the delimiters, empty ones included, so "a~~b"
// gives three pieces and "" gives one empty piece.
std::vector<std::string> Split(std::string_view text, char delimiter);

// The run time's Replace: every occurrence of `find`, left to right, with `replacement`; text
// a replacement wrote is not searched again. An empty `find` changes nothing. The text is
// copied once whatever the number of occurrences, so a page of tens of kilobytes costs one
// pass.
std::string Replace(std::string text, std::string_view find, std::string_view replacement);

}  // namespace tidewell

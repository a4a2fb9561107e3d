#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tidewell {

// The run time's Split: the pieces between the delimiters, empty ones included, so "a~~b"
// gives three pieces and "" gives one empty piece.
std::vector<std::string> Split(std::string_view text, char delimiter);

}  // namespace tidewell

#pragma once

#include <string_view>

namespace tidewell {

struct Page;

// The help screens' frame: the start comment, the title bar, the table with the help icon (no
// link) in its narrow column, and the opening of the text cell. The inner table has no row of
// its own; browsers supply one.
void AppendHelpOpening(Page& page, std::string_view start_comment, std::string_view title);

// Closes what AppendHelpOpening opened, then the end comment.
void AppendHelpClosing(Page& page, std::string_view end_comment);

}  // namespace tidewell

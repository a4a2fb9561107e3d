#pragma once

#include <string_view>

namespace tidewell {

struct Page;

// The help screens' frame: the start comment, the title bar, the table with the help icon (no
// link) in its narrow column, and the opening of the text cell. The inner table has no row of
// its own; browsers supply one.
void AppendHelpOpening(Page& page, std::string_view start_comment, std::string_view title);

// One entry of a help text: its heading in bold on a line of its own, then its explanation in
// dark green.
void AppendHelpEntry(Page& page, std::string_view heading, std::string_view explanation);

// The grey rule below an entry, or below a group of them.
void AppendHelpRule(Page& page);

// Closes what AppendHelpOpening opened, then the end comment.
void AppendHelpClosing(Page& page, std::string_view end_comment);

}  // namespace tidewell

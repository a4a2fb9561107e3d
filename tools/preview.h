#pragma once

#include <string>
#include <vector>

#include "tools/images.h"

namespace tidewell::tools {

// Writes, for looking at the images: each one enlarged on the colour it sits on
// (`<name>.png`), and `page.png`, a mock of the page frame that puts the header buttons,
// arrows, tabs and marks side by side the way the pages arrange them.
void WritePreviews(const std::vector<DrawnImage>& images, const std::string& folder);

}  // namespace tidewell::tools

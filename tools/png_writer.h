#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/gif_codec.h"

namespace tidewell::tools {

// An RGB picture for previews.
struct RgbPicture {
  int width = 0;
  int height = 0;
  std::vector<Rgb> pixels;
};

// Writes `picture` as a PNG with uncompressed (stored) deflate blocks: large, but simple and
// readable by every viewer. Used only to look at the drawn images. Throws on a write error.
void WritePng(const std::string& path, const RgbPicture& picture);

}  // namespace tidewell::tools

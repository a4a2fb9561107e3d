#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tidewell::tools {

struct Rgb {
  std::uint8_t r = 0, g = 0, b = 0;
  friend bool operator==(const Rgb&, const Rgb&) = default;
};

// A palette image: one palette index per pixel, row by row from the top left. At most 256
// palette entries; `transparent`, when set, is the index that browsers leave unpainted.
struct IndexedImage {
  int width = 0;
  int height = 0;
  std::vector<Rgb> palette;
  std::vector<std::uint8_t> pixels;
  std::optional<std::uint8_t> transparent;
};

// Writes a single-frame GIF89a: logical screen of the image's size, a global colour table
// rounded up to a power of two, a graphic control extension when a transparent index is set,
// and the pixels LZW-compressed in 255-byte sub-blocks. Throws std::invalid_argument for an
// image whose sizes or palette a GIF cannot hold.
std::vector<std::uint8_t> EncodeGif(const IndexedImage& image);

// Reads back what EncodeGif writes (one image, global colour table, no interlace). Throws
// std::runtime_error naming the first thing that is wrong with the data.
IndexedImage DecodeGif(const std::vector<std::uint8_t>& data);

}  // namespace tidewell::tools

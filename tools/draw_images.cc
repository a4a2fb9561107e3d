// draw_images: draws every image the pages name and writes them as GIF files.
//
//   draw_images OUTPUT_FOLDER [--png PREVIEW_FOLDER]
//
// Each file is read back after encoding and compared with what was drawn, so a fault in the
// encoder stops the run instead of shipping a broken image. With --png the images are also
// written enlarged, with a mock page, as PNG files for looking at.

#include <algorithm>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tools/gif_codec.h"
#include "tools/images.h"
#include "tools/preview.h"

namespace tidewell::tools {
namespace {

std::vector<DrawnImage> DrawAll() {
  std::vector<DrawnImage> all;
  for (auto draw : {DrawNavigationImages, DrawTabImages, DrawIconImages, DrawLogoImage, DrawPageIcon}) {
    for (DrawnImage& image : draw()) all.push_back(std::move(image));
  }
  return all;
}

void CheckRoundTrip(const DrawnImage& drawn, const std::vector<std::uint8_t>& bytes) {
  const IndexedImage back = DecodeGif(bytes);
  const IndexedImage& image = drawn.image;
  const bool same = back.width == image.width && back.height == image.height &&
                    back.pixels == image.pixels && back.transparent == image.transparent &&
                    std::equal(image.palette.begin(), image.palette.end(), back.palette.begin());
  if (!same) throw std::runtime_error(drawn.name + ": GIF does not read back as drawn");
}

void WriteFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
}

int Run(const std::vector<std::string>& args) {
  if (args.size() != 1 && !(args.size() == 3 && args[1] == "--png")) {
    std::cerr << "usage: draw_images OUTPUT_FOLDER [--png PREVIEW_FOLDER]\n";
    return 2;
  }
  const std::vector<DrawnImage> images = DrawAll();
  for (const DrawnImage& drawn : images) {
    const std::vector<std::uint8_t> bytes = EncodeGif(drawn.image);
    CheckRoundTrip(drawn, bytes);
    WriteFile(args[0] + "/" + drawn.name + ".gif", bytes);
    std::cout << drawn.name << ".gif " << drawn.image.width << "x" << drawn.image.height << ", "
              << drawn.image.palette.size() << " colours, " << bytes.size() << " bytes\n";
  }
  if (args.size() == 3) WritePreviews(images, args[2]);
  return 0;
}

}  // namespace
}  // namespace tidewell::tools

int main(int argc, char** argv) {
  try {
    return tidewell::tools::Run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& error) {
    std::cerr << "draw_images: " << error.what() << "\n";
    return 1;
  }
}

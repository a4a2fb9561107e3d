#include "tools/preview.h"

#include <algorithm>
#include <stdexcept>

#include "tools/png_writer.h"

namespace tidewell::tools {
namespace {

using namespace colours;

RgbPicture Blank(int width, int height, Rgb colour) {
  return {width, height, std::vector<Rgb>(static_cast<std::size_t>(width) * height, colour)};
}

void FillArea(RgbPicture& picture, int x, int y, int w, int h, Rgb colour) {
  for (int row = std::max(0, y); row < std::min(picture.height, y + h); ++row) {
    for (int column = std::max(0, x); column < std::min(picture.width, x + w); ++column) {
      picture.pixels[static_cast<std::size_t>(row) * picture.width + column] = colour;
    }
  }
}

// Copies `image` onto `picture` at (x, y), leaving the picture where the image is clear.
void Place(RgbPicture& picture, const IndexedImage& image, int x, int y) {
  for (int row = 0; row < image.height; ++row) {
    for (int column = 0; column < image.width; ++column) {
      const std::uint8_t index = image.pixels[static_cast<std::size_t>(row) * image.width + column];
      if (image.transparent && index == *image.transparent) continue;
      FillArea(picture, x + column, y + row, 1, 1, image.palette[index]);
    }
  }
}

RgbPicture Enlarge(const RgbPicture& picture, int factor) {
  RgbPicture large = Blank(picture.width * factor, picture.height * factor, {});
  for (int y = 0; y < large.height; ++y) {
    for (int x = 0; x < large.width; ++x) {
      large.pixels[static_cast<std::size_t>(y) * large.width + x] =
          picture.pixels[static_cast<std::size_t>(y / factor) * picture.width + x / factor];
    }
  }
  return large;
}

RgbPicture Crop(const RgbPicture& picture, int x, int y, int w, int h) {
  RgbPicture part = Blank(w, h, {});
  for (int row = 0; row < h; ++row) {
    for (int column = 0; column < w; ++column) {
      part.pixels[static_cast<std::size_t>(row) * w + column] =
          picture.pixels[static_cast<std::size_t>(y + row) * picture.width + x + column];
    }
  }
  return part;
}

class Images {
 public:
  explicit Images(const std::vector<DrawnImage>& images) : images_(images) {}
  const IndexedImage& operator[](const std::string& name) const {
    for (const DrawnImage& drawn : images_) {
      if (drawn.name == name) return drawn.image;
    }
    throw std::runtime_error("no image " + name);
  }

 private:
  const std::vector<DrawnImage>& images_;
};

// Header, heading bar, a few cells and the tab strip, as the pages lay them out.
RgbPicture MockPage(const Images& images) {
  RgbPicture page = Blank(620, 272, kWhite);
  FillArea(page, 0, 0, 620, 66, kNavy);
  int x = 3;
  for (const char* name : {"nav_additem", "nav_search", "nav_options", "nav_login", "nav_admin"}) {
    Place(page, images[name], x, 10);
    x += 53;
  }
  FillArea(page, 279, 0, 341, 20, kWhite);
  Place(page, images["icon_topright"], 279, 0);
  Place(page, images["nav_prev_year"], 330, 25);
  Place(page, images["nav_prev_month"], 370, 25);
  Place(page, images["nav_next_month"], 500, 25);
  Place(page, images["nav_next_year"], 540, 25);
  Place(page, images["nav_line"], 10, 57);
  FillArea(page, 5, 66, 610, 15, kNavy);
  Place(page, images["nav_prev"], 23, 66);
  Place(page, images["nav_next"], 47, 66);
  FillArea(page, 5, 81, 88, 40, kWhite);
  FillArea(page, 93, 81, 88, 40, kPaleGrey);
  FillArea(page, 181, 81, 88, 40, kLightBlue);
  for (int cell = 0; cell < 3; ++cell) {
    Place(page, images["icon_week"], 8 + cell * 88, 84);
    Place(page, images["icon_urgent"], 24 + cell * 88, 84);
    Place(page, images["nav_more"], 70 + cell * 88, 100);
  }
  FillArea(page, 280, 81, 330, 18, kMidBlue);
  Place(page, images["icon_urgent_title"], 285, 83);
  Place(page, images["icon_dpicker"], 300, 102);
  Place(page, images["icon_help"], 330, 88);
  FillArea(page, 0, 121, 620, 4, kNavy);
  x = 0;
  auto tab = [&](const char* left, const char* right, bool selected) {
    Place(page, images[left], x, 125);
    x += 5;
    FillArea(page, x, 125, 62, selected ? 21 : 19, selected ? kNavy : kSlate);
    x += 62;
    Place(page, images[right], x, 125);
    x += 5;
  };
  tab("tb_left_sel", "tb_right_sel", true);
  tab("tb_left_sns", "tb_right", false);
  tab("tb_left_ns", "tb_right", false);
  tab("tb_left_ns", "tb_right", false);
  x += 20;
  tab("tb_left_ns", "tb_right", false);
  tab("tb_left_ns", "tb_right", false);
  tab("tb_left_sel", "tb_right_sel", true);
  tab("tb_left_ns", "tb_right", false);
  Place(page, images["tb_space"], 600, 140);
  Place(page, images["logo_tidewell"], 175, 160);
  return page;
}

}  // namespace

void WritePreviews(const std::vector<DrawnImage>& images, const std::string& folder) {
  for (const DrawnImage& drawn : images) {
    const IndexedImage& image = drawn.image;
    RgbPicture picture = Blank(image.width + 4, image.height + 4, drawn.background);
    Place(picture, image, 2, 2);
    const int longest = std::max(picture.width, picture.height);
    const int factor = std::clamp(320 / longest, 1, 12);
    WritePng(folder + "/" + drawn.name + ".png", Enlarge(picture, factor));
  }
  const RgbPicture page = MockPage(Images(images));
  WritePng(folder + "/page.png", Enlarge(page, 2));
  WritePng(folder + "/page_header.png", Enlarge(Crop(page, 0, 0, 620, 125), 3));
  WritePng(folder + "/page_tabs.png", Enlarge(Crop(page, 0, 115, 300, 36), 6));
}

}  // namespace tidewell::tools

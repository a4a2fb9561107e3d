// Checks the committed image files and the style sheet that the pages name: every image is a
// complete GIF89a of the size the markup gives it, whose LZW data decodes to exactly one
// palette index per pixel, and every class the markup uses has a rule.

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <ostream>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#ifndef TIDEWELL_ASSET_DIR
#error "TIDEWELL_ASSET_DIR must name the assets folder"
#endif

namespace {

struct ExpectedImage {
  const char* name;
  int width;
  int height;
};

// Sizes as the width and height attributes of the pages' <img> tags give them; the page icon
// that the page template links is the 32×32 browsers draw on a tab.
constexpr ExpectedImage kImages[] = {
    {"nav_additem", 49, 31},    {"nav_search", 49, 31},       {"nav_options", 49, 31},
    {"nav_admin", 49, 31},      {"nav_login", 49, 31},        {"nav_prev_year", 40, 25},
    {"nav_prev_month", 40, 25}, {"nav_next_month", 40, 25},   {"nav_next_year", 40, 25},
    {"nav_prev", 24, 15},       {"nav_next", 24, 15},         {"nav_more", 16, 16},
    {"nav_line", 600, 1},       {"icon_topright", 24, 20},    {"icon_week", 12, 12},
    {"icon_urgent", 6, 12},     {"icon_urgent_title", 6, 14}, {"icon_help", 30, 30},
    {"icon_dpicker", 16, 16},   {"tb_left_sel", 5, 21},       {"tb_right_sel", 5, 21},
    {"tb_left_sns", 5, 21},     {"tb_left_ns", 5, 21},        {"tb_right", 5, 21},
    {"tb_space", 1, 1},         {"logo_tidewell", 270, 103},  {"icon_tidewell", 32, 32},
};

void PrintTo(const ExpectedImage& image, std::ostream* out) {
  *out << image.name << " " << image.width << "x" << image.height;
}

std::vector<std::uint8_t> ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot open " + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int Word(const std::vector<std::uint8_t>& bytes, std::size_t at) {
  return bytes.at(at) | (bytes.at(at + 1) << 8);
}

// What the test learns from walking a GIF's blocks.
struct GifLayout {
  int screen_width = 0;
  int screen_height = 0;
  int colour_table_size = 0;  // 0 when there is no global table
  int image_count = 0;
  int image_width = 0;
  int image_height = 0;
  int min_code_size = 0;
  bool has_transparency = false;
  int transparent_index = -1;
  std::vector<std::uint8_t> lzw;  // the image's data sub-blocks joined
  std::size_t trailer_at = 0;
};

GifLayout WalkBlocks(const std::vector<std::uint8_t>& bytes) {
  GifLayout gif;
  gif.screen_width = Word(bytes, 6);
  gif.screen_height = Word(bytes, 8);
  const int flags = bytes.at(10);
  std::size_t at = 13;
  if (flags & 0x80) {
    gif.colour_table_size = 2 << (flags & 7);
    at += 3 * gif.colour_table_size;
  }
  auto read_sub_blocks = [&](std::vector<std::uint8_t>* into) {
    for (int length = bytes.at(at++); length != 0; length = bytes.at(at++)) {
      for (int i = 0; i < length; ++i) {
        const std::uint8_t byte = bytes.at(at++);
        if (into) into->push_back(byte);
      }
    }
  };
  for (;;) {
    const int introducer = bytes.at(at++);
    if (introducer == 0x3B) {
      gif.trailer_at = at - 1;
      return gif;
    }
    if (introducer == 0x21) {
      const int label = bytes.at(at++);
      if (label == 0xF9 && bytes.at(at) == 4) {
        gif.has_transparency = (bytes.at(at + 1) & 1) != 0;
        if (gif.has_transparency) gif.transparent_index = bytes.at(at + 4);
      }
      read_sub_blocks(nullptr);
      continue;
    }
    if (introducer != 0x2C)
      throw std::runtime_error("unexpected block " + std::to_string(introducer));
    ++gif.image_count;
    gif.image_width = Word(bytes, at + 4);
    gif.image_height = Word(bytes, at + 6);
    const int image_flags = bytes.at(at + 8);
    at += 9;
    if (image_flags & 0x80) at += 3 * (2 << (image_flags & 7));
    gif.min_code_size = bytes.at(at++);
    read_sub_blocks(&gif.lzw);
  }
}

// A GIF LZW decoder written for this test: it returns the palette indexes the data expands
// to and fails on codes the dictionary cannot hold or on data without an end code.
std::vector<int> DecodeLzw(const std::vector<std::uint8_t>& data, int min_code_size) {
  if (min_code_size < 2 || min_code_size > 8) throw std::runtime_error("bad minimum code size");
  const int clear_code = 1 << min_code_size;
  const int end_code = clear_code + 1;
  std::vector<std::vector<int>> table;
  auto reset = [&] {
    table.assign(end_code + 1, {});
    for (int i = 0; i < clear_code; ++i) table[i] = {i};
  };
  reset();
  int width = min_code_size + 1;
  std::size_t bit_position = 0;
  auto next_code = [&]() -> int {
    if (bit_position + width > data.size() * 8)
      throw std::runtime_error("data ends without end code");
    int code = 0;
    for (int i = 0; i < width; ++i, ++bit_position) {
      if (data[bit_position >> 3] & (1 << (bit_position & 7))) code |= 1 << i;
    }
    return code;
  };
  std::vector<int> pixels;
  std::vector<int> previous;
  for (;;) {
    const int code = next_code();
    if (code == clear_code) {
      reset();
      width = min_code_size + 1;
      previous.clear();
      continue;
    }
    if (code == end_code) return pixels;
    std::vector<int> entry;
    if (code < static_cast<int>(table.size()) && !table[code].empty()) {
      entry = table[code];
    } else if (code == static_cast<int>(table.size()) && !previous.empty()) {
      entry = previous;
      entry.push_back(previous.front());
    } else {
      throw std::runtime_error("code " + std::to_string(code) + " not in the dictionary");
    }
    if (!previous.empty() && table.size() < 4096) {
      std::vector<int> added = previous;
      added.push_back(entry.front());
      table.push_back(std::move(added));
      if (static_cast<int>(table.size()) == (1 << width) && width < 12) ++width;
    }
    pixels.insert(pixels.end(), entry.begin(), entry.end());
    previous = std::move(entry);
  }
}

TEST(GifTestDecoder, DecodesTheClassicOnePixelGif) {
  // Clear code, pixel 0, end code, in 3-bit codes.
  EXPECT_EQ(DecodeLzw({0x44, 0x01}, 2), std::vector<int>{0});
}

TEST(GifTestDecoder, RejectsDataWithoutEndCode) {
  EXPECT_THROW(DecodeLzw({0x44}, 2), std::runtime_error);
}

TEST(GifTestDecoder, RejectsACodeBeyondTheDictionary) {
  // Clear code, then code 7 while only codes up to 5 exist.
  EXPECT_THROW(DecodeLzw({0x3C, 0x00}, 2), std::runtime_error);
}

class ImageFileTest : public testing::TestWithParam<ExpectedImage> {
 protected:
  std::string Path() const {
    return std::string(TIDEWELL_ASSET_DIR) + "/images/" + GetParam().name + ".gif";
  }
};

TEST_P(ImageFileTest, IsAGif89aOfTheMarkupSize) {
  const std::vector<std::uint8_t> bytes = ReadBytes(Path());
  ASSERT_GE(bytes.size(), 14u);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 6), "GIF89a");
  EXPECT_EQ(Word(bytes, 6), GetParam().width);
  EXPECT_EQ(Word(bytes, 8), GetParam().height);
}

TEST_P(ImageFileTest, EndsWithTheTrailer) {
  const std::vector<std::uint8_t> bytes = ReadBytes(Path());
  ASSERT_FALSE(bytes.empty());
  EXPECT_EQ(bytes.back(), 0x3B);
  EXPECT_EQ(WalkBlocks(bytes).trailer_at, bytes.size() - 1);
}

TEST_P(ImageFileTest, HoldsOneImageCoveringTheScreenWithASmallPalette) {
  const GifLayout gif = WalkBlocks(ReadBytes(Path()));
  EXPECT_EQ(gif.image_count, 1);
  EXPECT_EQ(gif.image_width, GetParam().width);
  EXPECT_EQ(gif.image_height, GetParam().height);
  EXPECT_GE(gif.colour_table_size, 2);
  EXPECT_LE(gif.colour_table_size, 128);
  if (gif.has_transparency) {
    EXPECT_LT(gif.transparent_index, gif.colour_table_size);
  }
}

TEST_P(ImageFileTest, LzwDataDecodesToOneIndexPerPixel) {
  const GifLayout gif = WalkBlocks(ReadBytes(Path()));
  const std::vector<int> pixels = DecodeLzw(gif.lzw, gif.min_code_size);
  EXPECT_EQ(pixels.size(), static_cast<std::size_t>(GetParam().width) * GetParam().height);
  for (int index : pixels) {
    ASSERT_LT(index, gif.colour_table_size);
  }
}

INSTANTIATE_TEST_SUITE_P(Images, ImageFileTest, testing::ValuesIn(kImages),
                         [](const testing::TestParamInfo<ExpectedImage>& info) {
                           return std::string(info.param.name);
                         });

// The style sheet without its comments, so that a class named only in a comment fails.
std::string StyleSheetRules() {
  const std::vector<std::uint8_t> bytes =
      ReadBytes(std::string(TIDEWELL_ASSET_DIR) + "/tidewell.css");
  const std::string text(bytes.begin(), bytes.end());
  return std::regex_replace(text, std::regex(R"(/\*[\s\S]*?\*/)"), "");
}

class StyleSheetTest : public testing::TestWithParam<const char*> {};

TEST_P(StyleSheetTest, HasARuleForTheClass) {
  const std::string rules = StyleSheetRules();
  // ".name" as a whole class in a selector: followed by a selector separator, pseudo-class,
  // blank or the opening brace, and inside a selector list (before a "{").
  const std::regex selector(std::string(R"((^|[\s,}a-z])\.)") + GetParam() + R"([\s,:{][^}]*\{)");
  EXPECT_TRUE(std::regex_search(rules, selector)) << "no rule for ." << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Classes, StyleSheetTest,
                         testing::Values("text", "mwdname", "dtname", "delta", "today", "current",
                                         "tabs", "datepicker", "help", "white", "search", "admin"),
                         [](const testing::TestParamInfo<const char*>& info) {
                           return std::string(info.param);
                         });

}  // namespace

#include "tools/gif_codec.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_map>

namespace tidewell::tools {
namespace {

constexpr int kMaxCodeBits = 12;
constexpr int kMaxCodes = 1 << kMaxCodeBits;

// Packs variable-width codes least significant bit first, as GIF wants them.
class CodeWriter {
 public:
  void Write(int code, int bits) {
    accumulator_ |= static_cast<std::uint32_t>(code) << filled_;
    filled_ += bits;
    while (filled_ >= 8) {
      bytes_.push_back(static_cast<std::uint8_t>(accumulator_ & 0xFF));
      accumulator_ >>= 8;
      filled_ -= 8;
    }
  }
  std::vector<std::uint8_t> Finish() {
    if (filled_ > 0) bytes_.push_back(static_cast<std::uint8_t>(accumulator_ & 0xFF));
    accumulator_ = 0;
    filled_ = 0;
    return std::move(bytes_);
  }

 private:
  std::vector<std::uint8_t> bytes_;
  std::uint32_t accumulator_ = 0;
  int filled_ = 0;
};

// The fewest bits that hold `count` palette indexes; GIF's LZW needs at least two.
int IndexBits(std::size_t count) {
  int bits = 2;
  while ((std::size_t{1} << bits) < count) ++bits;
  return bits;
}

// Classic GIF LZW: a clear code first, codes widened when the next free code no longer fits,
// and a fresh clear code (dictionary reset) when all 4096 codes are taken.
std::vector<std::uint8_t> Compress(const std::vector<std::uint8_t>& pixels, int min_code_size) {
  const int clear = 1 << min_code_size;
  const int end = clear + 1;
  CodeWriter out;
  std::unordered_map<std::uint32_t, int> dictionary;
  int code_size = min_code_size + 1;
  int next_code = end + 1;
  out.Write(clear, code_size);
  int prefix = pixels.front();
  for (std::size_t i = 1; i < pixels.size(); ++i) {
    const int value = pixels[i];
    const std::uint32_t key = (static_cast<std::uint32_t>(prefix) << 8) | value;
    if (auto found = dictionary.find(key); found != dictionary.end()) {
      prefix = found->second;
      continue;
    }
    out.Write(prefix, code_size);
    dictionary.emplace(key, next_code);
    if (next_code == (1 << code_size) && code_size < kMaxCodeBits) ++code_size;
    ++next_code;
    if (next_code == kMaxCodes) {
      out.Write(clear, code_size);
      dictionary.clear();
      code_size = min_code_size + 1;
      next_code = end + 1;
    }
    prefix = value;
  }
  out.Write(prefix, code_size);
  out.Write(end, code_size);
  return out.Finish();
}

void PutWord(std::vector<std::uint8_t>& out, int value) {
  out.push_back(static_cast<std::uint8_t>(value & 0xFF));
  out.push_back(static_cast<std::uint8_t>((value >> 8) & 0xFF));
}

// Reads a GIF byte by byte, failing with a message instead of running off the end.
class ByteReader {
 public:
  explicit ByteReader(const std::vector<std::uint8_t>& data) : data_(data) {}
  std::uint8_t Byte() {
    if (pos_ >= data_.size()) throw std::runtime_error("GIF data ends early");
    return data_[pos_++];
  }
  int Word() {
    const int low = Byte();
    return low | (Byte() << 8);
  }
  bool AtEnd() const { return pos_ == data_.size(); }

 private:
  const std::vector<std::uint8_t>& data_;
  std::size_t pos_ = 0;
};

std::vector<std::uint8_t> ReadSubBlocks(ByteReader& in) {
  std::vector<std::uint8_t> bytes;
  for (int length = in.Byte(); length != 0; length = in.Byte()) {
    for (int i = 0; i < length; ++i) bytes.push_back(in.Byte());
  }
  return bytes;
}

std::vector<std::uint8_t> Decompress(const std::vector<std::uint8_t>& data, int min_code_size,
                                     std::size_t expected) {
  const int clear = 1 << min_code_size;
  const int end = clear + 1;
  std::vector<int> prefix(kMaxCodes, -1);
  std::vector<std::uint8_t> suffix(kMaxCodes, 0);
  for (int i = 0; i < clear; ++i) suffix[i] = static_cast<std::uint8_t>(i);
  int code_size = min_code_size + 1;
  int next_code = end + 1;
  int previous = -1;
  std::vector<std::uint8_t> out;
  std::vector<std::uint8_t> run;
  auto expand = [&](int code) {
    run.clear();
    for (int c = code; c >= 0; c = prefix[c]) run.push_back(suffix[c]);
    std::reverse(run.begin(), run.end());
  };
  std::size_t bit = 0;
  for (;;) {
    if (bit + code_size > data.size() * 8) throw std::runtime_error("LZW data has no end code");
    int code = 0;
    for (int i = 0; i < code_size; ++i, ++bit) {
      code |= ((data[bit / 8] >> (bit % 8)) & 1) << i;
    }
    if (code == clear) {
      code_size = min_code_size + 1;
      next_code = end + 1;
      previous = -1;
      continue;
    }
    if (code == end) break;
    if (previous < 0) {
      if (code >= clear) throw std::runtime_error("LZW starts with an undefined code");
      expand(code);
    } else {
      if (code > next_code) throw std::runtime_error("LZW code beyond the dictionary");
      const bool known = code < next_code;
      expand(known ? code : previous);
      const std::uint8_t first = run.front();
      if (!known) run.push_back(first);
      if (next_code < kMaxCodes) {
        prefix[next_code] = previous;
        suffix[next_code] = first;
        ++next_code;
        if (next_code == (1 << code_size) && code_size < kMaxCodeBits) ++code_size;
      }
    }
    out.insert(out.end(), run.begin(), run.end());
    previous = code;
  }
  if (out.size() != expected) throw std::runtime_error("LZW data has the wrong pixel count");
  return out;
}

}  // namespace

std::vector<std::uint8_t> EncodeGif(const IndexedImage& image) {
  if (image.width <= 0 || image.height <= 0 || image.width > 0xFFFF || image.height > 0xFFFF) {
    throw std::invalid_argument("GIF sizes must be 1 to 65535");
  }
  if (image.palette.empty() || image.palette.size() > 256) {
    throw std::invalid_argument("GIF palette must hold 1 to 256 colours");
  }
  if (image.pixels.size() != static_cast<std::size_t>(image.width) * image.height) {
    throw std::invalid_argument("pixel count does not match the sizes");
  }
  for (std::uint8_t index : image.pixels) {
    if (index >= image.palette.size()) throw std::invalid_argument("pixel outside the palette");
  }
  const int bits = IndexBits(image.palette.size());
  // The colour table may be as small as 2 entries; LZW codes start at 2 bits regardless.
  int table_bits = 1;
  while ((std::size_t{1} << table_bits) < image.palette.size()) ++table_bits;
  std::vector<std::uint8_t> out = {'G', 'I', 'F', '8', '9', 'a'};
  PutWord(out, image.width);
  PutWord(out, image.height);
  // Global table present, 8 bits per primary, table size 2^table_bits.
  out.push_back(static_cast<std::uint8_t>(0x80 | 0x70 | (table_bits - 1)));
  out.push_back(image.transparent.value_or(0));  // background colour index
  out.push_back(0);                              // square pixels
  for (int i = 0; i < (1 << table_bits); ++i) {
    const Rgb colour = i < static_cast<int>(image.palette.size()) ? image.palette[i] : Rgb{};
    out.insert(out.end(), {colour.r, colour.g, colour.b});
  }
  if (image.transparent) {
    out.insert(out.end(), {0x21, 0xF9, 0x04, 0x01, 0x00, 0x00, *image.transparent, 0x00});
  }
  out.push_back(0x2C);
  PutWord(out, 0);
  PutWord(out, 0);
  PutWord(out, image.width);
  PutWord(out, image.height);
  out.push_back(0);  // no local colour table, not interlaced
  out.push_back(static_cast<std::uint8_t>(bits));
  const std::vector<std::uint8_t> data = Compress(image.pixels, bits);
  for (std::size_t pos = 0; pos < data.size(); pos += 255) {
    const std::size_t length = std::min<std::size_t>(255, data.size() - pos);
    out.push_back(static_cast<std::uint8_t>(length));
    out.insert(out.end(), data.begin() + pos, data.begin() + pos + length);
  }
  out.push_back(0);
  out.push_back(0x3B);
  return out;
}

IndexedImage DecodeGif(const std::vector<std::uint8_t>& data) {
  ByteReader in(data);
  std::string signature;
  for (int i = 0; i < 6; ++i) signature += static_cast<char>(in.Byte());
  if (signature != "GIF89a") throw std::runtime_error("not a GIF89a file");
  IndexedImage image;
  image.width = in.Word();
  image.height = in.Word();
  const int flags = in.Byte();
  in.Byte();
  in.Byte();
  if ((flags & 0x80) == 0) throw std::runtime_error("no global colour table");
  const int colours = 1 << ((flags & 0x07) + 1);
  for (int i = 0; i < colours; ++i) {
    const std::uint8_t r = in.Byte(), g = in.Byte(), b = in.Byte();
    image.palette.push_back({r, g, b});
  }
  for (;;) {
    const int block = in.Byte();
    if (block == 0x3B) break;
    if (block == 0x21) {
      const int label = in.Byte();
      std::vector<std::uint8_t> body = ReadSubBlocks(in);
      if (label == 0xF9 && body.size() == 4 && (body[0] & 1)) image.transparent = body[3];
      continue;
    }
    if (block != 0x2C) throw std::runtime_error("unknown GIF block");
    in.Word();
    in.Word();
    const int width = in.Word();
    const int height = in.Word();
    if (width != image.width || height != image.height) {
      throw std::runtime_error("image does not fill the logical screen");
    }
    if (in.Byte() != 0) throw std::runtime_error("local colour tables and interlace unsupported");
    const int min_code_size = in.Byte();
    if (min_code_size < 2 || min_code_size > 8) throw std::runtime_error("bad LZW code size");
    image.pixels =
        Decompress(ReadSubBlocks(in), min_code_size, static_cast<std::size_t>(width) * height);
  }
  if (!in.AtEnd()) throw std::runtime_error("bytes after the GIF trailer");
  if (image.pixels.empty()) throw std::runtime_error("GIF holds no image");
  return image;
}

}  // namespace tidewell::tools

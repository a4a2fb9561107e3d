#include "tools/png_writer.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>

namespace tidewell::tools {
namespace {

std::uint32_t Crc32(const std::vector<std::uint8_t>& bytes, std::size_t from) {
  static const std::array<std::uint32_t, 256> table = [] {
    std::array<std::uint32_t, 256> t{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  std::uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = from; i < bytes.size(); ++i) {
    crc = table[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
  }
  return crc ^ 0xFFFFFFFFu;
}

void PutBig32(std::vector<std::uint8_t>& out, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back((value >> shift) & 0xFF);
}

void PutChunk(std::vector<std::uint8_t>& out, const char* type,
              const std::vector<std::uint8_t>& body) {
  PutBig32(out, static_cast<std::uint32_t>(body.size()));
  const std::size_t start = out.size();
  out.insert(out.end(), type, type + 4);
  out.insert(out.end(), body.begin(), body.end());
  PutBig32(out, Crc32(out, start));
}

// A zlib stream holding `raw` in stored blocks of at most 65535 bytes.
std::vector<std::uint8_t> StoredZlib(const std::vector<std::uint8_t>& raw) {
  std::vector<std::uint8_t> out = {0x78, 0x01};
  std::size_t pos = 0;
  do {
    const std::size_t length = std::min<std::size_t>(65535, raw.size() - pos);
    const bool last = pos + length == raw.size();
    out.push_back(last ? 1 : 0);
    out.push_back(length & 0xFF);
    out.push_back((length >> 8) & 0xFF);
    out.push_back(~length & 0xFF);
    out.push_back((~length >> 8) & 0xFF);
    out.insert(out.end(), raw.begin() + pos, raw.begin() + pos + length);
    pos += length;
  } while (pos < raw.size());
  std::uint32_t a = 1, b = 0;
  for (std::uint8_t byte : raw) {
    a = (a + byte) % 65521;
    b = (b + a) % 65521;
  }
  PutBig32(out, (b << 16) | a);
  return out;
}

}  // namespace

void WritePng(const std::string& path, const RgbPicture& picture) {
  std::vector<std::uint8_t> raw;
  for (int y = 0; y < picture.height; ++y) {
    raw.push_back(0);  // filter: none
    for (int x = 0; x < picture.width; ++x) {
      const Rgb& p = picture.pixels[static_cast<std::size_t>(y) * picture.width + x];
      raw.insert(raw.end(), {p.r, p.g, p.b});
    }
  }
  std::vector<std::uint8_t> header;
  PutBig32(header, static_cast<std::uint32_t>(picture.width));
  PutBig32(header, static_cast<std::uint32_t>(picture.height));
  header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB, no interlace
  std::vector<std::uint8_t> out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  PutChunk(out, "IHDR", header);
  PutChunk(out, "IDAT", StoredZlib(raw));
  PutChunk(out, "IEND", {});
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(out.data()), static_cast<std::streamsize>(out.size()));
  if (!file) throw std::runtime_error("cannot write " + path);
}

}  // namespace tidewell::tools

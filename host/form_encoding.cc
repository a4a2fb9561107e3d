#include "host/form_encoding.h"

#include <cctype>

#include "runtime/strings.h"

namespace tidewell {
namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string Unescape(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '+') {
      out += ' ';
    } else if (text[i] == '%' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 &&
               HexValue(text[i + 2]) >= 0) {
      out += static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace

AspCollection ParseUrlEncoded(std::string_view text) {
  AspCollection collection;
  while (!text.empty()) {
    size_t amp = text.find('&');
    std::string_view pair = text.substr(0, amp);
    text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
    if (pair.empty()) continue;
    size_t eq = pair.find('=');
    std::string_view name = pair.substr(0, eq);
    std::string_view value =
        eq == std::string_view::npos ? std::string_view() : pair.substr(eq + 1);
    collection.Add(Unescape(name), Unescape(value));
  }
  return collection;
}

std::string UrlEncode(std::string_view text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (char c : text) {
    unsigned char byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) || c == '-' || c == '_' || c == '.' || c == '~') {
      out += c;
    } else {
      out += '%';
      out += kDigits[byte >> 4];
      out += kDigits[byte & 0xF];
    }
  }
  return out;
}

}  // namespace tidewell

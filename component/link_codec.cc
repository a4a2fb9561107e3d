#include "component/link_codec.h"

#include "component/link_keys.h"
#include "component/page.h"
#include "runtime/automation_error.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

int HexDigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string BuildLink(const Page& page, const Variant& f1, const Variant& f2, const Variant& f3,
                      const Variant& f4, std::string_view f5, const Variant& f6,
                      std::string_view f7, std::string_view suffix) {
  std::string payload = "~";
  for (const std::string& field :
       {CStr(f1), CStr(f2), CStr(f3), CStr(f4), SignKey(page.signing, f5), CStr(f6),
        SignKey(page.signing, f7)}) {
    payload += field;
    payload += '~';
  }
  payload += suffix;
  return page.ScriptName + "WS=" + EncodeQueryString(payload, page.props.HexQueryString);
}

std::string EncodeQueryString(std::string_view text, bool hex) {
  if (!hex) return std::string(text);
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(text.size() * 2);
  for (char c : text) {
    unsigned char byte = static_cast<unsigned char>(c);
    out += kDigits[byte >> 4];
    out += kDigits[byte & 0xF];
  }
  return out;
}

std::string DecodeQueryString(std::string_view text, bool hex) {
  if (!hex) return std::string(text);
  std::string out;
  out.reserve(text.size() / 2 + 1);
  for (size_t i = 0; i < text.size(); i += 2) {
    std::string_view pair = text.substr(i, 2);
    int value = 0;
    for (char c : pair) {
      int digit = HexDigitValue(c);
      if (digit < 0) RaiseTypeMismatch();
      value = value * 16 + digit;
    }
    out += static_cast<char>(value);
  }
  return out;
}

}  // namespace tidewell

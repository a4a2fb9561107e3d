#include "page/link_codec.h"

#include <array>
#include <charconv>
#include <iterator>

#include "page/link_keys.h"
#include "page/page.h"
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

void AppendEncoded(std::string& out, std::string_view text, bool hex) {
  if (!hex) {
    out += text;
    return;
  }
  // The two digits of every byte, looked up at once.
  static constexpr auto kPairs = [] {
    std::array<char, 512> pairs{};
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (int byte = 0; byte < 256; ++byte) {
      pairs[static_cast<size_t>(2 * byte)] = kDigits[byte >> 4];
      pairs[static_cast<size_t>(2 * byte + 1)] = kDigits[byte & 0xF];
    }
    return pairs;
  }();
  // Appended pair by pair: a link's fields are short, and growing the string first would only
  // fill it with zeros to be written over.
  for (char c : text) out.append(&kPairs[2 * static_cast<unsigned char>(c)], 2);
}

// Every link of a page carries the same one or two keys, signed with the same expiry and
// encoded the same way: some hundreds of times on a month view, and most of each link's
// length. The last few a thread wrote are kept, signed and encoded.
class RecentKeys {
 public:
  const std::string& Encoded(const LinkSigning& signing, std::string_view key,
                             std::string_view stamp, bool hex) {
    const long long expiry = UnixNow() + signing.lifetime_seconds;
    for (const Entry& entry : entries_) {
      if (entry.expiry == expiry && entry.hex == hex && entry.key == key && entry.stamp == stamp &&
          entry.secret == signing.secret) {
        return entry.encoded;
      }
    }
    Entry& entry = entries_[next_];
    next_ = (next_ + 1) % entries_.size();
    entry = {signing.secret, std::string(key), std::string(stamp), expiry, hex, ""};
    AppendEncoded(entry.encoded, SignKey(signing, key, stamp), hex);
    return entry.encoded;
  }

 private:
  struct Entry {
    std::string secret;
    std::string key;
    std::string stamp;
    long long expiry = 0;
    bool hex = false;
    std::string encoded;
  };
  std::array<Entry, 4> entries_;
  size_t next_ = 0;
};

// The key as a link carries it: signed over its account's stamp (link_keys.h), then encoded;
// an empty key stays empty. A key whose account the page never read is signed over an empty
// stamp, which no account has, so that link opens nothing. The text lasts until the thread's
// next call.
const std::string& EncodedKey(const Page& page, std::string_view key, bool hex) {
  static const std::string kNoKey;
  if (key.empty()) return kNoKey;
  thread_local RecentKeys recent;
  const std::string* stamp = page.Stamps.Find(key);
  return recent.Encoded(page.signing, key, stamp ? *stamp : std::string_view(), hex);
}

// The fields' separator, "~", as the link carries it.
void AppendSeparator(std::string& out, bool hex) {
  out += hex ? std::string_view("7E") : std::string_view("~");
}

// A field's text by the run time's rules, encoded straight after what is there: text and
// whole numbers, nearly every field of a link, without a copy of their own.
void AppendEncodedField(std::string& out, const Variant& field, bool hex) {
  switch (field.type()) {
    case Variant::Type::kString:
      return AppendEncoded(out, field.AsString(), hex);
    case Variant::Type::kLong: {
      char digits[24];
      const auto written = std::to_chars(std::begin(digits), std::end(digits), field.AsLong());
      return AppendEncoded(out, std::string_view(digits, written.ptr), hex);
    }
    default:
      return AppendEncoded(out, CStr(field), hex);
  }
}

}  // namespace

void AppendLink(std::string& out, const Page& page, const Variant& f1, const Variant& f2,
                const Variant& f3, const Variant& f4, std::string_view f5, const Variant& f6,
                std::string_view f7, std::string_view suffix) {
  // A month view writes some hundreds of links: each is encoded straight into its place.
  const bool hex = page.props.HexQueryString;
  out += page.ScriptName;
  out += "WS=";
  for (const Variant* field : {&f1, &f2, &f3, &f4}) {
    AppendSeparator(out, hex);
    AppendEncodedField(out, *field, hex);
  }
  AppendSeparator(out, hex);
  const std::string& user_key = EncodedKey(page, f5, hex);
  out += user_key;
  AppendSeparator(out, hex);
  AppendEncodedField(out, f6, hex);
  AppendSeparator(out, hex);
  // An administrator's links carry his key twice, as user and as administrator: it is signed
  // and encoded once.
  out += f7 == f5 ? user_key : EncodedKey(page, f7, hex);
  AppendSeparator(out, hex);
  AppendEncoded(out, suffix, hex);
}

std::string BuildLink(const Page& page, const Variant& f1, const Variant& f2, const Variant& f3,
                      const Variant& f4, std::string_view f5, const Variant& f6,
                      std::string_view f7, std::string_view suffix) {
  std::string link;
  link.reserve(page.ScriptName.size() + 3 +
               (page.props.HexQueryString ? 2 : 1) * (96 + f5.size() + f7.size()));
  AppendLink(link, page, f1, f2, f3, f4, f5, f6, f7, suffix);
  return link;
}

std::string EncodeQueryString(std::string_view text, bool hex) {
  std::string out;
  AppendEncoded(out, text, hex);
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

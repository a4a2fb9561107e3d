#include "page/link_keys.h"

#include <sodium.h>

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "runtime/clock.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

constexpr size_t kKeyDigits = 32;
constexpr size_t kMacDigits = 32;

std::string Hex(const unsigned char* bytes, size_t count) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string out;
  out.reserve(count * 2);
  for (size_t i = 0; i < count; ++i) {
    out += kDigits[bytes[i] >> 4];
    out += kDigits[bytes[i] & 0xF];
  }
  return out;
}

bool IsLowerHex(std::string_view s) {
  for (char c : s) {
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return false;
  }
  return true;
}

std::string RandomHex(size_t bytes_wanted) {
  StartSodium();
  std::vector<unsigned char> bytes(bytes_wanted);
  randombytes_buf(bytes.data(), bytes.size());
  return Hex(bytes.data(), bytes.size());
}

// A host that configures no secret still must not sign with an empty one: such links then hold
// for this process only.
const std::string& ProcessSecret() {
  static const std::string secret = RandomHex(32);
  return secret;
}

std::string Mac(const LinkSigning& signing, std::string_view signed_part, std::string_view stamp) {
  std::string message(signed_part);
  message += '\n';
  message += stamp;
  return SiteSignature(signing, message).substr(0, kMacDigits);
}

}  // namespace

long long UnixNow() {
  // Serial day 25569 is 1 January 1970. The run time's clock is local time; links only
  // compare against it, so the zone offset cancels out.
  return std::llround((Now().serial - 25569.0) * 86400.0);
}

std::string GenerateOwnerKey() {
  return RandomHex(kKeyDigits / 2);
}

std::string GenerateFeedToken() {
  return RandomHex(16);
}

bool IsFeedToken(std::string_view token) {
  return token.size() == 32 && IsLowerHex(token);
}

std::string GenerateLinkSecret() {
  return RandomHex(32);
}

bool IsOwnerKey(std::string_view key) {
  return key.size() == kKeyDigits && IsLowerHex(key);
}

void StartSodium() {
  static const bool started = sodium_init() >= 0;
  if (!started) throw std::runtime_error("libsodium could not be started");
}

std::string Sha256Hex(std::string_view text) {
  StartSodium();
  unsigned char digest[crypto_hash_sha256_BYTES];
  crypto_hash_sha256(digest, reinterpret_cast<const unsigned char*>(text.data()), text.size());
  return Hex(digest, sizeof digest);
}

// HMAC-SHA256 with a secret of any length. libsodium computes it without the algorithm
// look-ups OpenSSL 3 makes on every call, and a page checks a key or two on every request.
std::string SiteSignature(const LinkSigning& signing, std::string_view message) {
  StartSodium();
  const std::string& secret = signing.secret.empty() ? ProcessSecret() : signing.secret;
  crypto_auth_hmacsha256_state state;
  crypto_auth_hmacsha256_init(&state, reinterpret_cast<const unsigned char*>(secret.data()),
                              secret.size());
  crypto_auth_hmacsha256_update(&state, reinterpret_cast<const unsigned char*>(message.data()),
                                message.size());
  unsigned char digest[crypto_auth_hmacsha256_BYTES];
  crypto_auth_hmacsha256_final(&state, digest);
  sodium_memzero(&state, sizeof state);
  return Hex(digest, sizeof digest);
}

const std::string* AccountStamps::Find(std::string_view key) const {
  for (const auto& [known_key, stamp] : known_) {
    if (known_key == key) return &stamp;
  }
  return nullptr;
}

void AccountStamps::Set(std::string_view key, std::string stamp) {
  Forget(key);
  known_.emplace_back(std::string(key), std::move(stamp));
}

void AccountStamps::Forget(std::string_view key) {
  std::erase_if(known_, [key](const auto& entry) { return entry.first == key; });
}

std::string SignKey(const LinkSigning& signing, std::string_view key, std::string_view stamp) {
  if (key.empty()) return "";
  std::string signed_part =
      std::string(key) + "." + std::to_string(UnixNow() + signing.lifetime_seconds);
  std::string mac = Mac(signing, signed_part, stamp);
  return signed_part + "." + mac;
}

std::optional<SignedKey> ReadSignedKey(std::string_view signed_key) {
  size_t first_dot = signed_key.find('.');
  size_t last_dot = signed_key.rfind('.');
  if (first_dot != kKeyDigits || last_dot == first_dot) return std::nullopt;
  std::string_view key = signed_key.substr(0, first_dot);
  std::string_view expiry_text = signed_key.substr(first_dot + 1, last_dot - first_dot - 1);
  std::string_view mac = signed_key.substr(last_dot + 1);
  if (!IsOwnerKey(key) || mac.size() != kMacDigits || expiry_text.empty()) return std::nullopt;

  long long expiry = 0;
  auto [end, error] = std::from_chars(expiry_text.begin(), expiry_text.end(), expiry);
  if (error != std::errc() || end != expiry_text.end() || expiry_text[0] == '0')
    return std::nullopt;

  if (expiry < UnixNow()) return std::nullopt;
  return SignedKey{std::string(key), std::string(signed_key.substr(0, last_dot)), std::string(mac)};
}

bool MacMatches(const LinkSigning& signing, const SignedKey& key, std::string_view stamp) {
  std::string expected = Mac(signing, key.signed_part, stamp);
  return key.mac.size() == kMacDigits &&
         sodium_memcmp(expected.data(), key.mac.data(), kMacDigits) == 0;
}

std::optional<std::string> CheckSignedKey(const LinkSigning& signing, std::string_view signed_key,
                                          std::string_view stamp) {
  std::optional<SignedKey> read = ReadSignedKey(signed_key);
  if (!read || !MacMatches(signing, *read, stamp)) return std::nullopt;
  return read->key;
}

}  // namespace tidewell

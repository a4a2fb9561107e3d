#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tidewell {

// How keys travel in links. A bare OwnerKey is 32 lower-case hex digits of random; option
// lists show such keys, so a bare key must never open a calendar. Links therefore carry
// OwnerKey "." expiry "." mac, where expiry is Unix seconds and mac the first 32 hex digits of
// HMAC-SHA256(secret, OwnerKey "." expiry). Servers that share a database share the secret.
struct LinkSigning {
  std::string secret;
  long lifetime_seconds = 12 * 60 * 60;
};

// A fresh OwnerKey from the operating system's random source.
std::string GenerateOwnerKey();

// A fresh signing secret: 64 hex digits from the operating system's random source.
std::string GenerateLinkSecret();

// True for text of the form GenerateOwnerKey makes.
bool IsOwnerKey(std::string_view key);

// The signed form of `key` for a link, valid for the configured lifetime from now. An empty
// key stays empty.
std::string SignKey(const LinkSigning& signing, std::string_view key);

// The bare key of a signed one that is well formed, unexpired and carries a valid mac;
// nothing otherwise.
std::optional<std::string> CheckSignedKey(const LinkSigning& signing, std::string_view signed_key);

// The present as Unix seconds, read from the run time's clock (so TIDEWELL_NOW moves it too).
long long UnixNow();

}  // namespace tidewell

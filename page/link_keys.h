#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tidewell {

// How keys travel in links. A bare OwnerKey is 32 lower-case hex digits of random; option
// lists show such keys, so a bare key must never open a calendar. Links therefore carry
// OwnerKey "." expiry "." mac, where expiry is Unix seconds and mac the first 32 hex digits of
// HMAC-SHA256(secret, OwnerKey "." expiry "\n" stamp). The stamp is something of the account
// that changes when its password changes (its stored password hash) and is gone when the
// account is deleted, so either ends every link signed before. Servers that share a database
// share the secret.
struct LinkSigning {
  std::string secret;
  long lifetime_seconds = 12 * 60 * 60;
};

// A key as a link carried it: well formed and unexpired, its mac not yet checked against the
// account (MacMatches).
struct SignedKey {
  std::string key;          // the bare OwnerKey
  std::string signed_part;  // OwnerKey "." expiry
  std::string mac;
};

// The stamps of the accounts whose keys a page's links carry, as read from the database.
class AccountStamps {
 public:
  // The stamp of `key`, or nothing when it was never read.
  const std::string* Find(std::string_view key) const;
  void Set(std::string_view key, std::string stamp);
  void Forget(std::string_view key);

 private:
  std::vector<std::pair<std::string, std::string>> known_;  // a page knows one or two
};

// A fresh OwnerKey from the operating system's random source.
std::string GenerateOwnerKey();

// A fresh feed token, the secret part of a feed address: 32 lower-case hex digits (128 bits)
// from the same random source as the keys.
std::string GenerateFeedToken();

// True for text of the form GenerateFeedToken makes.
bool IsFeedToken(std::string_view token);

// A fresh signing secret: 64 hex digits from the operating system's random source.
std::string GenerateLinkSecret();

// True for text of the form GenerateOwnerKey makes.
bool IsOwnerKey(std::string_view key);

// The signed form of `key` for a link, valid for the configured lifetime from now, signed over
// the account's stamp. An empty key stays empty.
std::string SignKey(const LinkSigning& signing, std::string_view key, std::string_view stamp);

// The signed key when it is well formed and unexpired; nothing otherwise.
std::optional<SignedKey> ReadSignedKey(std::string_view signed_key);

// Whether the key's mac is the one this site signs for the account with that stamp.
bool MacMatches(const LinkSigning& signing, const SignedKey& key, std::string_view stamp);

// ReadSignedKey and MacMatches together: the bare key, or nothing.
std::optional<std::string> CheckSignedKey(const LinkSigning& signing, std::string_view signed_key,
                                          std::string_view stamp);

// Starts libsodium, which the keys, hashes and signatures here and the password hashes come
// from, once before its first use; throws when it cannot start.
void StartSodium();

// SHA-256 of `text` in lower-case hex: for values kept or compared without keeping the text
// itself (the throttle's account names, the AutoLogin check's memory).
std::string Sha256Hex(std::string_view text);

// HMAC-SHA256 of `message` with the site's secret, in lower-case hex, for other values the
// site derives and must not be forgeable (the password fields' stand-ins).
std::string SiteSignature(const LinkSigning& signing, std::string_view message);

// The present as Unix seconds, read from the run time's clock (so TIDEWELL_NOW moves it too).
long long UnixNow();

}  // namespace tidewell

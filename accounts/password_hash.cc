#include "accounts/password_hash.h"

#include <sodium.h>

#include <stdexcept>

#include "page/link_keys.h"

namespace tidewell {
namespace {

// OWASP's password storage guidance names Argon2id with at least 19 MiB of memory, two
// passes and one lane as its minimum; libsodium always uses one lane. A hash costs some tens
// of milliseconds here, paid once per login.
constexpr unsigned long long kPasses = 2;
constexpr size_t kMemoryBytes = 19 * 1024 * 1024;

// A hash of a password nobody has, made once, for VerifyAgainstNoAccount.
const std::string& HashOfNoAccount() {
  static const std::string hash = [] {
    unsigned char random[16];
    StartSodium();
    randombytes_buf(random, sizeof random);
    return HashPassword(std::string_view(reinterpret_cast<const char*>(random), sizeof random));
  }();
  return hash;
}

}  // namespace

std::string HashPassword(std::string_view password) {
  StartSodium();
  char hash[crypto_pwhash_STRBYTES];
  if (crypto_pwhash_str_alg(hash, password.data(), password.size(), kPasses, kMemoryBytes,
                            crypto_pwhash_ALG_ARGON2ID13) != 0) {
    throw std::runtime_error("not enough memory to hash a password");
  }
  return hash;
}

bool IsPasswordHash(std::string_view stored) {
  return stored.starts_with("$argon2id$") && stored.size() < crypto_pwhash_STRBYTES;
}

bool VerifyPassword(std::string_view stored, std::string_view password) {
  if (!IsPasswordHash(stored)) return false;
  StartSodium();
  const std::string terminated(stored);  // libsodium reads the hash up to its terminating NUL
  return crypto_pwhash_str_verify(terminated.c_str(), password.data(), password.size()) == 0;
}

bool VerifyAgainstNoAccount(std::string_view password) {
  VerifyPassword(HashOfNoAccount(), password);
  return false;
}

bool NeedsRehash(std::string_view stored) {
  if (!IsPasswordHash(stored)) return true;
  StartSodium();
  const std::string terminated(stored);
  return crypto_pwhash_str_needs_rehash(terminated.c_str(), kPasses, kMemoryBytes) != 0;
}

}  // namespace tidewell

#include "accounts/password_fields.h"

#include "accounts/password_hash.h"
#include "page/link_keys.h"
#include "page/page.h"

namespace tidewell {
namespace {

constexpr size_t kStandInLength = 15;

}  // namespace

std::string PasswordStandIn(const Page& page, std::string_view stored) {
  std::string message = "password stand-in\n";
  message += stored;
  return SiteSignature(page.signing, message).substr(0, kStandInLength);
}

std::string PasswordToStore(const Page& page, std::string_view posted, std::string_view stored) {
  if (IsPasswordHash(stored) && posted == PasswordStandIn(page, stored)) {
    return std::string(stored);
  }
  return HashPassword(posted);
}

}  // namespace tidewell

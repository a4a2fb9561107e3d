#include "accounts/key_check.h"

#include <optional>
#include <string>
#include <string_view>

#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

ado::Statement StampStatement(std::string_view key) {
  return ado::Statement("SELECT Password FROM Users WHERE OwnerKey = ").Text(key);
}

// The account's stamp (its stored password hash), or nothing when no account has the key.
std::optional<std::string> ReadStamp(Page& page, std::string_view key) {
  ado::Recordset rs;
  rs.Open(StampStatement(key), *page.Connection);
  if (rs.Eof()) return std::nullopt;
  return CStrOrBlank(rs.Fields("Password").Value());
}

// Whether the key the link carried is the one this site signed for the account as it is now.
bool Confirmed(Page& page, const SignedKey& key) {
  const std::string* known = page.Stamps.Find(key.key);  // an administrator on his own calendar
  std::optional<std::string> stamp = known ? std::optional(*known) : ReadStamp(page, key.key);
  if (!stamp || !MacMatches(page.signing, key, *stamp)) return false;
  page.Stamps.Set(key.key, std::move(*stamp));
  return true;
}

bool IsSameSignedKey(const SignedKey& a, const SignedKey& b) {
  return a.key == b.key && a.signed_part == b.signed_part && a.mac == b.mac;
}

void SettleStamp(Page& page, const std::string& key) {
  if (key.empty() || page.Stamps.Find(key)) return;
  if (std::optional<std::string> stamp = ReadStamp(page, key)) page.Stamps.Set(key, *stamp);
}

}  // namespace

void RejectUserKey(Page& page) {
  page.UserKey.clear();
  page.UserKeyInLink.reset();
  if (page.RequestValue("welcome") != "y") page.Screen = screens::kLogin;
}

void RejectAdminKey(Page& page) {
  page.AdminKeyRejected = true;
  page.AdminKey.clear();
  page.AdminKeyInLink.reset();
}

void ConfirmLinkKeys(Page& page) {
  try {
    bool user_key_confirmed = false;
    if (page.UserKeyInLink) {
      user_key_confirmed = Confirmed(page, *page.UserKeyInLink);
      if (!user_key_confirmed) {
        ++page.LinkKeysRefused;
        RejectUserKey(page);
      }
    }
    // An administrator on his own calendar carries one signed key in both fields: its
    // signature is worked out once.
    const bool confirmed_as_user_key = user_key_confirmed && page.AdminKeyInLink &&
                                       IsSameSignedKey(*page.AdminKeyInLink, *page.UserKeyInLink);
    if (page.AdminKeyInLink && !confirmed_as_user_key && !Confirmed(page, *page.AdminKeyInLink)) {
      ++page.LinkKeysRefused;
      RejectAdminKey(page);
    }
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
  }
}

void SettleKeyStamps(Page& page) {
  if (!page.Connection || page.Connection->State() != ado::adStateOpen) return;
  try {
    SettleStamp(page, page.UserKey);
    SettleStamp(page, page.AdminKey);
  } catch (const ado::DatabaseError&) {
    // The links then carry keys no account confirms: the worst is a sign-in more.
  }
}

}  // namespace tidewell

#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "data/connection.h"
#include "page/asp_objects.h"
#include "page/link_keys.h"
#include "page/pending_error.h"
#include "page/properties.h"
#include "runtime/variant.h"

namespace tidewell {

// Screen codes: the value of `Screen`, carried in every link.
namespace screens {
inline constexpr long kMonthView = 0;
inline constexpr long kWeekView = 1;
inline constexpr long kDayView = 2;
inline constexpr long kTimeView = 3;
inline constexpr long kItemForm = 4;
inline constexpr long kDatePicker = 5;
inline constexpr long kLogin = 6;
inline constexpr long kUserOptions = 7;
inline constexpr long kAdministratorOptions = 8;
inline constexpr long kWelcome = 9;
inline constexpr long kGroupOptions = 10;
inline constexpr long kUserHelp = 11;
inline constexpr long kGroupHelp = 12;
inline constexpr long kItemHelp = 13;
inline constexpr long kErrorScreen = 14;
inline constexpr long kSearch = 15;
inline constexpr long kSearchHelp = 16;
inline constexpr long kCount = 17;
}  // namespace screens

// Why the login form was refused: the name and password did not match an account, or the
// throttle refused the attempt before they were checked (accounts/login_throttle.h).
enum class LoginRefusal { kNone, kCredentials, kThrottled };

// Browser kinds, from the user agent; several screens size themselves by it.
namespace browsers {
inline constexpr long kExplorer = 0;
inline constexpr long kNetscape = 1;
inline constexpr long kNavigator = 2;
inline constexpr long kOpera = 3;
}  // namespace browsers

// The signed-in user's account as LoadCurrentUser read it (accounts/login.h); empty while
// nobody is signed in. The screens that show or change the account read it from here.
struct CurrentUser {
  std::string Username;
  std::string Password;  // as stored: the hash, never shown (accounts/password_fields.h)
  std::string Initials;
  std::string GroupName;  // the name of the group GroupID names, as stored
  long DefaultView = 0;
  bool Administrator = false;
  std::string Options;  // Users.Options as stored: "flag+start hour+date+time+12-hour"
  // Users.Options read back (accounts/user_options.h):
  bool ShowAllGroupUsers = false;           // the item lists show the whole group
  bool MayChangeShowAllGroupUsers = false;  // the user may switch it himself
  long StartHour = 0;
  bool HighlightTodaysDate = false;
  bool HighlightTodaysTime = false;
  bool Show12HourDay = false;
};

// Everything one request knows: the properties the host page set, the ASP objects, and the
// state the page driver, the actions and the screens share while the page is built. One Page
// serves one request; every subsystem receives it explicitly.
struct Page {
  Properties props;
  LinkSigning signing;  // how keys in links are signed; set by the host

  const AspRequest* request = nullptr;
  AspResponse* response = nullptr;

  std::string PageBuffer;
  std::string ScriptName;
  std::vector<Variant> LinkFields;
  long Screen = screens::kLogin;
  long ReturnView = 0;
  std::string ScreenArgument;
  Date CurrentDate;
  long CurrentHour = 0;
  long ItemId = 0;
  bool DeletionRequested = false;  // the link's item field ended in "d"
  std::string UserKey;
  std::string SortOrder;
  std::string AdminKey;
  bool AdminKeyRejected = false;  // the link carried an administrator key that failed the check
  // The keys as the link carried them, well formed and unexpired, until the database has
  // confirmed their signatures (accounts/key_check.h).
  std::optional<SignedKey> UserKeyInLink;
  std::optional<SignedKey> AdminKeyInLink;
  // What the links of this page sign UserKey and AdminKey over.
  AccountStamps Stamps;
  std::string UserBanner;
  long UserGroupId = 0;
  CurrentUser User;
  // The user's group as this request read it: with his account (accounts/login.h), or else by
  // the first item list that shows his whole group (views/list_reading.h).
  std::optional<long> GroupScope;
  long BrowserKind = browsers::kExplorer;

  bool ViewSourceMode = false;
  bool AutoLoginEnabled = false;
  bool AutoLoginReadOnly = false;
  std::string AutoLoginUserName;
  std::string AutoLoginPassword;

  bool NewUserMode = false;
  bool FirstAdministratorMode = false;
  // What stopped this request short, if anything (page/pending_error.h): set by the actions
  // and the readers, shown by the screen the request ends on.
  PendingError Error;
  std::string SearchResults;
  std::shared_ptr<ado::Connection> Connection;  // opened at step 8 of Show, closed at its end
  long long StatementsRun = 0;  // by Connection, counted when it closed (for the access log)
  // Where this page's feed addresses start ("https://cal.example.org/feed/"), set by the host
  // while the site serves feeds (host key Feeds); unset, no screen shows a feed address.
  std::optional<std::string> FeedAddressStart;
  // The signed-in user's feed address, read (or made) for the user options screen.
  std::string FeedAddress;
  // What the host counts for its metrics; nothing in the component reads them.
  int LinkKeysRefused = 0;  // keys a link carried that were malformed, expired or not signed
  LoginRefusal LoginRefused = LoginRefusal::kNone;

  // Request("name") / Request.Form("name"), or "" when no request is bound.
  std::string RequestValue(std::string_view name) const { return request ? (*request)(name) : ""; }
  std::string FormValue(std::string_view name) const { return request ? request->Form(name) : ""; }
};

}  // namespace tidewell

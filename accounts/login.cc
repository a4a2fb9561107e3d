#include "accounts/login.h"

#include <mutex>
#include <optional>
#include <set>

#include "accounts/account_statements.h"
#include "accounts/login_throttle.h"
#include "accounts/password_hash.h"
#include "accounts/user_options.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "errors/database_errors.h"
#include "frame/markup.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

constexpr const char* kInvalidLogin =
    "<font color=#b22222><b>The Username and/or Password you have entered is "
    "invalid.</b></font><br><br>";

Statement LoginStatement(std::string_view name) {
  return Statement("SELECT OwnerKey, Password, DefaultView, Initials, Options FROM Users "
                   "WHERE Username = ")
      .Text(name);
}

Statement CurrentUserStatement(std::string_view key) {
  return Statement(
             "SELECT Users.Username, Users.Password, Users.Initials, Users.DefaultView, "
             "Users.Options, Users.Administrator, Groups.GroupID, Groups.GroupName FROM Users "
             "INNER JOIN Groups ON Users.GroupID = Groups.GroupID WHERE OwnerKey = ")
      .Text(key);
}

Statement AnyAdministratorStatement(ASPDataServer dialect) {
  return Statement("SELECT OwnerKey FROM Users Where Administrator = ").TrueValue(dialect);
}

// The invalid-login notice, whatever was wrong: the name, the password, or too many tries.
std::string RefuseLogin(Page& page, LoginRefusal why) {
  page.LoginRefused = why;
  page.Error.Raise(ErrorKind::kLoginRefused, kInvalidLogin);
  return "";
}

// The AutoLogin account signs in on every request of its page: a verification costs tens of
// milliseconds, so a stored hash and password that matched once are remembered (as a digest
// of both) for as long as the hash stays the same.
bool VerifyAutoLoginPassword(const std::string& stored, std::string_view password) {
  static std::mutex mutex;
  static std::set<std::string> verified;
  std::string pair = stored;
  pair += '\0';
  pair += password;
  std::string remembered = Sha256Hex(pair);
  {
    std::lock_guard lock(mutex);
    if (verified.contains(remembered)) return true;
  }
  if (!VerifyPassword(stored, password)) return false;
  std::lock_guard lock(mutex);
  if (verified.size() >= 64) verified.clear();  // a few AutoLogin pages, rarely changed
  verified.insert(std::move(remembered));
  return true;
}

// Whether the password is the account's stored one. A name without an account (no stored
// hash) costs the same time as a wrong password, so the answer does not tell which exist.
bool PasswordMatches(const std::optional<std::string>& stored, std::string_view password,
                     LoginSource source) {
  if (!stored) return VerifyAgainstNoAccount(password);
  return source == LoginSource::kAutoLogin ? VerifyAutoLoginPassword(*stored, password)
                                           : VerifyPassword(*stored, password);
}

void ReadAccount(Page& page, Recordset& rs) {
  CurrentUser& user = page.User;
  user.Username = CStrOrBlank(rs.Fields("Username").Value());
  user.Password = CStrOrBlank(rs.Fields("Password").Value());
  user.Initials = CStrOrBlank(rs.Fields("Initials").Value());
  user.DefaultView = CLng(rs.Fields("DefaultView").Value());
  user.Options = CStrOrBlank(rs.Fields("Options").Value());
  user.Administrator = CBoolOrFalse(rs.Fields("Administrator").Value());
  page.UserGroupId = CLng(rs.Fields("GroupID").Value());
  page.GroupScope = page.UserGroupId;  // the lists need not read it again
  user.GroupName = CStrOrBlank(rs.Fields("GroupName").Value());
  page.UserBanner = "<b>Group:</b> " + EscapeHtml(CStrOrBlank(rs.Fields("GroupName").Value())) +
                    " | <b>User:</b> " + EscapeHtml(user.Username);
}

// An administrator working on someone else's calendar: his key must pass the check and still
// name an administrator.
void CheckActingAdministrator(Page& page) {
  if (page.AdminKeyRejected) {
    page.Screen = screens::kLogin;
    return;
  }
  if (page.AdminKey.empty()) return;
  Recordset rs;
  rs.Open(AdministratorFlagStatement(page.AdminKey), *page.Connection);
  if (rs.Eof()) {
    page.Screen = screens::kLogin;
  } else if (!CBoolOrFalse(rs.Fields("Administrator").Value())) {
    page.Screen = screens::kLogin;
    page.AdminKey.clear();
  }
}

// The user's settings from Options; missing values fall back to the page's.
void ApplyUserOptions(Page& page) {
  UserOptions options = ReadUserOptions(page.User.Options);
  CurrentUser& user = page.User;
  Properties& props = page.props;
  user.ShowAllGroupUsers = options.show_all_group_users;
  user.MayChangeShowAllGroupUsers = options.may_change_show_all_group_users;
  user.StartHour = options.start_hour.value_or(props.DefaultStartHour);
  user.HighlightTodaysDate = options.highlight_todays_date ? *options.highlight_todays_date != 0
                                                           : props.HighlightTodaysDate;
  user.HighlightTodaysTime = options.highlight_todays_time ? *options.highlight_todays_time != 0
                                                           : props.HighlightTodaysTime;
  user.Show12HourDay =
      options.show_12_hour_day ? *options.show_12_hour_day != 0 : props.Show12HourDay;
  if (props.AllowUserOwnDefaults && !page.NewUserMode) {
    props.DefaultStartHour = user.StartHour;
    props.HighlightTodaysDate = user.HighlightTodaysDate;
    props.HighlightTodaysTime = user.HighlightTodaysTime;
    props.Show12HourDay = user.Show12HourDay;
  }
}

void LoadAccount(Page& page) {
  Recordset rs;
  rs.Open(CurrentUserStatement(page.UserKey), *page.Connection);
  if (rs.Eof()) {
    page.UserKey.clear();
    page.Screen = screens::kLogin;
    return;
  }
  ReadAccount(page, rs);
  rs.Close();
  if (page.User.Administrator) {
    page.AdminKey = page.UserKey;
  } else {
    CheckActingAdministrator(page);
  }
  ApplyUserOptions(page);
}

}  // namespace

std::string LoginUser(Page& page, std::string_view user_name, std::string_view password,
                      LoginSource source) {
  try {
    const bool throttled = source == LoginSource::kForm;
    LoginAttempt attempt;
    if (throttled) {
      attempt = AdmitLoginAttempt(page, user_name);
      if (!attempt.admitted) return RefuseLogin(page, LoginRefusal::kThrottled);
    }
    Recordset rs;
    rs.Open(LoginStatement(user_name), *page.Connection);
    std::optional<std::string> stored;
    if (!rs.Eof()) stored = CStrOrBlank(rs.Fields("Password").Value());
    if (!PasswordMatches(stored, password, source)) {
      return RefuseLogin(page, LoginRefusal::kCredentials);
    }
    if (throttled) ForgetLoginAttempt(page, attempt);
    page.Screen = CLng(rs.Fields("DefaultView").Value());
    page.ReturnView = page.Screen;
    UserOptions options = ReadUserOptions(CStrOrBlank(rs.Fields("Options").Value()));
    if (options.start_hour) page.CurrentHour = *options.start_hour;
    std::string key = CStrOrBlank(rs.Fields("OwnerKey").Value());
    page.Stamps.Set(key, *stored);
    return key;
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
    return "";
  }
}

void LoadCurrentUser(Page& page) {
  try {
    LoadAccount(page);
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
  }
}

bool AdministratorExists(Page& page) {
  try {
    Recordset rs;
    rs.Open(AnyAdministratorStatement(page.props.DataServer), *page.Connection);
    return !rs.Eof();
  } catch (const ado::DatabaseError& error) {
    TrapDatabaseError(page, error);
    return false;
  }
}

}  // namespace tidewell

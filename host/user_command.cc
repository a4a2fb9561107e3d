// tidewell user: the accounts of the configured database, from the command line.

#include <cctype>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "accounts/account_records.h"
#include "accounts/account_statements.h"
#include "accounts/password_hash.h"
#include "data/connection.h"
#include "data/database_error.h"
#include "data/transaction.h"
#include "feeds/feed_tokens.h"
#include "feeds/site_time_zone.h"
#include "host/account_table.h"
#include "host/commands.h"
#include "host/feed_endpoint.h"
#include "host/password_input.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

constexpr const char* kUserUsage =
    "Usage: tidewell user ACTION (--connection STRING | --config FILE) [OPTIONS]\n"
    "\n"
    "  list                        every account: name, initials, group, administrator\n"
    "  add NAME --group GROUP [--initials XX] [--admin] [--password-stdin]\n"
    "                              a new account in GROUP (made when there is none of that\n"
    "                              name); initials default to the name's first two letters\n"
    "                              in upper case; --admin makes it an administrator\n"
    "  passwd NAME [--password-stdin]\n"
    "                              a new password for the account\n"
    "  admin NAME on|off [--force] sets or clears the account's administrator flag\n"
    "  delete NAME [--force]       deletes the account and all its items\n"
    "  feed NAME [--renew]         prints the account's private calendar feed address (made\n"
    "                              on first use): whole when PublicAddress is configured, else\n"
    "                              its path below the site's address; --renew replaces it, and\n"
    "                              the old address answers 404 from then on\n"
    "\n"
    "Passwords are asked twice, without echo, on the terminal; --password-stdin reads one\n"
    "line from standard input instead. Never give a password on the command line.\n"
    "Names compare without regard to case, as the database's unique index compares them.\n"
    "'admin NAME off' and 'delete NAME' refuse when NAME is the only administrator (a site\n"
    "without one offers its welcome screen, which makes the next visitor the administrator);\n"
    "--force goes on anyway. A refusal changes nothing and exits 1; bad usage exits 2.\n"
    "\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /\n";

const std::vector<std::string> kFlags = {"help", "admin", "force", "password-stdin", "renew"};

// Runs `work` in one transaction that first takes the accounts lock, so that two changes to
// the accounts (this command's, a screen's first administrator) never overlap: the checks
// and the writes see the same accounts. Any exception rolls everything back.
template <typename Work>
void UnderAccountsLock(ado::Connection& connection, Work work) {
  InOneTransaction(connection, [&] {
    connection.Execute(LockAccountsStatement());
    work();
  });
}

std::runtime_error Refusal(const std::string& reason) {
  return std::runtime_error(reason + ". Nothing was changed.");
}

NamedAccount AccountNamed(ado::Connection& connection, const std::string& name) {
  std::optional<NamedAccount> account = FindAccountNamed(connection, name);
  if (!account) throw Refusal("there is no user named " + name);
  return *account;
}

// The first two characters of the name (whole UTF-8 sequences), letters in upper case.
std::string DefaultInitials(const std::string& name) {
  std::string initials;
  int characters = 0;
  for (char byte : name) {
    const bool starts_character = (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
    if (starts_character && ++characters > 2) break;
    initials += static_cast<char>(std::toupper(static_cast<unsigned char>(byte)));
  }
  return initials;
}

// Without an administrator the site offers the welcome screen's form to every visitor.
void RefuseLastAdministrator(ado::Connection& connection, const NamedAccount& account,
                             bool forced) {
  int administrators = 0;
  bool is_administrator = false;
  for (const AccountSummary& summary : ListAccounts(connection)) {
    if (!summary.administrator) continue;
    ++administrators;
    if (summary.owner_key == account.owner_key) is_administrator = true;
  }
  if (forced || !is_administrator || administrators > 1) return;
  throw Refusal(account.user_name +
                " is the only administrator: without one the site offers its welcome screen, "
                "which makes the next visitor the administrator (--force goes on anyway)");
}

// The rules of the administrator form for a new account: a name nobody has, and initials
// nobody else in the group has (a new group has no members).
void RefuseClashes(ado::Connection& connection, const std::string& name,
                   const std::string& initials, const std::string& group) {
  if (std::optional<NamedAccount> holder = FindAccountNamed(connection, name)) {
    throw Refusal("there is already a user named " + holder->user_name);
  }
  std::optional<Variant> group_id = GroupIdNamed(connection, group);
  if (!group_id) return;
  if (std::optional<InitialsHolder> holder =
          FindInitialsHolder(connection, initials, CStrOrBlank(*group_id), std::nullopt)) {
    throw Refusal("there is already a user with the initials " + holder->initials +
                  " in the group " + holder->group_name + ": " + holder->user_name);
  }
}

PasswordSource PasswordSourceOf(const Arguments& args) {
  return args.Has("password-stdin") ? PasswordSource::kStandardInput : PasswordSource::kTerminal;
}

void ExpectWords(const std::vector<std::string>& words, size_t count, const char* form) {
  if (words.size() != count)
    throw std::invalid_argument(std::string("usage: tidewell user ") + form);
}

int List(ado::Connection& connection) {
  std::fputs(AccountTable(ListAccounts(connection)).c_str(), stdout);
  return 0;
}

int Add(ado::Connection& connection, const Arguments& args, const std::string& name) {
  const std::string group = Trim(args.Get("group").value_or(""));
  if (group.empty()) throw std::invalid_argument("add needs --group GROUP");
  const std::string initials = args.Get("initials").value_or(DefaultInitials(name));
  if (initials.empty()) throw std::invalid_argument("--initials must not be empty");
  // Checked before the password is asked for, and again under the lock before the write.
  RefuseClashes(connection, name, initials, group);
  const std::string hash = HashPassword(ReadNewPassword(PasswordSourceOf(args)));
  bool new_group = false;
  UnderAccountsLock(connection, [&] {
    RefuseClashes(connection, name, initials, group);
    std::optional<Variant> group_id = GroupIdNamed(connection, group);
    if (!group_id) {
      // Looked up first: inside the transaction a refused insert would end it on PostgreSQL.
      connection.Execute(InsertGroupStatement(group));
      group_id = GroupIdNamed(connection, group);
      new_group = true;
    }
    NewAccount account;
    account.owner_key = FreshOwnerKey(connection);
    account.group_id = *group_id;
    account.user_name = name;
    account.password_hash = hash;
    account.initials = initials;
    account.default_view = "0";  // the month view, as the new-user form offers
    // Sees the whole group, as the new-user form offers; the display options are left out, so
    // the site's own start hour and highlights hold for him.
    account.options = "1";
    account.administrator = args.Has("admin");
    InsertAccount(connection, account);
  });
  std::printf("tidewell user: added %s (initials %s) to the %sgroup %s%s\n", name.c_str(),
              initials.c_str(), new_group ? "new " : "", group.c_str(),
              args.Has("admin") ? ", as an administrator" : "");
  return 0;
}

int Passwd(ado::Connection& connection, const Arguments& args, const std::string& name) {
  AccountNamed(connection, name);  // before the password is asked for
  const std::string hash = HashPassword(ReadNewPassword(PasswordSourceOf(args)));
  std::string stored_name;
  UnderAccountsLock(connection, [&] {
    const NamedAccount account = AccountNamed(connection, name);
    SetPasswordHash(connection, account.owner_key, hash);
    stored_name = account.user_name;
  });
  std::printf("tidewell user: changed the password of %s\n", stored_name.c_str());
  return 0;
}

int Admin(ado::Connection& connection, const Arguments& args, const std::string& name,
          const std::string& switch_word) {
  if (switch_word != "on" && switch_word != "off") {
    throw std::invalid_argument("admin takes on or off, not " + switch_word);
  }
  const bool administrator = switch_word == "on";
  std::string stored_name;
  UnderAccountsLock(connection, [&] {
    const NamedAccount account = AccountNamed(connection, name);
    if (!administrator) RefuseLastAdministrator(connection, account, args.Has("force"));
    SetAdministratorFlag(connection, account.owner_key, administrator);
    stored_name = account.user_name;
  });
  std::printf("tidewell user: %s is %s\n", stored_name.c_str(),
              administrator ? "an administrator" : "no administrator");
  return 0;
}

int Delete(ado::Connection& connection, const Arguments& args, const std::string& name) {
  std::string stored_name;
  long items = 0;
  UnderAccountsLock(connection, [&] {
    const NamedAccount account = AccountNamed(connection, name);
    RefuseLastAdministrator(connection, account, args.Has("force"));
    items = DeleteAccountWithItems(connection, account.owner_key);
    stored_name = account.user_name;
  });
  std::printf("tidewell user: deleted %s and %ld item%s\n", stored_name.c_str(), items,
              items == 1 ? "" : "s");
  return 0;
}

// The address as the user options screen shows it, for the page at "/": with the configured
// PublicAddress in front when there is one (a command has no request to take a Host from).
int Feed(ado::Connection& connection, const Arguments& args, const std::string& name) {
  if (!connection.TableExists("TidewellFeedTokens")) {
    throw std::runtime_error("the database has no feed tokens yet: run tidewell migrate first");
  }
  const SiteConfig config = ConfigFrom(args);
  const NamedAccount account = AccountNamed(connection, name);
  const long long now = ClockUnixSeconds();
  const std::string token = args.Has("renew")
                                ? RenewFeedToken(connection, account.owner_key, now)
                                : FeedTokenFor(connection, account.owner_key, now);
  std::printf("%s%s%s.ics\n", config.public_address.c_str(), FeedPathStart("/").c_str(),
              token.c_str());
  if (args.Has("renew")) {
    std::fprintf(stderr, "tidewell user: replaced the feed address of %s; the old one no longer "
                         "answers\n", account.user_name.c_str());
  }
  if (!config.feeds) {
    std::fprintf(stderr, "tidewell user: feeds are off: the address answers once the server "
                         "runs with Feeds = on\n");
  }
  return 0;
}

int RunAction(const Arguments& args) {
  const std::vector<std::string>& words = args.Positionals();
  if (words.empty())
    throw std::invalid_argument("give an action: list, add, passwd, admin, delete or feed");
  const std::string& action = words.front();
  std::vector<std::string> known = {"connection", "config", "help"};
  if (action == "list") {
    ExpectWords(words, 1, "list");
  } else if (action == "add") {
    ExpectWords(words, 2, "add NAME --group GROUP [--initials XX] [--admin]");
    known.insert(known.end(), {"group", "initials", "admin", "password-stdin"});
  } else if (action == "passwd") {
    ExpectWords(words, 2, "passwd NAME [--password-stdin]");
    known.push_back("password-stdin");
  } else if (action == "admin") {
    ExpectWords(words, 3, "admin NAME on|off [--force]");
    known.push_back("force");
  } else if (action == "delete") {
    ExpectWords(words, 2, "delete NAME [--force]");
    known.push_back("force");
  } else if (action == "feed") {
    ExpectWords(words, 2, "feed NAME [--renew]");
    known.push_back("renew");
  } else {
    throw std::invalid_argument("unknown action " + action);
  }
  args.Expect(known);
  if (words.size() > 1 && Trim(words[1]).empty()) throw std::invalid_argument("NAME is empty");

  ado::Connection connection;
  connection.Open(ConnectionFrom(args));
  if (!connection.TableExists("Users")) {
    throw std::runtime_error("the database has no calendar tables: run tidewell init-db first");
  }
  if (action == "list") return List(connection);
  if (action == "add") return Add(connection, args, words[1]);
  if (action == "passwd") return Passwd(connection, args, words[1]);
  if (action == "admin") return Admin(connection, args, words[1], words[2]);
  if (action == "feed") return Feed(connection, args, words[1]);
  return Delete(connection, args, words[1]);
}

}  // namespace

int UserCommand(int argc, char** argv) {
  try {
    const Arguments args(argc, argv, 0, kFlags, PositionalWords::kCollected);
    if (args.Has("help")) return std::fputs(kUserUsage, stdout), 0;
    return RunAction(args);
  } catch (const std::invalid_argument& e) {
    std::fprintf(stderr, "tidewell user: %s\n\n%s", e.what(), kUserUsage);
    return 2;
  }
}

}  // namespace tidewell

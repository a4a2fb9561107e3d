#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tidewell {

namespace ado {
class Connection;
}

// The accounts' feed tokens (TidewellFeedTokens, data/schema_migrations.h): the secret part of
// each account's feed address. All of them throw ado::DatabaseError.

// The account's token, made on first use. Of two servers that make one at once, one stores
// its token and both answer that one.
std::string FeedTokenFor(ado::Connection& connection, std::string_view owner_key, long long now);

// Replaces the account's token with a fresh one: the old address is unknown from now on.
std::string RenewFeedToken(ado::Connection& connection, std::string_view owner_key,
                           long long now);

// The account a token opens, with what a feed needs of it, read in one indexed lookup; nothing
// for a token no account has (never made, or replaced) or whose account is gone.
struct FeedAccount {
  std::string owner_key;
  std::string options;  // Users.Options: whether he sees his whole group
  long group_id = 0;
  std::string username;
  std::string body_hash;           // of the last body served, "" before the first
  long long body_changed_at = 0;   // Unix seconds that body was first served
};
std::optional<FeedAccount> FindFeedAccount(ado::Connection& connection, std::string_view token);

// Notes that the account's feed now has the body `hash`, first served at `now`; when another
// server noted the same hash first, its time stands. Answers the time that stands.
long long RecordFeedBody(ado::Connection& connection, std::string_view owner_key,
                         std::string_view hash, long long now);

}  // namespace tidewell

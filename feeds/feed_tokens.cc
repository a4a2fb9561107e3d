#include "feeds/feed_tokens.h"

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "page/link_keys.h"
#include "runtime/conversions.h"

namespace tidewell {
namespace {

using ado::Recordset;
using ado::Statement;

Statement TokenOfStatement(std::string_view owner_key) {
  return Statement("SELECT Token FROM TidewellFeedTokens WHERE OwnerKey = ").Text(owner_key);
}

// The account's row with a new token, made at `now`; what happens when he has one already
// follows.
Statement InsertTokenStatement(std::string_view owner_key, std::string_view token,
                               long long now) {
  Statement statement(
      "INSERT INTO TidewellFeedTokens (OwnerKey, Token, CreatedAt, BodyChangedAt) VALUES (");
  statement.Text(owner_key).Add(", ").Text(token).Add(", ").Number(now).Add(", ").Number(now);
  return statement.Add(")");
}

Statement StoreTokenIfMissingStatement(std::string_view owner_key, std::string_view token,
                                       long long now) {
  return InsertTokenStatement(owner_key, token, now).Add(" ON CONFLICT DO NOTHING");
}

// The new token replaces the old in the same row, so the old one is simply no longer there:
// its address answers as an address never made.
Statement ReplaceTokenStatement(std::string_view owner_key, std::string_view token,
                                long long now) {
  return InsertTokenStatement(owner_key, token, now)
      .Add(" ON CONFLICT (OwnerKey) DO UPDATE SET Token = excluded.Token, "
           "CreatedAt = excluded.CreatedAt, BodyHash = '', BodyChangedAt = excluded.CreatedAt");
}

Statement FeedAccountStatement(std::string_view token) {
  return Statement(
             "SELECT TidewellFeedTokens.OwnerKey, Users.Options, Users.GroupID, Users.Username, "
             "TidewellFeedTokens.BodyHash, TidewellFeedTokens.BodyChangedAt FROM "
             "TidewellFeedTokens INNER JOIN Users ON TidewellFeedTokens.OwnerKey = "
             "Users.OwnerKey WHERE TidewellFeedTokens.Token = ")
      .Text(token);
}

Statement NewBodyStatement(std::string_view owner_key, std::string_view hash, long long now) {
  return Statement("UPDATE TidewellFeedTokens SET BodyHash = ")
      .Text(hash)
      .Add(", BodyChangedAt = ")
      .Number(now)
      .Add(" WHERE OwnerKey = ")
      .Text(owner_key)
      .Add(" AND BodyHash <> ")
      .Text(hash);
}

Statement BodyChangedAtStatement(std::string_view owner_key, std::string_view hash) {
  return Statement("SELECT BodyChangedAt FROM TidewellFeedTokens WHERE OwnerKey = ")
      .Text(owner_key)
      .Add(" AND BodyHash = ")
      .Text(hash);
}

long NumberOrZero(const Variant& value) {
  return value.IsNull() || value.IsEmpty() ? 0 : CLng(value);
}

}  // namespace

std::string FeedTokenFor(ado::Connection& connection, std::string_view owner_key, long long now) {
  connection.Execute(StoreTokenIfMissingStatement(owner_key, GenerateFeedToken(), now));
  Recordset rs;
  rs.Open(TokenOfStatement(owner_key), connection);
  return CStrOrBlank(rs.Fields("Token").Value());
}

std::string RenewFeedToken(ado::Connection& connection, std::string_view owner_key,
                           long long now) {
  const std::string token = GenerateFeedToken();
  connection.Execute(ReplaceTokenStatement(owner_key, token, now));
  return token;
}

std::optional<FeedAccount> FindFeedAccount(ado::Connection& connection, std::string_view token) {
  Recordset rs;
  rs.Open(FeedAccountStatement(token), connection);
  if (rs.Eof()) return std::nullopt;
  FeedAccount account;
  account.owner_key = CStrOrBlank(rs.Fields("OwnerKey").Value());
  account.options = CStrOrBlank(rs.Fields("Options").Value());
  account.group_id = NumberOrZero(rs.Fields("GroupID").Value());
  account.username = CStrOrBlank(rs.Fields("Username").Value());
  account.body_hash = CStrOrBlank(rs.Fields("BodyHash").Value());
  account.body_changed_at = NumberOrZero(rs.Fields("BodyChangedAt").Value());
  return account;
}

long long RecordFeedBody(ado::Connection& connection, std::string_view owner_key,
                         std::string_view hash, long long now) {
  connection.Execute(NewBodyStatement(owner_key, hash, now));
  Recordset rs;
  rs.Open(BodyChangedAtStatement(owner_key, hash), connection);
  return rs.Eof() ? now : NumberOrZero(rs.Fields("BodyChangedAt").Value());
}

}  // namespace tidewell

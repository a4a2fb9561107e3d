#include "feeds/feed_document.h"

#include <vector>

#include "accounts/user_options.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/site_settings.h"
#include "feeds/feed_calendar.h"
#include "feeds/feed_tokens.h"
#include "page/link_keys.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "views/item_list_statements.h"

namespace tidewell {
namespace {

constexpr const char* kSiteIdentitySetting = "FeedSiteIdentity";

// The minutes of a time text "HH:MM" (its last two characters), 0 when they are no minute.
int MinutesOf(std::string_view time_text) {
  if (time_text.size() < 2) return 0;
  const char tens = time_text[time_text.size() - 2];
  const char ones = time_text.back();
  if (tens < '0' || tens > '5' || ones < '0' || ones > '9') return 0;
  return (tens - '0') * 10 + (ones - '0');
}

FeedItem ReadItem(ado::Recordset& rs) {
  FeedItem item;
  item.item_id = CLng(rs.Fields("ItemID").Value());
  const Date day = CDate(rs.Fields("DateStamp").Value());
  const Variant& hour = rs.Fields("TimeStamp").Value();
  const long h = hour.IsNull() || hour.IsEmpty() ? 0 : CLng(hour);
  item.start = {Year(day), Month(day), Day(day), h >= 0 && h <= 23 ? static_cast<int>(h) : 0,
                MinutesOf(CStrOrBlank(rs.Fields("TimeText").Value())), 0};
  item.heading = CStrOrBlank(rs.Fields("Heading").Value());
  item.description = CStrOrBlank(rs.Fields("Description").Value());
  item.urgent = CBoolOrFalse(rs.Fields("Urgent").Value());
  item.complete = CBoolOrFalse(rs.Fields("Complete").Value());
  return item;
}

std::vector<FeedItem> ReadItems(ado::Connection& connection, const FeedSource& source,
                                const FeedAccount& account, Date today) {
  const ListOwner owner{
      account.owner_key,
      GroupScopeFor(ReadUserOptions(account.options).show_all_group_users, account.group_id)};
  const Date first{today.serial - static_cast<double>(source.days_back)};
  const Date last{today.serial + static_cast<double>(source.days_ahead)};
  ado::Recordset rs;
  rs.Open(FeedItemsStatement(first, last, owner, source.dialect), connection);
  std::vector<FeedItem> items;
  for (; !rs.Eof(); rs.MoveNext()) items.push_back(ReadItem(rs));
  return items;
}

std::string QuotedHash(std::string_view body) {
  return "\"" + Sha256Hex(body).substr(0, 32) + "\"";
}

}  // namespace

std::string FeedSiteIdentity(ado::Connection& connection) {
  return ReadOrStoreSetting(connection, kSiteIdentitySetting, GenerateFeedToken());
}

std::optional<FeedDocument> ReadFeed(const FeedSource& source, std::string_view token,
                                     long long now) {
  if (!IsFeedToken(token)) return std::nullopt;
  ado::Connection connection;
  connection.Open(source.connection_string);
  const std::optional<FeedAccount> account = FindFeedAccount(connection, token);
  if (!account) return std::nullopt;

  const WallTime local_now = UnixToWallTime(source.zone, now);
  const Date today = DateSerial(local_now.year, local_now.month, local_now.day);
  const std::vector<FeedItem> items = ReadItems(connection, source, *account, today);
  FeedHeading heading{.calendar_name = account->username + " \u2013 Tidewell",
                      .site_identity = FeedSiteIdentity(connection),
                      .zone = &source.zone,
                      .first_year = Year(Date{today.serial - static_cast<double>(source.days_back)}),
                      .stamp = 0};
  // The content without its stamp decides whether anything changed; the stamp is then the
  // time it last did, so the body (and its ETag) stays the same until the items change.
  const std::string content_hash = Sha256Hex(WriteFeed(heading, items));
  heading.stamp = content_hash == account->body_hash
                      ? account->body_changed_at
                      : RecordFeedBody(connection, account->owner_key, content_hash, now);
  FeedDocument document;
  document.body = WriteFeed(heading, items);
  document.etag = QuotedHash(document.body);
  document.last_modified = heading.stamp;
  return document;
}

}  // namespace tidewell

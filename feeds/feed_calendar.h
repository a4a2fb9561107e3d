#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "feeds/site_time_zone.h"

namespace tidewell {

// One item as a feed shows it.
struct FeedItem {
  long item_id = 0;
  WallTime start;  // the item's date, hour and minutes, in the site's zone
  std::string heading;
  std::string description;
  bool urgent = false;
  bool complete = false;
};

// What a feed says about itself.
struct FeedHeading {
  std::string calendar_name;  // X-WR-CALNAME: what a subscribing program calls the calendar
  std::string site_identity;  // the site's own name for itself, in every UID
  const SiteTimeZone* zone = nullptr;
  int first_year = 1970;      // the VTIMEZONE starts here: the window's first year
  long long stamp = 0;        // DTSTAMP, Unix seconds: when the feed's content last changed
};

// The mark a complete item's SUMMARY starts with; VEVENT has no status for done.
inline constexpr std::string_view kCompleteMark = "\u2713 ";

// An item's UID: the same for the item's whole life, whatever is changed in it, and unlike
// any other site's: "tidewell-item-" ItemID "@" the site's identity.
std::string FeedItemUid(long item_id, std::string_view site_identity);

// The feed as RFC 5545 text (CRLF lines, folded at 75 octets; libical folds between UTF-8
// characters, never inside one, which the tests check): VCALENDAR with VERSION, PRODID, CALSCALE, the calendar's name and zone, the
// site zone's VTIMEZONE, and one VEVENT per item: UID, DTSTAMP, DTSTART and a DTEND one hour
// later with the zone's TZID, SUMMARY (the heading, after kCompleteMark when complete),
// DESCRIPTION when there is one, PRIORITY 1 when urgent. Written with libical.
std::string WriteFeed(const FeedHeading& heading, const std::vector<FeedItem>& items);

}  // namespace tidewell

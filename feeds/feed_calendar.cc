#include "feeds/feed_calendar.h"

#include <cstdlib>
#include <memory>

namespace tidewell {
namespace {

constexpr const char* kProductId = "-//Tidewell//Tidewell Calendar Feed//EN";
constexpr long long kEventSeconds = 60 * 60;  // an item has an hour, not an end: one hour

struct ComponentFree {
  void operator()(icalcomponent* component) const { icalcomponent_free(component); }
};
using OwnedComponent = std::unique_ptr<icalcomponent, ComponentFree>;

icaltimetype UtcTime(long long unix_seconds) {
  return icaltime_from_timet_with_zone(static_cast<time_t>(unix_seconds), 0,
                                       icaltimezone_get_utc_timezone());
}

// A wall time in the site's zone, named by the zone's plain IANA name so that the calendar's
// own VTIMEZONE, and any reader's zone table, resolve it.
icalproperty* InZone(icalproperty* property, const SiteTimeZone& zone) {
  icalproperty_add_parameter(property, icalparameter_new_tzid(zone.name.c_str()));
  return property;
}

icalproperty* XProperty(const char* name, const std::string& value) {
  icalproperty* property = icalproperty_new_x(value.c_str());
  icalproperty_set_x_name(property, name);
  return property;
}

icalcomponent* NewEvent(const FeedHeading& heading, const FeedItem& item) {
  const SiteTimeZone& zone = *heading.zone;
  icalcomponent* event = icalcomponent_new_vevent();
  icalcomponent_add_property(
      event, icalproperty_new_uid(FeedItemUid(item.item_id, heading.site_identity).c_str()));
  icalcomponent_add_property(event, icalproperty_new_dtstamp(UtcTime(heading.stamp)));
  const WallTime end =
      UnixToWallTime(zone, WallTimeToUnix(zone, item.start) + kEventSeconds);
  icalcomponent_add_property(
      event, InZone(icalproperty_new_dtstart(FloatingTime(item.start)), zone));
  icalcomponent_add_property(event,
                             InZone(icalproperty_new_dtend(FloatingTime(end)), zone));
  const std::string summary =
      item.complete ? std::string(kCompleteMark) + item.heading : item.heading;
  icalcomponent_add_property(event, icalproperty_new_summary(summary.c_str()));
  if (!item.description.empty()) {
    icalcomponent_add_property(event, icalproperty_new_description(item.description.c_str()));
  }
  if (item.urgent) icalcomponent_add_property(event, icalproperty_new_priority(1));
  return event;
}

}  // namespace

std::string FeedItemUid(long item_id, std::string_view site_identity) {
  return "tidewell-item-" + std::to_string(item_id) + "@" + std::string(site_identity);
}

std::string WriteFeed(const FeedHeading& heading, const std::vector<FeedItem>& items) {
  OwnedComponent calendar(icalcomponent_new_vcalendar());
  icalcomponent* c = calendar.get();
  icalcomponent_add_property(c, icalproperty_new_version("2.0"));
  icalcomponent_add_property(c, icalproperty_new_prodid(kProductId));
  icalcomponent_add_property(c, icalproperty_new_calscale("GREGORIAN"));
  // Read by the common calendar programs: the name to show, the zone to show it in, and how
  // often to look again (an hour; they poll with the ETag, so a look costs little).
  icalcomponent_add_property(c, XProperty("X-WR-CALNAME", heading.calendar_name));
  icalcomponent_add_property(c, XProperty("X-WR-TIMEZONE", heading.zone->name));
  icalcomponent_add_property(c, XProperty("X-PUBLISHED-TTL", "PT1H"));
  icalproperty* refresh =
      icalproperty_new_refreshinterval(icaldurationtype_from_int(static_cast<int>(kEventSeconds)));
  icalproperty_add_parameter(refresh, icalparameter_new_value(ICAL_VALUE_DURATION));
  icalcomponent_add_property(c, refresh);
  icalcomponent_add_component(c, NewVTimezone(*heading.zone, heading.first_year));
  for (const FeedItem& item : items) icalcomponent_add_component(c, NewEvent(heading, item));
  char* text = icalcomponent_as_ical_string_r(c);  // ours to free, unlike the ring buffer's
  std::string body = text != nullptr ? text : "";
  std::free(text);
  return body;
}

}  // namespace tidewell

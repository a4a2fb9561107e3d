#include "feeds/calendar_events.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <tuple>

#include "feeds/calendar_text.h"
#include "page/link_keys.h"

namespace tidewell {
namespace {

// More instances than this before the window ends (an hourly rule begun decades ago) is no
// calendar a person keeps: refused rather than ground through.
constexpr long kMostInstances = 200000;

// A day as an icaltimetype, for libical's date arithmetic.
icaltimetype DateOf(const WallTime& day) {
  icaltimetype date = icaltime_null_date();
  date.year = day.year;
  date.month = day.month;
  date.day = day.day;
  return date;
}

WallTime WallOf(const icaltimetype& time) {
  return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

std::tuple<int, int, int> DayOf(const WallTime& time) {
  return {time.year, time.month, time.day};
}

WallTime AddDays(const WallTime& day, long days) {
  icaltimetype date = DateOf(day);
  icaltime_adjust(&date, static_cast<int>(days), 0, 0, 0);
  return {date.year, date.month, date.day, 0, 0, 0};
}

const SiteTimeZone& Utc() {
  static const SiteTimeZone utc{"UTC", icaltimezone_get_utc_timezone()};
  return utc;
}

template <typename... Fields>
std::string Formatted(const char* format, Fields... fields) {
  char text[32];
  std::snprintf(text, sizeof text, format, fields...);
  return text;
}

std::vector<icalproperty*> PropertiesOf(icalcomponent* component, icalproperty_kind kind) {
  std::vector<icalproperty*> properties;
  for (icalproperty* property = icalcomponent_get_first_property(component, kind);
       property != nullptr; property = icalcomponent_get_next_property(component, kind)) {
    properties.push_back(property);
  }
  return properties;
}

std::vector<icalcomponent*> ComponentsOf(icalcomponent* parent) {
  std::vector<icalcomponent*> components;
  for (icalcomponent* child = icalcomponent_get_first_component(parent, ICAL_ANY_COMPONENT);
       child != nullptr; child = icalcomponent_get_next_component(parent, ICAL_ANY_COMPONENT)) {
    components.push_back(child);
  }
  return components;
}

std::string TextOf(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

bool IsCancelled(icalcomponent* event) {
  return icalcomponent_get_status(event) == ICAL_STATUS_CANCELLED;
}

// The VEVENTs of one UID: the event itself (none when the file carries only changed
// instances) and the instances it changes, by the instance they replace.
struct EventGroup {
  std::string uid;
  std::vector<icalcomponent*> masters;
  std::vector<std::pair<std::string, icalcomponent*>> overrides;  // in the file's order
};

// Reads one VCALENDAR's events into instances.
class EventReader {
 public:
  EventReader(const ParsedCalendar& parsed, icalcomponent* calendar, const SiteTimeZone& site,
              const DateWindow& window, CalendarEvents& out)
      : parsed_(parsed), calendar_(calendar), site_(site), window_(window), out_(out) {}

  void Read() {
    std::vector<EventGroup> groups;
    std::map<std::string, size_t> group_of_uid;
    for (icalcomponent* component : ComponentsOf(calendar_)) {
      const icalcomponent_kind kind = icalcomponent_isa(component);
      if (kind == ICAL_VTIMEZONE_COMPONENT) continue;  // read where a TZID names it
      if (kind != ICAL_VEVENT_COMPONENT) {
        ++out_.skipped.not_events;
        continue;
      }
      const std::string uid = UidOf(component);
      auto [at, added] = group_of_uid.emplace(uid, groups.size());
      if (added) groups.push_back({uid, {}, {}});
      EventGroup& group = groups[at->second];
      if (icalproperty* recurrence_id =
              icalcomponent_get_first_property(component, ICAL_RECURRENCEID_PROPERTY)) {
        const icaltimetype replaced =
            ReadTime(component, recurrence_id, icalproperty_get_recurrenceid(recurrence_id));
        group.overrides.emplace_back(InstanceKey(replaced), component);
      } else {
        group.masters.push_back(component);
      }
      StartOf(component);  // a VEVENT without DTSTART stops the whole file, here
    }
    for (const EventGroup& group : groups) ReadGroup(group);
  }

 private:
  // --- Times ---

  void CheckDate(icalcomponent* event, icalproperty* property, const icaltimetype& time) const {
    const bool date_valid = time.year >= 100 && time.year <= 9999 && time.month >= 1 &&
                            time.month <= 12 && time.day >= 1 &&
                            time.day <= icaltime_days_in_month(time.month, time.year);
    const bool time_valid = time.is_date || (time.hour >= 0 && time.hour <= 23 &&
                                             time.minute >= 0 && time.minute <= 59 &&
                                             time.second >= 0 && time.second <= 60);
    if (icaltime_is_null_time(time) || !date_valid || !time_valid) {
      throw MalformedCalendar(parsed_.Where(event, property) + ": " +
                              TextOf(icalproperty_get_value_as_string(property)) +
                              " is no date or time");
    }
  }

  // The zone a TZID names: the calendar's VTIMEZONE of that name, else the system's zone of
  // that IANA name (files often name one without carrying it).
  icaltimezone* ZoneNamed(icalcomponent* event, icalproperty* property, const char* tzid) const {
    if (icaltimezone* own = icalcomponent_get_timezone(calendar_, tzid)) return own;
    if (IsKnownTimeZone(tzid)) return TimeZoneNamed(tzid).zone;
    if (icaltimezone* prefixed = icaltimezone_get_builtin_timezone_from_tzid(tzid)) return prefixed;
    throw MalformedCalendar(parsed_.Where(event, property) + ": TZID " + tzid +
                            " names no time zone of the file or of the system");
  }

  // A date-time value of `property` with its zone settled: the zone its TZID names, UTC for
  // a "Z" time, none for a floating time or a date.
  icaltimetype ReadTime(icalcomponent* event, icalproperty* property, icaltimetype time) const {
    CheckDate(event, property, time);
    if (time.is_date) {
      time.zone = nullptr;
      return time;
    }
    if (icaltime_is_utc(time)) return time;
    icalparameter* tzid = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    time.zone = tzid == nullptr ? nullptr : ZoneNamed(event, property, icalparameter_get_tzid(tzid));
    return time;
  }

  icaltimetype StartOf(icalcomponent* event) const {
    icalproperty* dtstart = icalcomponent_get_first_property(event, ICAL_DTSTART_PROPERTY);
    if (dtstart == nullptr) {
      throw MalformedCalendar(parsed_.Where(event) + ": the VEVENT has no DTSTART");
    }
    return ReadTime(event, dtstart, icalproperty_get_dtstart(dtstart));
  }

  // The wall time in the site's zone; a floating time is one already, a date stays the day.
  WallTime SiteWallTime(const icaltimetype& time) const {
    if (time.is_date || time.zone == nullptr) return WallOf(time);
    return ConvertWallTime(WallOf(time), SiteTimeZone{"", const_cast<icaltimezone*>(time.zone)},
                           site_);
  }

  // How an instance is named in TidewellImportedEvents: the moment in UTC, the floating wall
  // time, or the date, as iCalendar writes them.
  static std::string InstanceKey(const icaltimetype& time) {
    if (time.is_date) return Formatted("%04d%02d%02d", time.year, time.month, time.day);
    if (time.zone == nullptr) {
      return Formatted("%04d%02d%02dT%02d%02d%02d", time.year, time.month, time.day, time.hour,
                       time.minute, time.second);
    }
    const WallTime utc =
        ConvertWallTime(WallOf(time), SiteTimeZone{"", const_cast<icaltimezone*>(time.zone)}, Utc());
    return Formatted("%04d%02d%02dT%02d%02d%02dZ", utc.year, utc.month, utc.day, utc.hour,
                     utc.minute, utc.second);
  }

  // --- Events ---

  std::string UidOf(icalcomponent* event) const {
    if (const char* uid = icalcomponent_get_uid(event); uid != nullptr && *uid != '\0') return uid;
    std::string content;
    if (icalproperty* dtstart = icalcomponent_get_first_property(event, ICAL_DTSTART_PROPERTY)) {
      if (icalparameter* tzid = icalproperty_get_first_parameter(dtstart, ICAL_TZID_PARAMETER)) {
        content += TextOf(icalparameter_get_tzid(tzid));
      }
      content += ":" + TextOf(icalproperty_get_value_as_string(dtstart));
    }
    for (icalproperty* rrule : PropertiesOf(event, ICAL_RRULE_PROPERTY)) {
      content += "\n" + TextOf(icalproperty_get_value_as_string(rrule));
    }
    content += "\n" + TextOf(icalcomponent_get_summary(event));
    content += "\n" + TextOf(icalcomponent_get_description(event));
    return "derived-" + Sha256Hex(content).substr(0, 32);
  }

  // Past the window's end in any zone: no zone is a day and more away from another.
  bool PastWindow(const icaltimetype& time) const {
    return DayOf(WallOf(time)) > DayOf(AddDays(window_.last, 2));
  }

  // The starts of the event's instances: DTSTART, the RRULEs' and the RDATEs, less the
  // EXDATEs, in time order, each once.
  std::vector<icaltimetype> InstanceStarts(icalcomponent* event) const {
    const icaltimetype start = StartOf(event);
    std::vector<icaltimetype> starts = {start};
    for (icalproperty* rrule : PropertiesOf(event, ICAL_RRULE_PROPERTY)) {
      icalrecur_iterator* instances = icalrecur_iterator_new(icalproperty_get_rrule(rrule), start);
      if (instances == nullptr) {
        throw MalformedCalendar(parsed_.Where(event, rrule) + ": libical cannot expand this rule");
      }
      long count = 0;
      for (icaltimetype next = icalrecur_iterator_next(instances); !icaltime_is_null_time(next);
           next = icalrecur_iterator_next(instances)) {
        next.zone = start.zone;
        next.is_date = start.is_date;
        if (PastWindow(next)) break;
        if (++count > kMostInstances) {
          icalrecur_iterator_free(instances);
          throw MalformedCalendar(parsed_.Where(event, rrule) + ": the rule gives more than " +
                                  std::to_string(kMostInstances) +
                                  " instances before the window ends");
        }
        starts.push_back(next);
      }
      icalrecur_iterator_free(instances);
    }
    for (icalproperty* rdate : PropertiesOf(event, ICAL_RDATE_PROPERTY)) {
      const icaldatetimeperiodtype value = icalproperty_get_rdate(rdate);
      const icaltimetype time =
          icaltime_is_null_time(value.time) ? value.period.start : value.time;
      starts.push_back(ReadTime(event, rdate, time));
    }
    std::set<std::string> excluded;
    for (icalproperty* exdate : PropertiesOf(event, ICAL_EXDATE_PROPERTY)) {
      excluded.insert(InstanceKey(ReadTime(event, exdate, icalproperty_get_exdate(exdate))));
    }
    std::vector<icaltimetype> kept;
    std::set<std::string> seen;
    for (const icaltimetype& time : starts) {
      const std::string key = InstanceKey(time);
      if (!excluded.contains(key) && seen.insert(key).second) kept.push_back(time);
    }
    std::stable_sort(kept.begin(), kept.end(), [&](const icaltimetype& a, const icaltimetype& b) {
      const WallTime wa = SiteWallTime(a), wb = SiteWallTime(b);
      return std::tie(wa.year, wa.month, wa.day, wa.hour, wa.minute, wa.second) <
             std::tie(wb.year, wb.month, wb.day, wb.hour, wb.minute, wb.second);
    });
    return kept;
  }

  // Adds the instance of `event` that starts at `start` when it falls in the window; answers
  // whether it did.
  bool AddInstance(const EventGroup& group, icalcomponent* event, const icaltimetype& start,
                   const std::string& key) {
    EventInstance instance;
    instance.start = SiteWallTime(start);
    if (!window_.Contains(instance.start)) return false;
    instance.uid = group.uid;
    instance.instance_start = key;
    instance.all_day = start.is_date;
    instance.summary = TextOf(icalcomponent_get_summary(event));
    instance.description = TextOf(icalcomponent_get_description(event));
    if (icalproperty* priority = icalcomponent_get_first_property(event, ICAL_PRIORITY_PROPERTY)) {
      instance.priority = icalproperty_get_priority(priority);
    }
    out_.instances.push_back(std::move(instance));
    return true;
  }

  void ReadGroup(const EventGroup& group) {
    long added = 0;
    long candidates = 0;
    std::set<std::string> overridden;
    for (const auto& [key, event] : group.overrides) overridden.insert(key);
    bool cancelled = false;
    for (icalcomponent* master : group.masters) {
      if (IsCancelled(master)) {
        ++out_.skipped.cancelled;
        cancelled = true;
        continue;
      }
      for (const icaltimetype& start : InstanceStarts(master)) {
        const std::string key = InstanceKey(start);
        if (overridden.contains(key)) continue;
        ++candidates;
        added += AddInstance(group, master, start, key);
      }
    }
    for (const auto& [key, event] : group.overrides) {
      if (cancelled) continue;  // the whole event is, with every instance
      if (IsCancelled(event)) {
        ++out_.skipped.cancelled;
        continue;
      }
      ++candidates;
      added += AddInstance(group, event, StartOf(event), key);
    }
    if (candidates > 0 && added == 0) ++out_.skipped.outside_window;
  }

  const ParsedCalendar& parsed_;
  icalcomponent* calendar_;
  const SiteTimeZone& site_;
  const DateWindow& window_;
  CalendarEvents& out_;
};

}  // namespace

bool DateWindow::Contains(const WallTime& day) const {
  return DayOf(first) <= DayOf(day) && DayOf(day) <= DayOf(last);
}

DateWindow WindowAround(const WallTime& today, long days_back, long days_ahead) {
  return {AddDays(today, -days_back), AddDays(today, days_ahead)};
}

CalendarEvents ReadCalendarEvents(std::string_view text, const SiteTimeZone& site,
                                  const DateWindow& window) {
  const ParsedCalendar parsed = ParsedCalendar::Parse(text);
  CalendarEvents events;
  for (icalcomponent* calendar : parsed.Calendars()) {
    EventReader(parsed, calendar, site, window, events).Read();
  }
  return events;
}

}  // namespace tidewell

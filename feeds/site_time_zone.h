#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <libical/ical.h>

namespace tidewell {

// The zone the site's items are kept in. Items carry a date and an hour with no zone: they
// are wall times in this zone, which the host key TimeZone names (an IANA name such as
// Europe/Berlin) and libical knows from the system's tzdata.
struct SiteTimeZone {
  std::string name;              // the IANA name, as configured
  icaltimezone* zone = nullptr;  // libical's, loaded once and kept for the process
};

// A time of day on a calendar date, read on a wall clock: no zone of its own.
struct WallTime {
  int year = 1970;
  int month = 1;  // 1..12
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const WallTime&, const WallTime&) = default;
};

// The wall time as libical's time without a zone ("floating").
icaltimetype FloatingTime(const WallTime& time);

// A zone name that neither libical nor the system's tzdata knows.
class UnknownTimeZone : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// The zone `name` names ("UTC", "Europe/Berlin"). Throws UnknownTimeZone.
SiteTimeZone TimeZoneNamed(std::string_view name);
bool IsKnownTimeZone(std::string_view name);

// The machine's own zone: the TZ variable ("Europe/Berlin", ":Europe/Berlin" or a path under
// /usr/share/zoneinfo), else /etc/timezone, else the name the /etc/localtime link points at
// under zoneinfo/, else "UTC". A source naming a zone libical does not know is passed over.
std::string SystemTimeZoneName();

// The moment (Unix seconds) a wall time in `zone` stands for. A wall time that a change to
// summer time skips is read with the offset before the change (02:30 on a day the clocks jump
// from 02:00 to 03:00 is 03:30 summer time), and one that the change back repeats is its first
// occurrence, as iCalendar readers take them.
long long WallTimeToUnix(const SiteTimeZone& zone, const WallTime& local);

// The wall time in `zone` at the moment `unix_seconds`.
WallTime UnixToWallTime(const SiteTimeZone& zone, long long unix_seconds);

// The run time's present moment (runtime/clock.h: the machine's wall clock, or TIDEWELL_NOW)
// as Unix seconds, read through the machine's own zone (SystemTimeZoneName, read once).
long long ClockUnixSeconds();

// The same moment read on another zone's clock: how times written in one zone become the
// site's.
WallTime ConvertWallTime(const WallTime& time, const SiteTimeZone& from, const SiteTimeZone& to);

// The zone's VTIMEZONE for a calendar, its TZID the plain IANA name (what DTSTART's TZID
// names), cut to the transitions from `from_year` on. The caller owns the component.
icalcomponent* NewVTimezone(const SiteTimeZone& zone, int from_year);

}  // namespace tidewell

#include "feeds/site_time_zone.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "runtime/clock.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

// libical loads zones lazily and caches their transitions inside the zone, unguarded on some
// builds: every call that may load or expand a zone holds this.
std::mutex& ZoneMutex() {
  static std::mutex mutex;
  return mutex;
}

// Names as tzdata spells them; anything else (a path, "..") never reaches libical's loader.
bool IsZoneName(std::string_view name) {
  if (name.empty() || name.front() == '/' || name.find("..") != std::string_view::npos) {
    return false;
  }
  for (char c : name) {
    bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                 c == '/' || c == '_' || c == '-' || c == '+';
    if (!plain) return false;
  }
  return true;
}

icaltimezone* LoadZone(std::string_view name) {
  if (!IsZoneName(name)) return nullptr;
  if (name == "UTC") return icaltimezone_get_utc_timezone();
  std::lock_guard lock(ZoneMutex());
  return icaltimezone_get_builtin_timezone(std::string(name).c_str());
}

// Days since 1970-01-01 of a proleptic Gregorian date, and back (H. Hinnant's algorithms).
long long DaysFromCivil(int year, int month, int day) {
  year -= month <= 2;
  const long long era = (year >= 0 ? year : year - 399) / 400;
  const unsigned year_of_era = static_cast<unsigned>(year - era * 400);
  const unsigned day_of_year = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const unsigned day_of_era = year_of_era * 365 + year_of_era / 4 - year_of_era / 100 + day_of_year;
  return era * 146097 + static_cast<long long>(day_of_era) - 719468;
}

WallTime CivilFromSeconds(long long seconds) {
  long long days = seconds / 86400;
  long long rest = seconds % 86400;
  if (rest < 0) {
    rest += 86400;
    --days;
  }
  days += 719468;
  const long long era = (days >= 0 ? days : days - 146096) / 146097;
  const unsigned day_of_era = static_cast<unsigned>(days - era * 146097);
  const unsigned year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36524 - day_of_era / 146096) / 365;
  const unsigned day_of_year = day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const unsigned mp = (5 * day_of_year + 2) / 153;
  WallTime time;
  time.day = static_cast<int>(day_of_year - (153 * mp + 2) / 5 + 1);
  time.month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  time.year = static_cast<int>(year_of_era + era * 400 + (time.month <= 2));
  time.hour = static_cast<int>(rest / 3600);
  time.minute = static_cast<int>(rest / 60 % 60);
  time.second = static_cast<int>(rest % 60);
  return time;
}

// The wall time's fields counted as seconds, as though it were UTC.
long long SecondsOf(const WallTime& time) {
  return DaysFromCivil(time.year, time.month, time.day) * 86400 + time.hour * 3600LL +
         time.minute * 60LL + time.second;
}

// The zone's offset from UTC, in seconds, at the moment `unix_seconds`: a moment has one.
int OffsetAt(const SiteTimeZone& zone, long long unix_seconds) {
  if (zone.zone == icaltimezone_get_utc_timezone()) return 0;
  icaltimetype time = FloatingTime(CivilFromSeconds(unix_seconds));
  time.zone = icaltimezone_get_utc_timezone();
  int is_daylight = 0;
  std::lock_guard lock(ZoneMutex());
  return icaltimezone_get_utc_offset_of_utc_time(zone.zone, &time, &is_daylight);
}

std::string TrimmedLine(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ')) {
    text.pop_back();
  }
  return text;
}

// "Europe/Berlin" out of ".../zoneinfo/Europe/Berlin" (and "posix/..." or "right/..." trees).
std::string AfterZoneinfo(std::string path) {
  const std::string marker = "zoneinfo/";
  size_t at = path.rfind(marker);
  if (at == std::string::npos) return path;
  path = path.substr(at + marker.size());
  for (const char* tree : {"posix/", "right/"}) {
    if (path.starts_with(tree)) path = path.substr(std::string_view(tree).size());
  }
  return path;
}

}  // namespace

icaltimetype FloatingTime(const WallTime& time) {
  icaltimetype t = icaltime_null_time();
  t.year = time.year;
  t.month = time.month;
  t.day = time.day;
  t.hour = time.hour;
  t.minute = time.minute;
  t.second = time.second;
  return t;
}

bool IsKnownTimeZone(std::string_view name) { return LoadZone(name) != nullptr; }

SiteTimeZone TimeZoneNamed(std::string_view name) {
  icaltimezone* zone = LoadZone(name);
  if (zone == nullptr) throw UnknownTimeZone("unknown time zone " + std::string(name));
  return SiteTimeZone{std::string(name), zone};
}

std::string SystemTimeZoneName() {
  if (const char* tz = std::getenv("TZ"); tz != nullptr && *tz != '\0') {
    std::string name = tz[0] == ':' ? tz + 1 : tz;
    name = AfterZoneinfo(name);
    if (IsKnownTimeZone(name)) return name;
  }
  if (std::ifstream file("/etc/timezone"); file) {
    std::string name;
    std::getline(file, name);
    name = TrimmedLine(name);
    if (IsKnownTimeZone(name)) return name;
  }
  std::error_code error;
  std::filesystem::path target = std::filesystem::read_symlink("/etc/localtime", error);
  if (!error) {
    std::string name = AfterZoneinfo(target.string());
    if (IsKnownTimeZone(name)) return name;
  }
  return "UTC";
}

long long WallTimeToUnix(const SiteTimeZone& zone, const WallTime& local) {
  const long long as_utc = SecondsOf(local);
  // Transitions lie months apart, so a day either side reads the offsets around any change
  // near this wall time.
  const int before = OffsetAt(zone, as_utc - 86400);
  const int after = OffsetAt(zone, as_utc + 86400);
  const long long first = as_utc - before;
  const long long second = as_utc - after;
  const bool first_fits = OffsetAt(zone, first) == before;
  const bool second_fits = OffsetAt(zone, second) == after;
  if (first_fits && second_fits) return std::min(first, second);
  if (second_fits) return second;
  return first;  // it fits, or the wall time falls in a gap: the offset before it
}

WallTime UnixToWallTime(const SiteTimeZone& zone, long long unix_seconds) {
  return CivilFromSeconds(unix_seconds + OffsetAt(zone, unix_seconds));
}

long long ClockUnixSeconds() {
  static const SiteTimeZone machine_zone = TimeZoneNamed(SystemTimeZoneName());
  const Date now = Now();
  return WallTimeToUnix(machine_zone, {Year(now), Month(now), Day(now), Hour(now), Minute(now),
                                       Second(now)});
}

WallTime ConvertWallTime(const WallTime& time, const SiteTimeZone& from, const SiteTimeZone& to) {
  return UnixToWallTime(to, WallTimeToUnix(from, time));
}

icalcomponent* NewVTimezone(const SiteTimeZone& zone, int from_year) {
  icalcomponent* vtimezone = nullptr;
  {
    std::lock_guard lock(ZoneMutex());
    if (icalcomponent* loaded = icaltimezone_get_component(zone.zone)) {
      vtimezone = icalcomponent_new_clone(loaded);
    }
  }
  if (vtimezone == nullptr) {
    // libical's own UTC has no component: one standard time at offset zero says the same.
    vtimezone = icalcomponent_new_vtimezone();
    icalcomponent* standard = icalcomponent_new_xstandard();
    icalcomponent_add_property(standard,
                               icalproperty_new_dtstart(icaltime_from_string("19700101T000000")));
    icalcomponent_add_property(standard, icalproperty_new_tzoffsetfrom(0));
    icalcomponent_add_property(standard, icalproperty_new_tzoffsetto(0));
    icalcomponent_add_property(standard, icalproperty_new_tzname("UTC"));
    icalcomponent_add_component(vtimezone, standard);
  } else {
    icaltimetype start = FloatingTime({from_year, 1, 1, 0, 0, 0});
    start.zone = icaltimezone_get_utc_timezone();
    icaltimezone_truncate_vtimezone(vtimezone, start, icaltime_null_time(), 0);
  }
  // libical names its zones with a prefix of its own; readers look the plain IANA name up.
  icalproperty* tzid = icalcomponent_get_first_property(vtimezone, ICAL_TZID_PROPERTY);
  if (tzid != nullptr) {
    icalproperty_set_tzid(tzid, zone.name.c_str());
  } else {
    icalcomponent_add_property(vtimezone, icalproperty_new_tzid(zone.name.c_str()));
  }
  return vtimezone;
}

}  // namespace tidewell

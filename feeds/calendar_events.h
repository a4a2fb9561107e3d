#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "feeds/site_time_zone.h"

namespace tidewell {

// The days an exchange with other calendars covers, both ends included: the days of the site's
// zone from `first` to `last` (their times of day are not looked at).
struct DateWindow {
  WallTime first;
  WallTime last;

  bool Contains(const WallTime& day) const;
};

// The window of `days_back` days before `today` to `days_ahead` days after it.
DateWindow WindowAround(const WallTime& today, long days_back, long days_ahead);

// One instance of an event of the calendar, as an item would show it: a non-recurring event
// has one, a recurring one one per instance in the window.
struct EventInstance {
  std::string uid;             // the event's UID, or one derived from its content
  std::string instance_start;  // which instance: see ImportedEventsTable (data/)
  WallTime start;              // in the site's zone; the day alone for an all-day event
  bool all_day = false;
  std::string summary;      // as the calendar wrote it, escapes undone
  std::string description;
  int priority = 0;  // 0 undefined, 1 highest .. 9 lowest
};

// What was passed over, and why: each event counts once (a recurring event counts as outside
// the window when none of its instances falls in it); a cancelled instance of a recurring
// event counts once as cancelled.
struct CalendarSkips {
  long cancelled = 0;
  long outside_window = 0;
  long not_events = 0;  // VTODO, VJOURNAL, VFREEBUSY, ...: components that are no events
};

struct CalendarEvents {
  std::vector<EventInstance> instances;  // in the order of the file, each event's in time order
  CalendarSkips skipped;
};

// Reads every VEVENT of the iCalendar `text` with libical:
//   - start times in the site's zone: a DTSTART with a TZID is read in that zone (the
//     calendar's own VTIMEZONE of that name, else the system's zone of that IANA name), one in
//     UTC ("Z") as UTC, a floating one as a wall time of the site's zone; an all-day event
//     (VALUE=DATE) keeps its day;
//   - recurring events (RRULE, RDATE, EXDATE) expanded with libical's recurrence iterator,
//     an instance that another VEVENT of the same UID overrides (RECURRENCE-ID) replaced by
//     that VEVENT;
//   - STATUS:CANCELLED events and instances, and instances outside `window`, passed over and
//     counted.
// An event without a UID gets "derived-" and 32 hex digits of the SHA-256 of its DTSTART (with
// its TZID), RRULE, SUMMARY and DESCRIPTION: the same event read again gets the same UID.
// Throws MalformedCalendar (feeds/calendar_text.h) for a text libical cannot read, a VEVENT
// without DTSTART, a date that is no date (30 February), a TZID no zone has, and a recurrence
// that gives more instances before the window's end than any calendar needs.
CalendarEvents ReadCalendarEvents(std::string_view text, const SiteTimeZone& site,
                                  const DateWindow& window);

}  // namespace tidewell

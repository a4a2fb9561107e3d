#!/usr/bin/env python3
"""Reads an iCalendar feed with Python's icalendar, a reader independent of libical, and
prints what a subscribing program would take from it, one line per fact:

  calendar <VERSION> <CALSCALE> <X-WR-CALNAME>
  prodid <PRODID>
  event <UID> | <start, ISO 8601 with offset> | <start's zone> | <end> | <SUMMARY> |
        <DESCRIPTION, newlines as \\n> | <PRIORITY or ->

events in the order of the feed. Exits 1 with the reason when the feed cannot be read."""

import sys

from icalendar import Calendar


def text(value):
    return str(value).replace("\\", "\\\\").replace("\n", "\\n")


def zone_name(moment):
    zone = moment.tzinfo
    return getattr(zone, "zone", None) or str(zone)


def main(path):
    with open(path, "rb") as feed:
        calendar = Calendar.from_ical(feed.read())
    if calendar.name != "VCALENDAR":
        sys.exit("not a VCALENDAR: " + calendar.name)
    print("calendar", calendar.get("VERSION"), calendar.get("CALSCALE"),
          calendar.get("X-WR-CALNAME"))
    print("prodid", calendar.get("PRODID"))
    for event in calendar.walk("VEVENT"):
        start = event.decoded("DTSTART")
        end = event.decoded("DTEND")
        priority = event.get("PRIORITY")
        print("event", " | ".join([
            str(event.get("UID")), start.isoformat(), zone_name(start), end.isoformat(),
            text(event.get("SUMMARY")), text(event.get("DESCRIPTION", "")),
            "-" if priority is None else str(priority)]))
        if event.get("DTSTAMP") is None:
            sys.exit("an event without DTSTAMP: " + str(event.get("UID")))


if __name__ == "__main__":
    main(sys.argv[1])

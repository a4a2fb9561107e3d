// tidewell import: the events of an iCalendar file made items of a user's calendar.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

#include "data/connection.h"
#include "feeds/calendar_events.h"
#include "feeds/calendar_text.h"
#include "feeds/event_import.h"
#include "feeds/site_time_zone.h"
#include "host/commands.h"
#include "host/site_setup.h"
#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace tidewell {
namespace {

constexpr const char* kImportUsage =
    "Usage: tidewell import --user NAME FILE.ics (--connection STRING | --config FILE)\n"
    "\n"
    "Makes an item of the user's for every event of the iCalendar file (FILE - reads standard\n"
    "input), as the item form makes one: the day and time of its start in the site's\n"
    "TimeZone, an all-day event at the user's start hour; SUMMARY as the heading and\n"
    "DESCRIPTION as the description (cut to the form's 50 and 255 characters); PRIORITY 1 to\n"
    "4 as urgent. Recurring events give an item per instance. Only events within the window\n"
    "of the feeds, FeedDaysBack days before today to FeedDaysAhead days after it, are taken;\n"
    "cancelled events are not.\n"
    "\n"
    "Each instance of each event (by UID) is imported once per user: importing the file again\n"
    "adds nothing, and an imported item deleted in the calendar is not made again. An event\n"
    "without UID is known by its start, rule, summary and description.\n"
    "\n"
    "All in one transaction: a file that cannot be read, or an unknown user, changes nothing\n"
    "and exits 1, saying where the file broke.\n"
    "\n"
    "  --user NAME          the account the items are made for\n"
    "  --connection STRING  e.g. \"Provider=SQLite;Data Source=var/tidewell.db\"\n"
    "  --config FILE        use the ConnectionString of the configuration's page at /, and\n"
    "                       its TimeZone, FeedDaysBack, FeedDaysAhead and DefaultStartHour\n";

std::string ReadInput(const std::string& file) {
  std::ostringstream text;
  if (file == "-") {
    text << std::cin.rdbuf();
    return text.str();
  }
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file + ". Nothing was changed.");
  text << in.rdbuf();
  return text.str();
}

// The hour the page at / starts its days at: DefaultStartHour, or when it has none (-1) the
// present hour, as every page resolves it.
long SiteStartHour(const SiteConfig& config) {
  const std::string configured = config.pages.front().PropertyValue("DefaultStartHour");
  const long hour = configured.empty() ? -1 : CLng(configured);
  return hour == -1 ? Hour(Now()) : hour;
}

WallTime TodayOnTheClock() {
  const YearMonthDay today = CalendarDay(Today());
  return {today.year, today.month, today.day, 0, 0, 0};
}

}  // namespace

int ImportCommand(int argc, char** argv) {
  const Arguments args(argc, argv, 0, {"help"}, PositionalWords::kCollected);
  if (args.Has("help")) return std::fputs(kImportUsage, stdout), 0;
  args.Expect({"connection", "config", "user", "help"});
  const std::string user = Trim(args.Get("user").value_or(""));
  if (user.empty()) throw std::invalid_argument("give --user NAME");
  if (args.Positionals().size() != 1) {
    throw std::invalid_argument("give one FILE.ics (or - for standard input)");
  }
  const SiteConfig config = ConfigFrom(args);
  const std::string connection_string = ConnectionFrom(args);
  if (!RefuseOtherSchemaVersion(config, connection_string)) return 1;

  const std::string text = ReadInput(args.Positionals().front());
  const SiteTimeZone site = TimeZoneNamed(config.time_zone);
  const DateWindow window =
      WindowAround(TodayOnTheClock(), config.feed_days_back, config.feed_days_ahead);
  CalendarEvents events;
  try {
    events = ReadCalendarEvents(text, site, window);
  } catch (const MalformedCalendar& error) {
    throw std::runtime_error(args.Positionals().front() + ": " + error.what() +
                             ". Nothing was imported.");
  }
  ado::Connection connection;
  connection.Open(connection_string);
  try {
    const ImportReport report = ImportEvents(connection, user, events, SiteStartHour(config));
    std::printf("tidewell import: %s\n", ImportSummary(report).c_str());
  } catch (const ImportRefused& refusal) {
    throw std::runtime_error(std::string(refusal.what()) + ". Nothing was changed.");
  }
  return 0;
}

}  // namespace tidewell

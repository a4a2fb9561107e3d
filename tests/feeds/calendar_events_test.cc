// iCalendar text read into event instances: zones, all-day events, recurrences, the window,
// cancelled events, texts, and files that cannot be read.

#include "feeds/calendar_events.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "feeds/calendar_text.h"

namespace tidewell {
namespace {

// The site keeps Berlin time; today is Saturday 21 November 2026, the window a month back and
// two ahead: 21 October 2026 to 20 January 2027.
class CalendarEvents_ : public ::testing::Test {
 protected:
  CalendarEvents Read(const std::string& events) {
    return ReadCalendarEvents(Calendar(events), site_, window_);
  }
  static std::string Calendar(const std::string& events) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Tidewell tests//EN\r\n" + events +
           "END:VCALENDAR\r\n";
  }
  // "2026-11-24 15:00" of each instance, in order.
  static std::vector<std::string> Starts(const CalendarEvents& events) {
    std::vector<std::string> starts;
    for (const EventInstance& instance : events.instances) {
      char text[32];
      std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", instance.start.year,
                    instance.start.month, instance.start.day, instance.start.hour,
                    instance.start.minute);
      starts.push_back(text);
    }
    return starts;
  }
  // The message of the MalformedCalendar reading `text` throws.
  std::string Refusal(const std::string& text) {
    try {
      ReadCalendarEvents(text, site_, window_);
    } catch (const MalformedCalendar& error) {
      return error.what();
    }
    return "<read>";
  }

  SiteTimeZone site_ = TimeZoneNamed("Europe/Berlin");
  DateWindow window_ = WindowAround({2026, 11, 21, 0, 0, 0}, 31, 60);
};

TEST_F(CalendarEvents_, WindowAroundCountsDaysAcrossMonthsAndYears) {
  EXPECT_EQ(window_.first, (WallTime{2026, 10, 21, 0, 0, 0}));
  EXPECT_EQ(window_.last, (WallTime{2027, 1, 20, 0, 0, 0}));
  EXPECT_TRUE(window_.Contains({2026, 10, 21, 23, 59, 0}));
  EXPECT_FALSE(window_.Contains({2026, 10, 20, 23, 59, 0}));
  EXPECT_TRUE(window_.Contains({2027, 1, 20, 0, 0, 0}));
  EXPECT_FALSE(window_.Contains({2027, 1, 21, 0, 0, 0}));
}

TEST_F(CalendarEvents_, ZonedUtcAndFloatingStartsBecomeSiteWallTimes) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:ny\r\nDTSTART;TZID=America/New_York:20261124T090000\r\n"
      "SUMMARY:New York\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:utc\r\nDTSTART:20261125T070000Z\r\nSUMMARY:UTC\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:floating\r\nDTSTART:20261126T091500\r\nSUMMARY:Floating\r\n"
      "END:VEVENT\r\n");
  EXPECT_EQ(Starts(events), (std::vector<std::string>{"2026-11-24 15:00", "2026-11-25 08:00",
                                                       "2026-11-26 09:15"}));
  ASSERT_EQ(events.instances.size(), 3u);
  EXPECT_EQ(events.instances[0].instance_start, "20261124T140000Z");
  EXPECT_EQ(events.instances[1].instance_start, "20261125T070000Z");
  EXPECT_EQ(events.instances[2].instance_start, "20261126T091500");
  EXPECT_FALSE(events.instances[0].all_day);
}

// New York changes to summer time on 8 March 2026, Berlin on 29 March: for three weeks the
// two clocks are five hours apart instead of six.
TEST_F(CalendarEvents_, ZonesFollowEachSidesDaylightSavingChanges) {
  window_ = WindowAround({2026, 3, 15, 0, 0, 0}, 30, 30);
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:weekly-ny\r\nDTSTART;TZID=America/New_York:20260301T090000\r\n"
      "RRULE:FREQ=WEEKLY;COUNT=6\r\nSUMMARY:Standup\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:change\r\nDTSTART:20260329T013000Z\r\nSUMMARY:Change\r\n"
      "END:VEVENT\r\n");
  EXPECT_EQ(Starts(events),
            (std::vector<std::string>{"2026-03-01 15:00", "2026-03-08 14:00", "2026-03-15 14:00",
                                      "2026-03-22 14:00", "2026-03-29 15:00", "2026-04-05 15:00",
                                      // 01:30 UTC on the night of Berlin's change: 03:30 CEST
                                      "2026-03-29 03:30"}));
}

TEST_F(CalendarEvents_, AZoneTheFileCarriesIsReadFromItsVTimezone) {
  CalendarEvents events = Read(
      "BEGIN:VTIMEZONE\r\nTZID:Harbour Standard Time\r\nBEGIN:STANDARD\r\n"
      "DTSTART:19700101T000000\r\nTZOFFSETFROM:+0530\r\nTZOFFSETTO:+0530\r\n"
      "END:STANDARD\r\nEND:VTIMEZONE\r\n"
      "BEGIN:VEVENT\r\nUID:h\r\nDTSTART;TZID=Harbour Standard Time:20261124T120000\r\n"
      "SUMMARY:Harbour\r\nEND:VEVENT\r\n");
  // 12:00 at +05:30 is 06:30 UTC, 07:30 in Berlin.
  EXPECT_EQ(Starts(events), std::vector<std::string>{"2026-11-24 07:30"});
  EXPECT_EQ(events.instances[0].instance_start, "20261124T063000Z");
}

TEST_F(CalendarEvents_, AllDayEventsKeepTheirDay) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:day\r\nDTSTART;VALUE=DATE:20261126\r\nDTEND;VALUE=DATE:20261128\r\n"
      "SUMMARY:Holiday\r\nEND:VEVENT\r\n");
  ASSERT_EQ(events.instances.size(), 1u);
  EXPECT_TRUE(events.instances[0].all_day);
  EXPECT_EQ(events.instances[0].start, (WallTime{2026, 11, 26, 0, 0, 0}));
  EXPECT_EQ(events.instances[0].instance_start, "20261126");
}

TEST_F(CalendarEvents_, RulesWithCountUntilExdateRdateAndAnOverriddenInstance) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:count\r\nDTSTART;TZID=Europe/Berlin:20261123T100000\r\n"
      "RRULE:FREQ=DAILY;COUNT=3\r\nSUMMARY:Count\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:until\r\nDTSTART;TZID=Europe/Berlin:20261201T080000\r\n"
      "RRULE:FREQ=WEEKLY;UNTIL=20261222T070000Z\r\n"
      "EXDATE;TZID=Europe/Berlin:20261208T080000\r\n"
      "RDATE;TZID=Europe/Berlin:20261224T170000\r\nSUMMARY:Until\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:until\r\nRECURRENCE-ID;TZID=Europe/Berlin:20261215T080000\r\n"
      "DTSTART;TZID=Europe/Berlin:20261215T093000\r\nSUMMARY:Until (moved)\r\nEND:VEVENT\r\n");
  EXPECT_EQ(Starts(events),
            (std::vector<std::string>{"2026-11-23 10:00", "2026-11-24 10:00", "2026-11-25 10:00",
                                      "2026-12-01 08:00", "2026-12-22 08:00", "2026-12-24 17:00",
                                      "2026-12-15 09:30"}));
  EXPECT_EQ(events.instances[6].summary, "Until (moved)");
  // The moved instance is known by the instance it replaces.
  EXPECT_EQ(events.instances[6].instance_start, "20261215T070000Z");
  EXPECT_EQ(events.instances[6].uid, "until");
}

TEST_F(CalendarEvents_, AnEndlessRuleIsExpandedOverTheWindowOnly) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:monthly\r\nDTSTART;VALUE=DATE:19990105\r\n"
      "RRULE:FREQ=MONTHLY\r\nSUMMARY:Rent\r\nEND:VEVENT\r\n");
  EXPECT_EQ(Starts(events), (std::vector<std::string>{"2026-11-05 00:00", "2026-12-05 00:00",
                                                       "2027-01-05 00:00"}));
  EXPECT_EQ(events.skipped.outside_window, 0);
}

TEST_F(CalendarEvents_, TheWindowsEdgesAreInsideAndTheDaysBeyondOutside) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20261020T120000\r\nSUMMARY:Day before\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:b\r\nDTSTART:20261021T000000\r\nSUMMARY:First day\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:c\r\nDTSTART:20270120T235900\r\nSUMMARY:Last day\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:d\r\nDTSTART;VALUE=DATE:20270121\r\nSUMMARY:Day after\r\n"
      "END:VEVENT\r\n"
      // 23:30 UTC on 20 January is already the 21st in Berlin.
      "BEGIN:VEVENT\r\nUID:e\r\nDTSTART:20270120T233000Z\r\nSUMMARY:Late\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:f\r\nDTSTART:20200101T090000\r\nRRULE:FREQ=YEARLY;COUNT=3\r\n"
      "SUMMARY:Long over\r\nEND:VEVENT\r\n");
  EXPECT_EQ(Starts(events), (std::vector<std::string>{"2026-10-21 00:00", "2027-01-20 23:59"}));
  EXPECT_EQ(events.skipped.outside_window, 4);
}

TEST_F(CalendarEvents_, CancelledEventsAndInstancesAndOtherComponentsArePassedOver) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:x\r\nSTATUS:CANCELLED\r\nDTSTART:20261124T100000\r\n"
      "SUMMARY:Called off\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:r\r\nDTSTART:20261123T100000\r\nRRULE:FREQ=DAILY;COUNT=3\r\n"
      "SUMMARY:Daily\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:r\r\nRECURRENCE-ID:20261124T100000\r\nSTATUS:CANCELLED\r\n"
      "DTSTART:20261124T100000\r\nSUMMARY:Daily\r\nEND:VEVENT\r\n"
      "BEGIN:VTODO\r\nUID:t\r\nSUMMARY:Chores\r\nEND:VTODO\r\n"
      "BEGIN:VJOURNAL\r\nUID:j\r\nSUMMARY:Notes\r\nEND:VJOURNAL\r\n");
  EXPECT_EQ(Starts(events), (std::vector<std::string>{"2026-11-23 10:00", "2026-11-25 10:00"}));
  EXPECT_EQ(events.skipped.cancelled, 2);
  EXPECT_EQ(events.skipped.not_events, 2);
  EXPECT_EQ(events.skipped.outside_window, 0);
}

TEST_F(CalendarEvents_, TextsAreUnescapedAndUnfolded) {
  CalendarEvents events = Read(
      "BEGIN:VEVENT\r\nUID:t\r\nDTSTART:20261124T100000\r\n"
      "SUMMARY:Tide\\, wind\\; and \\\\ rain\r\n"
      "DESCRIPTION:First line\\nsecond line\\, with a comma and a fold that goes on\r\n"
      "  and on: \xC3\xA9t\xC3\xA9 \xE2\x9B\xB5\r\nPRIORITY:3\r\nEND:VEVENT\r\n");
  ASSERT_EQ(events.instances.size(), 1u);
  EXPECT_EQ(events.instances[0].summary, "Tide, wind; and \\ rain");
  EXPECT_EQ(events.instances[0].description,
            "First line\nsecond line, with a comma and a fold that goes on and on: "
            "\xC3\xA9t\xC3\xA9 \xE2\x9B\xB5");
  EXPECT_EQ(events.instances[0].priority, 3);
}

TEST_F(CalendarEvents_, AnEventWithoutUidGetsOneFromItsContent) {
  const std::string event =
      "BEGIN:VEVENT\r\nDTSTART:20261124T100000\r\nSUMMARY:Nameless\r\nEND:VEVENT\r\n";
  CalendarEvents first = Read(event);
  CalendarEvents again = Read("BEGIN:VEVENT\r\nDTSTAMP:20990101T000000Z\r\n" +
                              event.substr(std::string("BEGIN:VEVENT\r\n").size()));
  CalendarEvents other = Read(
      "BEGIN:VEVENT\r\nDTSTART:20261124T100000\r\nSUMMARY:Another\r\nEND:VEVENT\r\n");
  ASSERT_EQ(first.instances.size(), 1u);
  EXPECT_TRUE(first.instances[0].uid.starts_with("derived-")) << first.instances[0].uid;
  EXPECT_EQ(first.instances[0].uid.size(), 8u + 32u);
  EXPECT_EQ(again.instances[0].uid, first.instances[0].uid);  // the stamp is not content
  EXPECT_NE(other.instances[0].uid, first.instances[0].uid);
}

TEST_F(CalendarEvents_, MalformedFilesSayWhereTheyBroke) {
  EXPECT_EQ(Refusal("hello\r\n"),
            "line 1: a line outside any BEGIN:VCALENDAR ... END:VCALENDAR");
  EXPECT_EQ(Refusal(""), "the file holds no BEGIN:VCALENDAR ... END:VCALENDAR");
  EXPECT_EQ(Refusal("BEGIN:VEVENT\r\nUID:1\r\nDTSTART:20261124T100000\r\nEND:VEVENT\r\n"),
            "line 1, VEVENT: the file holds no VCALENDAR");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Open\r\n")),
            "line 7: END:VCALENDAR where VEVENT (begun on line 4) should end");
  EXPECT_EQ(Refusal("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:1\r\n"),
            "line 2: BEGIN:VEVENT has no END:VEVENT before the file ends");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Bad start\r\n"
                             "DTSTART:2026113T090000\r\nEND:VEVENT\r\n")),
            "line 7, VEVENT \"Bad start\" (begun on line 4): Can't parse as DATE-TIME value in "
            "DTSTART property. 2026113T090000");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Garbage\r\nthis is garbage\r\n"
                             "DTSTART:20261124T090000\r\nEND:VEVENT\r\n")),
            "line 7, VEVENT \"Garbage\" (begun on line 4): Got a data line, but could not find "
            "a property name or component begin tag: this is garbage");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:No start\r\nEND:VEVENT\r\n")),
            "line 4, VEVENT \"No start\": the VEVENT has no DTSTART");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:November 31\r\n"
                             "DTSTART:20261131T090000\r\nEND:VEVENT\r\n")),
            "line 7, VEVENT \"November 31\" (begun on line 4), DTSTART: 20261131T090000 is no "
            "date or time");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Mars\r\n"
                             "DTSTART;TZID=Mars/Olympus:20261124T090000\r\nEND:VEVENT\r\n")),
            "line 7, VEVENT \"Mars\" (begun on line 4), DTSTART: TZID Mars/Olympus names no "
            "time zone of the file or of the system");
  EXPECT_EQ(Refusal(Calendar("BEGIN:VEVENT\r\nUID:1\r\nSUMMARY:Rule\r\nDTSTART:20261124T090000\r\n"
                             "RRULE:FREQ=DAILY;COUNT=x\r\nEND:VEVENT\r\n")),
            "line 8, VEVENT \"Rule\" (begun on line 4): Can't parse as RECUR value in RRULE "
            "property. FREQ=DAILY;COUNT=x");
}

}  // namespace
}  // namespace tidewell

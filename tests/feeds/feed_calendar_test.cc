// The feed's text as WriteFeed makes it with libical: the calendar's own lines, one event's
// lines in order, an hour-long event across the change to summer time, escaping read back,
// and folding that never cuts a UTF-8 character.

#include "feeds/feed_calendar.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace tidewell {
namespace {

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  for (size_t end; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

// The lines of the first VEVENT, unfolded.
std::vector<std::string> EventLines(const std::string& text) {
  std::vector<std::string> lines;
  bool inside = false;
  for (const std::string& line : Lines(text)) {
    if (line == "BEGIN:VEVENT") inside = true;
    if (!inside) continue;
    if (!line.empty() && line[0] == ' ') {
      lines.back() += line.substr(1);
    } else {
      lines.push_back(line);
    }
    if (line == "END:VEVENT") break;
  }
  return lines;
}

bool IsValidUtf8(const std::string& text) {
  for (size_t i = 0; i < text.size();) {
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    const size_t length = lead < 0x80 ? 1 : lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : lead >= 0xc2 ? 2 : 0;
    if (length == 0 || i + length > text.size()) return false;
    for (size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) & 0xc0) != 0x80) return false;
    }
    i += length;
  }
  return true;
}

class FeedCalendar : public ::testing::Test {
 protected:
  SiteTimeZone berlin_ = TimeZoneNamed("Europe/Berlin");
  FeedHeading heading_{.calendar_name = "bob \u2013 Tidewell",
                       .site_identity = "0123456789abcdef0123456789abcdef",
                       .zone = &berlin_,
                       .first_year = 2026,
                       .stamp = 1774008000};
};

TEST_F(FeedCalendar, TheCalendarNamesItselfItsZoneAndHowOftenToLook) {
  const std::vector<std::string> lines = Lines(WriteFeed(heading_, {}));
  ASSERT_GE(lines.size(), 10u);
  EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 9),
            (std::vector<std::string>{
                "BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Tidewell//Tidewell Calendar Feed//EN",
                "CALSCALE:GREGORIAN", "X-WR-CALNAME:bob \u2013 Tidewell",
                "X-WR-TIMEZONE:Europe/Berlin", "X-PUBLISHED-TTL:PT1H",
                "REFRESH-INTERVAL;VALUE=DURATION:PT1H", "BEGIN:VTIMEZONE"}));
  EXPECT_EQ(lines[9], "TZID:Europe/Berlin");
  EXPECT_EQ(lines.back(), "END:VCALENDAR");
}

TEST_F(FeedCalendar, AnEventHasItsLinesInOrder) {
  FeedItem item{.item_id = 42,
                .start = {2026, 3, 24, 9, 30, 0},
                .heading = "Tide, high; low",
                .description = "One\nTwo \\ three",
                .urgent = true,
                .complete = true};
  EXPECT_EQ(EventLines(WriteFeed(heading_, {item})),
            (std::vector<std::string>{
                "BEGIN:VEVENT", "UID:tidewell-item-42@0123456789abcdef0123456789abcdef",
                "DTSTAMP:20260320T120000Z", "DTSTART;TZID=Europe/Berlin:20260324T093000",
                "DTEND;TZID=Europe/Berlin:20260324T103000",
                "SUMMARY:\u2713 Tide\\, high\\; low", "DESCRIPTION:One\\nTwo \\\\ three",
                "PRIORITY:1", "END:VEVENT"}));
  item.urgent = false;
  item.complete = false;
  item.description = "";
  EXPECT_EQ(EventLines(WriteFeed(heading_, {item})),
            (std::vector<std::string>{
                "BEGIN:VEVENT", "UID:tidewell-item-42@0123456789abcdef0123456789abcdef",
                "DTSTAMP:20260320T120000Z", "DTSTART;TZID=Europe/Berlin:20260324T093000",
                "DTEND;TZID=Europe/Berlin:20260324T103000", "SUMMARY:Tide\\, high\\; low",
                "END:VEVENT"}));
}

// An hour from 01:30 on the night the clocks jump from 02:00 to 03:00 ends at 03:30.
TEST_F(FeedCalendar, AnHourAcrossTheChangeToSummerTimeEndsAnHourLater) {
  FeedItem item;
  item.item_id = 1;
  item.start = {2026, 3, 29, 1, 30, 0};
  item.heading = "Night watch";
  const std::vector<std::string> lines = EventLines(WriteFeed(heading_, {item}));
  ASSERT_GE(lines.size(), 5u);
  EXPECT_EQ(lines[3], "DTSTART;TZID=Europe/Berlin:20260329T013000");
  EXPECT_EQ(lines[4], "DTEND;TZID=Europe/Berlin:20260329T033000");
}

TEST_F(FeedCalendar, LongMultiByteTextFoldsBetweenCharactersAndReadsBack) {
  std::string heading;
  for (int i = 0; i < 40; ++i) heading += i % 3 == 0 ? "\u00e4" : i % 3 == 1 ? "\u20ac" : "\U0001F30A";
  heading += ", a comma; a semicolon \\ and a backslash";
  const std::string text =
      WriteFeed(heading_, {{.item_id = 7, .start = {2026, 4, 1, 8, 0, 0}, .heading = heading,
                            .description = heading + "\n" + heading, .urgent = false,
                            .complete = false}});
  for (const std::string& line : Lines(text)) {
    EXPECT_LE(line.size(), 75u) << line;
    EXPECT_TRUE(IsValidUtf8(line)) << line;
  }
  icalcomponent* calendar = icalparser_parse_string(text.c_str());
  ASSERT_NE(calendar, nullptr);
  icalcomponent* event = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
  ASSERT_NE(event, nullptr);
  EXPECT_EQ(std::string(icalcomponent_get_summary(event)), heading);
  EXPECT_EQ(std::string(icalcomponent_get_description(event)), heading + "\n" + heading);
  icalcomponent_free(calendar);
}

}  // namespace
}  // namespace tidewell

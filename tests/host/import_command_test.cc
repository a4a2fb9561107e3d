// tidewell import, run as an operator runs it, on both engines: the items it makes, a second
// run, malformed files, unknown users, deleted items and a file another program wrote.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "accounts/account_records.h"
#include "accounts/account_statements.h"
#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/data/engines.h"
#include "tests/host/table_snapshot.h"
#include "tests/support/run_binary.h"

namespace tidewell {
namespace {

using testing::CommandResult;
using testing::RunBinary;

constexpr const char* kAlice = "0a11ce0a11ce0a11ce0a11ce0a11ce0a";
constexpr const char* kBob = "0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b0b";

std::string Calendar(const std::string& events) {
  return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Tidewell tests//EN\r\n" + events +
         "END:VCALENDAR\r\n";
}

// One event of each kind the import meets, for a site in Berlin on 21 November 2026 whose
// window runs from 21 October 2026 to 20 January 2027.
const std::string kEveryKind = Calendar(
    // 09:00 in New York is 15:00 in Berlin.
    "BEGIN:VEVENT\r\nUID:ny@example.org\r\nDTSTART;TZID=America/New_York:20261124T090000\r\n"
    "SUMMARY:Call with Boston\\, Inc.\\; agenda\r\n"
    "DESCRIPTION:Bring:\\n- charts\\n- tide tables\r\nPRIORITY:1\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:utc@example.org\r\nDTSTART:20261125T071500Z\r\nSUMMARY:UTC\r\n"
    "PRIORITY:5\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:floating@example.org\r\nDTSTART:20261126T180000\r\n"
    "SUMMARY:  Floating  \r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:day@example.org\r\nDTSTART;VALUE=DATE:20261127\r\n"
    "SUMMARY:Harbour day\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:weekly@example.org\r\nDTSTART;TZID=Europe/Berlin:20261130T100000\r\n"
    "RRULE:FREQ=WEEKLY;COUNT=3\r\nEXDATE;TZID=Europe/Berlin:20261207T100000\r\n"
    "SUMMARY:Weekly\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:weekly@example.org\r\nRECURRENCE-ID;TZID=Europe/Berlin:20261214T100000\r\n"
    "DTSTART;TZID=Europe/Berlin:20261214T113000\r\nSUMMARY:Weekly\\, moved\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:off@example.org\r\nSTATUS:CANCELLED\r\nDTSTART:20261201T100000\r\n"
    "SUMMARY:Called off\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nUID:old@example.org\r\nDTSTART:20200101T100000\r\nSUMMARY:Old\r\n"
    "END:VEVENT\r\n"
    "BEGIN:VTODO\r\nUID:todo@example.org\r\nSUMMARY:Chores\r\nEND:VTODO\r\n");

template <class Engine>
class ImportCommand : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::string skip = engine_.Start(); !skip.empty()) GTEST_SKIP() << skip;
    // Each test runs in a process of its own: the variables reach only its commands.
    ::setenv("TIDEWELL_NOW", "2026-11-21 14:05:00", 1);
    ::setenv("TIDEWELL_TIMEZONE", "Europe/Berlin", 1);
    ::setenv("TIDEWELL_FEEDDAYSBACK", "31", 1);
    ::setenv("TIDEWELL_FEEDDAYSAHEAD", "60", 1);
    ::setenv("TIDEWELL_DEFAULTSTARTHOUR", "9", 1);
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    connection.Execute(InsertGroupStatement("Crew"));
    const Variant crew = *GroupIdNamed(connection, "Crew");
    // Alice starts her days at 7; bob keeps the site's start hour.
    InsertAccount(connection, {kAlice, crew, "alice", "x", "AL", "0", "1+7+0+0+0", false});
    InsertAccount(connection, {kBob, crew, "bob", "x", "BO", "0", "1", false});
  }

  std::string File(const std::string& name, const std::string& text) {
    const std::string path = folder_.path() + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  CommandResult Import(const std::string& user, const std::string& file,
                       const std::string& input = "") {
    return RunBinary(TIDEWELL_BINARY, {"import", "--user", user, file, "--connection",
                                       engine_.connection_string},
                     input);
  }

  // "date|hour|time text|heading|description|urgent|complete|owner" of every item, by ItemID.
  std::vector<std::string> Items() {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT * FROM Items ORDER BY ItemID"), connection);
    std::vector<std::string> rows;
    for (; !rs.Eof(); rs.MoveNext()) {
      const Variant& date = rs.Fields("DateStamp").Value();
      const YearMonthDay day = CalendarDay(CDate(date));
      char iso[16];
      std::snprintf(iso, sizeof iso, "%04d-%02d-%02d", day.year, day.month, day.day);
      const std::string owner = CStr(rs.Fields("OwnerKey").Value());
      rows.push_back(std::string(iso) + "|" + CStr(rs.Fields("TimeStamp").Value()) + "|" +
                     CStr(rs.Fields("TimeText").Value()) + "|" +
                     CStr(rs.Fields("Heading").Value()) + "|" +
                     CStr(rs.Fields("Description").Value()) + "|" +
                     (CBool(rs.Fields("Urgent").Value()) ? "urgent" : "-") + "|" +
                     (CBool(rs.Fields("Complete").Value()) ? "complete" : "-") + "|" +
                     (owner == kAlice ? "alice" : owner == kBob ? "bob" : owner));
    }
    return rows;
  }

  std::string Snapshot() {
    return testing::TableSnapshot(
        engine_.connection_string,
        {"SELECT * FROM Users ORDER BY OwnerKey", "SELECT * FROM Items ORDER BY ItemID",
         "SELECT * FROM TidewellImportedEvents ORDER BY OwnerKey, Uid, InstanceStart"});
  }

  void Run(const char* statement) {
    ado::Connection connection;
    connection.Open(engine_.connection_string);
    connection.Execute(ado::Statement(statement));
  }

  Engine engine_;
  testing::TempFolder folder_;
};

TYPED_TEST_SUITE(ImportCommand, testing::Engines, testing::EngineNames);

TYPED_TEST(ImportCommand, EveryKindOfEventBecomesTheItemTheFormWouldMake) {
  CommandResult run = this->Import("alice", this->File("every.ics", kEveryKind));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "tidewell import: imported 6 items for alice; skipped 3 (1 cancelled, 1 outside the "
            "window, 1 not a VEVENT)\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(this->Items(),
            (std::vector<std::string>{
                "2026-11-24|15|15:00|Call with Boston, Inc.; agenda|Bring:\r\n- charts\r\n- tide "
                "tables|urgent|-|alice",
                "2026-11-25|8|08:15|UTC||-|-|alice",
                "2026-11-26|18|18:00|Floating||-|-|alice",
                "2026-11-27|7|07:00|Harbour day||-|-|alice",  // alice's start hour
                "2026-11-30|10|10:00|Weekly||-|-|alice",
                "2026-12-14|11|11:30|Weekly, moved||-|-|alice",
            }));
}

TYPED_TEST(ImportCommand, ASecondImportAddsNothing) {
  const std::string file = this->File("every.ics", kEveryKind);
  ASSERT_EQ(this->Import("alice", file).status, 0);
  const std::string after_first = this->Snapshot();
  CommandResult again = this->Import("ALICE", file);  // names compare as the login does
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(again.out,
            "tidewell import: imported 0 items for alice; skipped 9 (6 already imported, 1 "
            "cancelled, 1 outside the window, 1 not a VEVENT)\n");
  EXPECT_EQ(this->Snapshot(), after_first);
  // Another account imports the same events as items of its own.
  CommandResult bob = this->Import("bob", file);
  ASSERT_EQ(bob.status, 0) << bob.err;
  EXPECT_EQ(this->Items().size(), 12u);
}

TYPED_TEST(ImportCommand, AllDayEventsTakeTheSitesStartHourWhenTheAccountHasNone) {
  CommandResult run = this->Import(
      "bob", this->File("day.ics", Calendar("BEGIN:VEVENT\r\nUID:d\r\nDTSTART;VALUE=DATE:20261127"
                                            "\r\nSUMMARY:Harbour day\r\nEND:VEVENT\r\n")));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(this->Items(), std::vector<std::string>{"2026-11-27|9|09:00|Harbour day||-|-|bob"});
}

TYPED_TEST(ImportCommand, StandardInputIsReadForADash) {
  CommandResult run = this->Import("alice", "-", kEveryKind);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(this->Items().size(), 6u);
}

TYPED_TEST(ImportCommand, AMalformedFileImportsNothingAndSaysWhere) {
  ASSERT_EQ(this->Import("alice", this->File("every.ics", kEveryKind)).status, 0);
  const std::string before = this->Snapshot();
  // Two good events, then one whose start is no date: none of the three is imported.
  const std::string broken = Calendar(
      "BEGIN:VEVENT\r\nUID:good-1\r\nDTSTART:20261128T100000\r\nSUMMARY:Good\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:good-2\r\nDTSTART:20261129T100000\r\nSUMMARY:Good\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:bad\r\nSUMMARY:Bad\r\nDTSTART:20261132T100000\r\nEND:VEVENT\r\n");
  const std::string path = this->File("broken.ics", broken);
  CommandResult run = this->Import("alice", path);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "tidewell import: " + path +
                         ": line 17, VEVENT \"Bad\" (begun on line 14), DTSTART: 20261132T100000 "
                         "is no date or time. Nothing was imported.\n");
  EXPECT_EQ(this->Snapshot(), before);

  CommandResult no_start = this->Import(
      "alice", "-", Calendar("BEGIN:VEVENT\r\nUID:x\r\nSUMMARY:When\r\nEND:VEVENT\r\n"));
  EXPECT_EQ(no_start.status, 1);
  EXPECT_EQ(no_start.err,
            "tidewell import: -: line 4, VEVENT \"When\": the VEVENT has no DTSTART. Nothing was "
            "imported.\n");
  CommandResult not_a_calendar = this->Import("alice", "-", "Subject: hello\r\n");
  EXPECT_EQ(not_a_calendar.status, 1);
  EXPECT_EQ(this->Snapshot(), before);
}

TYPED_TEST(ImportCommand, AnUnknownUserChangesNothing) {
  const std::string before = this->Snapshot();
  CommandResult run = this->Import("zed", this->File("every.ics", kEveryKind));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "tidewell import: there is no user named zed. Nothing was changed.\n");
  EXPECT_EQ(this->Snapshot(), before);
}

TYPED_TEST(ImportCommand, AnImportedItemDeletedInTheCalendarStaysDeleted) {
  const std::string file = this->File("every.ics", kEveryKind);
  ASSERT_EQ(this->Import("alice", file).status, 0);
  // What the item list's [Delete] link runs.
  this->Run(
      "DELETE FROM Items WHERE ItemID = 1 AND OwnerKey = '0a11ce0a11ce0a11ce0a11ce0a11ce0a'");
  CommandResult again = this->Import("alice", file);
  ASSERT_EQ(again.status, 0) << again.err;
  EXPECT_EQ(again.out,
            "tidewell import: imported 0 items for alice; skipped 9 (5 already imported, 1 "
            "imported before and deleted since, 1 cancelled, 1 outside the window, 1 not a "
            "VEVENT)\n");
  EXPECT_EQ(this->Items().size(), 5u);
}

TYPED_TEST(ImportCommand, LongTextsAreCutAndCounted) {
  const std::string long_summary(60, 'h');
  const std::string long_description(300, 'd');
  CommandResult run = this->Import(
      "alice", "-",
      Calendar("BEGIN:VEVENT\r\nUID:long\r\nDTSTART:20261124T100000\r\nSUMMARY:" + long_summary +
               "\r\nDESCRIPTION:" + long_description + "\r\nEND:VEVENT\r\n"));
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out,
            "tidewell import: imported 1 item for alice; skipped 0; cut 1 heading to 50 "
            "characters and 1 description to 255 characters\n");
  EXPECT_EQ(this->Items(), std::vector<std::string>{"2026-11-24|10|10:00|" + std::string(50, 'h') +
                                                    "|" + std::string(255, 'd') + "|-|-|alice"});
}

// A file written by Python's icalendar package, a writer of its own: its folding, escaping
// and TZIDs (named without a VTIMEZONE) read as ours.
TYPED_TEST(ImportCommand, AFileWrittenByPythonsIcalendarIsImported) {
  const std::string path = this->folder_.path() + "/python.ics";
  const std::string script =
      "import datetime, sys, icalendar, pytz\n"
      "cal = icalendar.Calendar()\n"
      "cal.add('prodid', '-//python icalendar//EN')\n"
      "cal.add('version', '2.0')\n"
      "ny = pytz.timezone('America/New_York')\n"
      "e = icalendar.Event()\n"
      "e.add('uid', 'py-1@example.org')\n"
      "e.add('dtstart', ny.localize(datetime.datetime(2026, 11, 24, 9, 30)))\n"
      "e.add('summary', 'Tides, winds; and currents')\n"
      "e.add('description', 'First line\\nSecond line, which is long enough that the writer "
      "has to fold it onto a further line \\u00e9t\\u00e9 \\u26f5')\n"
      "e.add('priority', 2)\n"
      "cal.add_component(e)\n"
      "w = icalendar.Event()\n"
      "w.add('uid', 'py-2@example.org')\n"
      "w.add('dtstart', datetime.datetime(2026, 12, 1, 8, 0, tzinfo=pytz.utc))\n"
      "w.add('rrule', {'freq': 'weekly', 'count': 3})\n"
      "w.add('exdate', datetime.datetime(2026, 12, 8, 8, 0, tzinfo=pytz.utc))\n"
      "w.add('summary', 'Weekly')\n"
      "cal.add_component(w)\n"
      "d = icalendar.Event()\n"
      "d.add('uid', 'py-3@example.org')\n"
      "d.add('dtstart', datetime.date(2026, 11, 30))\n"
      "d.add('summary', 'All day')\n"
      "cal.add_component(d)\n"
      "open(sys.argv[1], 'wb').write(cal.to_ical())\n";
  CommandResult written = RunBinary("/usr/bin/python3", {"-c", script, path});
  ASSERT_EQ(written.status, 0) << written.err;

  CommandResult run = this->Import("alice", path);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out, "tidewell import: imported 4 items for alice; skipped 0\n");
  EXPECT_EQ(this->Items(),
            (std::vector<std::string>{
                "2026-11-24|15|15:30|Tides, winds; and currents|First line\r\nSecond line, which "
                "is long enough that the writer has to fold it onto a further line "
                "\xC3\xA9t\xC3\xA9 \xE2\x9B\xB5|urgent|-|alice",
                "2026-12-01|9|09:00|Weekly||-|-|alice",
                "2026-12-15|9|09:00|Weekly||-|-|alice",
                "2026-11-30|7|07:00|All day||-|-|alice",
            }));
}

}  // namespace
}  // namespace tidewell

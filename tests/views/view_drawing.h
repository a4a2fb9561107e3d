#pragma once

#include <algorithm>
#include <memory>
#include <string>

#include "data/connection.h"
#include "data/session.h"
#include "frame/header.h"
#include "page/link_keys.h"
#include "page/page.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"
#include "tests/support/seeder.h"
#include "tests/views/random_calendar.h"
#include "views/day_view.h"
#include "views/list_reading.h"
#include "views/month_view.h"
#include "views/week_view.h"

namespace tidewell::testing {

// One calendar view drawn straight, as the page driver draws it after signing the user in, so
// that the same view can be drawn with either reading of its item lists and the two compared.

enum class ViewKind { kMonth, kWeek, kDay };

inline const char* NameOf(ViewKind view) {
  switch (view) {
    case ViewKind::kMonth:
      return "month";
    case ViewKind::kWeek:
      return "week";
    default:
      return "day";
  }
}

// What is drawn, for whom, and how.
struct ViewRequest {
  ViewKind view = ViewKind::kMonth;
  Date date;                    // CurrentDate
  long hour = 9;                // CurrentHour
  std::string screen_argument;  // "", "n" or "p": how the week view was reached
  std::string sort;             // the link's sort code
  std::string locale = "en-US";
  size_t user = 0;  // index into the calendar's users
  bool show_12_hour_day = false;
  bool highlight_delta_days = false;
  bool highlight_today = false;
  bool cross_out_completed = false;
  bool hex_links = false;
  long default_start_hour = 8;
  bool other_dialect = false;      // DataServer names the dialect of the other engine
  bool closed_connection = false;  // the page's connection was never opened
};

// What a view left behind.
struct Drawing {
  std::string html;  // the page buffer: the frame's opening and the view
  bool error_flag = false;
  ErrorKind error_kind = ErrorKind::kNone;
  std::string error_text;
  long screen = 0;
  long long statements_run = 0;  // by the page's connection while the view drew
  long long kept_per_key = 0;    // of those, runs in which the engine kept each cell's rows
};

inline std::string DateTextOf(Date day) {
  return std::to_string(Month(day)) + "/" + std::to_string(Day(day)) + "/" +
         std::to_string(Year(day));
}

// Enough to draw the same view again: the calendar's seed and every choice made for it.
inline std::string Describe(const RandomCalendar& calendar, const ViewRequest& request) {
  const CalendarUser& user = calendar.users[request.user];
  std::string text = "seed " + std::to_string(calendar.seed) + ", " + NameOf(request.view) +
                     " view of " + DateTextOf(request.date) + " hour " +
                     std::to_string(request.hour) + ", sort \"" + request.sort + "\", " +
                     request.locale + ", user " + user.name + " (options " + user.options +
                     ", group " + std::to_string(user.group) + ")";
  if (request.view == ViewKind::kWeek) text += ", argument \"" + request.screen_argument + "\"";
  if (request.show_12_hour_day) text += ", 12-hour day";
  if (request.highlight_delta_days) text += ", delta days tinted";
  if (request.highlight_today) text += ", today tinted";
  if (request.cross_out_completed) text += ", completed struck";
  if (request.hex_links) text += ", hex links";
  text += ", start hour " + std::to_string(request.default_start_hour);
  if (request.other_dialect) text += ", the other engine's dialect";
  if (request.closed_connection) text += ", a closed connection";
  return text;
}

// Where two drawings first part: a stretch of each around the first byte that differs.
inline std::string FirstDifference(const std::string& a, const std::string& b) {
  const size_t at = static_cast<size_t>(
      std::mismatch(a.begin(), a.begin() + static_cast<long>(std::min(a.size(), b.size())),
                    b.begin())
          .first -
      a.begin());
  if (at == a.size() && at == b.size()) return "no difference";
  const size_t from = at < 160 ? 0 : at - 160;
  return "first difference at byte " + std::to_string(at) + ":\n  one per view: ..." +
         a.substr(from, at - from + 240) + "...\n  one per cell: ..." +
         b.substr(from, at - from + 240) + "...";
}

// What the connection's session has counted so far; nothing for a closed connection.
inline ado::StatementCounts CountsOf(ado::Connection& connection) {
  return connection.State() == ado::adStateOpen ? connection.session().Counts()
                                                : ado::StatementCounts{};
}

// Draws the view of `request` for the calendar's user on a fresh page (the group scope is kept
// per request), through `connection`, reading the lists as `reading` says.
inline Drawing DrawView(const RandomCalendar& calendar, const ViewRequest& request,
                        ListReading reading, const std::shared_ptr<ado::Connection>& connection,
                        const std::string& connection_string, const LinkSigning& signing,
                        ASPDataServer dialect) {
  const CalendarUser& user = calendar.users[request.user];
  ScopedRegionalSettings settings(request.locale);
  Page page;
  page.props.ImagePath = "images/";
  page.props.HexQueryString = request.hex_links;
  page.props.DefaultStartHour = request.default_start_hour;
  page.props.ConnectionString = connection_string;
  page.props.DataServer = dialect;
  page.props.Show12HourDay = request.show_12_hour_day;
  page.props.HighlightDeltaDays = request.highlight_delta_days;
  page.props.HighlightTodaysDate = request.highlight_today;
  page.props.HighlightTodaysTime = request.highlight_today;
  page.props.CompletedItemCrossOut = request.cross_out_completed;
  page.signing = signing;
  page.ScriptName = "default.asp?";
  page.Screen = request.view == ViewKind::kMonth  ? screens::kMonthView
                : request.view == ViewKind::kWeek ? screens::kWeekView
                                                  : screens::kDayView;
  page.ScreenArgument = request.screen_argument;
  page.CurrentDate = request.date;
  page.CurrentHour = request.hour;
  page.SortOrder = request.sort;
  page.UserKey = user.key;
  page.Stamps.Set(user.key, Seeder::SharedHash("pw"));  // as the key check leaves it
  page.UserGroupId = user.group;
  page.User.Username = user.name;
  page.User.Initials = user.initials;
  page.User.Options = user.options;
  page.User.ShowAllGroupUsers = user.show_all;
  page.Connection = connection;

  const ado::StatementCounts before = CountsOf(*connection);
  AppendFrameOpening(page);
  switch (request.view) {
    case ViewKind::kMonth:
      MonthView(page, reading);
      break;
    case ViewKind::kWeek:
      WeekView(page, reading);
      break;
    case ViewKind::kDay:
      DayView(page, reading);
      break;
  }
  const ado::StatementCounts after = CountsOf(*connection);
  return {.html = page.PageBuffer,
          .error_flag = page.Error.Raised(),
          .error_kind = page.Error.Kind,
          .error_text = page.Error.Text,
          .screen = page.Screen,
          .statements_run = after.run - before.run,
          .kept_per_key = after.kept_per_key - before.kept_per_key};
}

}  // namespace tidewell::testing

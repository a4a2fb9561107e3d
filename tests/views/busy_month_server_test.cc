// A busy month through the real server: bob signs in with the form, his month view comes
// back, and every link of the view carries the fields its place in the grid calls for.

#include <gtest/gtest.h>
#include <httplib.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <thread>

#include "data/connection.h"
#include "data/recordset.h"
#include "data/statement.h"
#include "frame/markup.h"
#include "runtime/conversions.h"
#include "runtime/date_text.h"
#include "runtime/dates.h"
#include "tests/component/site_visit.h"
#include "tests/host/server_process.h"
#include "tests/views/busy_month.h"
#include "views/view_markup.h"

namespace tidewell {
namespace {

using testing::LinkFields;
using testing::ServerProcess;

// One "<a ...>" of the page: its attributes as written.
struct Anchor {
  std::string klass;  // "current", "delta", "today", "text" or ""
  std::string title;
  std::string href;
  std::string text;  // what follows the tag, up to the next "<"
};

std::vector<Anchor> Anchors(const std::string& html) {
  std::vector<Anchor> anchors;
  for (size_t at = html.find("<a "); at != std::string::npos; at = html.find("<a ", at + 1)) {
    size_t end = html.find('>', html.find("href=", at));
    std::string tag = html.substr(at, end - at);
    Anchor anchor;
    if (size_t k = tag.find("class="); k != std::string::npos) {
      anchor.klass = tag.substr(k + 6, tag.find(' ', k) - k - 6);
    }
    if (size_t t = tag.find("title=\""); t != std::string::npos) {
      anchor.title = tag.substr(t + 7, tag.find('"', t + 7) - t - 7);
    }
    size_t h = tag.find("href=") + 5;
    anchor.href = tag.substr(h, tag.find_first_of(" >", h) - h);
    anchor.text = html.substr(end + 1, html.find('<', end + 1) - end - 1);
    anchors.push_back(anchor);
  }
  return anchors;
}

std::string BareKey(const std::string& signed_key) {
  return signed_key.substr(0, signed_key.find('.'));
}

struct StoredItem {
  std::string owner;
  Date date;
  long hour = 0;
  std::string time_text;
  std::string heading;
};

class BusyMonthOverHttp : public ::testing::Test {
 protected:
  void SetUp() override {
    testing::Seeder data(database_.connection_string(), testing::PasswordHashing::kOncePerProcess);
    month_ = testing::SeedBusyMonth(data);
    data.AddUser({.name = "admin", .group = month_.group, .administrator = true, .initials = "AD"});
    ReadItems();
    std::string config = database_.folder() + "/site.conf";
    std::ofstream(config) << "Visible = True\nImagePath = images/\n"
                          << "ConnectionString = " << database_.connection_string() << "\n"
                          << "LinkSecret = busy-month-secret-0123456789\n";
    server_ = std::make_unique<ServerProcess>(
        TIDEWELL_BINARY,
        std::vector<std::string>{"serve", "--config", config, "--listen", "127.0.0.1:0"},
        std::vector<std::string>{"TIDEWELL_NOW=2026-11-21 09:30:00"});
    port_ = server_->WaitForPort();
    ASSERT_NE(port_, 0) << server_->Log();
  }

  void ReadItems() {
    ado::Connection connection;
    connection.Open(database_.connection_string());
    ado::Recordset rs;
    rs.Open(ado::Statement("SELECT ItemID, OwnerKey, DateStamp, TimeStamp, TimeText, Heading "
                           "FROM Items"),
            connection);
    for (; !rs.Eof(); rs.MoveNext()) {
      items_[CLng(rs.Fields("ItemID").Value())] = {
          CStr(rs.Fields("OwnerKey").Value()), CDate(rs.Fields("DateStamp").Value()),
          CLng(rs.Fields("TimeStamp").Value()), CStr(rs.Fields("TimeText").Value()),
          CStr(rs.Fields("Heading").Value())};
    }
  }

  // Signs bob in with the login form; the answer is his default view, the month.
  std::string LogIn() {
    httplib::Client client("127.0.0.1", port_);
    auto first = client.Get("/");
    if (!first) return "";
    std::string action = testing::FormAction(first->body);
    auto answer =
        client.Post(("/" + action).c_str(), "username=bob&password=pw&submit=Login&login=y",
                    "application/x-www-form-urlencoded");
    return answer && answer->status == 200 ? answer->body : "";
  }

  std::string Get(const std::string& link) {
    httplib::Client client("127.0.0.1", port_);
    auto answer = client.Get(("/" + link).c_str());
    return answer && answer->status == 200 ? answer->body : "";
  }

  static std::string MonthSection(const std::string& html) {
    size_t start = html.find("<!-- MonthView  Start -->");
    size_t end = html.find("<!-- MonthView End -->");
    if (start == std::string::npos || end == std::string::npos) return "";
    return html.substr(start, end - start);
  }

  testing::SeededDatabase database_;
  testing::BusyMonth month_;
  std::map<long, StoredItem> items_;
  std::unique_ptr<ServerProcess> server_;
  int port_ = 0;
};

TEST_F(BusyMonthOverHttp, EveryLinkOfTheMonthViewCarriesTheFieldsOfItsPlace) {
  const std::string month = MonthSection(LogIn());
  ASSERT_FALSE(month.empty());
  EXPECT_NE(month.find("<a class=current"), std::string::npos);

  std::string cell_date;  // the date of the cell the links below belong to
  std::map<std::string, int> items_per_day;
  std::set<std::string> days;
  int week_links = 0, more_links = 0;
  for (const Anchor& a : Anchors(month)) {
    std::vector<std::string> f = LinkFields(a.href, /*hex=*/true);
    ASSERT_EQ(f.size(), 9u) << a.href;
    EXPECT_EQ(BareKey(f[5]), month_.bob) << a.href;
    EXPECT_NE(f[5], month_.bob);  // signed, never bare
    EXPECT_EQ(f[6], "");
    EXPECT_EQ(f[7], "");
    EXPECT_EQ(f[8], "");
    if (a.klass == "current" || a.klass == "delta" || a.klass == "today") {
      // The day number: the day view of the cell's date at the page's start hour (9:30 AM).
      cell_date = f[2];
      days.insert(cell_date);
      EXPECT_EQ(f[1], "2");
      EXPECT_EQ(f[3], "9");
      EXPECT_EQ(f[4], "0");
      Date date = CDate(cell_date);
      EXPECT_EQ(a.klass == "delta", Month(date) != 11) << cell_date;
    } else if (a.title == "Display This Week") {
      // The week of the row, at bob's own start hour.
      ++week_links;
      EXPECT_EQ(f[1], "1/n");  // November 2026 starts on a Sunday: no leading days
      EXPECT_EQ(f[2], cell_date);
      EXPECT_EQ(Weekday(CDate(cell_date)), 1);
      EXPECT_EQ(f[3], "8");
      EXPECT_EQ(f[4], "0");
    } else if (a.title == "Show All Items.") {
      ++more_links;
      EXPECT_EQ(f[1], "2");
      EXPECT_EQ(f[2], cell_date);
      EXPECT_EQ(f[3], "9");
      EXPECT_EQ(f[4], "0");
    } else {
      // An item: the time view of its date and hour, with the item selected.
      ASSERT_EQ(a.klass, "text") << a.href;
      EXPECT_EQ(f[1], "3");
      const long id = CLng(f[4]);
      ASSERT_TRUE(items_.contains(id)) << f[4];
      const StoredItem& item = items_.at(id);
      EXPECT_EQ(item.owner, month_.bob);
      EXPECT_EQ(f[2], cell_date);
      EXPECT_EQ(f[2], ShortDateText(item.date));
      EXPECT_EQ(f[3], std::to_string(item.hour));
      EXPECT_TRUE(a.title.starts_with(item.time_text + " - ")) << a.title;
      ++items_per_day[cell_date];
    }
  }
  EXPECT_EQ(days.size(), 35u);  // 30 days of November and 1 to 5 December
  EXPECT_EQ(week_links, 5);
  int expected_more = 0;
  for (int day = 1; day <= 30; ++day) {
    const int count = testing::BusyDayItems(day);
    const std::string date = "11/" + std::to_string(day) + "/2026";
    EXPECT_EQ(items_per_day[date], std::min(count, 5)) << date;
    if (count >= 6) ++expected_more;
  }
  EXPECT_GT(expected_more, 0);
  EXPECT_EQ(more_links, expected_more);
}

TEST_F(BusyMonthOverHttp, TheLinksLeadWhereTheySay) {
  const std::string page = LogIn();
  const std::vector<Anchor> anchors = Anchors(MonthSection(page));
  auto first_titled = [&](auto pick) {
    for (const Anchor& a : anchors) {
      if (pick(a)) return a;
    }
    return Anchor{};
  };

  const Anchor item = first_titled([](const Anchor& a) { return a.klass == "text"; });
  const StoredItem& stored = items_.at(CLng(LinkFields(item.href, true)[4]));
  const std::string time_view = Get(item.href);
  EXPECT_NE(time_view.find("<!-- TimeView  Start -->"), std::string::npos);
  EXPECT_NE(time_view.find(EscapeHtml(stored.heading) + "</"), std::string::npos);
  // The item's row is the selected one: its [Edit] link names the item.
  std::string edit;
  for (const Anchor& a : Anchors(time_view)) {
    if (a.title == "Edit this Item" &&
        LinkFields(a.href, true)[4] == LinkFields(item.href, true)[4])
      edit = a.href;
  }
  ASSERT_FALSE(edit.empty());
  const size_t row = time_view.rfind("<tr", time_view.find(edit));
  EXPECT_EQ(time_view.substr(row, 24), "<tr bgcolor=#dee7f7 ><td");

  const Anchor week = first_titled([](const Anchor& a) { return a.title == "Display This Week"; });
  const std::string week_view = Get(week.href);
  EXPECT_NE(week_view.find("<!-- WeekView  start -->"), std::string::npos);
  EXPECT_NE(week_view.find("Week Starting Sunday, November 1, 2026"), std::string::npos);

  const Anchor more = first_titled([](const Anchor& a) { return a.title == "Show All Items."; });
  const std::vector<std::string> fields = LinkFields(more.href, true);
  const std::string day_view = Get(more.href);
  EXPECT_NE(day_view.find("<!-- DayView  start -->"), std::string::npos);
  EXPECT_NE(day_view.find("&nbsp;<b>" + LongDateTitle(CDate(fields[2])) + "</b>"),
            std::string::npos);

  const Anchor day = first_titled([](const Anchor& a) { return a.klass == "current"; });
  EXPECT_NE(Get(day.href).find("<!-- DayView  start -->"), std::string::npos);
}

// The access lines' statement counts in the log, in order.
std::vector<long> StatementCounts(const std::string& log) {
  std::vector<long> counts;
  const std::string mark = " statements=";
  for (size_t at = log.find(mark); at != std::string::npos; at = log.find(mark, at + 1)) {
    counts.push_back(std::atol(log.c_str() + at + mark.size()));
  }
  return counts;
}

// The views read their items with one statement whatever the number of cells: the access
// line counts what each page ran, the key's check and the account's read included.
TEST_F(BusyMonthOverHttp, EachViewRunsAFewStatementsWhateverItsCells) {
  const std::string month = LogIn();
  ASSERT_FALSE(month.empty());
  // The server logs each answer as it leaves, and the test reads the log through a pipe: a
  // request's line is the n-th once n requests have been made and n lines have come.
  size_t requests = 2;  // the login form and its post
  auto counts_of_first = [this](size_t n) {
    std::vector<long> counts = StatementCounts(server_->Log());
    for (int wait = 0; counts.size() < n && wait < 50; ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      counts = StatementCounts(server_->Log());
    }
    return counts;
  };
  for (const char* view : {"MonthView", "WeekView", "DayView", "TimeView"}) {
    const std::string title = std::string("Display ") + view;
    std::string link;
    for (const Anchor& a : Anchors(month)) {
      if (a.title == title) link = a.href;
    }
    ASSERT_FALSE(link.empty()) << view;
    ASSERT_FALSE(Get(link).empty()) << view;
    ++requests;
    const std::vector<long> counts = counts_of_first(requests);
    ASSERT_EQ(counts.size(), requests) << server_->Log();
    EXPECT_GE(counts.back(), 3) << view;  // the key, the account, the items
    EXPECT_LE(counts.back(), 4) << view;
  }
}

}  // namespace
}  // namespace tidewell

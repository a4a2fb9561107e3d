// Renders of the four calendar views through ViewSource, one request after another on one
// thread, against the embedded SQLite database: the busy November 2026 of the tests' user bob
// (tests/views/busy_month.h). Each iteration is one whole request: a component bound to a
// request, the properties set, the link checked, the user loaded, the page drawn.
//
//   build/bench/views_benchmark
//
// reports renders per second ("renders/s") and the size of each page ("page_bytes").

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "component/asp_objects.h"
#include "component/asp_tidewell.h"
#include "component/link_codec.h"
#include "component/link_keys.h"
#include "data/schema.h"
#include "data/session.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "tests/views/busy_month.h"

namespace tidewell {
namespace {

const LinkSigning kSigning{"benchmark secret", 3600};

// A database file of its own under the temporary folder, seeded once for the whole run.
class BusyDatabase {
 public:
  BusyDatabase() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "tidewell-bench.XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    folder_ = pattern;
    connection_string_ = "Provider=SQLite;Data Source=" + folder_ + "/calendar.db";
    CreateSchema(connection_string_);
    testing::CalendarData data(connection_string_);
    month_ = testing::SeedBusyMonth(data);
    stamp_of_bob_ = data.StampOf(month_.bob);
  }
  ~BusyDatabase() {
    ado::ClosePooledSessions();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  const std::string& connection_string() const { return connection_string_; }
  const testing::BusyMonth& month() const { return month_; }
  const std::string& stamp_of_bob() const { return stamp_of_bob_; }

 private:
  std::string stamp_of_bob_;
  std::string folder_;
  std::string connection_string_;
  testing::BusyMonth month_;
};

BusyDatabase& Database() {
  static BusyDatabase database;
  return database;
}

// One request for `screen` on `date` at `hour`, as a browser following a
// link of the calendar sends it, answered with ViewSource. The clock is the system's, as a
// server's is: links are signed against it.
std::string Render(const std::string& screen, int hour, const std::string& date = "11/21/2026") {
  const BusyDatabase& database = Database();
  AspRequest request;
  request.ServerVariables.Add("URL", "/default.asp");
  request.ServerVariables.Add("HTTP_USER_AGENT",
                              "Mozilla/4.0 (compatible; MSIE 6.0; Windows NT 5.1)");
  request.QueryString.Add(
      "WS", EncodeQueryString("~" + screen + "~" + date + "~" + std::to_string(hour) + "~0~" +
                                  SignKey(kSigning, database.month().bob, database.stamp_of_bob()) +
                                  "~~~",
                              true));
  BufferedResponse response;
  ScriptingContext context{&request, &response};
  ASPTidewell component;
  component.OnStartPage(context);
  component.SetConnectionString(database.connection_string());
  component.SetLinkSigning(kSigning);
  component.SetImagePath("images/");
  component.SetVisible(true);
  component.SetHighlightTodaysDate(true);
  component.SetHighlightTodaysTime(true);
  return component.ViewSource();
}

void RenderView(benchmark::State& state, const std::string& screen, int hour,
                const char* view_comment) {
  const std::string first = Render(screen, hour);
  if (first.find(view_comment) == std::string::npos) {
    state.SkipWithError("the request did not draw the view; is the user signed in?");
    return;
  }
  size_t bytes = 0;
  for (auto _ : state) {
    std::string html = Render(screen, hour);
    bytes = html.size();
    benchmark::DoNotOptimize(html);
  }
  state.counters["renders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["page_bytes"] = static_cast<double>(bytes);
}

void BM_MonthView(benchmark::State& state) {
  RenderView(state, "0", 9, "<!-- MonthView End -->");
}
void BM_WeekView(benchmark::State& state) {
  RenderView(state, "1", 9, "<!-- WeekView end -->");
}
void BM_DayView(benchmark::State& state) {
  RenderView(state, "2", 8, "<!-- DayView end -->");
}
void BM_TimeView(benchmark::State& state) {
  RenderView(state, "3", 9, "<!-- TimeView End -->");
}

// The month view of six months in turn: more statements than the provider keeps prepared,
// as a server showing many calendars sees them.
void BM_MonthViewOfSixMonths(benchmark::State& state) {
  const char* const months[] = {"9/21/2026",  "10/21/2026", "11/21/2026",
                                "12/21/2026", "1/21/2027",  "2/21/2027"};
  size_t next = 0;
  for (auto _ : state) {
    std::string html = Render("0", 9, months[next++ % 6]);
    benchmark::DoNotOptimize(html);
  }
  state.counters["renders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

BENCHMARK(BM_MonthView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MonthViewOfSixMonths)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WeekView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DayView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TimeView)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tidewell

BENCHMARK_MAIN();

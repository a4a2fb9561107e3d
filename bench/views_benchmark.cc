// Renders of the four calendar views through ViewSource, one request after another on one
// thread, against the embedded SQLite database: the busy November 2026 of the tests' user bob
// (tests/views/busy_month.h). Each iteration is one whole request: a component bound to a
// request, the properties set, the link checked, the user loaded, the page drawn.
//
//   build/bench/views_benchmark
//
// reports renders per second ("renders/s") and the size of each page ("page_bytes"). The
// BM_Postgres* variants draw the same views from a database of their own on the PostgreSQL
// server named by TIDEWELL_TEST_POSTGRES, and are skipped without one:
//
//   scripts/with_postgres.sh build/bench/views_benchmark --benchmark_filter=Postgres

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "component/asp_tidewell.h"
#include "data/connection.h"
#include "data/schema.h"
#include "data/session.h"
#include "data/statement.h"
#include "page/asp_objects.h"
#include "page/link_codec.h"
#include "page/link_keys.h"
#include "runtime/clock.h"
#include "runtime/dates.h"
#include "tests/views/busy_month.h"

namespace tidewell {
namespace {

const LinkSigning kSigning{"benchmark secret", 3600};

// The busy month seeded once for the whole run, in a database of its own: a file under the
// temporary folder, or a database created on the PostgreSQL server `server` names.
class BusyDatabase {
 public:
  explicit BusyDatabase(const std::string& server = "") {
    if (server.empty()) {
      std::string pattern =
          (std::filesystem::temp_directory_path() / "tidewell-bench.XXXXXX").string();
      if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
      folder_ = pattern;
      connection_string_ = "Provider=SQLite;Data Source=" + folder_ + "/calendar.db";
    } else {
      server_ = server;
      database_ = "tidewell_bench_" + std::to_string(::getpid());
      RunOnServer("DROP DATABASE IF EXISTS " + database_ + " WITH (FORCE)");
      RunOnServer("CREATE DATABASE " + database_);
      connection_string_ = server_ + ";dbname=" + database_;
      dialect_ = ASPDataServer::SQLServer;
    }
    CreateSchema(connection_string_);
    testing::Seeder data(connection_string_, testing::PasswordHashing::kOncePerProcess);
    month_ = testing::SeedBusyMonth(data);
    stamp_of_bob_ = data.StampOf(month_.bob);
  }
  ~BusyDatabase() {
    ado::ClosePooledSessions();
    if (!database_.empty()) RunOnServer("DROP DATABASE IF EXISTS " + database_ + " WITH (FORCE)");
    std::error_code ignored;
    if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
  }

  const std::string& connection_string() const { return connection_string_; }
  ASPDataServer dialect() const { return dialect_; }
  const testing::BusyMonth& month() const { return month_; }
  const std::string& stamp_of_bob() const { return stamp_of_bob_; }

 private:
  // The statement is ours: fixed words and the generated database name.
  void RunOnServer(const std::string& statement) const {
    ado::Connection connection;
    connection.Open(server_);
    connection.Execute(ado::Statement(statement.c_str()));
  }

  std::string stamp_of_bob_;
  std::string folder_;
  std::string server_;
  std::string database_;
  std::string connection_string_;
  ASPDataServer dialect_ = ASPDataServer::Access;
  testing::BusyMonth month_;
};

BusyDatabase& SqliteDatabase() {
  static BusyDatabase database;
  return database;
}

// The PostgreSQL database, or null when no server was named.
BusyDatabase* PostgresDatabase() {
  static std::unique_ptr<BusyDatabase> database = [] {
    const char* server = std::getenv("TIDEWELL_TEST_POSTGRES");
    return server && *server ? std::make_unique<BusyDatabase>(server) : nullptr;
  }();
  return database.get();
}

// One request for `screen` on `date` at `hour`, as a browser following a
// link of the calendar sends it, answered with ViewSource. The clock is the system's, as a
// server's is: links are signed against it.
std::string Render(const BusyDatabase& database, const std::string& screen, int hour,
                   const std::string& date = "11/21/2026") {
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
  component.SetDataServer(database.dialect());
  component.SetLinkSigning(kSigning);
  component.SetImagePath("images/");
  component.SetVisible(true);
  component.SetHighlightTodaysDate(true);
  component.SetHighlightTodaysTime(true);
  return component.ViewSource();
}

void RenderView(benchmark::State& state, const BusyDatabase& database, const std::string& screen,
                int hour, const char* view_comment) {
  const std::string first = Render(database, screen, hour);
  if (first.find(view_comment) == std::string::npos) {
    state.SkipWithError("the request did not draw the view; is the user signed in?");
    return;
  }
  size_t bytes = 0;
  for (auto _ : state) {
    std::string html = Render(database, screen, hour);
    bytes = html.size();
    benchmark::DoNotOptimize(html);
  }
  state.counters["renders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
  state.counters["page_bytes"] = static_cast<double>(bytes);
}

void BM_MonthView(benchmark::State& state) {
  RenderView(state, SqliteDatabase(), "0", 9, "<!-- MonthView End -->");
}
void BM_WeekView(benchmark::State& state) {
  RenderView(state, SqliteDatabase(), "1", 9, "<!-- WeekView end -->");
}
void BM_DayView(benchmark::State& state) {
  RenderView(state, SqliteDatabase(), "2", 8, "<!-- DayView end -->");
}
void BM_TimeView(benchmark::State& state) {
  RenderView(state, SqliteDatabase(), "3", 9, "<!-- TimeView End -->");
}

// The month view of six months in turn: more statements than the provider keeps prepared,
// as a server showing many calendars sees them.
void MonthViewOfSixMonths(benchmark::State& state, const BusyDatabase& database) {
  const char* const months[] = {"9/21/2026",  "10/21/2026", "11/21/2026",
                                "12/21/2026", "1/21/2027",  "2/21/2027"};
  size_t next = 0;
  for (auto _ : state) {
    std::string html = Render(database, "0", 9, months[next++ % 6]);
    benchmark::DoNotOptimize(html);
  }
  state.counters["renders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_MonthViewOfSixMonths(benchmark::State& state) {
  MonthViewOfSixMonths(state, SqliteDatabase());
}

// The same on PostgreSQL, skipped when no server was named.
void BM_PostgresMonthView(benchmark::State& state) {
  if (BusyDatabase* database = PostgresDatabase()) {
    RenderView(state, *database, "0", 9, "<!-- MonthView End -->");
  } else {
    state.SkipWithError("TIDEWELL_TEST_POSTGRES is not set: run under scripts/with_postgres.sh");
  }
}
void BM_PostgresMonthViewOfSixMonths(benchmark::State& state) {
  if (BusyDatabase* database = PostgresDatabase()) {
    MonthViewOfSixMonths(state, *database);
  } else {
    state.SkipWithError("TIDEWELL_TEST_POSTGRES is not set: run under scripts/with_postgres.sh");
  }
}
void BM_PostgresDayView(benchmark::State& state) {
  if (BusyDatabase* database = PostgresDatabase()) {
    RenderView(state, *database, "2", 8, "<!-- DayView end -->");
  } else {
    state.SkipWithError("TIDEWELL_TEST_POSTGRES is not set: run under scripts/with_postgres.sh");
  }
}

BENCHMARK(BM_MonthView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MonthViewOfSixMonths)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_WeekView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DayView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TimeView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PostgresMonthView)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PostgresMonthViewOfSixMonths)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_PostgresDayView)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tidewell

BENCHMARK_MAIN();

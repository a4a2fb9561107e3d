// A connection that cannot be made ends in the error screen, never in an exception out of
// Show.

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "data/session.h"
#include "errors/error_screen.h"
#include "tests/component/fake_request.h"
#include "tests/data/engines.h"
#include "tests/support/golden.h"

namespace tidewell {
namespace {

using testing::FakeVisit;
using testing::MatchesGolden;
using testing::TempFolder;

constexpr const char* kHiddenWrapper = "<div id=ws_vis style=\"display:none\"><div id=ws_pos >";
constexpr const char* kE_FAIL = "Error Number: -2147467259<br>";

struct Outcome {
  std::string kind;
  std::string text;
  long screen = 0;
  std::string html;
};

// The two kinds a failed connection may raise, by the error screen's short names; the
// outcome crosses a pipe from a child process as text.
std::string KindCode(ErrorKind kind) {
  if (kind == ErrorKind::kCannotConnect) return "DB";
  if (kind == ErrorKind::kDatabaseRefused) return "DP";
  return "other";
}

// Shows a page with the connection string, as a host page would.
Outcome ShowWith(const std::string& connection_string) {
  FakeVisit visit;
  visit.Start().SetConnectionString(connection_string);
  Outcome outcome;
  EXPECT_NO_THROW(outcome.html = visit.component.ViewSource());
  const Page& page = visit.component.page();
  EXPECT_TRUE(page.Error.Raised());
  EXPECT_EQ(page.Connection, nullptr);  // closed at the end of the request
  outcome.kind = KindCode(page.Error.Kind);
  outcome.text = page.Error.Text;
  outcome.screen = page.Screen;
  return outcome;
}

// The error screen alone, cut out of the page around it.
std::string ErrorScreenPart(const std::string& html) {
  const std::string start = "<!-- ErrorScreen Start -->", end = "<!-- ErrorScreen End -->";
  EXPECT_EQ(html.rfind(kHiddenWrapper, 0), 0u);
  size_t from = html.find(start), to = html.find(end);
  EXPECT_NE(from, std::string::npos);
  EXPECT_NE(to, std::string::npos);
  if (from == std::string::npos || to == std::string::npos) return "";
  return html.substr(from, to + end.size() - from);
}

TEST(ConnectionFailure, EmptyConnectionStringShowsTheConnectionStringAdvice) {
  Outcome outcome = ShowWith("");
  EXPECT_EQ(outcome.kind, "DB");
  EXPECT_EQ(outcome.screen, screens::kErrorScreen);
  EXPECT_TRUE(MatchesGolden(ErrorScreenPart(outcome.html), "error_screen_db.html"));
}

TEST(ConnectionFailure, UnknownProviderIsADBError) {
  Outcome outcome = ShowWith("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=tidewell102.mdb");
  EXPECT_EQ(outcome.kind, "DB");
  EXPECT_NE(outcome.text.find("Error Number: -2146824582<br>Provider cannot be found."),
            std::string::npos)
      << outcome.text;
  EXPECT_NE(outcome.html.find("Tidewell.ConnectionString = &quot;DSN=Tidewell&quot;"),
            std::string::npos);
}

TEST(ConnectionFailure, UnreadableConnectionStringIsADBError) {
  Outcome outcome = ShowWith("Provider=SQLite;just some words");
  EXPECT_EQ(outcome.kind, "DB");
  EXPECT_NE(outcome.text.find("Error Number: -2146825287<br>"), std::string::npos) << outcome.text;
}

TEST(ConnectionFailure, SqliteFileInAMissingFolderShowsThePermissionAdvice) {
  Outcome outcome =
      ShowWith("Provider=SQLite;Data Source=/nonexistent-tidewell-folder/calendar.db");
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_TRUE(MatchesGolden(ErrorScreenPart(outcome.html), "error_screen_dp.html"));
  EXPECT_EQ(outcome.html.find("nonexistent-tidewell-folder"),
            std::string::npos);  // no server paths
}

TEST(ConnectionFailure, SqliteFileThatIsNoDatabaseIsADPError) {
  TempFolder folder;
  std::string path = folder.path() + "/calendar.db";
  int fd = ::open(path.c_str(), O_CREAT | O_WRONLY, 0644);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::write(fd, "this is no database file, only text that goes on long enough", 61), 61);
  ::close(fd);
  Outcome outcome = ShowWith("Provider=SQLite;Data Source=" + path);
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find(kE_FAIL), std::string::npos) << outcome.text;
}

// Runs `show` as an unprivileged user when the tests run as root (who may write anywhere),
// and hands back what it saw.
Outcome ShowWithoutPrivileges(const std::function<Outcome()>& show) {
  if (::geteuid() != 0) return show();
  int channel[2];
  if (::pipe(channel) != 0) return {};
  pid_t child = ::fork();
  if (child == 0) {
    ::close(channel[0]);
    bool dropped = ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0;
    Outcome outcome = dropped ? show() : Outcome{"(could not drop privileges)", "", 0, ""};
    std::string report = outcome.kind + '\n' + outcome.text;
    (void)!::write(channel[1], report.data(), report.size());
    ::_exit(0);
  }
  ::close(channel[1]);
  std::string report;
  char buffer[4096];
  ssize_t n;
  while ((n = ::read(channel[0], buffer, sizeof buffer)) > 0)
    report.append(buffer, static_cast<size_t>(n));
  ::close(channel[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  size_t newline = report.find('\n');
  if (newline == std::string::npos) return {report, "", 0, ""};
  return {report.substr(0, newline), report.substr(newline + 1), 0, ""};
}

TEST(ConnectionFailure, SqliteFileInAReadOnlyFolderIsADPError) {
  TempFolder folder;
  std::string read_only = folder.path() + "/read-only";
  std::filesystem::create_directory(read_only);
  std::string connection_string = "Provider=SQLite;Data Source=" + read_only + "/calendar.db";
  CreateSchema(connection_string);
  ado::ClosePooledSessions();  // the last session's close removes the journal files
  ::chmod(folder.path().c_str(), 0755);
  if (::geteuid() == 0) {
    // The file stays writable for the unprivileged user; only the folder is closed to him.
    ASSERT_EQ(::chown((read_only + "/calendar.db").c_str(), 65534, 65534), 0);
    ::chmod(read_only.c_str(), 0755);
  } else {
    ::chmod(read_only.c_str(), 0555);
  }
  Outcome outcome = ShowWithoutPrivileges([&] { return ShowWith(connection_string); });
  ::chmod(read_only.c_str(), 0755);
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find(kE_FAIL), std::string::npos) << outcome.text;
}

TEST(ConnectionFailure, SqliteFileWithoutWritePermissionIsADPError) {
  TempFolder folder;
  std::string path = folder.path() + "/calendar.db";
  std::string connection_string = "Provider=SQLite;Data Source=" + path;
  CreateSchema(connection_string);
  ado::ClosePooledSessions();
  ::chmod(folder.path().c_str(), 0777);
  ::chmod(path.c_str(), 0444);
  Outcome outcome = ShowWithoutPrivileges([&] { return ShowWith(connection_string); });
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find(kE_FAIL), std::string::npos) << outcome.text;
}

TEST(ConnectionFailure, PostgresNotListeningIsADPError) {
  Outcome outcome =
      ShowWith("Provider=PostgreSQL;host=/nonexistent-tidewell-socket;port=5432;dbname=x");
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find(kE_FAIL), std::string::npos) << outcome.text;
  EXPECT_NE(outcome.text.find("Is the server running locally"), std::string::npos) << outcome.text;
  EXPECT_EQ(outcome.html.find("nonexistent-tidewell-socket"),
            std::string::npos);  // no server paths
  EXPECT_NE(outcome.html.find("<b>SQL Server Database:</b>"), std::string::npos);
}

TEST(ConnectionFailure, PostgresRefusingTheTcpConnectionIsADPError) {
  // Port 1 on the loopback interface: nothing listens there.
  Outcome outcome = ShowWith("Provider=PostgreSQL;host=127.0.0.1;port=1;connect_timeout=5");
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find(kE_FAIL), std::string::npos) << outcome.text;
}

TEST(ConnectionFailure, PostgresUnknownSettingIsADBError) {
  Outcome outcome = ShowWith("Provider=PostgreSQL;host=/tmp;colour=blue");
  EXPECT_EQ(outcome.kind, "DB");
  EXPECT_NE(outcome.text.find("invalid connection option &quot;colour&quot;"), std::string::npos)
      << outcome.text;
}

TEST(ConnectionFailure, PostgresUnknownDatabaseIsADPError) {
  std::string server = testing::PostgresServer();
  if (server.empty()) GTEST_SKIP() << testing::kNoPostgres;
  Outcome outcome = ShowWith(server + ";dbname=no_such_calendar");
  EXPECT_EQ(outcome.kind, "DP");
  EXPECT_NE(outcome.text.find("database &quot;no_such_calendar&quot; does not exist"),
            std::string::npos)
      << outcome.text;
}

TEST(ConnectionFailure, AWorkingConnectionShowsNoError) {
  TempFolder folder;
  std::string connection_string = "Provider=SQLite;Data Source=" + folder.path() + "/calendar.db";
  CreateSchema(connection_string);
  FakeVisit visit;
  visit.Start().SetConnectionString(connection_string);
  visit.component.ViewSource();
  EXPECT_FALSE(visit.component.page().Error.Raised());
  EXPECT_EQ(visit.component.page().Screen, screens::kWelcome);  // no administrator yet
}

}  // namespace
}  // namespace tidewell

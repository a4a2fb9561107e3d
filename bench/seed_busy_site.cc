// Makes the site the HTTP load benchmark (bench/http_load.sh) measures, on an empty database
// of either engine: the group Crew of five accounts that all see the whole group, "boss" the
// administrator among them (every password "pw"), 151 items in November 2026, and as many
// more items as asked for spread over 2020 to 2024, so that the month view's cost can be
// compared across table sizes.
//
//   seed_busy_site CONNECTION_STRING [PADDING_ITEMS]

#include <cstdio>
#include <string>

#include "data/connection.h"
#include "data/schema.h"
#include "data/session.h"
#include "data/statement.h"
#include "runtime/dates.h"
#include "tests/support/seeder.h"

namespace tidewell {
namespace {

// The owner of padding item i: one of the five accounts in turn.
ado::Statement& AppendOwnerOf(ado::Statement& statement, const std::string (&keys)[5]) {
  statement.Add("CASE i % 5");
  for (int u = 0; u < 5; ++u) statement.Add(" WHEN ").Number(u).Add(" THEN ").Text(keys[u]);
  return statement.Add(" END");
}

// Items of other years, written by the engine itself: a million one at a time would take
// an hour.
ado::Statement PaddingStatement(const std::string& provider, long count,
                                const std::string (&keys)[5]) {
  const bool sqlite = provider == "SQLite";
  ado::Statement statement(sqlite ? "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 "
                                    "FROM n WHERE i < "
                                  : "INSERT INTO Items (OwnerKey, DateStamp, TimeStamp, "
                                    "TimeText, Heading, Description) SELECT ");
  if (sqlite) {
    statement.Number(count).Add(
        ") INSERT INTO Items (OwnerKey, DateStamp, TimeStamp, TimeText, Heading, Description) "
        "SELECT ");
  }
  AppendOwnerOf(statement, keys);
  if (sqlite) {
    return statement.Add(", date('2020-01-01', '+' || (i % 1800) || ' days'), 7 + i % 12, "
                         "'09:00', 'Padding ' || i, '' FROM n");
  }
  return statement
      .Add(", DATE '2020-01-01' + (i % 1800), 7 + i % 12, '09:00', 'Padding ' || i, '' "
           "FROM generate_series(1, ")
      .Number(count)
      .Add(") AS i");
}

int Seed(const std::string& connection_string, long padding) {
  CreateSchema(connection_string);
  testing::Seeder data(connection_string, testing::PasswordHashing::kOncePerProcess);
  const long crew = data.AddGroup("Crew");
  const char* const kNames[] = {"boss", "ann", "bob", "carol", "dave"};
  const char* const kInitials[] = {"BO", "AN", "BB", "CC", "DV"};
  const char* const kHeadings[] = {"Standup", "Review the quarterly budget", "Lunch",
                                   "Call <Ann> & Co", "Dentist", "Planning session", "Gym"};
  std::string keys[5];
  for (int u = 0; u < 5; ++u) {
    keys[u] = data.AddUser({.name = kNames[u],
                            .group = crew,
                            .administrator = u == 0,
                            .options = "1+8+0+0+0",
                            .initials = kInitials[u]});
  }
  constexpr int kItems = 151;  // five or six a day
  for (int n = 0; n < kItems; ++n) {
    const int day = 1 + n % 30, k = n / 30;
    const long hour = 7 + (k * 2 + day) % 12;
    data.AddItem({.owner = keys[n % 5],
                  .date = DateSerial(2026, 11, day),
                  .hour = hour,
                  .time_text = (hour < 10 ? "0" : "") + std::to_string(hour) + ":" +
                               (k % 2 ? "30" : "00"),
                  .heading = kHeadings[(day + k) % 7],
                  .description = k % 2 ? "Bring the notes from last time." : "",
                  .urgent = n % 3 == 0,
                  .complete = n % 4 == 0});
  }
  if (padding > 0) {
    ado::Connection connection;
    connection.Open(connection_string);
    connection.Execute(PaddingStatement(connection.Provider(), padding, keys));
  }
  ado::ClosePooledSessions();
  std::printf("seeded 5 accounts, %d items in November 2026 and %ld more\n", kItems, padding);
  return 0;
}

}  // namespace
}  // namespace tidewell

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: %s CONNECTION_STRING [PADDING_ITEMS]\n", argv[0]);
    return 2;
  }
  try {
    return tidewell::Seed(argv[1], argc == 3 ? std::stol(argv[2]) : 0);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "seed_busy_site: %s\n", e.what());
    return 1;
  }
}

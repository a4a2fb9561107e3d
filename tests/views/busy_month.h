#pragma once

#include <string>

#include "runtime/dates.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

// A user with a busy November 2026: the tests over HTTP and the benchmarks draw it.
struct BusyMonth {
  long group = 0;
  std::string bob;    // the busy user, initials BB, password "pw"
  std::string carol;  // a member of the same group with items of her own
  int items_of_bob = 0;
};

// The number of bob's items on day `day` of November 2026: none on four days, two to seven
// on the others, so that most days hold several and some more than a month cell shows.
inline int BusyDayItems(int day) {
  if (day % 8 == 5) return 0;
  return 2 + (day * 5) % 6;
}

// Bob's items of November 2026 (BusyDayItems a day, at hours from 7 on, every third one
// urgent, every fourth complete, headings short and long, one with markup characters) and one
// item a day for carol. Bob's account has the show-all option off, so carol's items stay in
// her own calendar.
inline BusyMonth SeedBusyMonth(Seeder& data) {
  static const char* const kHeadings[] = {"Standup", "Review the quarterly budget",
                                          "Lunch",   "Call <Ann> & Co",
                                          "Dentist", "Planning session",
                                          "Gym"};
  BusyMonth month;
  month.group = data.AddGroup("Crew");
  month.bob = data.AddUser({.name = "bob", .group = month.group, .initials = "BB"});
  month.carol = data.AddUser({.name = "carol", .group = month.group, .initials = "CC"});
  int n = 0;
  for (int day = 1; day <= 30; ++day) {
    for (int k = 0; k < BusyDayItems(day); ++k, ++n) {
      const long hour = 7 + (k * 2 + day) % 12;
      data.AddItem(
          {.owner = month.bob,
           .date = DateSerial(2026, 11, day),
           .hour = hour,
           .time_text = (hour < 10 ? "0" : "") + std::to_string(hour) + ":" + (k % 2 ? "30" : "00"),
           .heading = kHeadings[(day + k) % 7],
           .description = k % 2 ? "Bring the notes from last time." : "",
           .urgent = n % 3 == 0,
           .complete = n % 4 == 0});
    }
    data.AddItem({.owner = month.carol,
                  .date = DateSerial(2026, 11, day),
                  .hour = 9,
                  .time_text = "09:00",
                  .heading = "Carol's rounds",
                  .description = "",
                  .urgent = false,
                  .complete = false});
  }
  month.items_of_bob = n;
  return month;
}

}  // namespace tidewell::testing

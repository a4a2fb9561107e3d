#pragma once

#include <random>
#include <string>
#include <vector>

#include "accounts/user_options.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "tests/support/seeder.h"

namespace tidewell::testing {

// A calendar made up from a seed: a few groups and users, and items crowded around one day so
// that the views drawn around it have full cells, ties in every sorted column, and items just
// outside what they draw.

struct CalendarUser {
  std::string key;
  std::string name;
  long group = 0;  // 0 for a user outside every group
  std::string initials;
  std::string options;    // Users.Options
  bool show_all = false;  // what the options say of the show-all-group-users flag
};

struct RandomCalendar {
  int seed = 0;
  Date focus;  // the day the items crowd around
  std::vector<CalendarUser> users;
  size_t items = 0;
};

// A number in [low, high].
inline int Between(std::mt19937& random, int low, int high) {
  return std::uniform_int_distribution<int>(low, high)(random);
}

inline bool Chance(std::mt19937& random, double p) {
  return std::bernoulli_distribution(p)(random);
}

template <class T>
const T& PickFrom(std::mt19937& random, const std::vector<T>& values) {
  return values[static_cast<size_t>(Between(random, 0, static_cast<int>(values.size()) - 1))];
}

// Headings and initials that compare equal without regard to case (the columns are compared
// that way), markup to escape, non-ASCII text, and a heading longer than a month cell shows.
inline const std::vector<std::string>& KnownHeadings() {
  static const std::vector<std::string> headings = {"Standup",
                                                    "standup",
                                                    "STANDUP",
                                                    "Lunch",
                                                    "Review the quarterly budget",
                                                    "Call <Ann> & Co",
                                                    "Dentist",
                                                    "Gym",
                                                    "Caf\u00E9 au lait",
                                                    "\u00DCber",
                                                    "Zebra",
                                                    "a",
                                                    "Carol's rounds",
                                                    "Planning session"};
  return headings;
}

inline const std::vector<std::string>& KnownInitials() {
  static const std::vector<std::string> initials = {"AB", "ab", "CD", "Zz", "BB", "AB"};
  return initials;
}

// TimeText as the item form writes it, and text someone typed instead.
inline std::string RandomTimeText(std::mt19937& random, long hour) {
  static const std::vector<std::string> typed = {"09:00", "All day", "<b>noon</b>",
                                                 "9am",   "",        "23:59"};
  if (Chance(random, 0.7)) {
    static const char* const kMinutes[] = {"00", "15", "30", "45"};
    return FormatTwoDigits(hour) + ":" + kMinutes[Between(random, 0, 3)];
  }
  return PickFrom(random, typed);
}

// Groups "G<seed>-<n>" and users "u<seed>-<n>", the first two in the same group so that some
// calendar shows another user's items; one show-all flag in four of each kind the options know
// ("0"/"1" as an administrator set it, "3"/"4" as the user did).
inline std::vector<CalendarUser> AddRandomUsers(Seeder& data, std::mt19937& random, int seed) {
  std::vector<long> groups;
  const int group_count = Between(random, 2, 3);
  for (int g = 0; g < group_count; ++g) {
    groups.push_back(data.AddGroup("G" + std::to_string(seed) + "-" + std::to_string(g)));
  }
  static const std::vector<std::string> flags = {"0", "1", "3", "4"};
  std::vector<CalendarUser> users;
  const int user_count = Between(random, 3, 6);
  for (int u = 0; u < user_count; ++u) {
    CalendarUser user;
    user.name = "u" + std::to_string(seed) + "-" + std::to_string(u);
    user.group = u < 2 ? groups[0] : PickFrom(random, groups);
    if (u >= 2 && Chance(random, 0.1)) user.group = 0;
    user.initials = PickFrom(random, KnownInitials());
    user.options =
        PickFrom(random, flags) + "+" + std::to_string(Between(random, 0, 23)) + "+0+0+0";
    user.show_all = ReadUserOptions(user.options).show_all_group_users;
    user.key = data.AddUser({.name = user.name,
                             .group = user.group,
                             .options = user.options,
                             .initials = user.initials});
    users.push_back(std::move(user));
  }
  return users;
}

// One item of a random user on `day` at `hour`.
inline Item RandomItem(std::mt19937& random, const std::vector<CalendarUser>& users, Date day,
                       long hour) {
  return {.owner = PickFrom(random, users).key,
          .date = day,
          .hour = hour,
          .time_text = RandomTimeText(random, hour),
          .heading = PickFrom(random, KnownHeadings()),
          .description = Chance(random, 0.2) ? "Bring the notes." : "",
          .urgent = Chance(random, 0.3),
          .complete = Chance(random, 0.25)};
}

// Items in the thronged hour of every fifth calendar: enough for both engines to count the
// hour's day and the hour itself as crowded.
constexpr int kThrongedHourItems = 320;

// `count` items in one hour, alike in every sorted column half of the time, so that only
// ItemID tells them apart.
inline void AddCrowdedHour(std::vector<Item>& items, std::mt19937& random,
                           const std::vector<CalendarUser>& users, Date day, long hour, int count) {
  const bool alike = Chance(random, 0.5);
  const Item model = RandomItem(random, users, day, hour);
  for (int i = 0; i < count; ++i) {
    Item item = RandomItem(random, users, day, hour);
    if (alike) {
      item.time_text = model.time_text;
      item.heading = model.heading;
      item.urgent = model.urgent;
      if (Chance(random, 0.5)) item.owner = model.owner;
    }
    items.push_back(std::move(item));
  }
}

// The calendar of `seed`, its items crowded around `focus`: scattered over the weeks around
// it, on crowded days (more than a month cell shows) and in crowded hours (more than a day
// view row shows), and late on the evenings and early in the mornings around it, where a day
// view that starts late runs into the next day.
inline RandomCalendar SeedRandomCalendar(Seeder& data, int seed, Date focus) {
  std::mt19937 random(static_cast<unsigned>(seed));
  RandomCalendar calendar;
  calendar.seed = seed;
  calendar.focus = focus;
  calendar.users = AddRandomUsers(data, random, seed);
  const auto& users = calendar.users;
  std::vector<Item> items;

  const int scattered = Between(random, 20, 70);
  for (int i = 0; i < scattered; ++i) {
    items.push_back(RandomItem(random, users, DateAdd("d", Between(random, -45, 45), focus),
                               Between(random, 0, 23)));
  }
  const int crowded_days = Between(random, 2, 5);
  for (int d = 0; d < crowded_days; ++d) {
    const Date day = DateAdd("d", Between(random, -20, 20), focus);
    const int count = Between(random, 5, 14);
    for (int i = 0; i < count; ++i) {
      items.push_back(RandomItem(random, users, day, Between(random, 0, 23)));
    }
  }
  const int crowded_hours = Between(random, 2, 5);
  for (int h = 0; h < crowded_hours; ++h) {
    AddCrowdedHour(items, random, users, DateAdd("d", Between(random, -3, 3), focus),
                   Between(random, 0, 23), Between(random, 2, 8));
  }
  for (int offset = -1; offset <= 1; ++offset) {
    const Date day = DateAdd("d", offset, focus);
    const int count = Between(random, 2, 12);
    for (int i = 0; i < count; ++i) {
      const bool evening = Chance(random, 0.5);
      items.push_back(RandomItem(random, users, day,
                                 evening ? Between(random, 18, 23) : Between(random, 0, 6)));
    }
  }
  // Crowded hours late on the focus day and early on the next, where a day view that starts
  // in the evening runs past midnight.
  AddCrowdedHour(items, random, users, focus, Between(random, 20, 23), Between(random, 2, 6));
  AddCrowdedHour(items, random, users, DateAdd("d", 1, focus), Between(random, 0, 5),
                 Between(random, 2, 6));
  // A crowded day on the focus itself, so that its month cell and week row are always full.
  AddCrowdedHour(items, random, users, focus, Between(random, 6, 20), Between(random, 4, 9));
  // Every fifth calendar has an hour of the focus with hundreds of items: the engines then
  // keep each cell's first rows themselves once they have seen the day crowded.
  if (seed % 5 == 0) {
    AddCrowdedHour(items, random, users, focus, Between(random, 8, 18), kThrongedHourItems);
  }

  data.AddItems(items);
  calendar.items = items.size();
  return calendar;
}

}  // namespace tidewell::testing

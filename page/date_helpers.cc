#include "page/date_helpers.h"

#include <string>

#include "runtime/conversions.h"
#include "runtime/dates.h"

namespace tidewell {

int DaysInMonth(int month, int year) {
  switch (month) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
      return 31;
    case 4:
    case 6:
    case 9:
    case 11:
      return 30;
    case 2:
      return IsDate(MonthName(2) + " 29, " + std::to_string(year)) ? 29 : 28;
    default:
      return 0;
  }
}

bool IsMonthFirstDateFormat() {
  Date date = CDate("31/12/99");
  std::string text = CStr(date);
  auto day_first = [&text] {
    return text == "31.12.99" || text == "31/12/99" || text == "31-12-99";
  };
  std::string year = std::to_string(Year(date));
  if (!day_first() && year.size() == 4 && text.size() >= 4) {
    text = text.substr(0, text.size() - 4) + year.substr(2);
  }
  return !day_first();
}

int FirstWeekdayOfMonth(int month, int year) {
  std::string text = IsMonthFirstDateFormat()
                         ? std::to_string(month) + "/1/" + std::to_string(year)
                         : "1/" + std::to_string(month) + "/" + std::to_string(year);
  int weekday = Weekday(CDate(text));
  return weekday == 0 ? 7 : weekday;
}

}  // namespace tidewell

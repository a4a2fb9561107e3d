#include "runtime/date_text.h"

#include <cctype>
#include <cstdio>
#include <vector>

#include "runtime/clock.h"
#include "runtime/conversions.h"
#include "runtime/dates.h"
#include "runtime/regional_settings.h"
#include "runtime/strings.h"

namespace tidewell {
namespace {

// One piece of date text: a run of digits, a run of letters, or a time such as "14:30:05".
struct Token {
  enum class Kind { kNumber, kWord, kTime } kind;
  std::string text;
  int digits = 0;  // for numbers: how many digits were written
};

bool IsSeparator(char c) {
  return c == '/' || c == '-' || c == '.' || c == ',' || c == ' ';
}

std::optional<std::vector<Token>> Tokenize(std::string_view text) {
  std::vector<Token> tokens;
  size_t i = 0;
  while (i < text.size()) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (IsSeparator(static_cast<char>(c)) || c == '\t') {
      ++i;
    } else if (std::isdigit(c)) {
      size_t start = i;
      while (i < text.size() &&
             (std::isdigit(static_cast<unsigned char>(text[i])) || text[i] == ':'))
        ++i;
      std::string run(text.substr(start, i - start));
      bool is_time = run.find(':') != std::string::npos;
      tokens.push_back(
          {is_time ? Token::Kind::kTime : Token::Kind::kNumber, run, static_cast<int>(run.size())});
    } else if (std::isalpha(c)) {
      size_t start = i;
      while (i < text.size() && std::isalpha(static_cast<unsigned char>(text[i]))) ++i;
      tokens.push_back({Token::Kind::kWord, std::string(text.substr(start, i - start))});
    } else {
      return std::nullopt;
    }
  }
  return tokens;
}

// A month named in full or by its first three letters.
int MonthFromWord(std::string_view word) {
  std::string lower = Lower(word);
  for (int m = 1; m <= 12; ++m) {
    std::string name = Lower(MonthName(m));
    if (lower == name || (lower.size() == 3 && name.compare(0, 3, lower) == 0)) return m;
  }
  return 0;
}

int ExpandYear(const Token& t) {
  int year = std::stoi(t.text);
  if (t.digits <= 2) year += year < 30 ? 2000 : 1900;
  return year;
}

// "h:mm", "h:mm:ss" and an optional AM/PM word already folded into `meridiem`.
std::optional<Date> ParseTime(const Token& t, std::string_view meridiem) {
  int parts[3] = {0, 0, 0};
  int count = 0;
  size_t start = 0;
  while (start <= t.text.size()) {
    size_t colon = t.text.find(':', start);
    std::string piece = t.text.substr(start, colon == std::string::npos ? colon : colon - start);
    if (piece.empty() || piece.size() > 2 || count == 3) return std::nullopt;
    parts[count++] = std::stoi(piece);
    if (colon == std::string::npos) break;
    start = colon + 1;
  }
  if (count < 2 || parts[1] > 59 || parts[2] > 59) return std::nullopt;
  int hour = parts[0];
  if (!meridiem.empty()) {
    if (hour < 1 || hour > 12) return std::nullopt;
    if (hour == 12) hour = 0;
    if (meridiem == "pm") hour += 12;
  } else if (hour > 23) {
    return std::nullopt;
  }
  return TimeSerial(hour, parts[1], parts[2]);
}

std::optional<Date> MakeDate(int year, int month, int day) {
  if (!IsValidCalendarDate(year, month, day)) return std::nullopt;
  return DateSerial(year, month, day);
}

// Three numbers: the locale's order first, then the other day/month order, then year first.
std::optional<Date> FromNumbers(const std::vector<Token>& n) {
  int a = std::stoi(n[0].text);
  int b = std::stoi(n[1].text);
  bool month_first = Regional().month_first;
  if (n.size() == 2) {
    int year = Year(Now());
    auto d = month_first ? MakeDate(year, a, b) : MakeDate(year, b, a);
    if (!d) d = month_first ? MakeDate(year, b, a) : MakeDate(year, a, b);
    return d;
  }
  if (n[0].digits >= 3) return MakeDate(ExpandYear(n[0]), b, std::stoi(n[2].text));
  int year = ExpandYear(n[2]);
  auto d = month_first ? MakeDate(year, a, b) : MakeDate(year, b, a);
  if (!d) d = month_first ? MakeDate(year, b, a) : MakeDate(year, a, b);
  if (!d) d = MakeDate(ExpandYear(n[0]), b, std::stoi(n[2].text));
  return d;
}

// A month name with a day and a year on either side of it.
std::optional<Date> FromMonthName(int month, const std::vector<Token>& n) {
  if (n.size() != 2) return std::nullopt;
  const Token& day = n[0].digits <= 2 ? n[0] : n[1];
  const Token& year = n[0].digits <= 2 ? n[1] : n[0];
  return MakeDate(ExpandYear(year), month, std::stoi(day.text));
}

// Three runs of digits between two "/", the form nearly every date text here takes (the
// links' dates, the calendar grids'), split without the general tokenizer. Nothing for any
// other text.
std::optional<std::vector<Token>> SlashedNumbers(std::string_view text) {
  std::vector<Token> numbers;
  numbers.reserve(3);
  size_t start = 0;
  for (int part = 0; part < 3; ++part) {
    const size_t end = part < 2 ? text.find('/', start) : text.size();
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view digits = text.substr(start, end - start);
    if (digits.empty() || digits.size() > 4) return std::nullopt;
    for (char c : digits) {
      if (!std::isdigit(static_cast<unsigned char>(c))) return std::nullopt;
    }
    numbers.push_back({Token::Kind::kNumber, std::string(digits), static_cast<int>(digits.size())});
    start = end + 1;
  }
  return numbers;
}

}  // namespace

std::string ShortDateText(Date d) {
  // Written into one string: a month view asks for some hundred of these.
  const RegionalSettings& r = Regional();
  const YearMonthDay ymd = CalendarDay(d);
  auto append_part = [&r](std::string& text, int n) {
    if (r.padded_day_month || n >= 10) {
      text += FormatTwoDigits(n);
    } else {
      text += static_cast<char>('0' + n);
    }
  };
  std::string text;
  text.reserve(10);
  append_part(text, r.month_first ? ymd.month : ymd.day);
  text += '/';
  append_part(text, r.month_first ? ymd.day : ymd.month);
  text += '/';
  text += std::to_string(ymd.year);
  return text;
}

std::string LongTimeText(Date d) {
  int hour = Hour(d);
  std::string minutes_seconds = ":" + FormatTwoDigits(Minute(d)) + ":" + FormatTwoDigits(Second(d));
  if (!Regional().twelve_hour_clock) return FormatTwoDigits(hour) + minutes_seconds;
  int twelve = hour % 12 == 0 ? 12 : hour % 12;
  return std::to_string(twelve) + minutes_seconds + (hour < 12 ? " AM" : " PM");
}

std::string DateToText(Date d) {
  if (!HasTimeOfDay(d)) return ShortDateText(d);
  return ShortDateText(d) + " " + LongTimeText(d);
}

std::optional<Date> ParseDateText(std::string_view text) {
  if (auto numbers = SlashedNumbers(text)) return FromNumbers(*numbers);
  auto tokens = Tokenize(text);
  if (!tokens || tokens->empty()) return std::nullopt;

  std::vector<Token> numbers;
  const Token* time = nullptr;
  std::string meridiem;
  int month_word = 0;
  for (const Token& t : *tokens) {
    if (t.kind == Token::Kind::kNumber) {
      if (time != nullptr || t.digits > 4) return std::nullopt;
      numbers.push_back(t);
    } else if (t.kind == Token::Kind::kTime) {
      if (time != nullptr) return std::nullopt;
      time = &t;
    } else if (std::string w = Lower(t.text);
               (w == "am" || w == "pm") && time && meridiem.empty()) {
      meridiem = w;
    } else if (int m = MonthFromWord(t.text); m != 0 && month_word == 0 && time == nullptr) {
      month_word = m;
    } else {
      return std::nullopt;
    }
  }

  std::optional<Date> time_of_day;
  if (time != nullptr) {
    time_of_day = ParseTime(*time, meridiem);
    if (!time_of_day) return std::nullopt;
  }

  std::optional<Date> day;
  if (month_word != 0) {
    day = FromMonthName(month_word, numbers);
  } else if (numbers.size() == 2 || numbers.size() == 3) {
    day = FromNumbers(numbers);
  } else if (numbers.empty() && time_of_day) {
    return time_of_day;  // a time alone is a time on day zero
  }
  if (!day) return std::nullopt;
  return time_of_day ? Combine(*day, *time_of_day) : *day;
}

}  // namespace tidewell

#include "engine/xlsx/iso_date.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string>

#include "engine/text/number_text.h"

namespace engine::xlsx {

namespace {

// Takes a number of exactly so many digits off the front.
bool take_digits(std::string_view& text, std::size_t digits, int& number) {
  if (text.size() < digits) return false;
  const char* end = text.data() + digits;
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end || number < 0) return false;
  text.remove_prefix(digits);
  return true;
}

bool take(std::string_view& text, char c) {
  if (!text.starts_with(c)) return false;
  text.remove_prefix(1);
  return true;
}

// Days since the first of the system; the 1900 system has a 29 February 1900 that never was.
std::optional<double> take_date(std::string_view& text, bool date1904) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!take_digits(text, 4, year) || !take(text, '-') || !take_digits(text, 2, month) ||
      !take(text, '-') || !take_digits(text, 2, day))
    return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day)));
  if (!date.ok()) return std::nullopt;
  using std::chrono::sys_days;
  constexpr sys_days kFirst1904 = std::chrono::year(1904) / 1 / 1;
  constexpr sys_days kBefore1900 = std::chrono::year(1899) / 12 / 30;
  constexpr auto kLeapError = 61;
  const auto days = (sys_days(date) - (date1904 ? kFirst1904 : kBefore1900)).count();
  if (date1904) return days < 0 ? std::nullopt : std::optional<double>(static_cast<double>(days));
  const auto serial = days < kLeapError ? days - 1 : days;
  return serial < 0 ? std::nullopt : std::optional<double>(static_cast<double>(serial));
}

// The part of a day.
std::optional<double> take_time(std::string_view& text) {
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (!take_digits(text, 2, hour) || !take(text, ':') || !take_digits(text, 2, minute))
    return std::nullopt;
  double fraction = 0;
  if (take(text, ':')) {
    if (!take_digits(text, 2, second)) return std::nullopt;
    if (text.starts_with('.')) {
      const std::size_t end = std::min(text.find_first_not_of("0123456789", 1), text.size());
      const auto part = parse_number("0" + std::string(text.substr(0, end)));
      if (!part) return std::nullopt;
      fraction = *part;
      text.remove_prefix(end);
    }
  }
  if (hour > 24 || minute > 59 || second > 59) return std::nullopt;
  return (hour * 3600 + minute * 60 + second + fraction) / 86400;
}

}  // namespace

std::optional<double> parse_iso_date(std::string_view text, bool date1904) {
  double serial = 0;
  if (text.find('-') != std::string_view::npos) {
    const auto date = take_date(text, date1904);
    if (!date) return std::nullopt;
    serial = *date;
    if (!text.empty() && !take(text, 'T')) return std::nullopt;
    if (text.empty()) return serial;
  }
  const auto time = take_time(text);
  if (!time) return std::nullopt;
  take(text, 'Z');
  if (!text.empty()) return std::nullopt;
  return serial + *time;
}

}  // namespace engine::xlsx

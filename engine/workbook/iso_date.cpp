#include "engine/workbook/iso_date.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <string>
#include <utility>

#include "engine/text/number_text.h"

namespace engine {

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

// Some programs write a time of day as one of 1899-12-30, the day 0 of their own base, into books
// of either base of 1900. In the one that has a day too many before March 1900 that is day 0 as
// well, like the day behind it.
double day_number(std::chrono::sys_days date, DateBase base) {
  using std::chrono::sys_days;
  constexpr sys_days kFirst1904 = std::chrono::year(1904) / 1 / 1;
  constexpr sys_days kFirst1900 = std::chrono::year(1899) / 12 / 30;
  constexpr auto kLeapError = 61;
  const auto days = (date - (base == DateBase::k1904 ? kFirst1904 : kFirst1900)).count();
  const bool one_less = base == DateBase::k1900 && days > 0 && days < kLeapError;
  return static_cast<double>(one_less ? days - 1 : days);
}

std::optional<double> take_date(std::string_view& text, DateBase base) {
  int year = 0;
  int month = 0;
  int day = 0;
  if (!take_digits(text, 4, year) || !take(text, '-') || !take_digits(text, 2, month) ||
      !take(text, '-') || !take_digits(text, 2, day))
    return std::nullopt;
  const std::chrono::year_month_day date(std::chrono::year(year),
                                         std::chrono::month(static_cast<unsigned>(month)),
                                         std::chrono::day(static_cast<unsigned>(day)));
  return date.ok() ? std::optional<double>(day_number(date, base)) : std::nullopt;
}

// Takes a number and the letter of its unit behind it; nothing when another unit follows.
std::optional<double> take_amount(std::string_view& text, char unit) {
  const std::size_t end = text.find_first_not_of("0123456789.");
  if (end == std::string_view::npos || text[end] != unit) return std::nullopt;
  const auto amount = parse_number(text.substr(0, end));
  if (amount) text.remove_prefix(end + 1);
  return amount;
}

// What stands behind the P of a duration. Years and months have no certain length.
std::optional<double> parse_duration(std::string_view text) {
  const auto days = take_amount(text, 'D');
  double seconds = days.value_or(0) * 86400;
  bool any = days.has_value();
  if (take(text, 'T')) {
    for (const auto& [unit, length] : {std::pair('H', 3600), std::pair('M', 60), std::pair('S', 1)})
      if (const auto amount = take_amount(text, unit)) {
        seconds += *amount * length;
        any = true;
      }
  }
  return any && text.empty() ? std::optional<double>(seconds / 86400) : std::nullopt;
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

std::optional<double> parse_iso_date(std::string_view text, DateBase base) {
  const bool negative = text.starts_with('-');
  if (negative) text.remove_prefix(1);
  if (take(text, 'P')) {
    const auto duration = parse_duration(text);
    return duration && negative ? -*duration : duration;
  }
  if (negative) return std::nullopt;
  double serial = 0;
  if (text.find('-') != std::string_view::npos) {
    const auto date = take_date(text, base);
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

}  // namespace engine

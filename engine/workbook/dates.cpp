#include "engine/workbook/dates.h"

#include <chrono>
#include <cmath>

namespace engine {

namespace {

constexpr int kLastYear = 9999;
constexpr int kNeverDay = 60;        // 1900-02-29
constexpr int kSystemsApart = 1462;  // days from the 1900 system's day 0 to the 1904 system's
constexpr int kLastDay = 2958465;    // 9999-12-31
constexpr double kMillisecondsADay = 86400000;

constexpr std::chrono::sys_days kEpoch{std::chrono::year_month_day(
    std::chrono::year(1899), std::chrono::month(12), std::chrono::day(30))};

double fraction_of(const DateTime& date) {
  const int minutes = date.hour * 60 + date.minute;
  return (minutes * 60000.0 + date.second * 1000.0 + date.millisecond) / kMillisecondsADay;
}

// The day in the 1900 system.
std::optional<int> day_of(const DateTime& date) {
  if (date.year == 1900 && date.month == 1 && date.day == 0) return 0;
  if (date.year == 1900 && date.month == 2 && date.day == 29) return kNeverDay;
  if (date.year < 1900 || date.year > kLastYear || date.month < 1 || date.month > 12 ||
      date.day < 1 || date.day > 31)
    return std::nullopt;
  const std::chrono::year_month_day day(std::chrono::year(date.year),
                                        std::chrono::month(static_cast<unsigned>(date.month)),
                                        std::chrono::day(static_cast<unsigned>(date.day)));
  if (!day.ok()) return std::nullopt;
  const auto since = (std::chrono::sys_days(day) - kEpoch).count();
  const int serial = static_cast<int>(since);
  return serial <= kNeverDay ? serial - 1 : serial;
}

void set_day(DateTime& date, int day) {
  if (day == 0 || day == kNeverDay) {
    date.year = 1900;
    date.month = day == 0 ? 1 : 2;
    date.day = day == 0 ? 0 : 29;
    return;
  }
  const int since = day < kNeverDay ? day + 1 : day;
  const std::chrono::year_month_day found(kEpoch + std::chrono::days(since));
  date.year = static_cast<int>(found.year());
  date.month = static_cast<int>(static_cast<unsigned>(found.month()));
  date.day = static_cast<int>(static_cast<unsigned>(found.day()));
}

}  // namespace

std::optional<double> serial_of_date(const DateTime& date, bool date1904) {
  if (date.year == 0 && date.month == 0 && date.day == 0) return fraction_of(date);
  const std::optional<int> day = day_of(date);
  if (!day) return std::nullopt;
  const int serial = date1904 ? *day - kSystemsApart : *day;
  if (serial < 0) return std::nullopt;
  return serial + fraction_of(date);
}

std::optional<DateTime> date_of_serial(double serial, bool date1904) {
  const int first = date1904 ? kSystemsApart : 0;
  if (!(serial >= 0) || serial >= kLastDay + 1 - first) return std::nullopt;
  double day = std::floor(serial);
  // The product is rounded once more than the fraction, far below a millisecond.
  double time = std::round((serial - day) * kMillisecondsADay);
  if (time >= kMillisecondsADay) {
    time = 0;
    day += 1;
  }
  const int in_1900 = static_cast<int>(day) + first;
  if (in_1900 > kLastDay) return std::nullopt;
  const int milliseconds = static_cast<int>(time);
  DateTime date;
  set_day(date, in_1900);
  date.hour = milliseconds / 3600000;
  date.minute = milliseconds / 60000 % 60;
  date.second = milliseconds / 1000 % 60;
  date.millisecond = milliseconds % 1000;
  return date;
}

}  // namespace engine

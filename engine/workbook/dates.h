// Dates as day numbers.
//
// Day 1 is 1900-01-01. The calendar of spreadsheets has a 29 February 1900 that never was, day 60,
// so from day 61 on a number counts the days since 1899-12-30. In the 1904 system day 0 is
// 1904-01-01. The time of day is the fraction. There are no zones and no daylight saving.
#pragma once

#include <optional>

namespace engine {

struct DateTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int millisecond = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

// The day number of a date; nothing when the date does not exist or lies outside the system's
// range. Year, month and day 0 stand for a time without a date, 1900-01-00 for day 0. The time must
// be within a day.
std::optional<double> serial_of_date(const DateTime& date, bool date1904);

// The date and time of a day number, rounded to the nearest millisecond; nothing when the number is
// negative, not finite or past 9999-12-31. Below 1, in the 1900 system, the date is 1900-01-00.
std::optional<DateTime> date_of_serial(double serial, bool date1904);

}  // namespace engine

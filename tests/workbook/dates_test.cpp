#include "engine/workbook/dates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace engine {
namespace {

constexpr double kMillisecond = 1.0 / 86400000;

struct Case {
  double serial = 0;
  DateTime date;
};
constexpr Case kCases1900[] = {
    {0, {1900, 1, 0}},
    {0.5, {1900, 1, 0, 12, 0}},
    {1, {1900, 1, 1}},
    {31, {1900, 1, 31}},
    {59, {1900, 2, 28}},
    {60, {1900, 2, 29}},
    {60.25, {1900, 2, 29, 6, 0}},
    {61, {1900, 3, 1}},
    {366, {1900, 12, 31}},
    {367, {1901, 1, 1}},
    {36526, {2000, 1, 1}},
    {36585, {2000, 2, 29}},
    {44256 + 845.0 / 1440, {2021, 3, 1, 14, 5}},
    {73109, {2100, 2, 28}},
    {73110, {2100, 3, 1}},
    {2958465, {9999, 12, 31}},
    {2958465 + 86399999 * kMillisecond, {9999, 12, 31, 23, 59, 59, 999}},
};
constexpr Case kCases1904[] = {
    {0, {1904, 1, 1}},  {0.75, {1904, 1, 1, 18, 0}}, {59, {1904, 2, 29}},
    {60, {1904, 3, 1}}, {35064, {2000, 1, 1}},       {2957003, {9999, 12, 31}},
};

TEST(Dates, ConvertBothWays) {
  for (const auto& [serial, date] : kCases1900) {
    SCOPED_TRACE(serial);
    EXPECT_EQ(date_of_serial(serial, false), date);
    EXPECT_EQ(serial_of_date(date, false), serial);
  }
  for (const auto& [serial, date] : kCases1904) {
    SCOPED_TRACE(serial);
    EXPECT_EQ(date_of_serial(serial, true), date);
    EXPECT_EQ(serial_of_date(date, true), serial);
  }
}

TEST(Dates, EveryDayComesBack) {
  for (const bool date1904 : {false, true}) {
    const int last = date1904 ? 2957003 : 2958465;
    for (int day = 0; day <= last; day += day < 3000 ? 1 : 61) {
      const auto date = date_of_serial(day, date1904);
      ASSERT_TRUE(date) << day;
      ASSERT_EQ(serial_of_date(*date, date1904), day);
    }
  }
}

TEST(Dates, RoundToTheMillisecondWithCarry) {
  const DateTime midnight{1900, 3, 1};
  EXPECT_EQ(date_of_serial(61 - 0.4 * kMillisecond, false), midnight);
  EXPECT_EQ(date_of_serial(60 - 0.4 * kMillisecond, false), (DateTime{1900, 2, 29}));
  EXPECT_EQ(date_of_serial(61 - 0.6 * kMillisecond, false),
            (DateTime{1900, 2, 29, 23, 59, 59, 999}));
  for (int second = 0; second < 86400; second += 7) {
    const DateTime time{2021, 3, 1, second / 3600, second / 60 % 60, second % 60, 999};
    const auto serial = serial_of_date(time, false);
    ASSERT_TRUE(serial);
    ASSERT_EQ(date_of_serial(*serial, false), time);
  }
}

TEST(Dates, TimeAlone) {
  EXPECT_EQ(serial_of_date({0, 0, 0, 6, 0}, false), 0.25);
  EXPECT_EQ(serial_of_date({0, 0, 0, 18, 0}, true), 0.75);
}

TEST(Dates, RefuseWhatIsNoDate) {
  constexpr DateTime kImpossible[] = {{2021, 2, 29}, {2021, 13, 1},  {2021, 0, 1},  {2021, 1, 0},
                                      {2021, 4, 31}, {1899, 12, 31}, {10000, 1, 1}, {2100, 2, 29},
                                      {0, 1, 1},     {1900, 1, -1},  {-2021, 1, 1}, {2021, 1, 257},
                                      {2021, -3, 1}, {100000, 1, 1}, {1900, 2, 0},  {2021, 257, 1}};
  for (const DateTime& date : kImpossible) {
    SCOPED_TRACE(testing::Message() << date.year << '-' << date.month << '-' << date.day);
    EXPECT_EQ(serial_of_date(date, false), std::nullopt);
    EXPECT_EQ(serial_of_date(date, true), std::nullopt);
  }
  EXPECT_EQ(serial_of_date({1903, 12, 31}, true), std::nullopt);
  EXPECT_EQ(serial_of_date({1900, 1, 0}, true), std::nullopt);
  const double impossible[] = {-kMillisecond,
                               -1,
                               std::nan(""),
                               2958466,
                               2958466 - 0.4 * kMillisecond,
                               std::numeric_limits<double>::infinity(),
                               1e300};
  for (const double serial : impossible) {
    SCOPED_TRACE(serial);
    EXPECT_EQ(date_of_serial(serial, false), std::nullopt);
    EXPECT_EQ(date_of_serial(serial, true), std::nullopt);
  }
  EXPECT_EQ(date_of_serial(2957004, true), std::nullopt);
}

}  // namespace
}  // namespace engine

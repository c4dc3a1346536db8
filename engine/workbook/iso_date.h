// Dates, times and durations in ISO 8601 notation, as cells of kind "d" hold them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace engine {

// What day numbers are counted from.
enum class DateBase : std::uint8_t {
  k1900,      // 1900-01-01 is day 1, and day 60 is a 29 February that never was
  kFull1900,  // 1899-12-30 is day 0, and every day has its own number
  k1904,      // 1904-01-01 is day 0
};

// The number of days that the text says: "2013-11-05", "2013-11-05T10:30:00.5", "10:30",
// "PT24H0M0.000S" and their like; a time zone is accepted as Z and changes nothing. Days before the
// base have negative numbers. Nothing when the text is none of that.
std::optional<double> parse_iso_date(std::string_view text, DateBase base);

}  // namespace engine

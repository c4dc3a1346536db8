#include "engine/xlsx/iso_date.h"

#include <gtest/gtest.h>

namespace engine::xlsx {
namespace {

TEST(IsoDate, GivesSerialDays) {
  struct Case {
    const char* text = nullptr;
    bool date1904 = false;
    std::optional<double> serial;
  };
  const Case kCases[] = {
      {"1900-01-01", false, 1},
      {"1900-02-28", false, 59},
      {"1900-03-01", false, 61},
      {"2013-11-05", false, 41583},
      {"2013-11-05T12:00:00Z", false, 41583.5},
      {"2013-11-05T06:00:00.000", false, 41583.25},
      {"1904-01-01", true, 0},
      {"1904-01-02T18:00", true, 1.75},
      {"10:30:00", false, 0.4375},
      {"1899-12-30", false, std::nullopt},
      {"1903-12-31", true, std::nullopt},
      {"2013-02-29", false, std::nullopt},
      {"2013-11-05 12:00", false, std::nullopt},
      {"2013-11-05T12:61:00", false, std::nullopt},
      {"12", false, std::nullopt},
      {"", false, std::nullopt},
  };
  for (const auto& [text, date1904, serial] : kCases)
    EXPECT_EQ(parse_iso_date(text, date1904), serial) << text;
}

}  // namespace
}  // namespace engine::xlsx

#include "engine/workbook/iso_date.h"

#include <gtest/gtest.h>

namespace engine {
namespace {

TEST(IsoDate, GivesSerialDays) {
  using enum DateBase;
  struct Case {
    const char* text = nullptr;
    DateBase base = k1900;
    std::optional<double> serial;
  };
  const Case kCases[] = {
      {"1900-01-01", k1900, 1},
      {"1900-02-28", k1900, 59},
      {"1900-03-01", k1900, 61},
      {"1899-12-31", k1900, 0},
      {"1899-12-30T06:00:00.000", k1900, 0.25},
      {"1899-12-29", k1900, -1},
      {"2013-11-05", k1900, 41583},
      {"2013-11-05T12:00:00Z", k1900, 41583.5},
      {"2013-11-05T06:00:00.000", k1900, 41583.25},
      {"1899-12-30", kFull1900, 0},
      {"1899-12-30T18:00:00.000", kFull1900, 0.75},
      {"1899-12-31", kFull1900, 1},
      {"1900-01-31", kFull1900, 32},
      {"1900-02-28", kFull1900, 60},
      {"1900-03-01", kFull1900, 61},
      {"1582-10-15", kFull1900, -115858},
      {"2013-11-05", kFull1900, 41583},
      {"1904-01-01", k1904, 0},
      {"1904-01-02T18:00", k1904, 1.75},
      {"1903-12-31", k1904, -1},
      {"10:30:00", k1900, 0.4375},
      {"PT24H0M0.000S", k1900, 1},
      {"PT36H30M", k1904, 36.5 / 24},
      {"P2DT12H", kFull1900, 2.5},
      {"-PT6H", k1900, -0.25},
      {"PT0.864S", k1900, 0.864 / 86400},
      {"P", k1900, std::nullopt},
      {"PT", k1900, std::nullopt},
      {"P1M", k1900, std::nullopt},
      {"PT1M2H", k1900, std::nullopt},
      {"PT1H2", k1900, std::nullopt},
      {"PTH", k1900, std::nullopt},
      {"2013-02-29", k1900, std::nullopt},
      {"2013-11-05 12:00", k1900, std::nullopt},
      {"2013-11-05T12:61:00", k1900, std::nullopt},
      {"-10:30", k1900, std::nullopt},
      {"12", k1900, std::nullopt},
      {"", k1900, std::nullopt},
  };
  for (const auto& [text, base, serial] : kCases)
    EXPECT_EQ(parse_iso_date(text, base), serial) << text;
}

}  // namespace
}  // namespace engine

#include "engine/formula/reference.h"

#include <gtest/gtest.h>

#include <limits>

#include "engine/formula/function_names.h"
#include "engine/formula/interval.h"
#include "engine/formula/sheet_name.h"
#include "tests/formula/grid.h"

namespace engine::formula {
namespace {

TEST(Reference, ColumnsGoBothWays) {
  const struct {
    const char* letters;
    int column;
  } cases[] = {{"A", 0},    {"Z", 25},    {"AA", 26},     {"AZ", 51},
               {"ZZ", 701}, {"AAA", 702}, {"XFD", 16383}, {"XFE", 16384}};
  for (const auto& [letters, column] : cases) {
    SCOPED_TRACE(letters);
    EXPECT_EQ(parse_column(letters), column);
    EXPECT_EQ(print_column(column), letters);
  }
  EXPECT_EQ(parse_column("xfd"), 16383);
  for (const char* text : {"", "A1", "$A", "ABCDE", "Ä"}) EXPECT_FALSE(parse_column(text)) << text;
}

TEST(Reference, ReadsAddresses) {
  const struct {
    const char* text = "";
    CellReference address;
  } cases[] = {
      {"C5", {4, 2, false, false}},
      {"$C$5", {4, 2, true, true}},
      {"$c5", {4, 2, false, true}},
      {"XFD1048576", {1048575, 16383, false, false}},
      {"A1048577", {1048576, 0, false, false}},
  };
  for (const auto& [text, address] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(parse_cell(text), address);
  }
  for (const char* text : {"", "A", "5", "A0", "A01", "A1 ", "A1:B2", "A$", "$$A1", "A1$", "5A",
                           "ABCDE1", "A1234567890", "Sheet1!A1"})
    EXPECT_FALSE(parse_cell(text)) << text;
}

TEST(Reference, ReadsRanges) {
  const struct {
    const char* text = "";
    CellRange range;
    const char* printed = "";
  } cases[] = {
      {"C5", {4, 4, 2, 2}, "C5"},
      {"$A$1:B2", {0, 1, 0, 1}, "A1:B2"},
      {"B1:A2", {0, 1, 0, 1}, "A1:B2"},
      {"A:$C", {0, 1048575, 0, 2}, "A1:C1048576"},
      {"2:$7", {1, 6, 0, 16383}, "A2:XFD7"},
  };
  for (const auto& [text, range, printed] : cases) {
    SCOPED_TRACE(text);
    EXPECT_EQ(parse_range(text, kGrid), range);
    EXPECT_EQ(print_range(range), printed);
  }
  for (const char* text : {"", ":", "A1:", ":A1", "A", "1", "A:1", "A1:B", "A1:B2:C3", "A1:XFE1"})
    EXPECT_FALSE(parse_range(text, kGrid)) << text;
  EXPECT_FALSE(parse_range("A1:A65537", Grid{65536, 256}));
}

TEST(Interval, FollowsInsertedAndRemoved) {
  using Kind = Move::Kind;
  constexpr int kLargest = std::numeric_limits<int>::max();
  const struct {
    Kind kind = Kind::kInsert;
    int at = 0;
    int count = 0;
    Interval before;
    std::optional<Interval> after;
  } cases[] = {
      {Kind::kInsert, 5, 2, {5, 8}, Interval{7, 10}},
      {Kind::kInsert, 6, 2, {5, 8}, Interval{5, 10}},
      {Kind::kInsert, 8, 2, {5, 8}, Interval{5, 10}},
      {Kind::kInsert, 9, 2, {5, 8}, Interval{5, 8}},
      {Kind::kInsert, 0, 95, {2, 8}, Interval{97, 99}},
      {Kind::kInsert, 0, 98, {2, 8}, std::nullopt},
      {Kind::kInsert, 7, 3, {0, 99}, Interval{0, 99}},
      {Kind::kInsert, 6, kLargest, {5, 8}, Interval{5, 99}},
      {Kind::kInsert, 5, kLargest, {5, 8}, std::nullopt},
      {Kind::kRemove, 6, kLargest, {5, 8}, Interval{5, 5}},
      {Kind::kRemove, 5, kLargest, {5, 8}, std::nullopt},
      {Kind::kRemove, 9, 2, {5, 8}, Interval{5, 8}},
      {Kind::kRemove, 1, 2, {5, 8}, Interval{3, 6}},
      {Kind::kRemove, 4, 2, {5, 8}, Interval{4, 6}},
      {Kind::kRemove, 6, 2, {5, 8}, Interval{5, 6}},
      {Kind::kRemove, 7, 9, {5, 8}, Interval{5, 6}},
      {Kind::kRemove, 5, 4, {5, 8}, std::nullopt},
  };
  for (const auto& [kind, at, count, before, after] : cases) {
    SCOPED_TRACE(testing::Message() << (kind == Kind::kInsert ? "insert " : "remove ") << count
                                    << " at " << at << " of " << before.first);
    EXPECT_EQ(moved(before, {Axis::kRows, kind, at, count}, 100), after);
  }
  EXPECT_EQ(moved(4, {Axis::kRows, Kind::kInsert, 4, 2}), 6);
  EXPECT_EQ(moved(5, {Axis::kRows, Kind::kInsert, 4, kLargest}), kLargest);
  EXPECT_EQ(moved(5, {Axis::kRows, Kind::kRemove, 4, 2}), std::nullopt);
  EXPECT_EQ(moved(5, {Axis::kRows, Kind::kRemove, 4, kLargest}), std::nullopt);
  EXPECT_EQ(moved(6, {Axis::kRows, Kind::kRemove, 4, 2}), 4);
}

TEST(FunctionNames, AreFoundInAnyCase) {
  for (const char* name : {"sum", "Abs", "ZTEST", "xlookup", "F.DIST", "z.test", "Filter"})
    EXPECT_TRUE(is_known_function(name)) << name;
  for (const char* name : {"", "SU", "SUMM", "_xlfn.IFS"}) EXPECT_FALSE(is_known_function(name));
  EXPECT_EQ(function_kind("ifs"), FunctionKind::kNewer);
  EXPECT_EQ(function_kind("Sort"), FunctionKind::kNewerOfWorksheets);
  EXPECT_EQ(function_kind("IF"), FunctionKind::kClassic);
}

TEST(SheetName, QuotesWhatCouldBeMisread) {
  const struct {
    const char* name;
    const char* quoted;
  } cases[] = {
      {"Sheet1", "Sheet1"},
      {"Data_2.old", "Data_2.old"},
      {"Übersicht", "Übersicht"},
      {"データ", "データ"},
      {"My sheet", "'My sheet'"},
      {"It's", "'It''s'"},
      {"2024", "'2024'"},
      {"A1", "'A1'"},
      {"xfd99", "'xfd99'"},
      {"R1C1", "'R1C1'"},
      {"rc", "'rc'"},
      {"R", "'R'"},
      {"True", "'True'"},
      {"a-b", "'a-b'"},
      {"a😀", "'a😀'"},
      {"", "''"},
  };
  for (const auto& [name, quoted] : cases) EXPECT_EQ(quote_sheet_name(name), quoted);
}

TEST(SheetName, KnowsAddresses) {
  for (const char* name : {"A1", "$xfd$1048576", "R", "c", "RC", "R1C1", "r[1]c[-2]", "C7"})
    EXPECT_TRUE(looks_like_address(name)) << name;
  for (const char* name : {"", "A", "Rate", "R1C1x", "YTD2024", "CR", "R1CC"})
    EXPECT_FALSE(looks_like_address(name)) << name;
}

}  // namespace
}  // namespace engine::formula

#include "host/function_table.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <set>

#include "host/named_constants.h"
#include "tests/support/calls.h"
#include "tests/support/listed_functions.h"

namespace {

std::string described(const bind::Row& row) {
  std::string text = std::string(row.name) + " " + std::to_string(row.min);
  if (row.max != row.min) text += "-" + std::to_string(row.max);
  return text;
}

TEST(FunctionTable, HoldsWhatIsListed) {
  const std::map<int, ListedFunction>& listed = listed_functions();
  ASSERT_EQ(listed.size(), 278);
  short last_id = 0;
  for (const bind::Row& row : function_table()) {
    SCOPED_TRACE(row.name);
    ASSERT_EQ(listed.count(row.id), 1);
    EXPECT_EQ(described(row), listed.at(row.id).with_counts());
    EXPECT_GT(row.id, last_id);
    last_id = row.id;
  }
  EXPECT_EQ(function_table().size(), 278);
}

double constant(short id) { return calls::call({id, 0, 0, "", XL_NamedConstant}, {}).number(); }

TEST(NamedConstants, FollowTheirRuns) {
  struct Case {
    short first;
    short last;
    std::vector<double> values;
  };
  // Values of a run that rises by one stand for its ends.
  const Case kCases[] = {
      {5000, 5057, {8, 65}},
      {5058, 5059, {81, 32767}},
      {5060, 5082, {0, 22}},
      {5083, 5095, {37, 49}},
      {5096, 5103, {0, 7}},
      {5104, 5108, {0, 4}},
      {5109, 5122, {0, 13}},
      {5123, 5126, {0, 3}},
      {5127, 5145, {0, 18}},
      {5146, 5148, {0, 2}},
      {5149, 5151, {0, 2}},
      {5152, 5153, {33, 34}},
      {5154, 5201, {0, 47}},
      {5202, 5270, {50, 118}},
      {5271, 5273, {0, 2}},
      {5274, 5279, {0, 5}},
      {5296, 5298, {0, 2}},
      {5299, 5300, {-2, -1}},
      {5301, 5303, {0, 2}},
      {5304, 5311, {0, 7}},
      {5312, 5317, {0, 5}},
      {5343, 5350, {0, 7}},
      {5351, 5358, {0, 7}},
      {5359, 5361, {0, 2}},
      {5280, 5287, {0, 7, 15, 23, 29, 36, 42, 255}},
      {5288, 5295, {0, 1, 3, 4, 5, 6, 7, 255}},
      {5335, 5342, {1, 2, 4, 8, 16, 32, 64, 128}},
      {5318, 5334, {-1, 0, 1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384}},
  };
  std::set<short> seen;
  for (const auto& [first, last, values] : kCases) {
    for (short id = first; id <= last; ++id) {
      SCOPED_TRACE(id);
      const int offset = id - first;
      const bool is_listed = std::ssize(values) == last - first + 1;
      EXPECT_EQ(constant(id), is_listed ? *std::next(values.begin(), offset) : values[0] + offset);
      seen.insert(id);
    }
    EXPECT_EQ(constant(last), values.back());
  }
  EXPECT_EQ(seen.size(), 362);
  EXPECT_EQ(constant(4999), 4999);
  EXPECT_EQ(constant(5362), 5362);
}

TEST(GeneralFunctions, LeaveTheErrorAlone) {
  EXPECT_EQ(calls::call("XL_Book_SheetCount", {0}).code, -1);
  EXPECT_EQ(calls::call("XL_Version", {}).text(), VORNELIX_VERSION);
  int parts[3] = {};
  std::sscanf(VORNELIX_VERSION, "%d.%d.%d", &parts[0], &parts[1], &parts[2]);
  char digits[16] = {};
  std::snprintf(digits, sizeof digits, "%02d%02d%02d01", parts[0], parts[1], parts[2]);
  EXPECT_EQ(calls::call("XL_VersionAutoUpdate", {}).text(), digits);
  EXPECT_EQ(calls::call("XL_GetLastError", {}).text(), "10");
  EXPECT_EQ(calls::call("XL_GetLastError", {}).text(), "10");
  EXPECT_EQ(calls::call("XL_GetLastErrorMessage", {}).text(), "Book object  #0 not found");
  // A constant does run the frame; the message survives it.
  EXPECT_EQ(constant(5000), 8);
  EXPECT_EQ(calls::call("XL_GetLastError", {}).text(), "0");
  EXPECT_EQ(calls::call("XL_GetLastErrorMessage", {}).text(), "Book object  #0 not found");
}

}  // namespace

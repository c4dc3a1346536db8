// Memory that runs out at the n-th allocation of a call, for every n.
#include <gtest/gtest.h>

#include "tests/support/calls.h"
#include "tests/support/handles.h"
#include "tests/support/short_memory.h"

namespace {

struct Case {
  const char* function;
  std::vector<calls::Argument> arguments;
  // What the call ends with when memory suffices.
  short last_error;
};

// Once memory has run out it stays short until the call is over. A text that could not be read
// counts as empty, so a call may also succeed.
TEST(Allocation, FailsWithItsCodeAndNothingElse) {
  fakes::Workbook workbook;
  const Case kCases[] = {
      {"XL_Book_AddSheet", {u"a name that is longer than what a text holds in itself"}, 0},
      {"XL_Book_GetSheetName", {0}, 0},
      {"XL_Book_DateUnpack", {1}, 0},
      {"XL_Book_SaveRaw", {u"a file name that is long enough.xlsx"}, 0},
      {"XL_Book_LoadRaw", {calls::container({{"FILE", "bytes"}})}, 0},
      {"XL_Sheet_CellFormat", {0, 0}, 0},
      {"XL_Sheet_WriteStr", {0, 0, u"a text that is longer than what it holds in itself"}, 0},
      {"XL_Sheet_ReadFormula", {0, 0}, 0},
      {"XL_Sheet_WriteNum", {0, 0, 1, 5e8}, 10},
      {"XL_Sheet_WriteNum", {0, 0, 1, 1}, -2},
  };
  set_object(0, "Font", nullptr);
  for (const auto& [function, arguments, last_error] : kCases) {
    SCOPED_TRACE(testing::Message() << function << " " << last_error);
    for (long allowed = 0;; ++allowed) {
      SCOPED_TRACE(allowed);
      workbook.scenario.heard.clear();
      workbook.scenario.heard.shrink_to_fit();
      g_last_error_message.clear();
      g_last_error_message.shrink_to_fit();
      const calls::Handles handles(workbook);
      std::vector<calls::Argument> all = {handles.of_class(calls::class_of(function))};
      all.insert(all.end(), arguments.begin(), arguments.end());
      const devhost::ValueList params = calls::parameters(all);
      const bind::Row& row = calls::find(function);
      const devhost::EnvironmentObject environment;
      devhost::Value result;

      bool struck = false;
      short code = 0;
      {
        const short_memory::Shortage shortage(allowed, short_memory::Failing::kOnward, struck);
        code = row.function(row.id, environment, params, result);
      }
      EXPECT_TRUE(g_last_error == 0 || g_last_error == 7 || g_last_error == last_error)
          << g_last_error;
      EXPECT_EQ(code, g_last_error == 0 ? 0 : -1);
      if (!struck) {
        EXPECT_EQ(g_last_error, last_error);
        break;
      }
      ASSERT_LT(allowed, 1000);
      // The book can still be released, with all that was registered under it.
      release_objects(handles.book);
      EXPECT_FALSE(is_object(handles.book, "Book"));
    }
  }
}

}  // namespace

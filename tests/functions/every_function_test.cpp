// What holds for each function of a class, whatever it does.
#include <gtest/gtest.h>

#include <cctype>
#include <set>

#include "host/function_table.h"
#include "tests/support/calls.h"
#include "tests/support/handles.h"

namespace {

using calls::call;
using calls::class_of;
using calls::Handles;

// "readNum" of "XL_Sheet_ReadNum".
std::string method_of(std::string_view function) {
  std::string method(function.substr(function.rfind('_') + 1));
  method[0] = static_cast<char>(std::tolower(method[0]));
  return method;
}

std::vector<calls::Argument> with_zeros(long handle, int count) {
  std::vector<calls::Argument> arguments = {handle};
  arguments.resize(static_cast<std::size_t>(count), 0);
  return arguments;
}

class EveryFunction : public testing::Test {
 protected:
  template <class Check>
  void for_each_row(Check check) {
    for (const bind::Row& row : function_table()) {
      if (class_of(row.name).empty()) continue;
      SCOPED_TRACE(row.name);
      workbook_.scenario.heard.clear();
      check(row, class_of(row.name));
    }
  }

  fakes::Workbook workbook_;
};

TEST_F(EveryFunction, CallsTheMethodOfItsName) {
  // ReadCell is named after what it is for; the others have no place in the list of what was heard.
  const std::set<std::string> kOthers = {"XL_Sheet_ReadCell", "XL_Book_ErrorMessage",
                                         "XL_Book_Release"};
  for_each_row([&](const bind::Row& row, const std::string& type) {
    if (kOthers.contains(row.name)) return;
    for (const int count : {row.min, row.max}) {
      workbook_.scenario.heard.clear();
      const auto outcome = call(row, with_zeros(Handles(workbook_).of_class(type), count));
      EXPECT_EQ(outcome.code, 0);
      ASSERT_EQ(workbook_.scenario.heard.size(), 1);
      const std::string& heard = workbook_.scenario.heard[0];
      EXPECT_EQ(heard.substr(0, heard.find(' ')), method_of(row.name));
    }
  });
}

TEST_F(EveryFunction, MissesItsObject) {
  for_each_row([&](const bind::Row& row, const std::string& type) {
    g_last_error_message.clear();
    auto outcome = call(row, with_zeros(0, row.min));
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, 10);
    EXPECT_EQ(outcome.message, type + " object  #0 not found");

    const Handles handles(workbook_);
    const bool is_book = type == "Book";
    outcome = call(row, with_zeros(is_book ? handles.sheet : handles.book, row.min));
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, -2);
    EXPECT_EQ(outcome.message, type + " expected. Found " + (is_book ? "Sheet" : "Book"));

    outcome = call(row, with_zeros(987654321, row.min));
    EXPECT_EQ(outcome.last_error, 10);
    EXPECT_EQ(outcome.message, type + " object  #987654321 not found");
    EXPECT_TRUE(workbook_.scenario.heard.empty());
  });
}

TEST_F(EveryFunction, TellsTheLibrarysFailureAndStoresNothing) {
  const std::set<std::string> kNeverAsk = {"XL_Book_ErrorMessage", "XL_Book_Release"};
  workbook_.scenario.message = "row 1048576 is out of range 0..1048575";
  for_each_row([&](const bind::Row& row, const std::string& type) {
    if (kNeverAsk.contains(row.name)) return;
    const long handle = Handles(workbook_).of_class(type);
    const auto outcome = call(row, with_zeros(handle, row.min));
    const bool reads_cell = std::string(row.name) == "XL_Sheet_ReadCell";
    EXPECT_EQ(outcome.code, -1);
    EXPECT_EQ(outcome.last_error, reads_cell ? 10300 : 1);
    EXPECT_EQ(outcome.message.substr(0, 38), workbook_.scenario.message);
    EXPECT_TRUE(outcome.value.is_empty());
  });
}

}  // namespace

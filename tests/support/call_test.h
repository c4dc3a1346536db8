// A fixture for tables of calls.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/calls.h"
#include "tests/support/handles.h"

namespace calls {

class CallTest : public testing::Test {
 protected:
  // The arguments follow the handle. What the library heard, operations between semicolons, and
  // what the host got; "#Sheet" stands for a fresh handle of a sheet.
  struct CallCase {
    std::string function;
    std::vector<Argument> arguments;
    std::string heard;
    std::string result;
  };

  void check(const CallCase& expected) {
    SCOPED_TRACE(testing::Message() << expected.function << " " << expected.arguments.size());
    const Handles handles(workbook_);
    const std::string type = class_of(expected.function);
    std::vector<Argument> arguments;
    if (!type.empty()) arguments.emplace_back(handles.of_class(type));
    arguments.insert(arguments.end(), expected.arguments.begin(), expected.arguments.end());
    workbook_.scenario.heard.clear();
    const Outcome outcome = call(expected.function, arguments);
    EXPECT_EQ(outcome.code, 0);
    std::string heard;
    for (const std::string& operation : workbook_.scenario.heard)
      heard += (heard.empty() ? "" : "; ") + operation;
    EXPECT_EQ(heard, expected.heard);
    if (expected.result.starts_with('#')) {
      EXPECT_GT(outcome.number(), static_cast<double>(handles.column));
      EXPECT_TRUE(is_object(static_cast<long>(outcome.number()), expected.result.substr(1)));
    } else {
      EXPECT_EQ(outcome.text(), expected.result);
    }
  }

  fakes::Workbook workbook_;
};

}  // namespace calls

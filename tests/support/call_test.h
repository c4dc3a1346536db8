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
  // The arguments follow the handle. What the library heard and what the host got; "#" stands for
  // a fresh handle.
  struct CallCase {
    const char* function;
    std::vector<Argument> arguments;
    const char* heard;
    const char* result;
  };

  void check(const CallCase& expected) {
    SCOPED_TRACE(testing::Message() << expected.function << " " << expected.arguments.size());
    const Handles handles(workbook_);
    std::vector<Argument> arguments = {handles.of_class(class_of(expected.function))};
    arguments.insert(arguments.end(), expected.arguments.begin(), expected.arguments.end());
    workbook_.scenario.heard.clear();
    const Outcome outcome = call(expected.function, arguments);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(workbook_.scenario.heard, std::vector<std::string>{expected.heard});
    if (std::string(expected.result) == "#") {
      EXPECT_GT(outcome.number(), static_cast<double>(handles.column));
    } else {
      EXPECT_EQ(outcome.text(), expected.result);
    }
  }

  fakes::Workbook workbook_;
};

}  // namespace calls

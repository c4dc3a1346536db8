#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "tests/support/calls.h"

namespace {

TEST(ErrorState, TheFirstFailureOfACallWins) {
  struct Case {
    short before;
    short code;
    bool keep;
    short returned;
    short after;
  };
  constexpr Case kCases[] = {
      {0, 0, false, 0, 0},    {0, 10, false, -1, 10}, {10, 0, false, -1, 10},
      {10, 7, false, -1, 10}, {10, 7, true, 7, 7},    {10, 0, true, 0, 0},
  };
  for (const auto& [before, code, keep, returned, after] : kCases) {
    SCOPED_TRACE(testing::Message() << before << " " << code << " " << keep);
    g_last_error = before;
    EXPECT_EQ(MapError(code, keep), returned);
    EXPECT_EQ(g_last_error, after);
  }
}

short succeed(const fmx::DataVect&, fmx::Data&) { return 0; }
short fail(const fmx::DataVect&, fmx::Data&) { return 10300; }
short throw_own(const fmx::DataVect&, fmx::Data&) { throw KelPlugin_Exception(-2, "own"); }
short throw_memory(const fmx::DataVect&, fmx::Data&) { throw std::bad_alloc(); }
short throw_other(const fmx::DataVect&, fmx::Data&) { throw std::out_of_range("other"); }
short leave_error(const fmx::DataVect&, fmx::Data&) {
  g_last_error = 10;
  return 0;
}

TEST(Frame, MapsEveryFailure) {
  struct Case {
    bind::Row row;
    short code;
    short last_error;
    const char* message;
  };
  constexpr Case kCases[] = {
      {bind::row<succeed>(1, "succeeds", 0, 0), 0, 0, "old"},
      {bind::row<fail>(1, "fails", 0, 0), -1, 10300, "old"},
      {bind::row<throw_own>(1, "throws its own", 0, 0), -1, -2, "own"},
      {bind::row<throw_memory>(1, "runs out of memory", 0, 0), -1, 7, "old"},
      {bind::row<throw_other>(1, "throws another", 0, 0), -1, -1, "old"},
      {bind::row<leave_error>(1, "leaves an error", 0, 0), -1, 10, "old"},
  };
  for (const auto& [row, code, last_error, message] : kCases) {
    SCOPED_TRACE(row.name);
    g_last_error = 5;
    g_last_error_message = "old";
    const calls::Outcome outcome = calls::call(row, {});
    EXPECT_EQ(outcome.code, code);
    EXPECT_EQ(outcome.last_error, last_error);
    EXPECT_EQ(outcome.message, message);
  }
}

TEST(Fields, ArePlain) {
  int object = 0;
  Fields fields;
  fields.add(L"a");
  fields.add(static_cast<const wchar_t*>(nullptr));
  fields.add(-1234567);
  fields.add(true);
  fields.add(libxl::ErrorNone);
  for (const double value : {0.5, 1234567.0, 1e-7, 100000.0, -2.0}) fields.add(value);
  fields.add(static_cast<const void*>(nullptr));
  EXPECT_EQ(fields.text(), L"a\r\r-1234567\r1\r255\r0.5\r1.23457e+06\r1e-07\r100000\r-2\r0");

  Fields address;
  address.add_empty();
  address.add(&object);
  EXPECT_EQ(address.text().substr(0, 3), L"\r0x");
  EXPECT_EQ(std::stoull(address.text().substr(1), nullptr, 16),
            reinterpret_cast<std::uintptr_t>(&object));
}

}  // namespace

#include <gtest/gtest.h>

#include "engine/workbook/workbook.h"

namespace engine {
namespace {

// A sheet that was found before is looked for where it stood, which must not be believed.
TEST(FindSheet, FollowsNamesAndPlaces) {
  Workbook book{Limits()};
  for (int number = 0; number < 20; ++number) {
    book.sheets.push_back(std::make_unique<Sheet>());
    book.sheets.back()->name = "Sheet" + std::to_string(number);
  }
  Sheet* const sheet15 = book.sheets[15].get();
  EXPECT_EQ(book.find_sheet("SHEET15"), sheet15);
  EXPECT_EQ(book.find_sheet("sheet15"), sheet15);
  std::swap(book.sheets[15], book.sheets[3]);
  EXPECT_EQ(book.find_sheet("SHEET15"), sheet15);
  std::swap(book.sheets[15], book.sheets[3]);
  EXPECT_EQ(book.find_sheet("SHEET15"), sheet15);
  sheet15->name = "Other";
  EXPECT_EQ(book.find_sheet("SHEET15"), nullptr);
  EXPECT_EQ(book.find_sheet("other"), sheet15);
  book.sheets.resize(15);
  EXPECT_EQ(book.find_sheet("other"), nullptr);
}

}  // namespace
}  // namespace engine

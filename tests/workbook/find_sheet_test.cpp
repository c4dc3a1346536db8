#include <gtest/gtest.h>

#include "engine/workbook/workbook.h"

namespace engine {
namespace {

TEST(FindSheet, FollowsNamesAndPlaces) {
  Workbook book{Limits()};
  for (int number = 0; number < 20; ++number)
    book.add_sheet(std::make_unique<Sheet>("Größe" + std::to_string(number)));
  Sheet* const sheet15 = book.sheets()[15].get();
  EXPECT_EQ(book.find_sheet("GRÖSSE15"), nullptr);
  EXPECT_EQ(book.find_sheet("GRÖßE15"), sheet15);
  book.move_sheet(15, 3);
  EXPECT_EQ(book.find_sheet("größe15"), sheet15);
  book.rename_sheet(*sheet15, "Other", "other");
  EXPECT_EQ(book.find_sheet("größe15"), nullptr);
  EXPECT_EQ(book.find_sheet("other"), sheet15);
  const auto removed = book.remove_sheet(3);
  EXPECT_EQ(removed->name(), "Other");
  EXPECT_EQ(book.find_sheet("other"), nullptr);
}

// A damaged file may have several of one name.
TEST(FindSheet, TakesTheFirstOfOneName) {
  Workbook book{Limits()};
  for (const char* name : {"a", "Twice", "TWICE"}) book.add_sheet(std::make_unique<Sheet>(name));
  Sheet* const second = book.sheets()[2].get();
  EXPECT_EQ(book.find_sheet("twice"), book.sheets()[1].get());
  book.remove_sheet(1);
  EXPECT_EQ(book.find_sheet("twice"), second);
  book.rename_sheet(*second, "a", "a");
  EXPECT_EQ(book.find_sheet("a"), book.sheets()[0].get());
  EXPECT_EQ(book.find_sheet("twice"), nullptr);
}

}  // namespace
}  // namespace engine

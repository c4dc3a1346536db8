#include "engine/workbook/sheet.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace engine {
namespace {

CellRecord formula(std::string_view text) {
  CellRecord record;
  record.formula = text;
  return record;
}

std::string formula_at(const SheetContents& sheet, int row) {
  const Cell* cell = sheet.cells.find(row, 0);
  const CellRecord* record = cell ? sheet.record(*cell) : nullptr;
  return record ? std::string(record->formula) : "none";
}

TEST(SheetContents, ACopyOutlivesAndLeavesTheOriginal) {
  auto original = std::make_optional<SheetContents>();
  for (int row = 0; row < 600; ++row)
    original->put_record(row, 0, formula("A1+" + std::to_string(row)), {});
  CellRecord with_extra = formula("SUM(A1:A2)");
  CellExtra extra;
  extra.details = " cm=\"1\"";
  with_extra.extra = original->keep_extra(extra);
  original->put_record(600, 0, with_extra, {});

  SheetContents copy = *original;
  copy.put_record(1, 0, formula("changed"), {});
  copy.put_value(2, 0, Value::of_number(1), {});
  copy.put_record(600, 0, formula("plain"), {});
  EXPECT_EQ(formula_at(*original, 1), "A1+1");
  EXPECT_EQ(formula_at(*original, 2), "A1+2");
  EXPECT_EQ(original->extra(*original->record(*original->cells.find(600, 0)))->details,
            extra.details);

  original->put_record(3, 0, formula("of the original"), {});
  original.reset();
  EXPECT_EQ(formula_at(copy, 1), "changed");
  EXPECT_EQ(formula_at(copy, 2), "none");
  EXPECT_EQ(formula_at(copy, 3), "A1+3");
  EXPECT_EQ(formula_at(copy, 599), "A1+599");
  EXPECT_EQ(copy.extra(*copy.record(*copy.cells.find(600, 0))), nullptr);
}

#ifdef __GLIBC__

std::size_t allocated() {
  const struct mallinfo2 state = mallinfo2();
  return state.uordblks + state.hblkhd;
}

// However often formulas are written anew, in one way or the other, memory holds the present ones.
TEST(SheetContents, TextsThatNothingUsesGo) {
  SheetContents sheet;
  for (int row = 0; row < 100; ++row) sheet.put_record(row, 0, formula(std::to_string(row)), {});
  const std::size_t before = allocated();
  const std::string text(200, '1');
  for (int round = 0; round < 100000; ++round) {
    const std::string number = std::to_string(round);
    sheet.put_record(50, 0, formula(text + number), {});
    sheet.put_value(51, 0, Value::of_number(round), {});
    sheet.put_record(51, 0, formula(text + number), {});
    sheet.drop_unused_texts();
    sheet.set_formula(*sheet.record(*sheet.cells.find(52, 0)), sheet.keep_text(text + number));
  }
  EXPECT_LT(allocated(), before + 1000000);
  for (const int row : {50, 51, 52}) EXPECT_EQ(formula_at(sheet, row), text + "99999");
  EXPECT_EQ(formula_at(sheet, 49), "49");
}

#endif

}  // namespace
}  // namespace engine

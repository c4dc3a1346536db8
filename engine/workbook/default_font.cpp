#include "engine/workbook/default_font.h"

#include <algorithm>
#include <utility>

#include "engine/workbook/font_metrics.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/sheet_operations.h"

namespace engine {

namespace {

bool states_widths(const SheetContents& sheet) {
  return sheet.default_column_width ||
         std::ranges::any_of(sheet.columns, [](const auto& one) { return one.width.has_value(); });
}

// Needs no memory: what is stated anew takes the place of what it was.
void restate_widths(Sheet& sheet, int digit) noexcept {
  const int former = sheet.contents().digit_pixels;
  if (former == digit) return;
  if (!states_widths(sheet.contents())) {
    sheet.set_digit_pixels(digit);
    return;
  }
  SheetContents& contents = sheet.change();
  contents.digit_pixels = digit;
  const auto restate = [&](std::optional<double>& width) {
    if (width) width = restated_width(*width, former, digit);
  };
  restate(contents.default_column_width);
  contents.columns.change_all([&](ColumnProperties& one) { restate(one.width); });
}

}  // namespace

void change_default_font(Workbook& book, Document& document, FontChange change) {
  FontRecord next = book.styles.font(0);
  unsigned aspects = 0;
  if (change.name) {
    next.name = std::move(*change.name);
    aspects |= kFontName;
  }
  if (change.size) {
    next.size = *change.size;
    aspects |= kFontSize;
  }
  const int digit = digit_pixels(next);
  const bool is_other_digit = digit != digit_pixels(book.styles.font(0));
  if (is_other_digit) read_all_sheets(book, document);
  FontRecord& font = book.styles.change_font(0, aspects);
  font.name = std::move(next.name);
  font.size = next.size;
  if (!is_other_digit) return;
  for (const auto& sheet : book.sheets()) restate_widths(*sheet, digit);
}

}  // namespace engine

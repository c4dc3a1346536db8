#include "engine/workbook/display.h"

#include <cmath>
#include <cstdint>
#include <utility>

#include "engine/workbook/display_date.h"
#include "engine/workbook/display_decimal.h"
#include "engine/workbook/number_format.h"
#include "engine/workbook/number_sections.h"
#include "engine/workbook/number_tokens.h"

namespace engine {

namespace {

constexpr std::uint32_t kShortDate = 14;  // the id of the format that a country's dates have

// Sections for negative numbers alone leave the sign to the code.
bool shows_sign(const Sections& sections, const Section& section) {
  if (section.condition) return section.condition->greater || section.condition->limit > 0;
  return &section != &sections.list[1];
}

}  // namespace

std::string display_number(double number, std::string_view code, bool date1904) {
  const Sections sections = sections_of(code.empty() ? "General" : code);
  const Section& section = sections.for_value(number);
  NumberTokens tokens = tokens_of(section);
  if (section.is_date) return date_text(std::move(tokens), number, date1904);
  std::string text = decimal_text(tokens, std::abs(number));
  const bool shows_digits = text.find_first_of("123456789") != std::string::npos;
  if (number < 0 && shows_sign(sections, section) && shows_digits) text.insert(0, "-");
  return text;
}

std::string display_text(std::string_view text, std::string_view code) {
  const Sections sections = sections_of(code);
  const Section* section = sections.for_text();
  if (!section) return std::string(text);
  std::string out;
  for (const NumberToken& token : tokens_of(*section)) {
    if (token.kind == TokenKind::kText) out.append(text);
    else append_literal(out, token);
  }
  return out;
}

std::string display(const Workbook& book, const SheetContents& sheet, const Cell& cell) {
  const Value value = sheet.value(cell);
  const std::uint32_t format = book.styles.format(cell.style).number_format;
  std::string_view code = book.styles.code_of(format);
  if (code.empty() && is_built_in_date(format)) code = built_in_number_format(kShortDate);
  switch (value.kind) {
    case ValueKind::kNumber:
      return display_number(value.number, code, book.date1904);
    case ValueKind::kText:
      return display_text(book.strings[value.text()], code);
    case ValueKind::kBoolean:
      return value.boolean() ? "TRUE" : "FALSE";
    case ValueKind::kError:
      return std::string(error_text(book, value.error()));
    default:
      return {};
  }
}

}  // namespace engine

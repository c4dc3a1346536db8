// Operations of a sheet that write cells.
#include <cmath>

#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/formula/formula.h"
#include "engine/formula/plain_formula.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"

namespace engine::api {

namespace {

constexpr int kMaxPixels = 32767;

}  // namespace

bool SheetObject::put(int row, int column, Value value, Style style) {
  sheet_->change([&](SheetContents& contents) { contents.put_value(row, column, value, style); });
  book_.contents().values_changed = true;
  return true;
}

bool SheetObject::put_formula(int row, int column, std::string_view formula, Value value,
                              Style style) {
  CellRecord record;
  record.value = value;
  record.formula = formula;
  sheet_->change([&](SheetContents& contents) { contents.put_record(row, column, record, style); });
  book_.contents().formulas_possible = true;
  book_.contents().values_changed = true;
  return true;
}

bool SheetObject::take_text(const wchar_t* value, std::string_view what, std::size_t limit) {
  to_utf8(value, text_);
  normalize_line_ends(text_);
  if (text_.size() <= limit) return true;  // no text has more UTF-16 units than bytes
  const std::size_t length = utf16_length(text_);
  return length <= limit || book_.refuse(false, messages::too_long(what, length, limit));
}

void SheetObject::setCellFormat(int row, int column, libxl::Format* format) {
  run([&] {
    Style style;
    if (!check_cell(row, column) || !check_format(format, &style)) return;
    if (!check_loaded(row)) return;
    if (!style && !contents().cells.find(row, column)) return;
    sheet_->change(
        [&](SheetContents& contents) { contents.put_style(row, column, style.value_or(0)); });
  });
}

bool SheetObject::writeStr(int row, int column, const wchar_t* value, libxl::Format* format,
                           libxl::CellType type) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column) || !take_text(value, "text", limits().text)) return false;
    if (!check_format(format, &style)) return false;
    if (type != libxl::CellText) return book_.refuse(false, messages::unknown("cell type", type));
    if (!check_writable(row, column)) return false;
    if (text_.empty()) return put(row, column, Value(), style);
    return put(row, column, Value::of_text(book_.workbook().strings.add(text_)), style);
  });
}

bool SheetObject::writeNum(int row, int column, double value, libxl::Format* format) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column)) return false;
    if (!std::isfinite(value)) return book_.refuse(false, messages::not_finite("number"));
    return check_write(row, column, format, &style) &&
           put(row, column, Value::of_number(value), style);
  });
}

bool SheetObject::writeBool(int row, int column, bool value, libxl::Format* format,
                            libxl::ErrorType error) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column) || !check_format(format, &style)) return false;
    Value written = Value::of_boolean(value);
    if (error != libxl::ErrorNone) {
      if (!check_error(error)) return false;
      written = Value::of_error(static_cast<std::uint32_t>(error));
    }
    return check_writable(row, column) && put(row, column, written, style);
  });
}

bool SheetObject::check_error(int error) const {
  return is_classic_error(error) || book_.refuse(false, messages::unknown("error code", error));
}

void SheetObject::writeError(int row, int column, libxl::ErrorType error, libxl::Format* format) {
  run([&] {
    Style style;
    if (!check_cell(row, column) || !check_error(error)) return;
    if (!check_write(row, column, format, &style)) return;
    put(row, column, Value::of_error(static_cast<std::uint32_t>(error)), style);
  });
}

bool SheetObject::writeBlank(int row, int column, libxl::Format* format) {
  return run(false, [&] {
    Style style;
    return check_cell(row, column) && check_write(row, column, format, &style) &&
           put(row, column, Value(), style);
  });
}

formula::ParseOptions SheetObject::formula_options(int row, int column) const {
  const Workbook& workbook = book_.workbook();
  formula::ParseOptions options(workbook.limits.grid);
  options.notation = workbook.r1c1 ? formula::Notation::kR1C1 : formula::Notation::kA1;
  options.base = {row, column};
  options.max_arguments = workbook.limits.arguments;
  options.later_forms = workbook.limits.later_formulas;
  return options;
}

// Formulas. Those that are written have to parse, whatever was loaded.
std::optional<std::string_view> SheetObject::take_formula(int row, int column,
                                                          const wchar_t* expr) {
  to_utf8(expr, text_);
  return take_formula(row, column);
}

std::optional<std::string_view> SheetObject::take_formula(int row, int column) {
  const auto refuse = [&](std::string text) {
    book_.refuse(std::move(text));
    return std::nullopt;
  };
  Workbook& workbook = book_.workbook();
  if (text_.starts_with('=')) text_.erase(0, 1);
  if (text_.empty()) return refuse(messages::empty("formula"));
  if (text_.starts_with("{=")) return refuse(messages::array_braces());
  const formula::ParseOptions options = formula_options(row, column);
  formula::Formula& formula = book_.formula();
  const auto known = [&](std::string_view name) { return workbook.find_sheet(name) != nullptr; };
  if (formula::is_plain_formula(text_, options, known)) {
    formula.text.swap(text_);
    return formula.text;
  }
  formula::ParseError error;
  if (!formula::parse(formula, text_, options, &error))
    return refuse(messages::formula_error(text_, error, workbook.limits.grid));
  if (const auto unknown = formula::unknown_sheet(formula, known))
    return refuse(messages::formula_unknown_sheet(text_, *unknown));
  if (workbook.r1c1) formula.text = formula::print(formula);
  if (auto shown = book_.document().shown_formula(workbook, formula.text))
    formula.text = *std::move(shown);
  return formula.text;
}

bool SheetObject::writeFormula(int row, int column, const wchar_t* expr, libxl::Format* format) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column)) return false;
    const auto formula = take_formula(row, column, expr);
    return formula && check_write(row, column, format, &style) &&
           put_formula(row, column, *formula, Value(), style);
  });
}

bool SheetObject::writeFormulaNum(int row, int column, const wchar_t* expr, double value,
                                  libxl::Format* format) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column)) return false;
    const auto formula = take_formula(row, column, expr);
    if (!formula) return false;
    if (!std::isfinite(value)) return book_.refuse(false, messages::not_finite("number"));
    return check_write(row, column, format, &style) &&
           put_formula(row, column, *formula, Value::of_number(value), style);
  });
}

bool SheetObject::writeFormulaStr(int row, int column, const wchar_t* expr, const wchar_t* value,
                                  libxl::Format* format) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column)) return false;
    const auto formula = take_formula(row, column, expr);
    if (!formula || !take_text(value, "text", limits().text)) return false;
    if (!check_write(row, column, format, &style)) return false;
    const std::uint32_t text = book_.workbook().strings.add(text_);
    return put_formula(row, column, *formula, Value::of_text(text), style);
  });
}

bool SheetObject::writeFormulaBool(int row, int column, const wchar_t* expr, bool value,
                                   libxl::Format* format) {
  return run(false, [&] {
    Style style;
    if (!check_cell(row, column)) return false;
    const auto formula = take_formula(row, column, expr);
    return formula && check_write(row, column, format, &style) &&
           put_formula(row, column, *formula, Value::of_boolean(value), style);
  });
}

bool SheetObject::check_comments() const {
  if (sheet_->comments_damage.empty()) return true;
  return book_.refuse(false, book_.contents().source + sheet_->comments_damage);
}

bool SheetObject::check_pixels(std::string_view property, int pixels) const {
  return (pixels >= 1 && pixels <= kMaxPixels) ||
         book_.refuse(false, messages::out_of_range(property, pixels, 1, kMaxPixels));
}

void SheetObject::writeComment(int row, int column, const wchar_t* value, const wchar_t* author,
                               int width, int height) {
  run([&] {
    if (!check_cell(row, column) || !take_text(value, "text", limits().text)) return;
    Comment comment;
    comment.text = text_;
    if (!take_text(author, "author", limits().author)) return;
    comment.author = text_;
    if (!check_pixels("comment width", width) || !check_pixels("comment height", height)) return;
    if (!check_loaded(row) || !check_comments()) return;
    comment.width = width;
    comment.height = height;
    sheet_->change([&](SheetContents& contents) {
      contents.comments.insert_or_assign({row, column}, std::move(comment));
    });
  });
}

void SheetObject::removeComment(int row, int column) {
  run([&] {
    if (!check_read(row, column) || !check_comments()) return;
    if (contents().comments.contains({row, column})) sheet_->change().comments.erase({row, column});
  });
}

}  // namespace engine::api

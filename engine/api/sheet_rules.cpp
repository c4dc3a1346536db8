// Operations of a sheet on its data validations and on faults that are not to be marked.
#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/formula/formula.h"
#include "engine/text/number_text.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"
#include "engine/workbook/iso_date.h"

namespace engine::api {

namespace {

constexpr int kAllFaults = 255;
constexpr std::size_t kMaxTitle = 32;
constexpr std::size_t kMaxPrompt = 255;
constexpr std::size_t kMaxError = 224;
constexpr std::size_t kMaxList = 255;

// How many values a rule of the kind has. Other than the kinds that compare, a list and a formula
// take one whatever the operator, which means nothing to them.
std::size_t values_of(const Validation& rule) {
  if (rule.type == ValidationType::kNone) return 0;
  return compares(rule.type) && has_two_limits(rule.comparison) ? 2 : 1;
}

// The text inside of a text constant; nothing when it is none as a whole.
std::optional<std::string> unquoted(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return std::nullopt;
  std::string inner;
  for (std::size_t i = 1; i + 1 < text.size(); ++i) {
    inner.push_back(text[i]);
    if (text[i] != '"') continue;
    if (i + 2 >= text.size() || text[i + 1] != '"') return std::nullopt;
    ++i;
  }
  return inner;
}

std::string text_constant(std::string_view text) {
  std::string made = "\"";
  for (const char c : text) made.append(c == '"' ? 2 : 1, c);
  return made.append("\"");
}

// The number of a day or time that a text says in ISO notation, a blank before the time.
std::optional<double> day_of(std::string text, bool date1904) {
  std::ranges::replace(text, ' ', 'T');
  return parse_iso_date(text, date1904 ? DateBase::k1904 : DateBase::k1900);
}

}  // namespace

// Data validations.

bool SheetObject::begin_validation(int type, int comparison, const CellRange& cells,
                                   Validation& rule) const {
  if (type < libxl::ValidationNone || type > libxl::ValidationCustom)
    return book_.refuse(false, messages::unknown("validation type", type));
  if (comparison < libxl::ValidationBetween || comparison > libxl::ValidationGreaterOrEqual)
    return book_.refuse(false, messages::unknown("validation operator", comparison));
  rule.type = static_cast<ValidationType>(type);
  if (compares(rule.type)) rule.comparison = static_cast<ValidationOperator>(comparison);
  return check_range(cells);
}

// Whether text_ is nothing but a cell, a range or a name that is defined.
bool SheetObject::names_cells(const CellRange& cells) const {
  formula::Formula& formula = book_.formula();
  const formula::ParseOptions options = formula_options(cells.row_first, cells.column_first);
  if (!formula::parse(formula, text_, options) || formula.nodes.size() != 1) return false;
  return formula.nodes[0].kind == formula::NodeKind::kReference ||
         find_name(text_, libxl::ScopeUndefined) != nullptr;
}

bool SheetObject::take_list(Validation& rule, std::size_t number) {
  auto entries = unquoted(text_);
  if (!entries) entries = text_;
  const std::size_t length = utf16_length(*entries);
  if (length > kMaxList)
    return book_.refuse(false, messages::too_long("validation list", length, kMaxList));
  rule.formulas[number] = text_constant(*entries);
  return true;
}

bool SheetObject::take_value(const CellRange& cells, Validation& rule, std::size_t number) {
  normalize_line_ends(text_);
  if (text_.empty() || text_ == "=")
    return book_.refuse(false, messages::empty("validation value"));
  if (!text_.starts_with('=')) {
    if (rule.type == ValidationType::kList && (unquoted(text_) || !names_cells(cells)))
      return take_list(rule, number);
    if (rule.type == ValidationType::kDate || rule.type == ValidationType::kTime)
      if (const auto day = day_of(text_, book_.workbook().date1904)) {
        append_number(rule.formulas[number], *day);
        return true;
      }
  }
  const auto formula = take_formula(cells.row_first, cells.column_first);
  if (formula) rule.formulas[number] = *formula;
  return formula.has_value();
}

bool SheetObject::take_messages(const wchar_t* prompt_title, const wchar_t* prompt,
                                const wchar_t* error_title, const wchar_t* error,
                                Validation& rule) {
  const auto take = [this](const wchar_t* value, std::string_view what, std::size_t limit,
                           std::string& to) {
    if (!take_text(value, what, limit)) return false;
    to = text_;
    return true;
  };
  return take(prompt_title, "prompt title", kMaxTitle, rule.prompt_title) &&
         take(prompt, "prompt", kMaxPrompt, rule.prompt) &&
         take(error_title, "error title", kMaxTitle, rule.error_title) &&
         take(error, "error text", kMaxError, rule.error);
}

void SheetObject::end_validation(int error_style, const CellRange& cells, Validation& rule) {
  if (error_style < libxl::ErrorStyleStop || error_style > libxl::ErrorStyleInformation)
    return book_.refuse(messages::unknown("error style", error_style));
  rule.error_style = static_cast<ValidationErrorStyle>(error_style);
  if (contents().validations.size() >= limits().validations)
    return book_.refuse(messages::too_many("validations", limits().validations));
  sheet_->change([&](SheetContents& contents) {
    contents.validations.put(cells, std::move(rule), limits().grid);
  });
}

void SheetObject::addDataValidation(libxl::DataValidationType type,
                                    libxl::DataValidationOperator op, int rowFirst, int rowLast,
                                    int colFirst, int colLast, const wchar_t* value1,
                                    const wchar_t* value2, bool allowBlank, bool hideDropDown,
                                    bool showInputMessage, bool showErrorMessage,
                                    const wchar_t* promptTitle, const wchar_t* prompt,
                                    const wchar_t* errorTitle, const wchar_t* error,
                                    libxl::DataValidationErrorStyle errorStyle) {
  run([&] {
    const CellRange cells{rowFirst, rowLast, colFirst, colLast};
    const wchar_t* const values[] = {value1, value2};
    Validation rule{.allow_blank = allowBlank,
                    .hide_drop_down = hideDropDown,
                    .show_prompt = showInputMessage,
                    .show_error = showErrorMessage};
    if (!begin_validation(type, op, cells, rule)) return;
    for (std::size_t i = 0; i < values_of(rule); ++i) {
      to_utf8(values[i], text_);
      if (!take_value(cells, rule, i)) return;
    }
    if (!take_messages(promptTitle, prompt, errorTitle, error, rule)) return;
    end_validation(errorStyle, cells, rule);
  });
}

void SheetObject::addDataValidationDouble(
    libxl::DataValidationType type, libxl::DataValidationOperator op, int rowFirst, int rowLast,
    int colFirst, int colLast, double value1, double value2, bool allowBlank, bool hideDropDown,
    bool showInputMessage, bool showErrorMessage, const wchar_t* promptTitle, const wchar_t* prompt,
    const wchar_t* errorTitle, const wchar_t* error, libxl::DataValidationErrorStyle errorStyle) {
  run([&] {
    const CellRange cells{rowFirst, rowLast, colFirst, colLast};
    const double values[] = {value1, value2};
    Validation rule{.allow_blank = allowBlank,
                    .hide_drop_down = hideDropDown,
                    .show_prompt = showInputMessage,
                    .show_error = showErrorMessage};
    if (!begin_validation(type, op, cells, rule)) return;
    for (std::size_t i = 0; i < values_of(rule); ++i) {
      if (!std::isfinite(values[i])) return book_.refuse(messages::not_finite("validation value"));
      text_.clear();
      append_number(text_, values[i]);
      if (!take_value(cells, rule, i)) return;
    }
    if (!take_messages(promptTitle, prompt, errorTitle, error, rule)) return;
    end_validation(errorStyle, cells, rule);
  });
}

void SheetObject::removeDataValidations() {
  run([&] {
    if (!contents().validations.empty()) sheet_->change().validations = {};
  });
}

// Ignored errors.

bool SheetObject::addIgnoredError(int rowFirst, int colFirst, int rowLast, int colLast,
                                  libxl::IgnoredError iError) {
  return run(false, [&] {
    const CellRange cells{rowFirst, rowLast, colFirst, colLast};
    if (!check_range(cells) || !check_value("ignored error", iError, 1, kAllFaults)) return false;
    sheet_->change([&](SheetContents& contents) {
      contents.ignored_errors.put(cells, static_cast<std::uint8_t>(iError));
    });
    return true;
  });
}

}  // namespace engine::api

// External functions for what may be typed into cells and which faults are not to be marked.
#include "functions/enumeration.h"
#include "functions/families.h"

namespace {

using bind::read;
using bind::row;
using libxl::DataValidationErrorStyle;
using libxl::DataValidationOperator;
using libxl::DataValidationType;
using libxl::IgnoredError;
using libxl::Sheet;

// The kind of fault is a handle or a number, which no plain row reads.
short add_ignored_error(const fmx::DataVect& params, fmx::Data& result) {
  const bind::Target<Sheet> sheet(params);
  const int row_first = read<int>(params, 1, 0);
  const int col_first = read<int>(params, 2, 0);
  const int row_last = read<int>(params, 3, 0);
  const int col_last = read<int>(params, 4, 0);
  const auto error = bind::read_enumeration<IgnoredError>(params, 5);
  const bool added = sheet.get().addIgnoredError(row_first, col_first, row_last, col_last, error);
  return bind::store(sheet.handle(), added, result);
}

// Three parameters are handles or numbers, which no plain row reads. The two forms differ in how
// the values are read and passed on.
template <class Value, auto Add>
short add_validation(const fmx::DataVect& params, fmx::Data&) {
  const bind::Target<Sheet> sheet(params);
  const auto type = bind::read_enumeration<DataValidationType>(params, 1);
  const auto comparison = bind::read_enumeration<DataValidationOperator>(params, 2);
  const int row_first = read<int>(params, 3, 0);
  const int row_last = read<int>(params, 4, 0);
  const int col_first = read<int>(params, 5, 0);
  const int col_last = read<int>(params, 6, 0);
  auto value1 = read<Value>(params, 7, 0);
  auto value2 = read<Value>(params, 8, 0);
  const bool allow_blank = read<bool>(params, 9, true);
  const bool hide_drop_down = read<bool>(params, 10, false);
  const bool show_input_message = read<bool>(params, 11, true);
  const bool show_error_message = read<bool>(params, 12, true);
  const std::wstring prompt_title = ParameterAsWideString(params, 13);
  const std::wstring prompt = ParameterAsWideString(params, 14);
  const std::wstring error_title = ParameterAsWideString(params, 15);
  const std::wstring error = ParameterAsWideString(params, 16);
  const auto error_style = bind::read_enumeration<DataValidationErrorStyle>(params, 17);
  (sheet.get().*Add)(type, comparison, row_first, row_last, col_first, col_last,
                     bind::pass<Value>(value1), bind::pass<Value>(value2), allow_blank,
                     hide_drop_down, show_input_message, show_error_message, prompt_title.c_str(),
                     prompt.c_str(), error_title.c_str(), error.c_str(), error_style);
  return set_last_error_message(sheet.handle());
}

constexpr bind::Row kRows[] = {
    row<add_ignored_error>(2239, "XL_Sheet_AddIgnoredError", 6, 6),
    row<add_validation<const wchar_t*, &Sheet::addDataValidation>>(
        2240, "XL_Sheet_AddDataValidation", 10, 18),
    row<add_validation<double, &Sheet::addDataValidationDouble>>(
        2241, "XL_Sheet_AddDataValidationDouble", 10, 18),
    row<&Sheet::removeDataValidations>(2242, "XL_Sheet_RemoveDataValidations"),
};

}  // namespace

std::span<const bind::Row> rule_functions() { return kRows; }

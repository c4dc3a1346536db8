// External functions on a column of a filter: its place and its criterion.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::FilterColumn;

// The kind of criterion goes to the host as the handle of a record that holds it.
bind::Entry<libxl::Filter> filter_type(FilterColumn& column) { return {column.filterType()}; }

// The two readers whose result does not tell whether there is such a criterion. Without one the
// fields are empty values.
Fields get_top10(FilterColumn& column) {
  double value = 0;
  bool top = false;
  bool percent = false;
  column.getTop10(&value, &top, &percent);
  Fields fields;
  fields.add(value);
  fields.add(top);
  fields.add(percent);
  return fields;
}

Fields get_custom_filter(FilterColumn& column) {
  libxl::Operator operators[] = {libxl::OperatorEqual, libxl::OperatorEqual};
  const wchar_t* values[] = {nullptr, nullptr};
  bool both = false;
  column.getCustomFilter(&operators[0], &values[0], &operators[1], &values[1], &both);
  Fields fields;
  for (int i = 0; i < 2; ++i) {
    fields.add(operators[i]);
    fields.add(values[i]);
  }
  fields.add(both);
  return fields;
}

constexpr bind::Row kRows[] = {
    row<&FilterColumn::index>(2251, "XL_FilterColumn_Index"),
    row<filter_type>(2252, "XL_FilterColumn_FilterType"),
    row<&FilterColumn::filterSize>(2253, "XL_FilterColumn_FilterSize"),
    row<&FilterColumn::filter>(2254, "XL_FilterColumn_Filter"),
    row<&FilterColumn::addFilter>(2255, "XL_FilterColumn_AddFilter"),
    row<get_top10>(2256, "XL_FilterColumn_GetTop10"),
    row<&FilterColumn::setTop10, true, false>(2257, "XL_FilterColumn_SetTop10"),
    row<get_custom_filter>(2258, "XL_FilterColumn_GetCustomFilter"),
    row<&FilterColumn::setCustomFilter, libxl::OperatorEqual, nullptr, false>(
        2259, "XL_FilterColumn_SetCustomFilter"),
    row<&FilterColumn::clear>(2260, "XL_FilterColumn_Clear"),
};

}  // namespace

std::span<const bind::Row> filter_column_functions() { return kRows; }

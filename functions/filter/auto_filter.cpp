// External functions on the filter of a sheet: its range, columns and sort.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::AutoFilter;

// Reads nothing where there is no filter, as no other function does.
short set_sort(const fmx::DataVect& params, fmx::Data& result) {
  const bind::Target<AutoFilter> target(params);
  AutoFilter& filter = target.get();
  const int column = bind::read<int>(params, 1, 0);
  const bool descending = bind::read<bool>(params, 2, false);
  return bind::store(target.handle(), filter.setSort(column, descending), result);
}

constexpr bind::Row kRows[] = {
    row<&AutoFilter::getRef>(2243, "XL_AutoFilter_GetRef"),
    row<&AutoFilter::setRef>(2244, "XL_AutoFilter_SetRef"),
    row<&AutoFilter::column>(2245, "XL_AutoFilter_Column"),
    row<&AutoFilter::columnSize>(2246, "XL_AutoFilter_ColumnSize"),
    row<&AutoFilter::columnByIndex>(2247, "XL_AutoFilter_ColumnByIndex"),
    row<&AutoFilter::getSortRange>(2248, "XL_AutoFilter_GetSortRange"),
    row<&AutoFilter::getSort>(2249, "XL_AutoFilter_GetSort"),
    row<set_sort>(2250, "XL_AutoFilter_SetSort", 2, 3),
};

}  // namespace

std::span<const bind::Row> auto_filter_functions() { return kRows; }

// External functions of a sheet on its tables and its filter.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

constexpr bind::Row kRows[] = {
    row<&Sheet::tableSize>(2231, "XL_Sheet_TableSize"),
    row<&Sheet::table>(2232, "XL_Sheet_Table"),
    row<&Sheet::autoFilter>(2233, "XL_Sheet_AutoFilter"),
    row<&Sheet::applyFilter>(2234, "XL_Sheet_ApplyFilter"),
    row<&Sheet::removeFilter>(2235, "XL_Sheet_RemoveFilter"),
};

}  // namespace

std::span<const bind::Row> sheet_filter_functions() { return kRows; }

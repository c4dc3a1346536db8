// External functions that insert and remove rows and columns.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

constexpr bind::Row kRows[] = {
    row<&Sheet::insertRow, true>(1851, "XL_Sheet_InsertRow"),
    row<&Sheet::insertCol, true>(1852, "XL_Sheet_InsertCol"),
    row<&Sheet::removeRow, true>(1853, "XL_Sheet_RemoveRow"),
    row<&Sheet::removeCol, true>(1854, "XL_Sheet_RemoveCol"),
};

}  // namespace

std::span<const bind::Row> moving_functions() { return kRows; }

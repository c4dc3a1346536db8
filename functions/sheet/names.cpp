// External functions for what a sheet and its ranges are called by: the sheet's name, named ranges,
// print titles and areas, hyperlinks, addresses.
#include "functions/families.h"

namespace {

using bind::accepting;
using bind::row;
using libxl::Sheet;

// The scope stands behind outputs, where calculations cannot give it: it is always undefined. The
// two parameters that are accepted mean nothing.
bool get_named_range(Sheet& sheet, const wchar_t* name, int* row_first, int* row_last,
                     int* col_first, int* col_last, bool* hidden) {
  return sheet.getNamedRange(name, row_first, row_last, col_first, col_last, libxl::ScopeUndefined,
                             hidden);
}

constexpr bind::Row kRows[] = {
    row<&Sheet::setPrintRepeatRows>(1894, "XL_Sheet_SetPrintRepeatRows"),
    row<&Sheet::setPrintRepeatCols>(1895, "XL_Sheet_SetPrintRepeatCols"),
    row<&Sheet::setPrintArea>(1896, "XL_Sheet_SetPrintArea"),
    row<&Sheet::clearPrintRepeats>(1897, "XL_Sheet_ClearPrintRepeats"),
    row<&Sheet::clearPrintArea>(1898, "XL_Sheet_ClearPrintArea"),
    accepting(4, row<get_named_range>(1899, "XL_Sheet_GetNamedRange")),
    row<&Sheet::setNamedRange, libxl::ScopeUndefined>(1900, "XL_Sheet_SetNamedRange"),
    row<&Sheet::delNamedRange, libxl::ScopeUndefined>(1901, "XL_Sheet_DelNamedRange"),
    row<&Sheet::namedRangeSize>(1902, "XL_Sheet_NamedRangeSize"),
    accepting(4, row<&Sheet::namedRange>(1903, "XL_Sheet_NamedRange")),
    row<&Sheet::hyperlinkSize>(1904, "XL_Sheet_HyperlinkSize"),
    row<&Sheet::hyperlink>(1905, "XL_Sheet_Hyperlink"),
    row<&Sheet::delHyperlink>(1906, "XL_Sheet_DelHyperlink"),
    row<&Sheet::addHyperlink>(1907, "XL_Sheet_AddHyperlink"),
    row<&Sheet::name>(1908, "XL_Sheet_Name"),
    row<&Sheet::setName>(1909, "XL_Sheet_SetName"),
    accepting(4, row<&Sheet::addrToRowCol>(1918, "XL_Sheet_AddrToRowCol")),
    row<&Sheet::rowColToAddr, true, true>(1919, "XL_Sheet_RowColToAddr"),
    row<&Sheet::printRepeatRows>(2228, "XL_Sheet_PrintRepeatRows"),
    row<&Sheet::printRepeatCols>(2229, "XL_Sheet_PrintRepeatCols"),
    row<&Sheet::printArea>(2230, "XL_Sheet_PrintArea"),
};

}  // namespace

std::span<const bind::Row> name_functions() { return kRows; }

// External functions that shape a sheet: sizes, hidden rows and columns, groups, merged ranges,
// cleared and copied cells, the used range.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

constexpr bind::Row kRows[] = {
    row<&Sheet::colWidth>(1818, "XL_Sheet_ColWidth"),
    row<&Sheet::rowHeight>(1819, "XL_Sheet_RowHeight"),
    row<&Sheet::setCol, nullptr, false>(1820, "XL_Sheet_SetCol"),
    row<&Sheet::setRow, nullptr, false>(1821, "XL_Sheet_SetRow"),
    row<&Sheet::rowHidden>(1822, "XL_Sheet_RowHidden"),
    row<&Sheet::setRowHidden>(1823, "XL_Sheet_SetRowHidden"),
    row<&Sheet::colHidden>(1824, "XL_Sheet_ColHidden"),
    row<&Sheet::setColHidden>(1825, "XL_Sheet_SetColHidden"),
    row<&Sheet::getMerge>(1826, "XL_Sheet_GetMerge"),
    row<&Sheet::setMerge>(1827, "XL_Sheet_SetMerge"),
    row<&Sheet::delMerge>(1828, "XL_Sheet_DelMerge"),
    row<&Sheet::mergeSize>(1829, "XL_Sheet_MergeSize"),
    row<&Sheet::merge>(1830, "XL_Sheet_Merge"),
    row<&Sheet::delMergeByIndex>(1831, "XL_Sheet_DelMergeByIndex"),
    row<&Sheet::groupRows, true>(1844, "XL_Sheet_GroupRows"),
    row<&Sheet::groupCols, true>(1845, "XL_Sheet_GroupCols"),
    row<&Sheet::groupSummaryBelow>(1846, "XL_Sheet_GroupSummaryBelow"),
    row<&Sheet::setGroupSummaryBelow>(1847, "XL_Sheet_SetGroupSummaryBelow"),
    row<&Sheet::groupSummaryRight>(1848, "XL_Sheet_GroupSummaryRight"),
    row<&Sheet::setGroupSummaryRight>(1849, "XL_Sheet_SetGroupSummaryRight"),
    row<&Sheet::clear, 0, 1048575, 0, 16383>(1850, "XL_Sheet_Clear"),
    row<&Sheet::copyCell>(1855, "XL_Sheet_CopyCell"),
    row<&Sheet::firstRow>(1856, "XL_Sheet_FirstRow"),
    row<&Sheet::lastRow>(1857, "XL_Sheet_LastRow"),
    row<&Sheet::firstCol>(1858, "XL_Sheet_FirstCol"),
    row<&Sheet::lastCol>(1859, "XL_Sheet_LastCol"),
    row<&Sheet::setAutoFitArea, 0, 0, -1, -1>(2236, "XL_Sheet_SetAutoFitArea"),
};

}  // namespace

std::span<const bind::Row> shape_functions() { return kRows; }

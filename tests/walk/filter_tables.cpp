// Filters and tables.
#include "tests/walk/walk.h"

namespace walk {

namespace {

// Which of the rows behind the header are hidden.
constexpr const char* kHidden =
    "While ( [ row = 1 ; hidden = \"\" ] ; row < 6 ; [ hidden = hidden & "
    "XL_Sheet_RowHidden ( $sheet ; row ) ; row = row + 1 ] ; hidden )";

constexpr Case kFilterCells[] = {
    {"XL_Sheet_TableSize ( $sheet )", "0", kSame},
    {"XL_Sheet_Table ( $sheet ; 0 )", "? 1 table 0 is out of range: there are none", kSame},
    {"XL_Sheet_ApplyFilter ( $sheet )", "? 1 the sheet has no auto-filter range", kSame},
    {"XL_Sheet_RemoveFilter ( $sheet )", "", kSame},
    {"$rows = \"Name,Number¶apple,10¶pear,20¶plum,30¶Apple,40¶fig,50\"",
     "Name,Number¶apple,10¶pear,20¶plum,30¶Apple,40¶fig,50", kSame},
    {"While ( [ row = 0 ; done = \"\" ] ; row < 6 ; [ fields = Substitute ( GetValue ( $rows ; row "
     "+ 1 ) ; \",\" ; \"¶\" ) ; done = done & XL_Sheet_WriteStr ( $sheet ; row ; 0 ; GetValue ( "
     "fields ; 1 ) ) & If ( row = 0 ; XL_Sheet_WriteStr ( $sheet ; 0 ; 1 ; \"Number\" ) ; "
     "XL_Sheet_WriteNum ( $sheet ; row ; 1 ; GetValue ( fields ; 2 ) ) ) ; row = row + 1 ] ; done "
     ")",
     "111111111111"},
    {"$file = XL_XlCreateXMLBook", "#", nullptr, kXlsx},
    {"XL_Book_Load ( $file ; \"table.xlsx\" )", "1", nullptr, kXlsx},
    {"$of_file = XL_Book_GetSheet ( $file ; 0 )", "#", nullptr, kXlsx},
    {"XL_Sheet_TableSize ( $of_file )", "1", nullptr, kXlsx},
    {"XL_Sheet_Table ( $of_file ; 0 )", "Table1¶1¶4¶1¶2¶1¶1", nullptr, kXlsx},
};

constexpr Case kFilters[] = {
    {"$filter = XL_Sheet_AutoFilter ( $sheet )", "#"},
    {"XL_AutoFilter_GetRef ( XL_Sheet_AutoFilter ( $sheet ) )", "0¶0¶0¶0¶0"},
    {"XL_AutoFilter_Column ( $filter ; 0 )", "? 1 the sheet has no auto-filter range"},
    {"XL_AutoFilter_SetSort ( $filter ; 0 )", "? 1 the sheet has no auto-filter range"},
    {"XL_AutoFilter_SetRef ( $filter ; 5 ; 0 ; 0 ; 1 )", "? 1 first row 5 is after last row 0"},
    {"XL_AutoFilter_SetRef ( $filter ; 0 ; 5 ; 0 ; 1 )", ""},
    {"XL_AutoFilter_GetRef ( $filter )", "1¶0¶5¶0¶1"},
    {"XL_AutoFilter_GetSort ( $filter )", "0¶0¶0"},
    {"XL_AutoFilter_GetSortRange ( $filter )", "0¶0¶0¶0¶0"},
    {"XL_AutoFilter_Column ( $filter ; 2 )", "? 1 filter column 2 is out of range 0..1"},
    {"$names = XL_AutoFilter_Column ( $filter ; 0 )", "#"},
    {"$numbers = XL_AutoFilter_Column ( $filter ; 1 )", "#"},
    {"XL_AutoFilter_Column ( $filter ; 1 )", "#"},
    {"XL_FilterColumn_Index ( $names ) & XL_FilterColumn_Index ( $numbers )", "01"},
    {"XL_AutoFilter_ColumnSize ( $filter )", "0"},
    {"XL_FilterColumn_FilterSize ( $names )", "0"},
    {"XL_FilterColumn_FilterType ( $names )", "#"},
    {"XL_FilterColumn_FilterType ( $names )", "#"},
    // Values.
    {"XL_FilterColumn_AddFilter ( $names ; \"pear\" )", ""},
    {"XL_FilterColumn_AddFilter ( $names ; \"apple\" )", ""},
    {"XL_FilterColumn_AddFilter ( $names ; \"pear\" )", ""},
    {"XL_FilterColumn_FilterSize ( $names )", "2"},
    {"XL_FilterColumn_Filter ( $names ; 1 )", "apple"},
    {"XL_FilterColumn_Filter ( $names ; 2 )", "? 1 filter value 2 is out of range 0..1"},
    {"XL_AutoFilter_ColumnSize ( $filter )", "1"},
    {"XL_FilterColumn_Index ( XL_AutoFilter_ColumnByIndex ( $filter ; 0 ) )", "0"},
    {"XL_AutoFilter_ColumnByIndex ( $filter ; 1 )", "? 1 filter column 1 is out of range 0..0"},
    {"XL_Sheet_ApplyFilter ( $sheet )", ""},
    {kHidden, "00101"},
    // The largest ones.
    {"XL_FilterColumn_Clear ( $names )", ""},
    {"XL_FilterColumn_FilterSize ( $names )", "0"},
    {"XL_FilterColumn_SetTop10 ( $numbers ; 2 )", ""},
    {"XL_FilterColumn_SetTop10 ( $numbers ; 501 )", "? 1 top 10 value 501 is out of range 1..500"},
    {"XL_FilterColumn_GetTop10 ( $numbers )", "2¶1¶0"},
    {"XL_Sheet_ApplyFilter ( $sheet )", ""},
    {kHidden, "11100"},
    {"XL_FilterColumn_SetTop10 ( $numbers ; 40 ; 0 ; 1 )", ""},
    {"XL_FilterColumn_GetTop10 ( $numbers )", "40¶0¶1"},
    {"XL_Sheet_ApplyFilter ( $sheet )", ""},
    {kHidden, "00111"},
    // Comparisons.
    {"XL_FilterColumn_SetCustomFilter ( $numbers ; XL_OperatorGreater ; \"15\" ; "
     "XL_OperatorLessOrEqual ; \"40\" ; 1 )",
     ""},
    {"XL_FilterColumn_SetCustomFilter ( $numbers ; 6 ; \"15\" )",
     "? 1 filter operator 6 is not known"},
    {"XL_FilterColumn_GetCustomFilter ( $numbers )", "5¶15¶2¶40¶1"},
    {"XL_FilterColumn_GetTop10 ( $numbers )", "0¶0¶0"},
    {"XL_Sheet_ApplyFilter ( $sheet )", ""},
    {kHidden, "10001"},
    {"XL_FilterColumn_SetCustomFilter ( $names ; XL_OperatorEqual ; \"p*\" )", ""},
    {"XL_FilterColumn_GetCustomFilter ( $names )", "0¶p*¶0¶¶0"},
    {"XL_Sheet_ApplyFilter ( $sheet )", ""},
    {kHidden, "10011"},
    // A sort is noted and moves nothing.
    {"XL_AutoFilter_SetSort ( $filter ; 1 ; 1 )", "1"},
    {"XL_AutoFilter_SetSort ( $filter ; 2 )", "? 1 filter column 2 is out of range 0..1"},
    {"XL_AutoFilter_SetSort ( 0 ; 1 )", "? 10 AutoFilter object  # not found"},
    {"XL_AutoFilter_GetSort ( $filter )", "1¶1¶1"},
    {"XL_AutoFilter_GetSortRange ( $filter )", "1¶1¶5¶0¶1"},
    {"XL_Sheet_ReadStr ( $sheet ; 1 ; 0 )", "apple"},
    {"XL_Sheet_RemoveFilter ( $sheet )", ""},
    {kHidden, "00000"},
    {"XL_AutoFilter_GetRef ( $filter )", "0¶0¶0¶0¶0"},
    {"XL_FilterColumn_Index ( $names )", "? 1 the filter column is no longer in the book"},
    {"XL_FilterColumn_Index ( $filter )", "? -2 FilterColumn expected. Found AutoFilter"},
};

}  // namespace

Group filters_and_tables() { return {"filters and tables", kFilterCells, kFilters}; }

}  // namespace walk

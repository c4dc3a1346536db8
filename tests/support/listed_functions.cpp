#include "tests/support/listed_functions.h"

#include <sstream>

namespace {

// Functions of rising ids, each with the parameters that it takes; "." is an id that is not used.
struct Run {
  short first_id;
  const char* prefix;
  const char* functions;
};
constexpr Run kRuns[] = {
    {10, "XL_", "Version 0"},
    {20, "XL_", "VersionAutoUpdate 0"},
    {30, "XL_", "GetLastErrorMessage 0"},
    {40, "XL_", "GetLastError 0"},
    {1200, "XL_", "XlCreateBook 0"},
    {1400, "XL_", "XlCreateXMLBook 0"},
    {1600, "XL_Book_",
     "Load 2 Save 2 LoadRaw 2 SaveRaw 2 AddSheet 2-3 InsertSheet 3-4 GetSheet 2 SheetType 2 "
     "DelSheet 2 SheetCount 1 AddFormat 1-2 AddFont 1-2 AddCustomNumFormat 2 CustomNumFormat 2 "
     "Format 2 FormatSize 1 Font 2 FontSize 1 DatePack 3-7 DateUnpack 2-6 ColorPack 4 "
     "ColorUnpack 2 ActiveSheet 1 SetActiveSheet 2 PictureSize 1 GetPicture 2-3 AddPicture 2 "
     "AddPicture2 2 DefaultFont 1 SetDefaultFont 3 RgbMode 1 SetRgbMode 1-2 RefR1C1 1 "
     "SetRefR1C1 1-2 BiffVersion 1 IsDate1904 1 SetDate1904 1-2 IsTemplate 1 SetTemplate 1-2 . "
     "SetLocale 2 ErrorMessage 1 Release 1"},
    {1800, "XL_Sheet_",
     "CellType 3 IsFormula 3 CellFormat 3 SetCellFormat 4 ReadStr 3-4 WriteStr 4-5 ReadNum 3-4 "
     "WriteNum 4-5 ReadBool 3-4 WriteBool 4-5 ReadBlank 3-4 WriteBlank 4 ReadFormula 3-4 "
     "WriteFormula 4-5 ReadComment 3 WriteComment 4-7 IsDate 3 ReadError 3 ColWidth 2 RowHeight 2 "
     "SetCol 4-6 SetRow 3-5 RowHidden 2 SetRowHidden 3 ColHidden 2 SetColHidden 3 GetMerge 3 "
     "SetMerge 5 DelMerge 3 MergeSize 1 Merge 2 DelMergeByIndex 2 PictureSize 1 GetPicture 2 "
     "SetPicture 4-8 SetPicture2 4-9 GetHorPageBreak 2 GetHorPageBreakSize 1 GetVerPageBreak 2 "
     "GetVerPageBreakSize 1 SetHorPageBreak 2-3 SetVerPageBreak 2-3 Split 3 SplitInfo 1 "
     "GroupRows 3-4 GroupCols 3-4 GroupSummaryBelow 1 SetGroupSummaryBelow 2 "
     "GroupSummaryRight 1 SetGroupSummaryRight 2 Clear 1-5 InsertRow 3-4 InsertCol 3-4 "
     "RemoveRow 3-4 RemoveCol 3-4 CopyCell 5 FirstRow 1 LastRow 1 FirstCol 1 LastCol 1 "
     "DisplayGridlines 1 SetDisplayGridlines 1-2 PrintGridlines 1 SetPrintGridlines 1-2 Zoom 1 "
     "SetZoom 2 PrintZoom 1 SetPrintZoom 2 Landscape 1 SetLandscape 1-2 GetPrintFit 1 "
     "SetPrintFit 1-3 Paper 1 SetPaper 1-2 Header 1 SetHeader 2-3 HeaderMargin 1 Footer 1 "
     "SetFooter 2-3 FooterMargin 1 HCenter 1 SetHCenter 1-2 VCenter 1 SetVCenter 1-2 "
     "MarginLeft 1 SetMarginLeft 2 MarginRight 1 SetMarginRight 2 MarginTop 1 SetMarginTop 2 "
     "MarginBottom 1 SetMarginBottom 2 PrintRowCol 1 SetPrintRowCol 1-2 SetPrintRepeatRows 3 "
     "SetPrintRepeatCols 3 SetPrintArea 5 ClearPrintRepeats 1 ClearPrintArea 1 GetNamedRange 2-4 "
     "SetNamedRange 6-7 DelNamedRange 2-3 NamedRangeSize 1 NamedRange 2-4 HyperlinkSize 1 "
     "Hyperlink 2 DelHyperlink 2 AddHyperlink 6 Name 1 SetName 2 Protect 1 SetProtect 1-4 "
     "RightToLeft 1 SetRightToLeft 1-2 Hidden 1 SetHidden 1-2 GetTopLeftView 1 SetTopLeftView 3 "
     "AddrToRowCol 2-4 RowColToAddr 3-5"},
    {2000, "XL_Format_",
     "Font 1 SetFont 2 NumFormat 1 SetNumFormat 2 AlignH 1 SetAlignH 2 AlignV 1 SetAlignV 2 "
     "Wrap 1 SetWrap 1-2 Rotation 1 SetRotation 2 Indent 1 SetIndent 2 ShrinkToFit 1 "
     "SetShrinkToFit 1-2 SetBorder 1-2 SetBorderColor 2 BorderLeft 1 SetBorderLeft 1-2 "
     "BorderRight 1 SetBorderRight 1-2 BorderTop 1 SetBorderTop 1-2 BorderBottom 1 "
     "SetBorderBottom 1-2 BorderLeftColor 1 SetBorderLeftColor 2 BorderRightColor 1 "
     "SetBorderRightColor 2 BorderTopColor 1 SetBorderTopColor 2 BorderBottomColor 1 "
     "SetBorderBottomColor 2 BorderDiagonal 1 SetBorderDiagonal 2 BorderDiagonalStyle 1 "
     "SetBorderDiagonalStyle 2 BorderDiagonalColor 1 SetBorderDiagonalColor 2 FillPattern 1 "
     "SetFillPattern 2 PatternForegroundColor 1 SetPatternForegroundColor 2 "
     "PatternBackgroundColor 1 SetPatternBackgroundColor 2 Locked 1 SetLocked 1-2 Hidden 1 "
     "SetHidden 1-2"},
    {2200, "XL_Font_",
     "Size 1 SetSize 2 Italic 1 SetItalic 1-2 StrikeOut 1 SetStrikeOut 1-2 Color 1 SetColor 2 "
     "Bold 1 SetBold 1-2 Script 1 SetScript 2 Underline 1 SetUnderline 2 Name 1 SetName 2"},
    {2216, "XL_Book_",
     "LoadSheet 3-4 LoadPartially 5-6 LoadInfo 2 GetSheetName 2 MoveSheet 3 AddPictureAsLink 2-3"},
    {2223, "XL_Sheet_",
     "WriteFormulaNum 5-6 WriteFormulaStr 5-6 WriteFormulaBool 5-6 RemoveComment 3 WriteError 4-5 "
     "PrintRepeatRows 1 PrintRepeatCols 1 PrintArea 1 TableSize 1 Table 2 AutoFilter 1 "
     "ApplyFilter 1 RemoveFilter 1 SetAutoFitArea 1-5 SetTabColor 2-4 . AddIgnoredError 6 "
     "AddDataValidation 10-18 AddDataValidationDouble 10-18 RemoveDataValidations 1"},
    {2243, "XL_AutoFilter_",
     "GetRef 1 SetRef 5 Column 2 ColumnSize 1 ColumnByIndex 2 GetSortRange 1 GetSort 1 SetSort "
     "2-3"},
    {2251, "XL_FilterColumn_",
     "Index 1 FilterType 1 FilterSize 1 Filter 2 AddFilter 2 GetTop10 1 SetTop10 2-4 "
     "GetCustomFilter 1 SetCustomFilter 3-6 Clear 1"},
    {3000, "XL_Sheet_", "ReadCell 3-4"},
};

}  // namespace

std::map<int, std::string> listed_functions() {
  std::map<int, std::string> listed;
  for (const auto& [first_id, prefix, functions] : kRuns) {
    std::istringstream words(functions);
    int id = first_id;
    for (std::string name, counts; words >> name; ++id)
      if (name != "." && words >> counts)
        listed[id].append(prefix).append(name).append(" ").append(counts);
  }
  return listed;
}

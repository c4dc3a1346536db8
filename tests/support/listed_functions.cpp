#include "tests/support/listed_functions.h"

#include <sstream>

namespace {

// Functions of rising ids, each followed by its result; "." is an id that is not used. An argument
// with an equals sign may be omitted.
struct Run {
  short first_id;
  const char* prefix;
  const char* functions;
};
constexpr Run kRuns[] = {
    {10, "XL_", "Version() !"},
    {20, "XL_", "VersionAutoUpdate() !"},
    {30, "XL_", "GetLastErrorMessage() !"},
    {40, "XL_", "GetLastError() !"},
    {1200, "XL_", "XlCreateBook() !"},
    {1400, "XL_", "XlCreateXMLBook() !"},
    {1600, "XL_Book_",
     "Load(t,!-) f Save(t,!0) f LoadRaw(b,!-1,!-1,!-1) f SaveRaw(t) ! AddSheet(t,Sheet=) #Sheet "
     "InsertSheet(i,t,Sheet=) #Sheet GetSheet(i) #Sheet SheetType(i) e DelSheet(i) f "
     "SheetCount() i AddFormat(Format=) #Format AddFont(Font=) #Font AddCustomNumFormat(t) i "
     "CustomNumFormat(i) t Format(i) #Format FormatSize() i Font(i) #Font FontSize() i "
     "DatePack(i,i,i=,i=,i=,i=,!0) n DateUnpack(n,_=,_=,_=,_=,>5,!-,!-) f|11|12|13|14|15 "
     "ColorPack(i,i,i) e ColorUnpack(i,>3) |11|12|13 ActiveSheet() i SetActiveSheet(i) - "
     "PictureSize() i GetPicture(i,_=) ! AddPicture(t) i AddPicture2(b) i DefaultFont(>1) t|11 "
     "SetDefaultFont(t,i) - RgbMode() f SetRgbMode(f=1) - RefR1C1() f SetRefR1C1(f=1) - "
     "BiffVersion() i IsDate1904() f SetDate1904(f=1) - IsTemplate() f SetTemplate(f=1) - . "
     "SetLocale(t) f ErrorMessage() ! Release() -"},
    {1800, "XL_Sheet_",
     "CellType(i,i) #CellType IsFormula(i,i) f CellFormat(i,i) #Format SetCellFormat(i,i,Format) - "
     "ReadStr(i,i,&Format=) t WriteStr(i,i,t,Format=,!2) f ReadNum(i,i,&Format=) n "
     "WriteNum(i,i,n,Format=) f ReadBool(i,i,&Format=) f WriteBool(i,i,f,Format=,!255) f "
     "ReadBlank(i,i,&Format=) f|@ WriteBlank(i,i,Format) f ReadFormula(i,i,&Format=) t|@ "
     "WriteFormula(i,i,t,Format=) f ReadComment(i,i) t WriteComment(i,i,t,t=,i=129,i=75) - "
     "IsDate(i,i) f ReadError(i,i) #ErrorType ColWidth(i) n RowHeight(i) n "
     "SetCol(i,i,n,Format=,f=0) f SetRow(i,n,Format=,f=0) f RowHidden(i) f SetRowHidden(i,f) f "
     "ColHidden(i) f SetColHidden(i,f) f GetMerge(i,i,>4) f|11|12|13|14 SetMerge(i,i,i,i) f "
     "DelMerge(i,i) f MergeSize() i Merge(i,>4) f|11|12|13|14 DelMergeByIndex(i) f PictureSize() i "
     "GetPicture(i,>8,!-) i|11|12|13|14|15|16|17|18 SetPicture(i,i,i,n=1,i=,i=,i=) - "
     "SetPicture2(i,i,i,i=-1,i=-1,i=,i=,i=) - GetHorPageBreak(i) i GetHorPageBreakSize() i "
     "GetVerPageBreak(i) i GetVerPageBreakSize() i SetHorPageBreak(i,f=1) f "
     "SetVerPageBreak(i,f=1) f Split(i,i) - SplitInfo(>2) f|11|12 GroupRows(i,i,f=1) f "
     "GroupCols(i,i,f=1) f GroupSummaryBelow() f SetGroupSummaryBelow(f) - GroupSummaryRight() f "
     "SetGroupSummaryRight(f) - Clear(i=0,i=1048575,i=0,i=16383) - InsertRow(i,i,f=1) f "
     "InsertCol(i,i,f=1) f RemoveRow(i,i,f=1) f RemoveCol(i,i,f=1) f CopyCell(i,i,i,i) f "
     "FirstRow() i LastRow() i FirstCol() i LastCol() i DisplayGridlines() f "
     "SetDisplayGridlines(f=1) - PrintGridlines() f SetPrintGridlines(f=1) - Zoom() i SetZoom(i) - "
     "PrintZoom() i SetPrintZoom(i) - Landscape() f SetLandscape(f=1) - GetPrintFit(>2) f|11|12 "
     "SetPrintFit(i=1,i=1) - Paper() e SetPaper(i=) - Header() t SetHeader(t,n=0.5) f "
     "HeaderMargin() n Footer() t SetFooter(t,n=0.5) f FooterMargin() n HCenter() f "
     "SetHCenter(f=1) - VCenter() f SetVCenter(f=1) - MarginLeft() n SetMarginLeft(n) - "
     "MarginRight() n SetMarginRight(n) - MarginTop() n SetMarginTop(n) - MarginBottom() n "
     "SetMarginBottom(n) - PrintRowCol() f SetPrintRowCol(f=1) - SetPrintRepeatRows(i,i) - "
     "SetPrintRepeatCols(i,i) - SetPrintArea(i,i,i,i) - ClearPrintRepeats() - ClearPrintArea() - "
     "GetNamedRange(t,_=,_=,>4,!-2,>1) f|11|12|13|14|1 SetNamedRange(t,i,i,i,i,i=-2) f "
     "DelNamedRange(t,i=-2) f NamedRangeSize() i NamedRange(i,_=,_=,>6) t|11|12|13|14|15|0 "
     "HyperlinkSize() i Hyperlink(i,>4) t|11|12|13|14 DelHyperlink(i) f AddHyperlink(t,i,i,i,i) - "
     "Name() t SetName(t) - Protect() f SetProtect(f=1,t=,i=-1) - RightToLeft() f "
     "SetRightToLeft(f=1) - Hidden() e SetHidden(i=1) f GetTopLeftView(>2) |11|12 "
     "SetTopLeftView(i,i) - AddrToRowCol(t,_=,_=,>4) |11|12|1|0 RowColToAddr(i,i,f=1,f=1) t"},
    {2000, "XL_Format_",
     "Font() #Font SetFont(Font) f NumFormat() i SetNumFormat(i) - AlignH() e SetAlignH(i) - "
     "AlignV() e SetAlignV(i) - Wrap() f SetWrap(f=1) - Rotation() i SetRotation(i) f Indent() i "
     "SetIndent(i) - ShrinkToFit() f SetShrinkToFit(f=1) - SetBorder(i=1) - SetBorderColor(i) - "
     "BorderLeft() e SetBorderLeft(i=1) - BorderRight() e SetBorderRight(i=1) - BorderTop() e "
     "SetBorderTop(i=1) - BorderBottom() e SetBorderBottom(i=1) - BorderLeftColor() e "
     "SetBorderLeftColor(i) - BorderRightColor() e SetBorderRightColor(i) - BorderTopColor() e "
     "SetBorderTopColor(i) - BorderBottomColor() e SetBorderBottomColor(i) - BorderDiagonal() e "
     "SetBorderDiagonal(i) - BorderDiagonalStyle() e SetBorderDiagonalStyle(i) - "
     "BorderDiagonalColor() e SetBorderDiagonalColor(i) - FillPattern() e SetFillPattern(i) - "
     "PatternForegroundColor() e SetPatternForegroundColor(i) - PatternBackgroundColor() e "
     "SetPatternBackgroundColor(i) - Locked() f SetLocked(f=1) - Hidden() f SetHidden(f=1) -"},
    {2200, "XL_Font_",
     "Size() i SetSize(i) - Italic() f SetItalic(f=1) - StrikeOut() f SetStrikeOut(f=1) - "
     "Color() e SetColor(i) - Bold() f SetBold(f=1) - Script() e SetScript(i) - Underline() e "
     "SetUnderline(i) - Name() t SetName(t) f"},
    {2216, "XL_Book_",
     "LoadSheet(t,i,t=) f LoadPartially(t,i,i,i,t=) f LoadInfo(t) f GetSheetName(i) t "
     "MoveSheet(i,i) f AddPictureAsLink(t,f=0) i"},
    {2223, "XL_Sheet_",
     "WriteFormulaNum(i,i,t,n,Format=) f WriteFormulaStr(i,i,t,t,Format=) f "
     "WriteFormulaBool(i,i,t,f,Format=) f RemoveComment(i,i) - WriteError(i,i,ErrorType,Format=) - "
     "PrintRepeatRows(>2) f|11|12 PrintRepeatCols(>2) f|11|12 PrintArea(>4) f|11|12|13|14 "
     "TableSize() i Table(i,>6) t|11|12|13|14|15|16 AutoFilter() #AutoFilter ApplyFilter() - "
     "RemoveFilter() - SetAutoFitArea(i=0,i=0,i=-1,i=-1) - SetTabColor(i,i=,i=) ! . "
     "AddIgnoredError(i,i,i,i,IgnoredError) f "
     "AddDataValidation(DataValidationType,DataValidationOperator,i,i,i,i,t,t,f,f=0,f=1,f=1,t=,t=,"
     "t=,t=,DataValidationErrorStyle=) - "
     "AddDataValidationDouble(DataValidationType,DataValidationOperator,i,i,i,i,n,n,f,f=0,f=1,f=1,"
     "t=,t=,t=,t=,DataValidationErrorStyle=) - "
     "RemoveDataValidations() -"},
    {2243, "XL_AutoFilter_",
     "GetRef(>4) f|11|12|13|14 SetRef(i,i,i,i) - Column(i) #FilterColumn ColumnSize() i "
     "ColumnByIndex(i) #FilterColumn GetSortRange(>4) f|11|12|13|14 GetSort(>2) f|11|0 "
     "SetSort(i,f=0) f"},
    {2251, "XL_FilterColumn_",
     "Index() i FilterType() #Filter FilterSize() i Filter(i) t AddFilter(t) - "
     "GetTop10(>3) 11.5|0|1 SetTop10(n,f=1,f=0) - GetCustomFilter(>5) 11|text12|13|text14|1 "
     "SetCustomFilter(i,t,i=,t=,f=0) - Clear() -"},
    {3000, "XL_Sheet_", "ReadCell(i,i,&Format=) !"},
};

// "i", "i=" or "i=129".
ListedArgument argument_of(const std::string& text) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos) return {text, "", false};
  return {text.substr(0, equals), text.substr(equals + 1), true};
}

// "AddSheet(t,Sheet=)".
ListedFunction function_of(const std::string& prefix, const std::string& call) {
  const std::size_t open = call.find('(');
  ListedFunction function{prefix + call.substr(0, open), prefix != "XL_", {}, {}};
  std::istringstream arguments(call.substr(open + 1, call.size() - open - 2));
  for (std::string text; std::getline(arguments, text, ',');)
    function.arguments.push_back(argument_of(text));
  return function;
}

std::map<int, ListedFunction> read_runs() {
  std::map<int, ListedFunction> listed;
  for (const auto& [first_id, prefix, functions] : kRuns) {
    std::istringstream words(functions);
    int id = first_id;
    for (std::string call; words >> call; ++id) {
      if (call == ".") continue;
      ListedFunction& function = listed[id] = function_of(prefix, call);
      words >> function.result;
    }
  }
  return listed;
}

}  // namespace

std::string ListedFunction::with_counts() const {
  int least = has_handle ? 1 : 0;
  int most = least;
  for (const ListedArgument& argument : arguments) {
    if (!argument.is_parameter()) continue;
    ++most;
    if (!argument.is_optional) ++least;
  }
  const std::string counts = std::to_string(least);
  return name + " " + (most == least ? counts : counts + "-" + std::to_string(most));
}

const std::map<int, ListedFunction>& listed_functions() {
  static const std::map<int, ListedFunction> kListed = read_runs();
  return kListed;
}

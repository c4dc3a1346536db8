// Fakes of the spreadsheet library's classes.
//
// Every operation is written down with its arguments and answers what its scenario says. As far as
// the scenario has outputs written, the first is filled with 11, the second with 12 and so on: as
// 11, 11.5, "text11", and as a flag that is set when the number is odd.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/libxl/libxl.h"

namespace fakes {

using namespace libxl;  // NOLINT(google-build-using-namespace): the signatures below are libxl's

// What the fakes of one book have heard and shall answer.
struct Scenario {
  // As "writeNum 0 1 2.5 -": texts as they are, objects by their name, "-" for none.
  std::vector<std::string> heard;

  std::string message = "ok";
  double number = 1;
  const wchar_t* text = L"text";
  std::string bytes = "bytes";
  bool writes_outputs = true;
  // What the places for texts were filled with.
  std::deque<std::wstring> output_texts;

  Font* font = nullptr;
  Format* format = nullptr;
  Sheet* sheet = nullptr;
  AutoFilter* filter = nullptr;
  FilterColumn* column = nullptr;
};

// Writes down and answers on behalf of all fakes.
class Speaker {
 public:
  explicit Speaker(Scenario& scenario) : scenario_(scenario) {}
  Speaker(const Speaker&) = delete;
  Speaker& operator=(const Speaker&) = delete;
  virtual ~Speaker() = default;

 protected:
  template <class R, class... A>
  R say(const char* operation, A... arguments) const {
    std::string heard = operation;
    [[maybe_unused]] int outputs = kFirstOutput - 1;
    ((heard += describe(arguments, outputs)), ...);
    scenario_.heard.push_back(heard);
    if constexpr (std::is_same_v<R, const wchar_t*>) return scenario_.text;
    else if constexpr (std::is_same_v<R, Font*>) return scenario_.font;
    else if constexpr (std::is_same_v<R, Format*>) return scenario_.format;
    else if constexpr (std::is_same_v<R, Sheet*>) return scenario_.sheet;
    else if constexpr (std::is_same_v<R, AutoFilter*>) return scenario_.filter;
    else if constexpr (std::is_same_v<R, FilterColumn*>) return scenario_.column;
    else if constexpr (std::is_enum_v<R>) return static_cast<R>(static_cast<int>(scenario_.number));
    else if constexpr (!std::is_void_v<R>) return static_cast<R>(scenario_.number);
  }

  Scenario& scenario_;

 private:
  static constexpr int kFirstOutput = 11;

  static std::string describe(double value, int& outputs);
  static std::string describe(const wchar_t* text, int& outputs);
  static std::string describe(const char* text, int& outputs);
  static std::string describe(std::string_view data, int& outputs);
  std::string describe(const void* object, int& outputs) const;
  // Places for outputs.
  std::string describe(int* place, int& outputs) const;
  std::string describe(bool* place, int& outputs) const;
  std::string describe(double* place, int& outputs) const;
  std::string describe(Operator* place, int& outputs) const;
  std::string describe(const wchar_t** place, int& outputs) const;
  std::string describe(Format** place, int& outputs) const;
  std::string describe(const char** place, int& outputs) const;
  std::string describe(unsigned* place, int& outputs) const;
};

class FakeFont final : public libxl::Font, private Speaker {
 public:
  using Speaker::Speaker;

  int size() const override { return say<int>("size"); }
  void setSize(int size) override { return say<void>("setSize", size); }
  bool italic() const override { return say<bool>("italic"); }
  void setItalic(bool italic) override { return say<void>("setItalic", italic); }
  bool strikeOut() const override { return say<bool>("strikeOut"); }
  void setStrikeOut(bool strikeOut) override { return say<void>("setStrikeOut", strikeOut); }
  Color color() const override { return say<Color>("color"); }
  void setColor(Color color) override { return say<void>("setColor", color); }
  bool bold() const override { return say<bool>("bold"); }
  void setBold(bool bold) override { return say<void>("setBold", bold); }
  Script script() const override { return say<Script>("script"); }
  void setScript(Script script) override { return say<void>("setScript", script); }
  Underline underline() const override { return say<Underline>("underline"); }
  void setUnderline(Underline underline) override { return say<void>("setUnderline", underline); }
  const wchar_t* name() const override { return say<const wchar_t*>("name"); }
  bool setName(const wchar_t* name) override { return say<bool>("setName", name); }
};

class FakeFormat final : public libxl::Format, private Speaker {
 public:
  using Speaker::Speaker;

  Font* font() const override { return say<Font*>("font"); }
  bool setFont(Font* font) override { return say<bool>("setFont", font); }
  int numFormat() const override { return say<int>("numFormat"); }
  void setNumFormat(int numFormat) override { return say<void>("setNumFormat", numFormat); }
  AlignH alignH() const override { return say<AlignH>("alignH"); }
  void setAlignH(AlignH align) override { return say<void>("setAlignH", align); }
  AlignV alignV() const override { return say<AlignV>("alignV"); }
  void setAlignV(AlignV align) override { return say<void>("setAlignV", align); }
  bool wrap() const override { return say<bool>("wrap"); }
  void setWrap(bool wrap) override { return say<void>("setWrap", wrap); }
  int rotation() const override { return say<int>("rotation"); }
  bool setRotation(int rotation) override { return say<bool>("setRotation", rotation); }
  int indent() const override { return say<int>("indent"); }
  void setIndent(int indent) override { return say<void>("setIndent", indent); }
  bool shrinkToFit() const override { return say<bool>("shrinkToFit"); }
  void setShrinkToFit(bool shrinkToFit) override {
    return say<void>("setShrinkToFit", shrinkToFit);
  }
  void setBorder(BorderStyle style) override { return say<void>("setBorder", style); }
  void setBorderColor(Color color) override { return say<void>("setBorderColor", color); }
  BorderStyle borderLeft() const override { return say<BorderStyle>("borderLeft"); }
  void setBorderLeft(BorderStyle style) override { return say<void>("setBorderLeft", style); }
  BorderStyle borderRight() const override { return say<BorderStyle>("borderRight"); }
  void setBorderRight(BorderStyle style) override { return say<void>("setBorderRight", style); }
  BorderStyle borderTop() const override { return say<BorderStyle>("borderTop"); }
  void setBorderTop(BorderStyle style) override { return say<void>("setBorderTop", style); }
  BorderStyle borderBottom() const override { return say<BorderStyle>("borderBottom"); }
  void setBorderBottom(BorderStyle style) override { return say<void>("setBorderBottom", style); }
  Color borderLeftColor() const override { return say<Color>("borderLeftColor"); }
  void setBorderLeftColor(Color color) override { return say<void>("setBorderLeftColor", color); }
  Color borderRightColor() const override { return say<Color>("borderRightColor"); }
  void setBorderRightColor(Color color) override { return say<void>("setBorderRightColor", color); }
  Color borderTopColor() const override { return say<Color>("borderTopColor"); }
  void setBorderTopColor(Color color) override { return say<void>("setBorderTopColor", color); }
  Color borderBottomColor() const override { return say<Color>("borderBottomColor"); }
  void setBorderBottomColor(Color color) override {
    return say<void>("setBorderBottomColor", color);
  }
  BorderDiagonal borderDiagonal() const override { return say<BorderDiagonal>("borderDiagonal"); }
  void setBorderDiagonal(BorderDiagonal border) override {
    return say<void>("setBorderDiagonal", border);
  }
  BorderStyle borderDiagonalStyle() const override {
    return say<BorderStyle>("borderDiagonalStyle");
  }
  void setBorderDiagonalStyle(BorderStyle style) override {
    return say<void>("setBorderDiagonalStyle", style);
  }
  Color borderDiagonalColor() const override { return say<Color>("borderDiagonalColor"); }
  void setBorderDiagonalColor(Color color) override {
    return say<void>("setBorderDiagonalColor", color);
  }
  FillPattern fillPattern() const override { return say<FillPattern>("fillPattern"); }
  void setFillPattern(FillPattern pattern) override { return say<void>("setFillPattern", pattern); }
  Color patternForegroundColor() const override { return say<Color>("patternForegroundColor"); }
  void setPatternForegroundColor(Color color) override {
    return say<void>("setPatternForegroundColor", color);
  }
  Color patternBackgroundColor() const override { return say<Color>("patternBackgroundColor"); }
  void setPatternBackgroundColor(Color color) override {
    return say<void>("setPatternBackgroundColor", color);
  }
  bool locked() const override { return say<bool>("locked"); }
  void setLocked(bool locked) override { return say<void>("setLocked", locked); }
  bool hidden() const override { return say<bool>("hidden"); }
  void setHidden(bool hidden) override { return say<void>("setHidden", hidden); }
};

class FakeFilterColumn final : public libxl::FilterColumn, private Speaker {
 public:
  using Speaker::Speaker;

  int index() const override { return say<int>("index"); }
  Filter filterType() const override { return say<Filter>("filterType"); }
  int filterSize() const override { return say<int>("filterSize"); }
  const wchar_t* filter(int index) const override { return say<const wchar_t*>("filter", index); }
  void addFilter(const wchar_t* value) override { return say<void>("addFilter", value); }
  bool getTop10(double* value, bool* top, bool* percent) override {
    return say<bool>("getTop10", value, top, percent);
  }
  void setTop10(double value, bool top, bool percent) override {
    return say<void>("setTop10", value, top, percent);
  }
  bool getCustomFilter(Operator* op1, const wchar_t** v1, Operator* op2, const wchar_t** v2,
                       bool* andOp) const override {
    return say<bool>("getCustomFilter", op1, v1, op2, v2, andOp);
  }
  void setCustomFilter(Operator op1, const wchar_t* v1, Operator op2, const wchar_t* v2,
                       bool andOp) override {
    return say<void>("setCustomFilter", op1, v1, op2, v2, andOp);
  }
  void clear() override { return say<void>("clear"); }
};

class FakeAutoFilter final : public libxl::AutoFilter, private Speaker {
 public:
  using Speaker::Speaker;

  bool getRef(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const override {
    return say<bool>("getRef", rowFirst, rowLast, colFirst, colLast);
  }
  void setRef(int rowFirst, int rowLast, int colFirst, int colLast) override {
    return say<void>("setRef", rowFirst, rowLast, colFirst, colLast);
  }
  FilterColumn* column(int colId) override { return say<FilterColumn*>("column", colId); }
  int columnSize() const override { return say<int>("columnSize"); }
  FilterColumn* columnByIndex(int index) override {
    return say<FilterColumn*>("columnByIndex", index);
  }
  bool getSortRange(int* rowFirst, int* rowLast, int* colFirst, int* colLast) override {
    return say<bool>("getSortRange", rowFirst, rowLast, colFirst, colLast);
  }
  bool getSort(int* columnIndex, bool* descending) override {
    return say<bool>("getSort", columnIndex, descending);
  }
  bool setSort(int columnIndex, bool descending) override {
    return say<bool>("setSort", columnIndex, descending);
  }
};

class FakeSheet final : public libxl::Sheet, private Speaker {
 public:
  using Speaker::Speaker;

  CellType cellType(int row, int col) const override { return say<CellType>("cellType", row, col); }
  bool isFormula(int row, int col) const override { return say<bool>("isFormula", row, col); }
  Format* cellFormat(int row, int col) const override {
    return say<Format*>("cellFormat", row, col);
  }
  void setCellFormat(int row, int col, Format* format) override {
    return say<void>("setCellFormat", row, col, format);
  }
  const wchar_t* readStr(int row, int col, Format** format) override {
    return say<const wchar_t*>("readStr", row, col, format);
  }
  bool writeStr(int row, int col, const wchar_t* value, Format* format, CellType type) override {
    return say<bool>("writeStr", row, col, value, format, type);
  }
  double readNum(int row, int col, Format** format) const override {
    return say<double>("readNum", row, col, format);
  }
  bool writeNum(int row, int col, double value, Format* format) override {
    return say<bool>("writeNum", row, col, value, format);
  }
  bool readBool(int row, int col, Format** format) const override {
    return say<bool>("readBool", row, col, format);
  }
  bool writeBool(int row, int col, bool value, Format* format, ErrorType error) override {
    return say<bool>("writeBool", row, col, value, format, error);
  }
  bool readBlank(int row, int col, Format** format) const override {
    return say<bool>("readBlank", row, col, format);
  }
  bool writeBlank(int row, int col, Format* format) override {
    return say<bool>("writeBlank", row, col, format);
  }
  const wchar_t* readFormula(int row, int col, Format** format) override {
    return say<const wchar_t*>("readFormula", row, col, format);
  }
  bool writeFormula(int row, int col, const wchar_t* expr, Format* format) override {
    return say<bool>("writeFormula", row, col, expr, format);
  }
  bool writeFormulaNum(int row, int col, const wchar_t* expr, double value,
                       Format* format) override {
    return say<bool>("writeFormulaNum", row, col, expr, value, format);
  }
  bool writeFormulaStr(int row, int col, const wchar_t* expr, const wchar_t* value,
                       Format* format) override {
    return say<bool>("writeFormulaStr", row, col, expr, value, format);
  }
  bool writeFormulaBool(int row, int col, const wchar_t* expr, bool value,
                        Format* format) override {
    return say<bool>("writeFormulaBool", row, col, expr, value, format);
  }
  const wchar_t* readComment(int row, int col) const override {
    return say<const wchar_t*>("readComment", row, col);
  }
  void writeComment(int row, int col, const wchar_t* value, const wchar_t* author, int width,
                    int height) override {
    return say<void>("writeComment", row, col, value, author, width, height);
  }
  void removeComment(int row, int col) override { return say<void>("removeComment", row, col); }
  bool isDate(int row, int col) const override { return say<bool>("isDate", row, col); }
  ErrorType readError(int row, int col) const override {
    return say<ErrorType>("readError", row, col);
  }
  void writeError(int row, int col, ErrorType error, Format* format) override {
    return say<void>("writeError", row, col, error, format);
  }
  int firstRow() const override { return say<int>("firstRow"); }
  int lastRow() const override { return say<int>("lastRow"); }
  int firstCol() const override { return say<int>("firstCol"); }
  int lastCol() const override { return say<int>("lastCol"); }
  double colWidth(int col) const override { return say<double>("colWidth", col); }
  double rowHeight(int row) const override { return say<double>("rowHeight", row); }
  bool setCol(int colFirst, int colLast, double width, Format* format, bool hidden) override {
    return say<bool>("setCol", colFirst, colLast, width, format, hidden);
  }
  bool setRow(int row, double height, Format* format, bool hidden) override {
    return say<bool>("setRow", row, height, format, hidden);
  }
  bool rowHidden(int row) const override { return say<bool>("rowHidden", row); }
  bool setRowHidden(int row, bool hidden) override {
    return say<bool>("setRowHidden", row, hidden);
  }
  bool colHidden(int col) const override { return say<bool>("colHidden", col); }
  bool setColHidden(int col, bool hidden) override {
    return say<bool>("setColHidden", col, hidden);
  }
  bool getMerge(int row, int col, int* rowFirst, int* rowLast, int* colFirst,
                int* colLast) override {
    return say<bool>("getMerge", row, col, rowFirst, rowLast, colFirst, colLast);
  }
  bool setMerge(int rowFirst, int rowLast, int colFirst, int colLast) override {
    return say<bool>("setMerge", rowFirst, rowLast, colFirst, colLast);
  }
  bool delMerge(int row, int col) override { return say<bool>("delMerge", row, col); }
  int mergeSize() const override { return say<int>("mergeSize"); }
  bool merge(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast) override {
    return say<bool>("merge", index, rowFirst, rowLast, colFirst, colLast);
  }
  bool delMergeByIndex(int index) override { return say<bool>("delMergeByIndex", index); }
  bool groupRows(int rowFirst, int rowLast, bool collapsed) override {
    return say<bool>("groupRows", rowFirst, rowLast, collapsed);
  }
  bool groupCols(int colFirst, int colLast, bool collapsed) override {
    return say<bool>("groupCols", colFirst, colLast, collapsed);
  }
  bool groupSummaryBelow() const override { return say<bool>("groupSummaryBelow"); }
  void setGroupSummaryBelow(bool below) override {
    return say<void>("setGroupSummaryBelow", below);
  }
  bool groupSummaryRight() const override { return say<bool>("groupSummaryRight"); }
  void setGroupSummaryRight(bool right) override {
    return say<void>("setGroupSummaryRight", right);
  }
  void clear(int rowFirst, int rowLast, int colFirst, int colLast) override {
    return say<void>("clear", rowFirst, rowLast, colFirst, colLast);
  }
  bool insertRow(int rowFirst, int rowLast, bool updateNamedRanges) override {
    return say<bool>("insertRow", rowFirst, rowLast, updateNamedRanges);
  }
  bool insertCol(int colFirst, int colLast, bool updateNamedRanges) override {
    return say<bool>("insertCol", colFirst, colLast, updateNamedRanges);
  }
  bool removeRow(int rowFirst, int rowLast, bool updateNamedRanges) override {
    return say<bool>("removeRow", rowFirst, rowLast, updateNamedRanges);
  }
  bool removeCol(int colFirst, int colLast, bool updateNamedRanges) override {
    return say<bool>("removeCol", colFirst, colLast, updateNamedRanges);
  }
  bool copyCell(int rowSrc, int colSrc, int rowDst, int colDst) override {
    return say<bool>("copyCell", rowSrc, colSrc, rowDst, colDst);
  }
  void setAutoFitArea(int rowFirst, int colFirst, int rowLast, int colLast) override {
    return say<void>("setAutoFitArea", rowFirst, colFirst, rowLast, colLast);
  }
  int pictureSize() const override { return say<int>("pictureSize"); }
  int getPicture(int index, int* rowTop, int* colLeft, int* rowBottom, int* colRight, int* width,
                 int* height, int* offsetX, int* offsetY, const wchar_t** linkPath) const override {
    return say<int>("getPicture", index, rowTop, colLeft, rowBottom, colRight, width, height,
                    offsetX, offsetY, linkPath);
  }
  void setPicture(int row, int col, int pictureId, double scale, int offsetX, int offsetY,
                  Position pos) override {
    return say<void>("setPicture", row, col, pictureId, scale, offsetX, offsetY, pos);
  }
  void setPicture2(int row, int col, int pictureId, int width, int height, int offsetX, int offsetY,
                   Position pos) override {
    return say<void>("setPicture2", row, col, pictureId, width, height, offsetX, offsetY, pos);
  }
  int getHorPageBreak(int index) const override { return say<int>("getHorPageBreak", index); }
  int getHorPageBreakSize() const override { return say<int>("getHorPageBreakSize"); }
  int getVerPageBreak(int index) const override { return say<int>("getVerPageBreak", index); }
  int getVerPageBreakSize() const override { return say<int>("getVerPageBreakSize"); }
  bool setHorPageBreak(int row, bool pageBreak) override {
    return say<bool>("setHorPageBreak", row, pageBreak);
  }
  bool setVerPageBreak(int col, bool pageBreak) override {
    return say<bool>("setVerPageBreak", col, pageBreak);
  }
  void split(int row, int col) override { return say<void>("split", row, col); }
  bool splitInfo(int* row, int* col) const override { return say<bool>("splitInfo", row, col); }
  bool displayGridlines() const override { return say<bool>("displayGridlines"); }
  void setDisplayGridlines(bool show) override { return say<void>("setDisplayGridlines", show); }
  int zoom() const override { return say<int>("zoom"); }
  void setZoom(int zoom) override { return say<void>("setZoom", zoom); }
  const wchar_t* name() const override { return say<const wchar_t*>("name"); }
  void setName(const wchar_t* name) override { return say<void>("setName", name); }
  bool protect() const override { return say<bool>("protect"); }
  void setProtect(bool protect, const wchar_t* password,
                  EnhancedProtection enhancedProtection) override {
    return say<void>("setProtect", protect, password, enhancedProtection);
  }
  bool rightToLeft() const override { return say<bool>("rightToLeft"); }
  void setRightToLeft(bool rightToLeft) override {
    return say<void>("setRightToLeft", rightToLeft);
  }
  SheetState hidden() const override { return say<SheetState>("hidden"); }
  bool setHidden(SheetState state) override { return say<bool>("setHidden", state); }
  void getTopLeftView(int* row, int* col) const override {
    return say<void>("getTopLeftView", row, col);
  }
  void setTopLeftView(int row, int col) override { return say<void>("setTopLeftView", row, col); }
  void setTabColor(Color color) override { return say<void>("setTabColor", color); }
  void setTabColor(int red, int green, int blue) override {
    return say<void>("setTabColor", red, green, blue);
  }
  bool printGridlines() const override { return say<bool>("printGridlines"); }
  void setPrintGridlines(bool print) override { return say<void>("setPrintGridlines", print); }
  int printZoom() const override { return say<int>("printZoom"); }
  void setPrintZoom(int zoom) override { return say<void>("setPrintZoom", zoom); }
  bool getPrintFit(int* wPages, int* hPages) const override {
    return say<bool>("getPrintFit", wPages, hPages);
  }
  void setPrintFit(int wPages, int hPages) override {
    return say<void>("setPrintFit", wPages, hPages);
  }
  bool landscape() const override { return say<bool>("landscape"); }
  void setLandscape(bool landscape) override { return say<void>("setLandscape", landscape); }
  Paper paper() const override { return say<Paper>("paper"); }
  void setPaper(Paper paper) override { return say<void>("setPaper", paper); }
  const wchar_t* header() const override { return say<const wchar_t*>("header"); }
  bool setHeader(const wchar_t* header, double margin) override {
    return say<bool>("setHeader", header, margin);
  }
  double headerMargin() const override { return say<double>("headerMargin"); }
  const wchar_t* footer() const override { return say<const wchar_t*>("footer"); }
  bool setFooter(const wchar_t* footer, double margin) override {
    return say<bool>("setFooter", footer, margin);
  }
  double footerMargin() const override { return say<double>("footerMargin"); }
  bool hCenter() const override { return say<bool>("hCenter"); }
  void setHCenter(bool hCenter) override { return say<void>("setHCenter", hCenter); }
  bool vCenter() const override { return say<bool>("vCenter"); }
  void setVCenter(bool vCenter) override { return say<void>("setVCenter", vCenter); }
  double marginLeft() const override { return say<double>("marginLeft"); }
  void setMarginLeft(double margin) override { return say<void>("setMarginLeft", margin); }
  double marginRight() const override { return say<double>("marginRight"); }
  void setMarginRight(double margin) override { return say<void>("setMarginRight", margin); }
  double marginTop() const override { return say<double>("marginTop"); }
  void setMarginTop(double margin) override { return say<void>("setMarginTop", margin); }
  double marginBottom() const override { return say<double>("marginBottom"); }
  void setMarginBottom(double margin) override { return say<void>("setMarginBottom", margin); }
  bool printRowCol() const override { return say<bool>("printRowCol"); }
  void setPrintRowCol(bool print) override { return say<void>("setPrintRowCol", print); }
  bool printRepeatRows(int* rowFirst, int* rowLast) const override {
    return say<bool>("printRepeatRows", rowFirst, rowLast);
  }
  void setPrintRepeatRows(int rowFirst, int rowLast) override {
    return say<void>("setPrintRepeatRows", rowFirst, rowLast);
  }
  bool printRepeatCols(int* colFirst, int* colLast) const override {
    return say<bool>("printRepeatCols", colFirst, colLast);
  }
  void setPrintRepeatCols(int colFirst, int colLast) override {
    return say<void>("setPrintRepeatCols", colFirst, colLast);
  }
  bool printArea(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const override {
    return say<bool>("printArea", rowFirst, rowLast, colFirst, colLast);
  }
  void setPrintArea(int rowFirst, int rowLast, int colFirst, int colLast) override {
    return say<void>("setPrintArea", rowFirst, rowLast, colFirst, colLast);
  }
  void clearPrintRepeats() override { return say<void>("clearPrintRepeats"); }
  void clearPrintArea() override { return say<void>("clearPrintArea"); }
  bool getNamedRange(const wchar_t* name, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                     int scopeId, bool* hidden) const override {
    return say<bool>("getNamedRange", name, rowFirst, rowLast, colFirst, colLast, scopeId, hidden);
  }
  bool setNamedRange(const wchar_t* name, int rowFirst, int rowLast, int colFirst, int colLast,
                     int scopeId) override {
    return say<bool>("setNamedRange", name, rowFirst, rowLast, colFirst, colLast, scopeId);
  }
  bool delNamedRange(const wchar_t* name, int scopeId) override {
    return say<bool>("delNamedRange", name, scopeId);
  }
  int namedRangeSize() const override { return say<int>("namedRangeSize"); }
  const wchar_t* namedRange(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                            int* scopeId, bool* hidden) const override {
    return say<const wchar_t*>("namedRange", index, rowFirst, rowLast, colFirst, colLast, scopeId,
                               hidden);
  }
  int hyperlinkSize() const override { return say<int>("hyperlinkSize"); }
  const wchar_t* hyperlink(int index, int* rowFirst, int* rowLast, int* colFirst,
                           int* colLast) const override {
    return say<const wchar_t*>("hyperlink", index, rowFirst, rowLast, colFirst, colLast);
  }
  bool delHyperlink(int index) override { return say<bool>("delHyperlink", index); }
  void addHyperlink(const wchar_t* hyperlink, int rowFirst, int rowLast, int colFirst,
                    int colLast) override {
    return say<void>("addHyperlink", hyperlink, rowFirst, rowLast, colFirst, colLast);
  }
  void addrToRowCol(const wchar_t* addr, int* row, int* col, bool* rowRelative,
                    bool* colRelative) override {
    return say<void>("addrToRowCol", addr, row, col, rowRelative, colRelative);
  }
  const wchar_t* rowColToAddr(int row, int col, bool rowRelative, bool colRelative) override {
    return say<const wchar_t*>("rowColToAddr", row, col, rowRelative, colRelative);
  }
  int tableSize() const override { return say<int>("tableSize"); }
  const wchar_t* table(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                       int* headerRowCount, int* totalsRowCount) const override {
    return say<const wchar_t*>("table", index, rowFirst, rowLast, colFirst, colLast, headerRowCount,
                               totalsRowCount);
  }
  AutoFilter* autoFilter() override { return say<AutoFilter*>("autoFilter"); }
  void applyFilter() override { return say<void>("applyFilter"); }
  void removeFilter() override { return say<void>("removeFilter"); }
  bool addIgnoredError(int rowFirst, int colFirst, int rowLast, int colLast,
                       IgnoredError iError) override {
    return say<bool>("addIgnoredError", rowFirst, colFirst, rowLast, colLast, iError);
  }
  void addDataValidation(DataValidationType type, DataValidationOperator op, int rowFirst,
                         int rowLast, int colFirst, int colLast, const wchar_t* value1,
                         const wchar_t* value2, bool allowBlank, bool hideDropDown,
                         bool showInputMessage, bool showErrorMessage, const wchar_t* promptTitle,
                         const wchar_t* prompt, const wchar_t* errorTitle, const wchar_t* error,
                         DataValidationErrorStyle errorStyle) override {
    return say<void>("addDataValidation", type, op, rowFirst, rowLast, colFirst, colLast, value1,
                     value2, allowBlank, hideDropDown, showInputMessage, showErrorMessage,
                     promptTitle, prompt, errorTitle, error, errorStyle);
  }
  void addDataValidationDouble(DataValidationType type, DataValidationOperator op, int rowFirst,
                               int rowLast, int colFirst, int colLast, double value1, double value2,
                               bool allowBlank, bool hideDropDown, bool showInputMessage,
                               bool showErrorMessage, const wchar_t* promptTitle,
                               const wchar_t* prompt, const wchar_t* errorTitle,
                               const wchar_t* error, DataValidationErrorStyle errorStyle) override {
    return say<void>("addDataValidationDouble", type, op, rowFirst, rowLast, colFirst, colLast,
                     value1, value2, allowBlank, hideDropDown, showInputMessage, showErrorMessage,
                     promptTitle, prompt, errorTitle, error, errorStyle);
  }
  void removeDataValidations() override { return say<void>("removeDataValidations"); }
};

class FakeBook final : public libxl::Book, private Speaker {
 public:
  using Speaker::Speaker;

  bool load(const wchar_t* path, const wchar_t* tempFile) override {
    return say<bool>("load", path, tempFile);
  }
  bool loadRaw(const char* data, unsigned size, int sheetIndex, int firstRow,
               int lastRow) override {
    return say<bool>("loadRaw", std::string_view(data, size), size, sheetIndex, firstRow, lastRow);
  }
  bool loadSheet(const wchar_t* path, int sheetIndex, const wchar_t* tempFile) override {
    return say<bool>("loadSheet", path, sheetIndex, tempFile);
  }
  bool loadPartially(const wchar_t* path, int sheetIndex, int firstRow, int lastRow,
                     const wchar_t* tempFile) override {
    return say<bool>("loadPartially", path, sheetIndex, firstRow, lastRow, tempFile);
  }
  bool loadInfo(const wchar_t* path) override { return say<bool>("loadInfo", path); }
  bool save(const wchar_t* path, bool useTempFile) override {
    return say<bool>("save", path, useTempFile);
  }
  bool saveRaw(const char** data, unsigned* size) override {
    return say<bool>("saveRaw", data, size);
  }
  Sheet* addSheet(const wchar_t* name, Sheet* initSheet) override {
    return say<Sheet*>("addSheet", name, initSheet);
  }
  Sheet* insertSheet(int index, const wchar_t* name, Sheet* initSheet) override {
    return say<Sheet*>("insertSheet", index, name, initSheet);
  }
  Sheet* getSheet(int index) const override { return say<Sheet*>("getSheet", index); }
  const wchar_t* getSheetName(int index) const override {
    return say<const wchar_t*>("getSheetName", index);
  }
  SheetType sheetType(int index) const override { return say<SheetType>("sheetType", index); }
  bool moveSheet(int srcIndex, int dstIndex) override {
    return say<bool>("moveSheet", srcIndex, dstIndex);
  }
  bool delSheet(int index) override { return say<bool>("delSheet", index); }
  int sheetCount() const override { return say<int>("sheetCount"); }
  int activeSheet() const override { return say<int>("activeSheet"); }
  void setActiveSheet(int index) override { return say<void>("setActiveSheet", index); }
  Format* addFormat(Format* init) override { return say<Format*>("addFormat", init); }
  Font* addFont(Font* init) override { return say<Font*>("addFont", init); }
  int addCustomNumFormat(const wchar_t* numFormat) override {
    return say<int>("addCustomNumFormat", numFormat);
  }
  const wchar_t* customNumFormat(int fmt) override {
    return say<const wchar_t*>("customNumFormat", fmt);
  }
  Format* format(int index) override { return say<Format*>("format", index); }
  int formatSize() override { return say<int>("formatSize"); }
  Font* font(int index) override { return say<Font*>("font", index); }
  int fontSize() override { return say<int>("fontSize"); }
  const wchar_t* defaultFont(int* fontSize) override {
    return say<const wchar_t*>("defaultFont", fontSize);
  }
  void setDefaultFont(const wchar_t* fontName, int fontSize) override {
    return say<void>("setDefaultFont", fontName, fontSize);
  }
  int pictureSize() const override { return say<int>("pictureSize"); }
  PictureType getPicture(int index, const char** data, unsigned* size) const override {
    return say<PictureType>("getPicture", index, data, size);
  }
  int addPicture(const wchar_t* path) override { return say<int>("addPicture", path); }
  int addPicture2(const char* data, unsigned size) override {
    return say<int>("addPicture2", std::string_view(data, size), size);
  }
  int addPictureAsLink(const wchar_t* path, bool insert) override {
    return say<int>("addPictureAsLink", path, insert);
  }
  double datePack(int year, int month, int day, int hour, int min, int sec,
                  int msec) const override {
    return say<double>("datePack", year, month, day, hour, min, sec, msec);
  }
  bool dateUnpack(double value, int* year, int* month, int* day, int* hour, int* min, int* sec,
                  int* msec) const override {
    return say<bool>("dateUnpack", value, year, month, day, hour, min, sec, msec);
  }
  Color colorPack(int red, int green, int blue) override {
    return say<Color>("colorPack", red, green, blue);
  }
  void colorUnpack(Color color, int* red, int* green, int* blue) override {
    return say<void>("colorUnpack", color, red, green, blue);
  }
  bool rgbMode() const override { return say<bool>("rgbMode"); }
  void setRgbMode(bool rgbMode) override { return say<void>("setRgbMode", rgbMode); }
  bool refR1C1() const override { return say<bool>("refR1C1"); }
  void setRefR1C1(bool refR1C1) override { return say<void>("setRefR1C1", refR1C1); }
  int biffVersion() const override { return say<int>("biffVersion"); }
  bool isDate1904() const override { return say<bool>("isDate1904"); }
  void setDate1904(bool date1904) override { return say<void>("setDate1904", date1904); }
  bool isTemplate() const override { return say<bool>("isTemplate"); }
  void setTemplate(bool tmpl) override { return say<void>("setTemplate", tmpl); }
  bool setLocale(const char* locale) override { return say<bool>("setLocale", locale); }
  const char* errorMessage() const override { return scenario_.message.c_str(); }
  void release() override { return say<void>("release"); }
};

// One of each, answering each other.
struct Workbook {
  Workbook();

  Scenario scenario;
  FakeFont font{scenario};
  FakeFormat format{scenario};
  FakeFilterColumn column{scenario};
  FakeAutoFilter filter{scenario};
  FakeSheet sheet{scenario};
  FakeBook book{scenario};
};

// The book that the factories give.
inline libxl::Book* next_book = nullptr;

}  // namespace fakes

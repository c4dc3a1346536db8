// A worksheet as the interface shows it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/api/book_context.h"
#include "engine/api/unsupported_sheet.h"

namespace engine::api {

class SheetObject final : public UnsupportedSheet {
 public:
  SheetObject(BookContext& book, engine::Sheet& sheet) : UnsupportedSheet(book), sheet_(&sheet) {}

  // Null once the sheet has left the book.
  engine::Sheet* sheet() const { return sheet_; }
  void detach() noexcept {
    BookPart::detach();
    sheet_ = nullptr;
    std::string().swap(text_);
  }

  libxl::CellType cellType(int row, int column) const override;
  bool isFormula(int row, int column) const override;
  libxl::Format* cellFormat(int row, int column) const override;
  void setCellFormat(int row, int column, libxl::Format* format) override;
  const wchar_t* readStr(int row, int column, libxl::Format** format) override;
  bool writeStr(int row, int column, const wchar_t* value, libxl::Format* format,
                libxl::CellType type) override;
  double readNum(int row, int column, libxl::Format** format) const override;
  bool writeNum(int row, int column, double value, libxl::Format* format) override;
  bool readBool(int row, int column, libxl::Format** format) const override;
  bool writeBool(int row, int column, bool value, libxl::Format* format,
                 libxl::ErrorType error) override;
  bool readBlank(int row, int column, libxl::Format** format) const override;
  bool writeBlank(int row, int column, libxl::Format* format) override;
  const wchar_t* readFormula(int row, int column, libxl::Format** format) override;
  bool writeFormula(int row, int column, const wchar_t* expr, libxl::Format* format) override;
  bool writeFormulaNum(int row, int column, const wchar_t* expr, double value,
                       libxl::Format* format) override;
  bool writeFormulaStr(int row, int column, const wchar_t* expr, const wchar_t* value,
                       libxl::Format* format) override;
  bool writeFormulaBool(int row, int column, const wchar_t* expr, bool value,
                        libxl::Format* format) override;
  const wchar_t* readComment(int row, int column) const override;
  void writeComment(int row, int column, const wchar_t* value, const wchar_t* author, int width,
                    int height) override;
  void removeComment(int row, int column) override;
  bool isDate(int row, int column) const override;
  libxl::ErrorType readError(int row, int column) const override;
  void writeError(int row, int column, libxl::ErrorType error, libxl::Format* format) override;

  // Sizes, hidden rows and columns, groups, merged ranges, cleared and copied cells.
  double colWidth(int column) const override;
  double rowHeight(int row) const override;
  bool setCol(int colFirst, int colLast, double width, libxl::Format* format, bool hidden) override;
  bool setRow(int row, double height, libxl::Format* format, bool hidden) override;
  bool rowHidden(int row) const override;
  bool setRowHidden(int row, bool hidden) override;
  bool colHidden(int column) const override;
  bool setColHidden(int column, bool hidden) override;
  bool groupRows(int rowFirst, int rowLast, bool collapsed) override;
  bool groupCols(int colFirst, int colLast, bool collapsed) override;
  bool groupSummaryBelow() const override;
  void setGroupSummaryBelow(bool below) override;
  bool groupSummaryRight() const override;
  void setGroupSummaryRight(bool right) override;
  bool getMerge(int row, int column, int* rowFirst, int* rowLast, int* colFirst,
                int* colLast) override;
  bool setMerge(int rowFirst, int rowLast, int colFirst, int colLast) override;
  bool delMerge(int row, int column) override;
  int mergeSize() const override;
  bool merge(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast) override;
  bool delMergeByIndex(int index) override;
  void clear(int rowFirst, int rowLast, int colFirst, int colLast) override;
  bool copyCell(int rowSrc, int colSrc, int rowDst, int colDst) override;
  void setAutoFitArea(int rowFirst, int colFirst, int rowLast, int colLast) override;

  int firstRow() const override;
  int lastRow() const override;
  int firstCol() const override;
  int lastCol() const override;

  void addrToRowCol(const wchar_t* addr, int* row, int* column, bool* rowRelative,
                    bool* colRelative) override;
  const wchar_t* rowColToAddr(int row, int column, bool rowRelative, bool colRelative) override;

  // Names.
  const wchar_t* name() const override;
  void setName(const wchar_t* name) override;
  bool getNamedRange(const wchar_t* name, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                     int scopeId, bool* hidden) const override;
  bool setNamedRange(const wchar_t* name, int rowFirst, int rowLast, int colFirst, int colLast,
                     int scopeId) override;
  bool delNamedRange(const wchar_t* name, int scopeId) override;
  int namedRangeSize() const override;
  const wchar_t* namedRange(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                            int* scopeId, bool* hidden) const override;
  bool printRepeatRows(int* rowFirst, int* rowLast) const override;
  void setPrintRepeatRows(int rowFirst, int rowLast) override;
  bool printRepeatCols(int* colFirst, int* colLast) const override;
  void setPrintRepeatCols(int colFirst, int colLast) override;
  bool printArea(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const override;
  void setPrintArea(int rowFirst, int rowLast, int colFirst, int colLast) override;
  void clearPrintRepeats() override;
  void clearPrintArea() override;

  // Links.
  int hyperlinkSize() const override;
  const wchar_t* hyperlink(int index, int* rowFirst, int* rowLast, int* colFirst,
                           int* colLast) const override;
  bool delHyperlink(int index) override;
  void addHyperlink(const wchar_t* hyperlink, int rowFirst, int rowLast, int colFirst,
                    int colLast) override;

 private:
  using Style = std::optional<std::uint32_t>;

  const SheetContents& contents() const { return sheet_->contents(); }
  const Limits& limits() const { return book_.workbook().limits; }

  // Steps of an operation, in the order in which refusals are told. Each sets the message.
  bool check_cell(int row, int column) const {
    const Grid& grid = limits().grid;
    if (row >= 0 && row < grid.rows && column >= 0 && column < grid.columns) [[likely]]
      return true;
    return refuse_cell(row, column);
  }
  // Of the grid, the first ones not after the last.
  bool check_rows(int first, int last) const;
  bool check_columns(int first, int last) const;
  bool check_range(const CellRange& range) const;
  bool check_format(const libxl::Format* format, Style* style) const;
  bool check_loaded(int row) const {
    if (sheet_->loading != Loading::kPartly) [[likely]]
      return true;
    return find_loaded(row);
  }
  bool check_loaded_rows(int first, int last) const;
  // What follows the arguments of a write: the row is loaded, the cell stands in no array.
  bool check_writable(int row, int column) const;
  // The steps before an operation looks at a cell, and those before it writes one.
  bool check_read(int row, int column) const {
    return check_cell(row, column) && check_loaded(row);
  }
  bool check_write(int row, int column, const libxl::Format* format, Style* style) const;
  bool check_error(int error) const;
  bool check_comments() const;
  bool check_links() const;
  bool check_scope(int scope) const;
  // The name that a scope leads to: undefined, the sheet's own comes before the book's.
  const DefinedName* find_name(const std::string& name, int scope) const;
  bool check_pixels(std::string_view property, int pixels) const;

  // -1 stands for a size that follows the contents.
  bool check_size(std::string_view property, double size, double limit) const;
  bool check_mergeable(const CellRange& range) const;
  bool check_merge(int index) const;

  bool refuse_cell(int row, int column) const;
  bool find_loaded(int row) const;
  void refuse_kind(int row, int column, ValueKind holds, ValueKind wanted) const;

  void give_format(const Cell* cell, int row, int column, libxl::Format** format) const;
  // The record with the formula that fills the cell, its own or that of its array; else null.
  // `anchor`, if given, becomes the cell that holds it.
  const CellRecord* formula_record(const Cell& cell, CellAddress at, CellAddress* anchor) const;

  bool put(int row, int column, Value value, Style style);
  bool put_formula(int row, int column, std::string_view formula, Value value, Style style);
  bool add_group(formula::Axis axis, int first, int last, bool collapsed);
  // Takes a text into text_. False, with the message set, when it is too long.
  bool take_text(const wchar_t* value, std::string_view what, std::size_t limit);
  // The text of a formula as the model keeps it, valid until the book's next one; nothing, with
  // the message set, when it is none.
  std::optional<std::string_view> take_formula(int row, int column, const wchar_t* expr);
  // First row and column 0 and last ones -1 without cells.
  CellRange used_range() const;

  engine::Sheet* sheet_;
  std::string text_;  // reused by every text that is taken
};

}  // namespace engine::api

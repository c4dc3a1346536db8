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

  int firstRow() const override;
  int lastRow() const override;
  int firstCol() const override;
  int lastCol() const override;

  const wchar_t* name() const override;
  void addrToRowCol(const wchar_t* addr, int* row, int* column, bool* rowRelative,
                    bool* colRelative) override;
  const wchar_t* rowColToAddr(int row, int column, bool rowRelative, bool colRelative) override;

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
  bool check_format(const libxl::Format* format, Style* style) const;
  bool check_loaded(int row) const {
    if (sheet_->loading != Loading::kPartly) [[likely]]
      return true;
    return find_loaded(row);
  }
  // What follows the arguments of a write: the row is loaded, the cell stands in no array.
  bool check_writable(int row, int column) const;
  // The steps before an operation looks at a cell, and those before it writes one.
  bool check_read(int row, int column) const {
    return check_cell(row, column) && check_loaded(row);
  }
  bool check_write(int row, int column, const libxl::Format* format, Style* style) const;
  bool check_error(int error) const;
  bool check_comments() const;
  bool check_pixels(std::string_view property, int pixels) const;

  bool refuse_cell(int row, int column) const;
  bool find_loaded(int row) const;
  void refuse_kind(int row, int column, ValueKind holds, ValueKind wanted) const;

  void give_format(const Cell* cell, int row, int column, libxl::Format** format) const;
  // The record with the formula that fills the cell, its own or that of its array; else null.
  // `anchor`, if given, becomes the cell that holds it.
  const CellRecord* formula_record(const Cell& cell, CellAddress at, CellAddress* anchor) const;

  bool put(int row, int column, Value value, Style style);
  bool put_formula(int row, int column, std::string_view formula, Value value, Style style);
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

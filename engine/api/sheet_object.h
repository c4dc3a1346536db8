// A worksheet as the interface shows it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/api/auto_filter.h"
#include "engine/api/book_context.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class SheetObject final : public libxl::Sheet, public BookPart {
 public:
  SheetObject(BookContext& book, engine::Sheet& sheet) : BookPart(book, "sheet"), sheet_(&sheet) {}

  // Null once the sheet has left the book.
  engine::Sheet* sheet() const { return sheet_; }
  void detach() noexcept {
    BookPart::detach();
    if (filter_) filter_->detach();
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

  // Page breaks, panes, view, protection, tab.
  int getHorPageBreak(int index) const override;
  int getHorPageBreakSize() const override;
  int getVerPageBreak(int index) const override;
  int getVerPageBreakSize() const override;
  bool setHorPageBreak(int row, bool pageBreak) override;
  bool setVerPageBreak(int column, bool pageBreak) override;
  void split(int row, int column) override;
  bool splitInfo(int* row, int* column) const override;
  bool displayGridlines() const override;
  void setDisplayGridlines(bool show) override;
  int zoom() const override;
  void setZoom(int zoom) override;
  bool rightToLeft() const override;
  void setRightToLeft(bool rightToLeft) override;
  void getTopLeftView(int* row, int* column) const override;
  void setTopLeftView(int row, int column) override;
  bool protect() const override;
  void setProtect(bool protect, const wchar_t* password,
                  libxl::EnhancedProtection enhancedProtection) override;
  libxl::SheetState hidden() const override;
  bool setHidden(libxl::SheetState state) override;
  void setTabColor(libxl::Color color) override;
  void setTabColor(int red, int green, int blue) override;

  // Page setup.
  bool printGridlines() const override;
  void setPrintGridlines(bool print) override;
  bool printRowCol() const override;
  void setPrintRowCol(bool print) override;
  bool hCenter() const override;
  void setHCenter(bool hCenter) override;
  bool vCenter() const override;
  void setVCenter(bool vCenter) override;
  int printZoom() const override;
  void setPrintZoom(int zoom) override;
  bool getPrintFit(int* wPages, int* hPages) const override;
  void setPrintFit(int wPages, int hPages) override;
  bool landscape() const override;
  void setLandscape(bool landscape) override;
  libxl::Paper paper() const override;
  void setPaper(libxl::Paper paper) override;
  const wchar_t* header() const override;
  bool setHeader(const wchar_t* header, double margin) override;
  double headerMargin() const override;
  const wchar_t* footer() const override;
  bool setFooter(const wchar_t* footer, double margin) override;
  double footerMargin() const override;
  double marginLeft() const override;
  void setMarginLeft(double margin) override;
  double marginRight() const override;
  void setMarginRight(double margin) override;
  double marginTop() const override;
  void setMarginTop(double margin) override;
  double marginBottom() const override;
  void setMarginBottom(double margin) override;

  // Pictures.
  int pictureSize() const override;
  int getPicture(int index, int* rowTop, int* colLeft, int* rowBottom, int* colRight, int* width,
                 int* height, int* offsetX, int* offsetY, const wchar_t** linkPath) const override;
  void setPicture(int row, int column, int pictureId, double scale, int offsetX, int offsetY,
                  libxl::Position pos) override;
  void setPicture2(int row, int column, int pictureId, int width, int height, int offsetX,
                   int offsetY, libxl::Position pos) override;

  // Rows and columns come and go.
  bool insertRow(int rowFirst, int rowLast, bool updateNamedRanges) override;
  bool insertCol(int colFirst, int colLast, bool updateNamedRanges) override;
  bool removeRow(int rowFirst, int rowLast, bool updateNamedRanges) override;
  bool removeCol(int colFirst, int colLast, bool updateNamedRanges) override;

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

  // Tables and the filter.
  int tableSize() const override;
  const wchar_t* table(int index, int* rowFirst, int* rowLast, int* colFirst, int* colLast,
                       int* headerRowCount, int* totalsRowCount) const override;
  libxl::AutoFilter* autoFilter() override;
  void applyFilter() override;
  void removeFilter() override;

  // Links.
  int hyperlinkSize() const override;
  const wchar_t* hyperlink(int index, int* rowFirst, int* rowLast, int* colFirst,
                           int* colLast) const override;
  bool delHyperlink(int index) override;
  void addHyperlink(const wchar_t* hyperlink, int rowFirst, int rowLast, int colFirst,
                    int colLast) override;

  // Data validations and ignored errors.
  bool addIgnoredError(int rowFirst, int colFirst, int rowLast, int colLast,
                       libxl::IgnoredError iError) override;
  void addDataValidation(libxl::DataValidationType type, libxl::DataValidationOperator op,
                         int rowFirst, int rowLast, int colFirst, int colLast,
                         const wchar_t* value1, const wchar_t* value2, bool allowBlank,
                         bool hideDropDown, bool showInputMessage, bool showErrorMessage,
                         const wchar_t* promptTitle, const wchar_t* prompt,
                         const wchar_t* errorTitle, const wchar_t* error,
                         libxl::DataValidationErrorStyle errorStyle) override;
  void addDataValidationDouble(libxl::DataValidationType type, libxl::DataValidationOperator op,
                               int rowFirst, int rowLast, int colFirst, int colLast, double value1,
                               double value2, bool allowBlank, bool hideDropDown,
                               bool showInputMessage, bool showErrorMessage,
                               const wchar_t* promptTitle, const wchar_t* prompt,
                               const wchar_t* errorTitle, const wchar_t* error,
                               libxl::DataValidationErrorStyle errorStyle) override;
  void removeDataValidations() override;

  // Steps that the sheet's filter takes, too: a range is one of the grid, the first ones not after
  // the last, and meets no table. Each sets the message.
  bool check_range(const CellRange& range) const;
  bool check_tables(const CellRange& range) const;

 private:
  using Style = std::optional<std::uint32_t>;

  const SheetContents& contents() const { return sheet_->contents(); }
  const Limits& limits() const { return book_.workbook().limits; }

  // Steps of an operation, in the order in which refusals are told. Each sets the message.
  bool check_cell(int row, int column) const {
    // Beyond the last as well as before the first.
    const auto is_within = [](int number, int count) {
      return static_cast<unsigned>(number) < static_cast<unsigned>(count);
    };
    const Grid& grid = limits().grid;
    if (is_within(row, grid.rows) && is_within(column, grid.columns)) [[likely]]
      return true;
    return refuse_cell(row, column);
  }
  // Of the grid, the first ones not after the last.
  bool check_rows(int first, int last) const;
  bool check_columns(int first, int last) const;
  bool check_format(const libxl::Format* format, Style* style) const;
  bool check_loaded(int row) const {
    if (sheet_->loading != Loading::kPartly) [[likely]]
      return true;
    return find_loaded(row);
  }
  bool check_loaded_rows(int first, int last) const;
  // What follows the arguments of a write: the row is loaded, the cell stands in no array.
  bool check_writable(int row, int column) const {
    const bool has_bindings = !contents().arrays.empty() || !contents().shared_formulas.empty();
    return check_loaded(row) && (!has_bindings || check_bindings(row, column));
  }
  bool check_bindings(int row, int column) const;
  // The steps before an operation looks at a cell, and those before it writes one.
  bool check_read(int row, int column) const {
    return check_cell(row, column) && check_loaded(row);
  }
  bool check_write(int row, int column, const libxl::Format* format, Style* style) const {
    return (!format || check_format(format, style)) && check_writable(row, column);
  }
  bool check_error(int error) const;
  bool check_comments() const;
  bool check_links() const;
  bool check_scope(int scope) const;
  // The name that a scope leads to: undefined, the sheet's own comes before the book's.
  const DefinedName* find_name(const std::string& name, int scope) const;
  bool check_pixels(std::string_view property, int pixels) const;

  // Steps of adding a validation. `number` is that of a value; it stands in text_.
  bool begin_validation(int type, int comparison, const CellRange& cells, Validation& rule) const;
  bool take_value(const CellRange& cells, Validation& rule, std::size_t number);
  bool names_cells(const CellRange& cells) const;
  bool take_list(Validation& rule, std::size_t number);
  bool take_messages(const wchar_t* prompt_title, const wchar_t* prompt, const wchar_t* error_title,
                     const wchar_t* error, Validation& rule);
  void end_validation(int error_style, const CellRange& cells, Validation& rule);

  // -1 stands for a size that follows the contents.
  bool check_size(std::string_view property, double size, double limit) const;
  bool check_mergeable(const CellRange& range) const;
  bool check_merge(int index) const;
  bool check_filter_rows() const;
  std::vector<Table> readable_tables() const;
  bool check_value(std::string_view property, int value, int low, int high) const;
  bool check_margin(std::string_view property, double margin) const;
  bool move(formula::Axis axis, formula::Move::Kind kind, int first, int last, bool names_follow);

  bool refuse_cell(int row, int column) const;
  bool find_loaded(int row) const;
  void refuse_kind(int row, int column, ValueKind holds, ValueKind wanted) const;

  void give_format(const Cell* cell, int row, int column, libxl::Format** format) const;
  // The record with the formula that fills the cell, its own or that of its array; else null.
  // `anchor`, if given, becomes the cell that holds it.
  const CellRecord* formula_record(const Cell& cell, CellAddress at, CellAddress* anchor) const;

  // Gives a part of the contents, or one of its fields, a value. Where it has that already the
  // sheet counts as unchanged.
  template <class Part>
  void set(Part SheetContents::*part, std::type_identity_t<Part> value) noexcept {
    if (contents().*part != value) sheet_->change().*part = std::move(value);
  }
  template <class Part, class Field>
  void set(Part SheetContents::*part, Field Part::*field,
           std::type_identity_t<Field> value) noexcept {
    if (contents().*part.*field != value) sheet_->change().*part.*field = std::move(value);
  }

  // What the two ways of placing a picture have in common: the steps before and behind its size.
  bool check_place(int row, int column, int picture) const;
  bool check_offsets(int x, int y, libxl::Position pos) const;
  // The size that a picture of the book has; nothing, with the message set, when it is not known.
  std::optional<PictureHeader> own_size(int picture) const;
  // `box` has the cell and the offsets.
  void place(int picture, PictureBox box, double width, double height, libxl::Position pos);

  bool set_break(PageBreakList PageBreaks::*list, const PageBreak& one, bool set);
  int break_at(const PageBreakList& list, std::string_view thing, int index) const;
  // `thing` is "header" or "footer".
  bool set_header(std::string_view thing, std::string PageSetup::*text,
                  double PageSetup::*margin_of, const wchar_t* value, double margin);
  void set_margin(std::string_view property, double PageSetup::*margin_of, double margin);

  bool put(int row, int column, Value value, Style style);
  bool put_formula(int row, int column, std::string_view formula, Value value, Style style);
  bool add_group(formula::Axis axis, int first, int last, bool collapsed);
  // Takes a text into text_. False, with the message set, when it is too long.
  bool take_text(const wchar_t* value, std::string_view what, std::size_t limit);
  // The text of a formula as the model keeps it, valid until the book's next one; nothing, with
  // the message set, when it is none.
  std::optional<std::string_view> take_formula(int row, int column, const wchar_t* expr);
  // The same of text_.
  std::optional<std::string_view> take_formula(int row, int column);
  // For a formula of that cell as callers write it.
  formula::ParseOptions formula_options(int row, int column) const;
  // First row and column 0 and last ones -1 without cells.
  CellRange used_range() const;

  engine::Sheet* sheet_;
  std::unique_ptr<AutoFilterObject> filter_;  // once somebody asked for it
  std::string text_;                          // reused by every text that is taken
};

}  // namespace engine::api

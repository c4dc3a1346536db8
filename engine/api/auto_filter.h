// The filter of a sheet and its columns as the interface gives them out: live views of the sheet's.
//
// A sheet has one filter object, with a range or without one. A column's object stays with its
// column of the sheet while the range has it and is detached when it leaves the range.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/api/book_context.h"
#include "engine/workbook/auto_filter.h"
#include "platform/libxl/libxl.h"

namespace engine::api {

class SheetObject;

class FilterColumnObject final : public libxl::FilterColumn, public BookPart {
 public:
  // The column is counted from the sheet's first one.
  FilterColumnObject(BookContext& book, engine::Sheet& sheet, int column)
      : BookPart(book, "filter column"), sheet_(&sheet), column_(column) {}

  int column() const { return column_; }
  void set_column(int column) noexcept { column_ = column; }
  void detach() noexcept {
    BookPart::detach();
    sheet_ = nullptr;
    std::wstring().swap(second_value_);
  }

  int index() const override;
  libxl::Filter filterType() const override;
  int filterSize() const override;
  const wchar_t* filter(int index) const override;
  void addFilter(const wchar_t* value) override;
  bool getTop10(double* value, bool* top, bool* percent) override;
  void setTop10(double value, bool top, bool percent) override;
  bool getCustomFilter(libxl::Operator* op1, const wchar_t** v1, libxl::Operator* op2,
                       const wchar_t** v2, bool* andOp) const override;
  void setCustomFilter(libxl::Operator op1, const wchar_t* v1, libxl::Operator op2,
                       const wchar_t* v2, bool andOp) override;
  void clear() override;

 private:
  const AutoFilter& of_sheet() const { return sheet_->contents().filter; }
  const FilterCriterion& criterion() const;
  void set(FilterCriterion criterion);
  bool check_value(const std::string& value) const;
  bool check_operator(libxl::Operator comparison) const;

  engine::Sheet* sheet_;
  int column_;
  mutable std::wstring second_value_;  // the last that was given out beside a first
};

class AutoFilterObject final : public libxl::AutoFilter, public BookPart {
 public:
  AutoFilterObject(BookContext& book, const SheetObject& owner);

  void detach() noexcept;
  // Columns follow when rows or columns of the sheet were inserted or removed, and are detached
  // when the range has them no more.
  void follow(const formula::Move& move) noexcept;
  void drop_columns() noexcept;

  bool getRef(int* rowFirst, int* rowLast, int* colFirst, int* colLast) const override;
  void setRef(int rowFirst, int rowLast, int colFirst, int colLast) override;
  libxl::FilterColumn* column(int colId) override;
  int columnSize() const override;
  libxl::FilterColumn* columnByIndex(int index) override;
  bool getSortRange(int* rowFirst, int* rowLast, int* colFirst, int* colLast) override;
  bool getSort(int* columnIndex, bool* descending) override;
  bool setSort(int columnIndex, bool descending) override;

 private:
  const engine::AutoFilter& filter() const { return sheet_->contents().filter; }
  // There is a range, and it has the column; else the message is set.
  bool check_column(int id) const;
  FilterColumnObject* column_object(int column);

  const SheetObject& owner_;
  engine::Sheet* sheet_;
  std::vector<FilterColumnObject*> columns_;  // of the range, ascending
  std::vector<std::unique_ptr<FilterColumnObject>> all_columns_;
};

}  // namespace engine::api

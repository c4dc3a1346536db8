// Operations of a sheet on how it is shown: breaks, panes, view, protection, tab.
#include "engine/api/messages.h"
#include "engine/api/sheet_object.h"
#include "engine/text/utf8.h"
#include "engine/text/wide.h"
#include "engine/workbook/sheet_operations.h"

namespace engine::api {

namespace {

constexpr auto kView = &SheetContents::view;

}  // namespace

// Page breaks.

bool SheetObject::set_break(PageBreakList PageBreaks::*list, const PageBreak& one, bool set) {
  const PageBreakList& present = contents().breaks.*list;
  if (has_break(present, one.at) == set) return true;
  if (!set) {
    remove_break(sheet_->change().breaks.*list, one.at);
    return true;
  }
  if (present.size() >= limits().page_breaks)
    return book_.refuse(false, messages::too_many("page breaks", limits().page_breaks));
  sheet_->change([&](SheetContents& changed) { put_break(changed.breaks.*list, one); });
  return true;
}

int SheetObject::break_at(const PageBreakList& list, std::string_view thing, int index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= list.size())
    return book_.refuse(-1, messages::index(thing, index, list.size()));
  return list[static_cast<std::size_t>(index)].at;
}

int SheetObject::getHorPageBreak(int index) const {
  return run(-1, [&] { return break_at(contents().breaks.rows, "row page break", index); });
}

int SheetObject::getHorPageBreakSize() const {
  return run(0, [&] { return static_cast<int>(contents().breaks.rows.size()); });
}

int SheetObject::getVerPageBreak(int index) const {
  return run(-1, [&] { return break_at(contents().breaks.columns, "column page break", index); });
}

int SheetObject::getVerPageBreakSize() const {
  return run(0, [&] { return static_cast<int>(contents().breaks.columns.size()); });
}

bool SheetObject::setHorPageBreak(int row, bool pageBreak) {
  return run(false, [&] {
    const Grid& grid = limits().grid;
    if (!check_cell(row, 0)) return false;
    if (pageBreak && !check_value("page break row", row, 1, grid.rows - 1)) return false;
    return set_break(&PageBreaks::rows, {row, 0, grid.columns - 1}, pageBreak);
  });
}

bool SheetObject::setVerPageBreak(int column, bool pageBreak) {
  return run(false, [&] {
    const Grid& grid = limits().grid;
    if (!check_cell(0, column)) return false;
    if (pageBreak && !check_value("page break column", column, 1, grid.columns - 1)) return false;
    return set_break(&PageBreaks::columns, {column, 0, grid.rows - 1}, pageBreak);
  });
}

// View.

void SheetObject::split(int row, int column) {
  run([&] {
    if (!check_cell(row, column)) return;
    const SheetView& view = contents().view;
    if (row == view.frozen_rows && column == view.frozen_columns) return;
    set(kView, freeze(view, row, column));
  });
}

bool SheetObject::splitInfo(int* row, int* column) const {
  return run(false, [&] {
    const SheetView& view = contents().view;
    if (view.frozen_rows == 0 && view.frozen_columns == 0) return false;
    if (row) *row = view.frozen_rows;
    if (column) *column = view.frozen_columns;
    return true;
  });
}

bool SheetObject::displayGridlines() const {
  return run(false, [&] { return contents().view.gridlines; });
}
void SheetObject::setDisplayGridlines(bool show) {
  run([&] { set(kView, &SheetView::gridlines, show); });
}

int SheetObject::zoom() const {
  return run(0, [&] { return contents().view.zoom; });
}
void SheetObject::setZoom(int zoom) {
  run([&] {
    if (check_value("zoom", zoom, 10, 400)) set(kView, &SheetView::zoom, zoom);
  });
}

bool SheetObject::rightToLeft() const {
  return run(false, [&] { return contents().view.right_to_left; });
}
void SheetObject::setRightToLeft(bool rightToLeft) {
  run([&] { set(kView, &SheetView::right_to_left, rightToLeft); });
}

void SheetObject::getTopLeftView(int* row, int* column) const {
  run([&] {
    const CellAddress& cell = contents().view.top_left;
    if (row) *row = cell.row;
    if (column) *column = cell.column;
  });
}
void SheetObject::setTopLeftView(int row, int column) {
  run([&] {
    if (check_cell(row, column)) set(kView, scroll(contents().view, {row, column}));
  });
}

// Protection.

bool SheetObject::protect() const {
  return run(false, [&] { return contents().protection.on; });
}

void SheetObject::setProtect(bool protect, const wchar_t* password,
                             libxl::EnhancedProtection enhancedProtection) {
  run([&] {
    to_utf8(password, text_);
    const std::size_t length = utf16_length(text_);
    if (length > limits().password)
      return book_.refuse(messages::too_long("password", length, limits().password));
    if (!check_value("protection", enhancedProtection, libxl::ProtectDefault, kAllowAll)) return;
    Protection made;
    if (protect) {
      made.on = true;
      if (enhancedProtection != libxl::ProtectDefault)
        made.allowed = static_cast<std::uint32_t>(enhancedProtection);
      made.password = hash_password(text_, limits().password_form);
    }
    set(&SheetContents::protection, std::move(made));
  });
}

// The tab.

libxl::SheetState SheetObject::hidden() const {
  return run(libxl::StateVisible,
             [&] { return static_cast<libxl::SheetState>(sheet_->visibility); });
}

bool SheetObject::setHidden(libxl::SheetState state) {
  return run(false, [&] {
    if (state < libxl::StateVisible || state > libxl::StateVeryHidden)
      return book_.refuse(false, messages::unknown("sheet state", state));
    Workbook& workbook = book_.workbook();
    if (state == libxl::StateVisible) sheet_->visibility = SheetVisibility::kVisible;
    else if (is_only_visible(workbook, *sheet_))
      return book_.refuse(false, messages::only_visible_sheet(sheet_->name()));
    else hide_sheet(workbook, book_.document(), *sheet_, static_cast<SheetVisibility>(state));
    return true;
  });
}

void SheetObject::setTabColor(libxl::Color color) {
  run([&] {
    const auto known = color_of_number(color, book_.rgb_mode());
    if (!known) return book_.refuse(messages::unknown("colour", color));
    // What the system decides is no colour of a tab.
    set(&SheetContents::tab_color, known->kind == ColorKind::kAutomatic ? Color() : *known);
  });
}

void SheetObject::setTabColor(int red, int green, int blue) {
  run([&] {
    for (const auto& [property, part] :
         {std::pair("red", red), std::pair("green", green), std::pair("blue", blue)})
      if (!check_value(property, part, 0, 255)) return;
    set(&SheetContents::tab_color,
        Color::rgb(static_cast<std::uint32_t>(red << 16 | green << 8 | blue)));
  });
}

}  // namespace engine::api

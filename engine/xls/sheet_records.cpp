#include "engine/xls/sheet_records.h"

#include <algorithm>
#include <cmath>

#include "engine/workbook/outline.h"
#include "engine/workbook/page_breaks.h"
#include "engine/xls/filters.h"
#include "engine/xls/future_records.h"
#include "engine/xls/ignored_errors.h"
#include "engine/xls/records.h"
#include "engine/xls/validations.h"

namespace engine::xls {

namespace {

constexpr double kTwip = 1.0 / 20;  // points

// Sizes.

void read_column_run(Fields& in, SheetReading& to) {
  constexpr unsigned kHidden = 0x01;
  constexpr unsigned kUserSet = 0x02;
  constexpr unsigned kBestFit = 0x04;
  constexpr unsigned kCollapsed = 0x1000;
  ColumnProperties one;
  one.first = in.take16();
  one.last = std::min<int>(in.take16(), to.context.workbook.limits.grid.columns - 1);
  one.width = in.take16() / 256.0;
  one.style = to.context.globals.format(in.take16());
  const unsigned flags = in.take16();
  one.hidden = (flags & kHidden) != 0;
  one.custom_width = (flags & kUserSet) != 0;
  one.best_fit = (flags & kBestFit) != 0;
  one.outline_level = static_cast<std::uint8_t>(flags >> 8 & 7);
  one.collapsed = (flags & kCollapsed) != 0;
  if (in.ok()) to.columns.push_back(one);
}

void read_default_column_width(Fields& in, SheetReading& to) {
  const int width = in.take16();
  if (in.ok() && width <= 255) to.sheet.base_column_width = width;
}

void read_standard_width(Fields& in, SheetReading& to) {
  const unsigned width = in.take16();
  if (in.ok()) to.sheet.default_column_width = width / 256.0;
}

void read_default_row_height(Fields& in, SheetReading& to) {
  const unsigned flags = in.take16();
  const double height = in.take16() * kTwip;
  if (!in.ok()) return;
  to.sheet.default_row_height = height;
  to.sheet.hides_rows = (flags & 2) != 0;
}

void read_options(Fields& in, SheetReading& to) {
  const unsigned flags = in.take16();
  if (!in.ok()) return;
  to.sheet.summary_below = (flags & 0x40) != 0;
  to.sheet.summary_right = (flags & 0x80) != 0;
  to.sheet.page.fitted = (flags & 0x100) != 0;
}

// Pages.

template <double PageSetup::*Margin>
void read_margin(Fields& in, SheetReading& to) {
  const double margin = in.take_double();
  if (in.ok() && margin >= 0 && margin < 50) to.sheet.page.*Margin = margin;
}

template <bool PageSetup::*Option>
void read_option(Fields& in, SheetReading& to) {
  to.sheet.page.*Option = in.take16() == 1;
}

template <std::string PageSetup::*Text>
void read_page_text(Fields& in, SheetReading& to) {
  if (in.at_end()) return;
  std::string text = in.take_long_text();
  if (in.ok()) to.sheet.page.*Text = std::move(text);
}

void read_page_setup(Fields& in, SheetReading& to) {
  constexpr unsigned kPortrait = 0x02;
  constexpr unsigned kNoPrinter = 0x04;  // paper, scale and orientation say nothing
  constexpr unsigned kNoOrientation = 0x40;
  PageSetup page = to.sheet.page;
  const int paper = in.take16();
  const int zoom = in.take16();
  in.skip(2);
  page.pages_wide = in.take16();
  page.pages_tall = in.take16();
  const unsigned flags = in.take16();
  in.skip(4);
  const double header = in.take_double();
  const double footer = in.take_double();
  if (!in.ok()) return;
  if ((flags & kNoPrinter) == 0) {
    page.paper = paper;
    if (zoom >= 10 && zoom <= 400) page.zoom = zoom;
    page.landscape = (flags & (kPortrait | kNoOrientation)) == 0;
  }
  if (header >= 0 && header < 50) page.header_margin = header;
  if (footer >= 0 && footer < 50) page.footer_margin = footer;
  to.sheet.page = page;
}

PageBreakList read_breaks(Fields& in, int count, int across) {
  PageBreakList list;
  for (std::size_t left = in.take16(); left > 0 && !in.at_end(); --left) {
    PageBreak one;
    one.at = in.take16();
    one.first = in.take16();
    one.last = std::min<int>(in.take16(), across - 1);
    if (in.ok() && one.at > 0 && one.at < count) put_break(list, one);
  }
  return list;
}

void read_row_breaks(Fields& in, SheetReading& to) {
  const Grid& grid = to.context.workbook.limits.grid;
  to.sheet.breaks.rows = read_breaks(in, grid.rows, grid.columns);
}

void read_column_breaks(Fields& in, SheetReading& to) {
  const Grid& grid = to.context.workbook.limits.grid;
  to.sheet.breaks.columns = read_breaks(in, grid.columns, grid.rows);
}

// The view.

void read_window(Fields& in, SheetReading& to) {
  constexpr unsigned kGridlines = 0x02;
  constexpr unsigned kFrozen = 0x08;
  constexpr unsigned kRightToLeft = 0x40;
  constexpr unsigned kPreview = 0x800;
  const unsigned flags = in.take16();
  const int row = in.take16();
  const int column = in.take16();
  if (!in.ok()) return;
  SheetView& view = to.sheet.view;
  view.gridlines = (flags & kGridlines) != 0;
  view.right_to_left = (flags & kRightToLeft) != 0;
  view.top_left = {row, std::min(column, to.context.workbook.limits.grid.columns - 1)};
  to.frozen = (flags & kFrozen) != 0;
  to.flags.selected = (flags & kTabSelected) != 0;
  to.preview = (flags & kPreview) != 0;
  in.skip(6);
  const int normal_zoom = in.take16();
  if (to.preview && in.ok() && normal_zoom >= 10 && normal_zoom <= 400) view.zoom = normal_zoom;
}

// What it scales is what the window shows, which may be pages.
void read_zoom(Fields& in, SheetReading& to) {
  const int numerator = in.take16();
  const int denominator = in.take16();
  if (!in.ok() || denominator == 0 || to.preview) return;
  const long zoom = std::lround(100.0 * numerator / denominator);
  if (zoom >= 10 && zoom <= 400) to.sheet.view.zoom = static_cast<int>(zoom);
}

// A pane that is not frozen is a bar that can be moved.
void read_pane(Fields& in, SheetReading& to) {
  const int columns = in.take16();
  const int rows = in.take16();
  const int row = in.take16();
  const int column = in.take16();
  if (!in.ok() || !to.frozen) return;
  SheetView& view = to.sheet.view;
  view.frozen_from = view.top_left;
  view.frozen_rows = rows;
  view.frozen_columns = columns;
  if (rows != 0) view.top_left.row = row;
  if (columns != 0) view.top_left.column = std::min(column, 255);
}

void read_reference_mode(Fields& in, SheetReading& to) {
  to.flags.r1c1 = in.take16() == 0 && in.ok();
}

// Protection.

void read_protect(Fields& in, SheetReading& to) { to.sheet.protection.on = in.take16() == 1; }

void read_password(Fields& in, SheetReading& to) {
  to.sheet.protection.password.short_hash = in.take16();
}

void read_object_protect(Fields& in, SheetReading& to) { to.objects_locked = in.take16() == 1; }
void read_scenario_protect(Fields& in, SheetReading& to) { to.scenarios_locked = in.take16() == 1; }

bool is_of_protection(std::string_view data) { return feature_of(data) == Feature::kProtection; }

void read_feature_header(Fields& in, SheetReading& to) {
  in.skip(kFutureHead + 3);
  const bool has_data = in.take32() != 0;
  const std::uint32_t allowed = in.take32();
  if (!has_data || !in.ok()) return;
  to.sheet.protection.allowed = allowed & kAllowAll;
  to.has_features = true;
}

// Other things.

void read_merges(Fields& in, SheetReading& to) {
  const Grid& grid = to.context.workbook.limits.grid;
  for (std::size_t left = in.take16(); left > 0 && !in.at_end(); --left) {
    const auto range = take_range(in, grid);
    if (range && (range->row_first != range->row_last || range->column_first != range->column_last))
      to.sheet.merges.add(*range);
  }
}

void read_tab(Fields& in, SheetReading& to) {
  in.skip(16);
  const std::uint32_t color = in.take32() & 0x7F;
  if (in.ok() && color >= kPaletteFirst && color < kPaletteFirst + kPaletteSize)
    to.sheet.tab_color = Color::indexed(color);
}

void read_note(Fields& in, SheetReading& to) {
  to.drawing.take_note(in, to.context.workbook.limits.grid);
}

// Ascending.
constexpr SheetRecord kSheetRecords[] = {
    {kFormula, SheetGroup::kCells, nullptr},
    {kReferenceMode, SheetGroup::kReferenceMode, read_reference_mode},
    {kProtect, SheetGroup::kProtection, read_protect},
    {kPassword, SheetGroup::kProtection, read_password},
    {kHeader, SheetGroup::kHeader, read_page_text<&PageSetup::header>},
    {kFooter, SheetGroup::kFooter, read_page_text<&PageSetup::footer>},
    {kVerticalBreaks, SheetGroup::kColumnBreaks, read_column_breaks},
    {kHorizontalBreaks, SheetGroup::kRowBreaks, read_row_breaks},
    {kNote, SheetGroup::kDrawing, read_note},
    {kSelection, SheetGroup::kSelection, nullptr},
    {kLeftMargin, SheetGroup::kLeftMargin, read_margin<&PageSetup::left_margin>},
    {kRightMargin, SheetGroup::kRightMargin, read_margin<&PageSetup::right_margin>},
    {kTopMargin, SheetGroup::kTopMargin, read_margin<&PageSetup::top_margin>},
    {kBottomMargin, SheetGroup::kBottomMargin, read_margin<&PageSetup::bottom_margin>},
    {kPrintHeadings, SheetGroup::kPrintHeadings, read_option<&PageSetup::headings>},
    {kPrintGridlines, SheetGroup::kPrintGridlines, read_option<&PageSetup::gridlines>},
    {kPane, SheetGroup::kPanes, read_pane},
    {kDefaultColumnWidth, SheetGroup::kColumnWidth, read_default_column_width},
    {kObject, SheetGroup::kDrawing, nullptr},
    {kObjectProtect, SheetGroup::kProtection, read_object_protect},
    {kColumns, SheetGroup::kColumns, read_column_run},
    {kGuts, SheetGroup::kOutline, nullptr},
    {kSheetOptions, SheetGroup::kOptions, read_options},
    {kGridSet, SheetGroup::kGridSet, nullptr},
    {kCenterAcross, SheetGroup::kCenterAcross, read_option<&PageSetup::centered_across>},
    {kCenterDown, SheetGroup::kCenterDown, read_option<&PageSetup::centered_down>},
    {kStandardWidth, SheetGroup::kStandardWidth, read_standard_width},
    {kFiltered, SheetGroup::kFilter, read_filtered},
    {kFilterInfo, SheetGroup::kFilter, read_filter_info},
    {kFilterColumn, SheetGroup::kFilter, read_filter_column},
    {kZoom, SheetGroup::kZoom, read_zoom},
    {kPageSetup, SheetGroup::kPageSetup, read_page_setup},
    {kMulRk, SheetGroup::kCells, nullptr},
    {kMulBlank, SheetGroup::kCells, nullptr},
    {kRichText, SheetGroup::kCells, nullptr},
    {kDbCell, SheetGroup::kCells, nullptr},
    {kScenarioProtect, SheetGroup::kProtection, read_scenario_protect},
    {kMerges, SheetGroup::kMerges, read_merges},
    {kDrawing, SheetGroup::kDrawing, nullptr},
    {kDrawingSelection, SheetGroup::kDrawing, nullptr},
    {kTextCell, SheetGroup::kCells, nullptr},
    {kValidations, SheetGroup::kValidations, nullptr},
    {kTextBox, SheetGroup::kDrawing, nullptr},
    {kLink, SheetGroup::kLinks, read_link},
    {kCodeName, SheetGroup::kCodeName, nullptr},
    {kValidation, SheetGroup::kValidations, read_validation},
    {kDimensions, SheetGroup::kCells, nullptr},
    {kBlank, SheetGroup::kCells, nullptr},
    {kNumber, SheetGroup::kCells, nullptr},
    {kLabel, SheetGroup::kCells, nullptr},
    {kBooleanOrError, SheetGroup::kCells, nullptr},
    {kFormulaOf3, SheetGroup::kCells, nullptr},
    {kString, SheetGroup::kCells, nullptr},
    {kRow, SheetGroup::kCells, nullptr},
    {kIndex, SheetGroup::kIndex, nullptr},
    {kArray, SheetGroup::kCells, nullptr},
    {kDefaultRowHeight, SheetGroup::kRowHeight, read_default_row_height},
    {kDataTable, SheetGroup::kCells, nullptr},
    {kWindow2, SheetGroup::kWindow, read_window},
    {kRk, SheetGroup::kCells, nullptr},
    {kFormulaOf4, SheetGroup::kCells, nullptr},
    {kShared, SheetGroup::kCells, nullptr},
    {kLinkTip, SheetGroup::kLinks, nullptr},
    {kBof, SheetGroup::kDrawing, nullptr},  // of a chart in it
    {kSheetExtension, SheetGroup::kTab, read_tab},
    {kFeatureHeader, SheetGroup::kPermissions, read_feature_header, is_of_protection},
    {kFeatureHeader, SheetGroup::kIgnoredErrors, nullptr, is_of_ignored_errors},
    {kFeature, SheetGroup::kIgnoredErrors, read_ignored_errors, is_of_ignored_errors},
    {kTableHeader, SheetGroup::kTables, nullptr},
    {kFutureFilterColumn, SheetGroup::kFilter, read_future_filter, is_of_sheet_filter},
    {kSortState, SheetGroup::kFilter, read_future_filter, is_sort_of_sheet_filter},
};
static_assert(std::ranges::is_sorted(kSheetRecords, {}, &SheetRecord::id));

}  // namespace

const SheetRecord* find_sheet_record(std::uint16_t id, std::string_view data) {
  for (const SheetRecord& one : std::ranges::equal_range(kSheetRecords, id, {}, &SheetRecord::id))
    if (!one.is_meant || one.is_meant(data)) return &one;
  return nullptr;
}

std::optional<CellRange> take_range(Fields& in, const Grid& grid) {
  CellRange range;
  range.row_first = in.take16();
  range.row_last = in.take16();
  range.column_first = in.take16();
  range.column_last = in.take16();
  const bool in_order =
      range.row_first <= range.row_last && range.column_first <= range.column_last;
  if (!in.ok() || !in_order || !grid.holds(range.row_last, range.column_last)) return std::nullopt;
  return range;
}

std::optional<SheetGroup> group_of_record(std::uint16_t id, std::string_view data) {
  const SheetRecord* const found = find_sheet_record(id, data);
  return found ? found->group : std::nullopt;
}

void finish_sheet_records(SheetReading& reading) {
  std::ranges::stable_sort(reading.columns, {}, &ColumnProperties::first);
  int free = 0;  // the first column that no run tells of so far
  for (ColumnProperties& one : reading.columns) {
    one.first = std::max(one.first, free);
    if (one.first > one.last) continue;
    free = one.last + 1;
    reading.sheet.columns.append(one);
  }
  reading.drawing.finish(reading.sheet, reading.context.workbook.limits.grid);
  finish_filter(reading);
  Protection& protection = reading.sheet.protection;
  if (!protection.on) {
    protection = {};
  } else if (!reading.has_features) {
    // As programs did that know no finer protection.
    if (!reading.objects_locked) protection.allowed |= kAllowObjects;
    if (!reading.scenarios_locked) protection.allowed |= kAllowScenarios;
  }
}

}  // namespace engine::xls

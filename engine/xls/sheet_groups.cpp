#include "engine/xls/sheet_groups.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>
#include <utility>

#include "engine/workbook/auto_fit.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/outline.h"
#include "engine/xls/fields.h"
#include "engine/xls/filters.h"
#include "engine/xls/future_records.h"
#include "engine/xls/ignored_errors.h"
#include "engine/xls/links_write.h"
#include "engine/xls/validations.h"

namespace engine::xls {

namespace {

std::uint32_t unsigned_of(int value) { return static_cast<std::uint32_t>(value); }
std::uint32_t twips(double points) { return static_cast<std::uint32_t>(std::lround(points * 20)); }

void put_flag(SheetWriting& to, std::uint16_t id, bool flag) {
  to.out.record(id, {flag ? 1U : 0U});
}
void put_data(SheetWriting& to, std::uint16_t id, const PatchedData& data) {
  to.out.copy(id, data.data());
}

// For groups that only new sheets lack, or that are always as they were.
bool never(const SheetWriting& /*to*/) { return false; }
bool always(const SheetWriting& /*to*/) { return true; }
// For those that the file alone may have, in front of which others stand.
void write_nothing(SheetWriting& /*to*/, RecordReader* /*old*/) {}

// Where in the record the first place is named: that of the columns, behind the rows.
constexpr std::uint64_t kFirstPlace = 16;

void write_index(SheetWriting& to, RecordReader* old) {
  if (to.base && !old) return;  // whoever wrote the file did without
  to.index = to.out.position();
  to.out.begin(kIndex);
  to.out.put32(0);
  to.out.put32(to.cells.first_row());
  to.out.put32(to.cells.end_row());
  for (std::size_t i = 0; i < to.cells.block_count() + 1; ++i) to.out.put32(0);
  to.out.end();
}

// The calculation.

void write_calculation(SheetWriting& to, RecordReader* /*old*/) {
  to.out.record(kCalculationMode, {1});
  to.out.record(kCalculationCount, {100});
}

void write_reference_mode(SheetWriting& to, RecordReader* old) {
  if (to.base && !old && !to.book.book.r1c1) return;
  put_flag(to, kReferenceMode, !to.book.book.r1c1);
}

void write_iteration(SheetWriting& to, RecordReader* /*old*/) {
  constexpr double kUsualDelta = 0.001;
  to.out.record(kIteration, {0});
  to.out.begin(kDelta);
  to.out.put_double(kUsualDelta);
  to.out.end();
  to.out.record(kSaveRecalculated, {1});
}

// Pages.

template <auto Field>
bool page_differs(const SheetWriting& to) {
  return to.contents.page.*Field != to.base->page.*Field;
}

template <std::uint16_t Id, bool PageSetup::*Option>
void write_page_option(SheetWriting& to, RecordReader* /*old*/) {
  put_flag(to, Id, to.contents.page.*Option);
}

template <std::uint16_t Id, double PageSetup::*Margin>
void write_margin(SheetWriting& to, RecordReader* /*old*/) {
  to.out.begin(Id);
  to.out.put_double(to.contents.page.*Margin);
  to.out.end();
}

template <std::uint16_t Id, std::string PageSetup::*Text>
void write_page_text(SheetWriting& to, RecordReader* /*old*/) {
  const std::string& text = to.contents.page.*Text;
  to.out.begin(Id);
  if (!text.empty()) to.out.put_long_text(Characters(text));
  to.out.end();
}

void write_grid_set(SheetWriting& to, RecordReader* /*old*/) { to.out.record(kGridSet, {1}); }

bool page_setup_differs(const SheetWriting& to) {
  const auto fields = [](const PageSetup& page) {
    return std::tuple(page.paper, page.zoom, page.pages_wide, page.pages_tall, page.landscape,
                      page.header_margin, page.footer_margin);
  };
  return fields(to.contents.page) != fields(to.base->page);
}

void write_page_setup(SheetWriting& to, RecordReader* old) {
  constexpr std::size_t kSize = 34;
  constexpr std::uint32_t kPortrait = 0x02;
  constexpr std::uint32_t kNoPrinter = 0x04;
  constexpr std::uint32_t kNoOrientation = 0x40;
  constexpr std::uint32_t kResolution = 600;
  const PageSetup& page = to.contents.page;
  PatchedData data(old, kSize);
  if (data.is_new()) {
    data.set16(4, 1);  // number of the first page, which counts with a flag alone
    data.set16(12, kResolution);
    data.set16(14, kResolution);
    data.set16(32, 1);
  }
  data.set16(0, unsigned_of(page.paper));
  data.set16(2, unsigned_of(page.zoom));
  data.set16(6, unsigned_of(page.pages_wide));
  data.set16(8, unsigned_of(page.pages_tall));
  data.set_bits16(10, kPortrait | kNoPrinter | kNoOrientation, page.landscape ? 0 : kPortrait);
  data.set_double(16, page.header_margin);
  data.set_double(24, page.footer_margin);
  put_data(to, kPageSetup, data);
}

template <auto Field>
bool breaks_differ(const SheetWriting& to) {
  return to.contents.breaks.*Field != to.base->breaks.*Field;
}

void put_breaks(SheetWriting& to, std::uint16_t id, const PageBreakList& breaks, int last) {
  if (breaks.empty()) return;
  to.out.begin(id);
  to.out.put16(static_cast<std::uint32_t>(breaks.size()));
  for (const PageBreak& one : breaks) {
    to.out.put16(unsigned_of(one.at));
    to.out.put16(unsigned_of(one.first));
    to.out.put16(unsigned_of(std::min(one.last, last)));
  }
  to.out.end();
}
void write_row_breaks(SheetWriting& to, RecordReader* /*old*/) {
  put_breaks(to, kHorizontalBreaks, to.contents.breaks.rows, to.book.book.limits.grid.columns - 1);
}
void write_column_breaks(SheetWriting& to, RecordReader* /*old*/) {
  put_breaks(to, kVerticalBreaks, to.contents.breaks.columns, to.book.book.limits.grid.rows - 1);
}

// Rows and columns.

// The room that buttons of groups take up beside the sheet, and how deep these are.
void write_outline(SheetWriting& to, RecordReader* old) {
  const Grid& grid = to.book.book.limits.grid;
  const auto depth = [&](formula::Axis axis, int size) {
    return static_cast<std::uint32_t>(outline_level(to.contents, axis, {0, size - 1}));
  };
  const std::uint32_t rows = depth(formula::Axis::kRows, grid.rows);
  const std::uint32_t columns = depth(formula::Axis::kColumns, grid.columns);
  const auto pixels = [](std::uint32_t levels) { return levels == 0 ? 0 : 17 + 12 * levels; };
  const auto shown = [](std::uint32_t levels) { return levels == 0 ? 0 : levels + 1; };
  if (to.base && !old && rows == 0 && columns == 0) return;
  PatchedData data(old, 8);
  const bool same = data.get16(4) == shown(rows) && data.get16(6) == shown(columns);
  if (same && !data.is_new()) return put_data(to, kGuts, data);
  to.out.record(kGuts, {pixels(rows), pixels(columns), shown(rows), shown(columns)});
}

bool row_height_differs(const SheetWriting& to) {
  return to.contents.default_row_height != to.base->default_row_height ||
         to.contents.hides_rows != to.base->hides_rows;
}

// Rows that are there are not hidden by this.
void write_row_height(SheetWriting& to, RecordReader* old) {
  PatchedData data(old, 4);
  data.set_bits16(0, 2, to.contents.hides_rows ? 2 : 0);
  data.set16(2, twips(to.contents.default_row_height));
  put_data(to, kDefaultRowHeight, data);
}

bool options_differ(const SheetWriting& to) {
  return to.contents.summary_below != to.base->summary_below ||
         to.contents.summary_right != to.base->summary_right ||
         to.contents.page.fitted != to.base->page.fitted;
}

void write_options(SheetWriting& to, RecordReader* old) {
  constexpr std::uint32_t kUsual = 0x0401;  // automatic breaks and outlines are shown
  constexpr std::uint32_t kSummaryBelow = 0x40;
  constexpr std::uint32_t kSummaryRight = 0x80;
  constexpr std::uint32_t kFitted = 0x100;
  PatchedData data(old, 2);
  if (data.is_new()) data.set16(0, kUsual);
  data.set_bits16(0, kSummaryBelow | kSummaryRight | kFitted,
                  (to.contents.summary_below ? kSummaryBelow : 0) |
                      (to.contents.summary_right ? kSummaryRight : 0) |
                      (to.contents.page.fitted ? kFitted : 0));
  put_data(to, kSheetOptions, data);
}

bool column_width_differs(const SheetWriting& to) {
  return to.contents.base_column_width != to.base->base_column_width;
}

void write_column_width(SheetWriting& to, RecordReader* /*old*/) {
  note_columns(to);
  to.out.record(kDefaultColumnWidth, {unsigned_of(to.contents.base_column_width)});
}

bool columns_differ(const SheetWriting& to) {
  return to.contents.fit_area || !std::ranges::equal(to.contents.columns, to.base->columns);
}

void write_columns(SheetWriting& to, RecordReader* /*old*/) {
  constexpr std::uint32_t kHidden = 1;
  constexpr std::uint32_t kCustomWidth = 2;
  constexpr std::uint32_t kBestFit = 4;
  constexpr std::uint32_t kCollapsed = 0x1000;
  const auto stored = [](double width) {
    return static_cast<std::uint32_t>(std::lround(width * 256));
  };
  const double usual =
      width_of_pixels(default_column_pixels(to.contents), to.contents.digit_pixels);
  for (const ColumnProperties& one : fitted_columns(to.book.book, to.contents, {})) {
    std::uint32_t flags = std::uint32_t{one.outline_level} << 8;
    if (one.hidden) flags |= kHidden;
    if (one.custom_width) flags |= kCustomWidth;
    if (one.best_fit) flags |= kBestFit;
    if (one.collapsed) flags |= kCollapsed;
    to.out.record(kColumns,
                  {unsigned_of(one.first), unsigned_of(one.last), stored(one.width.value_or(usual)),
                   to.book.styles.format(one.style), flags, 0});
  }
}

bool standard_width_differs(const SheetWriting& to) {
  return to.contents.default_column_width != to.base->default_column_width;
}

void write_standard_width(SheetWriting& to, RecordReader* /*old*/) {
  if (const auto& width = to.contents.default_column_width)
    to.out.record(kStandardWidth, {static_cast<std::uint32_t>(std::lround(*width * 256))});
}

// Cells and what lies over them.

void write_cells(SheetWriting& to, RecordReader* /*old*/) {
  CellRange used;
  const bool any = to.cells.used_range(&used);
  to.out.begin(kDimensions);
  to.out.put32(any ? unsigned_of(used.row_first) : 0);
  to.out.put32(any ? unsigned_of(used.row_last + 1) : 0);
  to.out.put16(any ? unsigned_of(used.column_first) : 0);
  to.out.put16(any ? unsigned_of(used.column_last + 1) : 0);
  to.out.put16(0);
  to.out.end();
  std::uint64_t at = to.index + kFirstPlace;
  for (const std::uint32_t block : to.cells.write())
    if (to.index != 0) to.places.push_back({at += 4, block});
}

bool drawing_differs(const SheetWriting& to) { return to.drawings.differs(to.sheet, *to.drawing); }

void write_drawing(SheetWriting& to, RecordReader* old) {
  const auto carry = [&](std::uint64_t begin, std::uint64_t end) {
    copy_records(*old, begin, end, *to.edits, to.out);
  };
  to.drawings.write_sheet(to.out, to.sheet, old ? *to.drawing : DrawingPart(), carry);
}

void write_merges(SheetWriting& to, RecordReader* /*old*/) {
  constexpr std::size_t kMaxRanges = 1026;
  const std::vector<CellRange> ranges = to.contents.merges.all();
  for (std::size_t first = 0; first < ranges.size(); first += kMaxRanges) {
    const std::size_t count = std::min(kMaxRanges, ranges.size() - first);
    to.out.begin(kMerges);
    to.out.put16(static_cast<std::uint32_t>(count));
    for (std::size_t i = first; i < first + count; ++i) put_range(to.out, ranges[i]);
    to.out.end();
  }
}

bool merges_differ(const SheetWriting& to) {
  return to.contents.merges.all() != to.base->merges.all();
}

bool links_differ(const SheetWriting& to) { return to.contents.links != to.base->links; }

void write_all_links(SheetWriting& to, RecordReader* /*old*/) {
  write_links(to.out, to.contents.links, to.book.file);
}

// The view.

bool is_frozen(const SheetView& view) { return view.frozen_rows != 0 || view.frozen_columns != 0; }

// In a direction that is not frozen the part that scrolls is all there is.
CellAddress corner_of_frozen(const SheetView& view) {
  return {view.frozen_rows != 0 ? view.frozen_from.row : view.top_left.row,
          view.frozen_columns != 0 ? view.frozen_from.column : view.top_left.column};
}

// Which tabs are selected is the book's, so a sheet that nobody has read is told here as well.
void write_window(SheetWriting& to, RecordReader* old) {
  constexpr std::size_t kSize = 18;
  constexpr std::uint32_t kUsual = 0xB4;  // headings, zeros, usual colour of lines, outlines
  constexpr std::uint32_t kGridlines = 0x02;
  constexpr std::uint32_t kFrozen = 0x108;
  constexpr std::uint32_t kRightToLeft = 0x40;
  constexpr std::uint32_t kPreview = 0x800;
  constexpr std::uint32_t kLineColor = 64;
  const Workbook& book = to.book.book;
  const bool active = book.sheets()[book.active_sheet].get() == &to.sheet;
  if (to.base && !old && to.contents.view == to.base->view && !active && !to.sheet.selected) return;
  PatchedData data(old, old ? 6 : kSize);
  if (data.is_new()) {
    data.set16(0, kUsual);
    data.set16(6, kLineColor);
  }
  data.set_bits16(0, kTabSelected | kTabActive,
                  (to.sheet.selected || active ? kTabSelected : 0) | (active ? kTabActive : 0));
  const SheetView& view = to.contents.view;
  if (!to.base || view != to.base->view) {
    const bool frozen = is_frozen(view);
    std::uint32_t flags = view.gridlines ? kGridlines : 0;
    if (view.right_to_left) flags |= kRightToLeft;
    data.set_bits16(0, kGridlines | kRightToLeft, flags);
    if (data.is_new() || frozen != is_frozen(to.base->view))
      data.set_bits16(0, kFrozen, frozen ? kFrozen : 0);
    const auto [top, left] = frozen ? corner_of_frozen(view) : view.top_left;
    data.set16(2, unsigned_of(top));
    data.set16(4, unsigned_of(left));
    // Of a sheet that is shown as pages, the zoom that counts otherwise.
    if ((data.get16(0) & kPreview) != 0 && data.data().size() >= kSize)
      data.set16(12, unsigned_of(view.zoom));
  }
  put_data(to, kWindow2, data);
}

bool zoom_differs(const SheetWriting& to) { return to.contents.view.zoom != to.base->view.zoom; }

void write_zoom(SheetWriting& to, RecordReader* old) {
  const int zoom = to.contents.view.zoom;
  if (zoom != 100 || old) to.out.record(kZoom, {unsigned_of(zoom), 100});
}

enum Pane : std::uint32_t { kLowerRight, kUpperRight, kLowerLeft, kUpperLeft };

bool panes_differ(const SheetWriting& to) {
  const SheetView& a = to.contents.view;
  const SheetView& b = to.base->view;
  return is_frozen(a) != is_frozen(b) ||
         (is_frozen(a) && (a.frozen_rows != b.frozen_rows || a.frozen_columns != b.frozen_columns ||
                           a.top_left != b.top_left));
}

bool selections_differ(const SheetWriting& to) {
  const SheetView& a = to.contents.view;
  const SheetView& b = to.base->view;
  return (a.frozen_rows != 0) != (b.frozen_rows != 0) ||
         (a.frozen_columns != 0) != (b.frozen_columns != 0);
}

void write_panes(SheetWriting& to, RecordReader* old) {
  const SheetView& view = to.contents.view;
  if (!is_frozen(view)) return;
  const bool rows = view.frozen_rows != 0;
  const bool columns = view.frozen_columns != 0;
  const Pane active = rows ? (columns ? kLowerRight : kLowerLeft) : kUpperRight;
  const auto [top, left] = view.top_left;
  PatchedData data(old, 10);
  data.set16(0, unsigned_of(view.frozen_columns));
  data.set16(2, unsigned_of(view.frozen_rows));
  data.set16(4, unsigned_of(top));
  data.set16(6, unsigned_of(left));
  if (data.is_new() || selections_differ(to)) data.set16(8, active);
  put_data(to, kPane, data);
}

void write_selection(SheetWriting& to, RecordReader* /*old*/) {
  const bool rows = to.contents.view.frozen_rows != 0;
  const bool columns = to.contents.view.frozen_columns != 0;
  for (const Pane pane : {kUpperLeft, kUpperRight, kLowerLeft, kLowerRight}) {
    const bool is_there = ((pane != kUpperRight && pane != kLowerRight) || columns) &&
                          ((pane != kLowerLeft && pane != kLowerRight) || rows);
    if (!is_there) continue;
    to.out.begin(kSelection);
    to.out.put8(pane);
    to.out.put16(0);
    to.out.put16(0);
    to.out.put16(0);
    to.out.put16(1);
    to.out.put_zeros(6);
    to.out.end();
  }
}

// Protection.

bool protection_differs(const SheetWriting& to) {
  return to.contents.protection != to.base->protection;
}

void write_protection(SheetWriting& to, RecordReader* /*old*/) {
  const Protection& protection = to.contents.protection;
  if (!protection.on) return;
  to.out.record(kProtect, {1});
  if ((protection.allowed & kAllowScenarios) == 0) to.out.record(kScenarioProtect, {1});
  if ((protection.allowed & kAllowObjects) == 0) to.out.record(kObjectProtect, {1});
  if (protection.password.short_hash != 0)
    to.out.record(kPassword, {protection.password.short_hash});
}

// What programs since let people do in a protected sheet.
void write_permissions(SheetWriting& to, RecordReader* /*old*/) {
  const Protection& protection = to.contents.protection;
  if (!protection.on) return;
  begin_feature_header(to.out, Feature::kProtection);
  to.out.put32(0xFFFFFFFF);
  to.out.put32(protection.allowed);
  to.out.end();
}

bool tab_differs(const SheetWriting& to) { return to.contents.tab_color != to.base->tab_color; }

// The colour of the tab in the palette and, of one that may be none of these, itself.
void write_tab(SheetWriting& to, RecordReader* /*old*/) {
  constexpr std::uint32_t kSize = 20;
  constexpr std::uint32_t kSizeWithColor = 40;
  constexpr std::uint32_t kNoColor = 0x7F;
  constexpr std::uint32_t kCalculatesConditions = 0x80;
  constexpr std::uint32_t kRgb = 2;
  constexpr std::uint32_t kOpaque = 0xFF;
  const Color& its = to.contents.tab_color;
  const std::uint32_t color = to.book.styles.color(its, kNoColor);
  if (color == kNoColor) return;
  const bool has_rgb = its.kind == ColorKind::kRgb;
  begin_future_record(to.out, kSheetExtension);
  to.out.put32(has_rgb ? kSizeWithColor : kSize);
  to.out.put32(color);
  if (has_rgb) {
    to.out.put32(color | kCalculatesConditions);
    to.out.put32(kRgb);
    for (const std::uint32_t part : {its.value >> 16, its.value >> 8, its.value, kOpaque})
      to.out.put8(part);
    to.out.put_double(0);
  }
  to.out.end();
}

// Rules for cells.

bool filter_differs(const SheetWriting& to) {
  return to.contents.filtered != to.base->filtered || to.contents.filter != to.base->filter;
}
void write_sheet_filter(SheetWriting& to, RecordReader* /*old*/) { write_filter(to.out, to.sheet); }

bool validations_differ(const SheetWriting& to) {
  return to.contents.validations != to.base->validations;
}
void write_rules(SheetWriting& to, RecordReader* /*old*/) {
  write_validations(to.out, to.book, to.sheet);
}

bool ignored_errors_differ(const SheetWriting& to) {
  return to.contents.ignored_errors.all() != to.base->ignored_errors.all();
}
void write_faults(SheetWriting& to, RecordReader* /*old*/) {
  write_ignored_errors(to.out, to.contents.ignored_errors);
}

// By group.
constexpr SheetGroupEntry kEntries[] = {
    {always, write_index},
    {never, write_calculation},
    {always, write_reference_mode},
    {never, write_iteration},
    {page_differs<&PageSetup::headings>, write_page_option<kPrintHeadings, &PageSetup::headings>},
    {page_differs<&PageSetup::gridlines>,
     write_page_option<kPrintGridlines, &PageSetup::gridlines>},
    {never, write_grid_set},
    {always, write_outline},
    {row_height_differs, write_row_height},
    {options_differ, write_options},
    {breaks_differ<&PageBreaks::rows>, write_row_breaks},
    {breaks_differ<&PageBreaks::columns>, write_column_breaks},
    {page_differs<&PageSetup::header>, write_page_text<kHeader, &PageSetup::header>},
    {page_differs<&PageSetup::footer>, write_page_text<kFooter, &PageSetup::footer>},
    {page_differs<&PageSetup::centered_across>,
     write_page_option<kCenterAcross, &PageSetup::centered_across>},
    {page_differs<&PageSetup::centered_down>,
     write_page_option<kCenterDown, &PageSetup::centered_down>},
    {page_differs<&PageSetup::left_margin>, write_margin<kLeftMargin, &PageSetup::left_margin>},
    {page_differs<&PageSetup::right_margin>, write_margin<kRightMargin, &PageSetup::right_margin>},
    {page_differs<&PageSetup::top_margin>, write_margin<kTopMargin, &PageSetup::top_margin>},
    {page_differs<&PageSetup::bottom_margin>,
     write_margin<kBottomMargin, &PageSetup::bottom_margin>},
    {page_setup_differs, write_page_setup},
    {protection_differs, write_protection},
    {column_width_differs, write_column_width},
    {columns_differ, write_columns},
    {filter_differs, write_sheet_filter},
    {always, write_cells},
    {drawing_differs, write_drawing},
    {always, write_window},
    {zoom_differs, write_zoom},
    {panes_differ, write_panes},
    {selections_differ, write_selection},
    {standard_width_differs, write_standard_width},
    {merges_differ, write_merges},
    {links_differ, write_all_links},
    {validations_differ, write_rules},
    {never, write_nothing},
    {tab_differs, write_tab},
    {protection_differs, write_permissions},
    {ignored_errors_differ, write_faults},
    {never, write_nothing},
};
static_assert(std::size(kEntries) == kSheetGroups);

}  // namespace

const SheetGroupEntry& entry_of(SheetGroup group) {
  return kEntries[static_cast<std::size_t>(group)];
}

void note_columns(SheetWriting& to) {
  if (to.index != 0) to.places.push_back({to.index + kFirstPlace, to.out.position()});
}

}  // namespace engine::xls

#include "engine/xls/sheet_write.h"

#include <algorithm>
#include <cmath>

#include "engine/workbook/auto_fit.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/outline.h"
#include "engine/xls/cells_write.h"
#include "engine/xls/links_write.h"

namespace engine::xls {

namespace {

class SheetWriter {
 public:
  SheetWriter(RecordWriter& out, const BookWriting& book, const Sheet& sheet)
      : out_(out), book_(book), sheet_(sheet), contents_(sheet.contents()) {}

  void write(Drawings& drawings, std::vector<NamedPlace>& places) {
    CellsWriter cells(out_, book_, sheet_);
    write_beginning(out_, kSheetStream);
    const std::uint64_t index = out_.position();
    write_index(cells);
    write_calculation();
    write_page();
    write_protection();
    const auto columns_at = static_cast<std::uint32_t>(out_.position());
    write_columns();
    write_dimensions();
    // The first of these places is that of the columns, behind the rows.
    constexpr std::uint64_t kFirstPlace = 16;
    std::uint64_t at = index + kFirstPlace;
    places.push_back({at, columns_at});
    for (const std::uint32_t block : cells.write()) places.push_back({at += 4, block});
    drawings.write_notes(out_, sheet_);
    write_view();
    if (const auto& width = contents_.default_column_width)
      out_.record(kStandardWidth, {static_cast<std::uint32_t>(std::lround(*width * 256))});
    write_merges();
    write_links(out_, contents_.links);
    write_tab();
    write_permissions();
    out_.record(kEof, {});
  }

 private:
  void put_flag(std::uint16_t id, bool flag) { out_.record(id, {flag ? 1U : 0U}); }

  void write_index(const CellsWriter& cells) {
    out_.begin(kIndex);
    out_.put32(0);
    out_.put32(cells.first_row());
    out_.put32(cells.end_row());
    for (std::size_t i = 0; i < cells.block_count() + 1; ++i) out_.put32(0);
    out_.end();
  }

  void write_calculation() {
    constexpr double kUsualDelta = 0.001;
    out_.record(kCalculationMode, {1});
    out_.record(kCalculationCount, {100});
    put_flag(kReferenceMode, !book_.book.r1c1);
    out_.record(kIteration, {0});
    out_.begin(kDelta);
    out_.put_double(kUsualDelta);
    out_.end();
    out_.record(kSaveRecalculated, {1});
  }

  void write_page() {
    const PageSetup& page = contents_.page;
    put_flag(kPrintHeadings, page.headings);
    put_flag(kPrintGridlines, page.gridlines);
    out_.record(kGridSet, {1});
    write_outline();
    // Rows that are there are not hidden by this.
    out_.record(kDefaultRowHeight,
                {contents_.hides_rows ? 2U : 0U, twips(contents_.default_row_height)});
    write_options();
    write_breaks(kHorizontalBreaks, contents_.breaks.rows, book_.book.limits.grid.columns - 1);
    write_breaks(kVerticalBreaks, contents_.breaks.columns, book_.book.limits.grid.rows - 1);
    write_text(kHeader, page.header);
    write_text(kFooter, page.footer);
    put_flag(kCenterAcross, page.centered_across);
    put_flag(kCenterDown, page.centered_down);
    const std::pair<std::uint16_t, double> margins[] = {{kLeftMargin, page.left_margin},
                                                        {kRightMargin, page.right_margin},
                                                        {kTopMargin, page.top_margin},
                                                        {kBottomMargin, page.bottom_margin}};
    for (const auto& [id, margin] : margins) {
      out_.begin(id);
      out_.put_double(margin);
      out_.end();
    }
    write_setup();
  }

  static std::uint32_t twips(double points) {
    return static_cast<std::uint32_t>(std::lround(points * 20));
  }

  // The room that buttons of groups take up beside the sheet, and how deep these are.
  void write_outline() {
    const Grid& grid = book_.book.limits.grid;
    const auto depth = [&](formula::Axis axis, int size) {
      return static_cast<std::uint32_t>(outline_level(contents_, axis, {0, size - 1}));
    };
    const std::uint32_t rows = depth(formula::Axis::kRows, grid.rows);
    const std::uint32_t columns = depth(formula::Axis::kColumns, grid.columns);
    const auto pixels = [](std::uint32_t levels) { return levels == 0 ? 0 : 17 + 12 * levels; };
    const auto shown = [](std::uint32_t levels) { return levels == 0 ? 0 : levels + 1; };
    out_.record(kGuts, {pixels(rows), pixels(columns), shown(rows), shown(columns)});
  }

  void write_options() {
    constexpr std::uint32_t kUsual = 0x0401;  // automatic breaks and outlines are shown
    constexpr std::uint32_t kSummaryBelow = 0x40;
    constexpr std::uint32_t kSummaryRight = 0x80;
    constexpr std::uint32_t kFitted = 0x100;
    out_.record(kSheetOptions, {kUsual | (contents_.summary_below ? kSummaryBelow : 0) |
                                (contents_.summary_right ? kSummaryRight : 0) |
                                (contents_.page.fitted ? kFitted : 0)});
  }

  void write_breaks(std::uint16_t id, const PageBreakList& breaks, int last) {
    if (breaks.empty()) return;
    out_.begin(id);
    out_.put16(static_cast<std::uint32_t>(breaks.size()));
    for (const PageBreak& one : breaks) {
      out_.put16(static_cast<std::uint32_t>(one.at));
      out_.put16(static_cast<std::uint32_t>(one.first));
      out_.put16(static_cast<std::uint32_t>(std::min(one.last, last)));
    }
    out_.end();
  }

  void write_text(std::uint16_t id, std::string_view text) {
    out_.begin(id);
    if (!text.empty()) out_.put_long_text(Characters(text));
    out_.end();
  }

  void write_setup() {
    constexpr std::uint32_t kPortrait = 2;
    constexpr std::uint32_t kResolution = 600;
    const PageSetup& page = contents_.page;
    out_.begin(kPageSetup);
    out_.put16(static_cast<std::uint32_t>(page.paper));
    out_.put16(static_cast<std::uint32_t>(page.zoom));
    out_.put16(1);  // number of the first page, which counts with a flag alone
    out_.put16(static_cast<std::uint32_t>(page.pages_wide));
    out_.put16(static_cast<std::uint32_t>(page.pages_tall));
    out_.put16(page.landscape ? 0 : kPortrait);
    out_.put16(kResolution);
    out_.put16(kResolution);
    out_.put_double(page.header_margin);
    out_.put_double(page.footer_margin);
    out_.put16(1);
    out_.end();
  }

  void write_protection() {
    const Protection& protection = contents_.protection;
    if (!protection.on) return;
    out_.record(kProtect, {1});
    if ((protection.allowed & kAllowScenarios) == 0) out_.record(kScenarioProtect, {1});
    if ((protection.allowed & kAllowObjects) == 0) out_.record(kObjectProtect, {1});
    if (protection.password.short_hash != 0)
      out_.record(kPassword, {protection.password.short_hash});
  }

  // What programs since let people do in a protected sheet.
  void write_permissions() {
    constexpr std::uint32_t kOfProtection = 2;
    const Protection& protection = contents_.protection;
    if (!protection.on) return;
    begin_future_record(kFeatureHeader);
    out_.put16(kOfProtection);
    out_.put8(1);
    out_.put32(0xFFFFFFFF);
    out_.put32(protection.allowed);
    out_.end();
  }

  // A record of later programs says its number again.
  void begin_future_record(std::uint16_t id) {
    out_.begin(id);
    out_.put16(id);
    out_.put_zeros(10);
  }

  void write_columns() {
    constexpr std::uint32_t kHidden = 1;
    constexpr std::uint32_t kCustomWidth = 2;
    constexpr std::uint32_t kBestFit = 4;
    constexpr std::uint32_t kCollapsed = 0x1000;
    const auto stored = [](double width) {
      return static_cast<std::uint32_t>(std::lround(width * 256));
    };
    out_.record(kDefaultColumnWidth, {static_cast<std::uint32_t>(contents_.base_column_width)});
    const double usual = width_of_pixels(default_column_pixels(contents_), contents_.digit_pixels);
    for (const ColumnProperties& one : fitted_columns(book_.book, contents_)) {
      std::uint32_t flags = std::uint32_t{one.outline_level} << 8;
      if (one.hidden) flags |= kHidden;
      if (one.custom_width) flags |= kCustomWidth;
      if (one.best_fit) flags |= kBestFit;
      if (one.collapsed) flags |= kCollapsed;
      out_.record(kColumns,
                  {static_cast<std::uint32_t>(one.first), static_cast<std::uint32_t>(one.last),
                   stored(one.width.value_or(usual)), book_.styles.format(one.style), flags, 0});
    }
  }

  void write_dimensions() {
    CellRange used;
    const bool any = contents_.cells.used_range(&used);
    const auto put = [&](int value) { out_.put32(static_cast<std::uint32_t>(value)); };
    out_.begin(kDimensions);
    put(any ? used.row_first : 0);
    put(any ? used.row_last + 1 : 0);
    out_.put16(any ? static_cast<std::uint32_t>(used.column_first) : 0);
    out_.put16(any ? static_cast<std::uint32_t>(used.column_last + 1) : 0);
    out_.put16(0);
    out_.end();
  }

  void write_view() {
    constexpr std::uint32_t kUsual = 0xB4;  // headings, zeros, usual colour of lines, outlines
    constexpr std::uint32_t kGridlines = 2;
    constexpr std::uint32_t kFrozen = 0x108;
    constexpr std::uint32_t kRightToLeft = 0x40;
    constexpr std::uint32_t kSelected = 0x200;
    constexpr std::uint32_t kActive = 0x400;
    constexpr std::uint32_t kLineColor = 64;
    const SheetView& view = contents_.view;
    const bool frozen = view.frozen_rows != 0 || view.frozen_columns != 0;
    const bool active = book_.book.sheets()[book_.book.active_sheet].get() == &sheet_;
    std::uint32_t flags = kUsual;
    if (view.gridlines) flags |= kGridlines;
    if (frozen) flags |= kFrozen;
    if (view.right_to_left) flags |= kRightToLeft;
    if (sheet_.selected || active) flags |= kSelected;
    if (active) flags |= kActive;
    const auto unsigned_of = [](int value) { return static_cast<std::uint32_t>(value); };
    const auto& [top, left] = frozen ? corner_of_frozen(view) : view.top_left;
    out_.record(kWindow2, {flags, unsigned_of(top), unsigned_of(left), kLineColor, 0, 0, 0, 0, 0});
    if (view.zoom != 100) out_.record(kZoom, {unsigned_of(view.zoom), 100});
    write_panes(view);
  }

  // In a direction that is not frozen the part that scrolls is all there is.
  static CellAddress corner_of_frozen(const SheetView& view) {
    return {view.frozen_rows != 0 ? view.frozen_from.row : view.top_left.row,
            view.frozen_columns != 0 ? view.frozen_from.column : view.top_left.column};
  }

  void write_panes(const SheetView& view) {
    enum Pane : std::uint32_t { kLowerRight, kUpperRight, kLowerLeft, kUpperLeft };
    const bool rows = view.frozen_rows != 0;
    const bool columns = view.frozen_columns != 0;
    const auto unsigned_of = [](int value) { return static_cast<std::uint32_t>(value); };
    const Pane active =
        rows ? (columns ? kLowerRight : kLowerLeft) : (columns ? kUpperRight : kUpperLeft);
    const auto [top, left] = view.top_left;
    if (active != kUpperLeft)
      out_.record(kPane, {unsigned_of(view.frozen_columns), unsigned_of(view.frozen_rows),
                          unsigned_of(top), unsigned_of(left), active});
    for (const Pane pane : {kUpperLeft, kUpperRight, kLowerLeft, kLowerRight}) {
      const bool is_there = ((pane != kUpperRight && pane != kLowerRight) || columns) &&
                            ((pane != kLowerLeft && pane != kLowerRight) || rows);
      if (!is_there) continue;
      out_.begin(kSelection);
      out_.put8(pane);
      out_.put16(0);
      out_.put16(0);
      out_.put16(0);
      out_.put16(1);
      out_.put_zeros(6);
      out_.end();
    }
  }

  void write_merges() {
    constexpr std::size_t kMaxRanges = 1026;
    const std::vector<CellRange> ranges = contents_.merges.all();
    for (std::size_t first = 0; first < ranges.size(); first += kMaxRanges) {
      const std::size_t count = std::min(kMaxRanges, ranges.size() - first);
      out_.begin(kMerges);
      out_.put16(static_cast<std::uint32_t>(count));
      for (std::size_t i = first; i < first + count; ++i) put_range(out_, ranges[i]);
      out_.end();
    }
  }

  // The colour of the tab in the palette and, of one that may be none of these, itself.
  void write_tab() {
    constexpr std::uint32_t kSize = 20;
    constexpr std::uint32_t kSizeWithColor = 40;
    constexpr std::uint32_t kNoColor = 0x7F;
    constexpr std::uint32_t kCalculatesConditions = 0x80;
    constexpr std::uint32_t kRgb = 2;
    constexpr std::uint32_t kOpaque = 0xFF;
    const std::uint32_t color = book_.styles.color(contents_.tab_color, kNoColor);
    if (color == kNoColor) return;
    const bool has_rgb = contents_.tab_color.kind == ColorKind::kRgb;
    begin_future_record(kSheetExtension);
    out_.put32(has_rgb ? kSizeWithColor : kSize);
    out_.put32(color);
    if (has_rgb) {
      const std::uint32_t rgb = contents_.tab_color.value;
      out_.put32(color | kCalculatesConditions);
      out_.put32(kRgb);
      for (const std::uint32_t part : {rgb >> 16, rgb >> 8, rgb, kOpaque}) out_.put8(part);
      out_.put_double(0);
    }
    out_.end();
  }

  RecordWriter& out_;
  const BookWriting& book_;
  const Sheet& sheet_;
  const SheetContents& contents_;
};

}  // namespace

void write_beginning(RecordWriter& out, std::uint16_t kind) {
  constexpr std::uint32_t kBuild = 0x0DBB;
  constexpr std::uint32_t kYear = 0x07CC;
  constexpr std::uint32_t kHistory = 0x41;
  constexpr std::uint32_t kOldestReader = 0x06;
  out.record(kBof, {kVersion8, kind, kBuild, kYear, kHistory, 0, kOldestReader, 0});
}

void write_sheet(RecordWriter& out, const BookWriting& book, const Sheet& sheet, Drawings& drawings,
                 std::vector<NamedPlace>& places) {
  SheetWriter(out, book, sheet).write(drawings, places);
}

}  // namespace engine::xls

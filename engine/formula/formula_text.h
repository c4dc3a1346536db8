// Changes to the references of a formula that is held as A1 text: cells, defined names, conditional
// formats, validations, chart series.
//
// Each gives the new text, or nothing when the text stays as it is, be it that nothing in it is
// concerned or that it is no formula at all. See formula.h for what the changes are.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formula/formula.h"
#include "engine/formula/interval.h"
#include "engine/formula/reference.h"

namespace engine::formula {

std::optional<std::string> shift_text(std::string_view text, int rows, int columns,
                                      const Grid& grid);
std::optional<std::string> adjust_text(std::string_view text, const Move& move,
                                       std::string_view sheet, bool own_sheet, const Grid& grid);
std::optional<std::string> rename_sheet_text(std::string_view text, std::string_view from,
                                             std::string_view to, const Grid& grid);
std::optional<std::string> retarget_sheet_text(std::string_view text, std::string_view from,
                                               std::string_view to, const Grid& grid);
std::optional<std::string> delete_sheet_text(std::string_view text,
                                             std::span<const std::string_view> sheets,
                                             std::size_t index, const Grid& grid);
std::optional<std::string> change_tables_text(std::string_view text,
                                              std::span<const TableChange> changes,
                                              const Grid& grid);
// The same behind another change of the text, which `changed` holds if it made a new one.
std::optional<std::string> change_tables_text(std::string_view text,
                                              std::optional<std::string> changed,
                                              std::span<const TableChange> changes,
                                              const Grid& grid);

std::optional<std::string> change_columns_text(std::string_view text, const ColumnChanges& changes,
                                               const Grid& grid);

// A range together with the sheet its prefix names; `sheet` is empty without a prefix.
struct SheetRange {
  std::string sheet;
  CellRange range;
};

// The ranges of a text that is nothing but references of single sheets joined by commas, with or
// without parentheses around: print areas, chart series, defined ranges. Empty for anything else.
std::vector<SheetRange> ranges_of_text(std::string_view text, const Grid& grid);

// 'Sheet 1'!$A$1:$B$2, as defined names and chart series hold it; one cell as 'Sheet 1'!$A$1.
std::string absolute_range_text(std::string_view sheet, const CellRange& range);

}  // namespace engine::formula

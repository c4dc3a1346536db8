// Columns that are as wide as what their cells show.
//
// A column is marked by itself or lies in the sheet's area, which also limits the rows that count.
// It is measured whenever somebody asks for its width, so what is written later counts as well.
#pragma once

#include <map>
#include <optional>
#include <span>

#include "engine/formula/interval.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"

namespace engine {

// The widths of marked columns in pixels at 96 per inch, of one of them or of all. A column of
// which nothing is measured is not among them: it keeps the width that it has. `tables` are the
// sheet's.
std::map<int, int> fitted_pixels(const Workbook& book, const SheetContents& sheet,
                                 std::span<const Table> tables,
                                 std::optional<int> column = std::nullopt);

// The area after rows or columns were inserted or removed; nothing when none of it is left.
std::optional<FitArea> moved(const FitArea& area, const formula::Move& move, const Grid& grid);

// The sheet's columns with these widths, as a file holds them.
Columns fitted_columns(const Workbook& book, const SheetContents& sheet,
                       std::span<const Table> tables);

}  // namespace engine

// Anchors as drawings of this format store them: how a shape is held, then column, place in it, row
// and place in it of two corners. The places are in parts of a column's width (1,024) and of a
// row's height (256).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/workbook/anchor.h"
#include "engine/workbook/metrics.h"
#include "engine/workbook/sheet.h"

namespace engine::xls {

inline constexpr std::size_t kAnchorSize = 18;

// `bytes` are as many as an anchor has.
Anchor read_anchor(std::string_view bytes, const SheetContents& sheet, const Grid& grid);

// Changes what differs in the anchor in some bytes.
void change_anchor(std::string& bytes, std::size_t at, const Anchor& as_read, const Anchor& now,
                   const SheetContents& sheet);

// Appends an anchor at two cells.
void put_anchor(std::string& out, const Anchor& anchor, const SheetContents& sheet);

// The same anchor held at the cells of both corners.
Anchor at_two_cells(const Anchor& anchor, const SheetContents& sheet, const Grid& grid);

}  // namespace engine::xls

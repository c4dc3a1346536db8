// The cells that pivot tables have their data from, as what all sheets share names them: a range
// and the name of a sheet.
#pragma once

#include <optional>

#include "engine/workbook/document.h"
#include "engine/xls/loaded_file.h"

namespace engine::xls {

// The changed records with those that an edit of formulas changes; nothing when all stays. What
// would be lost stays named.
std::optional<RecordEdits> edited_sources(const LoadedFile& file, const FormulaEdit& edit,
                                          const Grid& grid);

}  // namespace engine::xls

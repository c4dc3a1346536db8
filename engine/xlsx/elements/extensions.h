// The extensions of a worksheet: what newer programs put into its extLst.
#pragma once

#include <string_view>

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// Extensions hold formulas (f) and ranges (sqref) in elements of a namespace that all share.
bool is_shared_extension(pugi::xml_node node, std::string_view local);

// A validation among the extensions, with cells of its own. The model knows it, so that what is
// said below of formulas and ranges is not said of it.
bool is_extended_validation(pugi::xml_node node);

// Extended conditional formats, sparklines and their like.
void collect_extensions(pugi::xml_node element, TextEdits& edits);
void copy_extensions(pugi::xml_node element, const SheetCopying& to);
void move_extensions(pugi::xml_node element, const SheetMoving& moving);

}  // namespace engine::xlsx

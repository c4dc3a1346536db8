// How a worksheet is shown: sheetPr, sheetViews, customSheetViews.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void copy_sheet_properties(pugi::xml_node element, const SheetCopying& to);

// Whether the tab is selected.
void read_views(pugi::xml_node element, const SheetReading& to);
void patch_views(pugi::xml_node root, const SheetPatching& from);
void copy_views(pugi::xml_node element, const SheetCopying& to);

void copy_custom_views(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx

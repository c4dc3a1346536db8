// How a worksheet is shown: sheetPr, sheetViews, customSheetViews.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

// The colour of the tab, where groups are summed up, whether the sheet prints fitted to pages.
void read_sheet_properties(pugi::xml_node element, const SheetReading& to);
void patch_sheet_properties(pugi::xml_node root, const SheetPatching& from);
void copy_sheet_properties(pugi::xml_node element, const SheetCopying& to);

// A workbook may have several windows with a view of the sheet each: the model has the first.
void read_views(pugi::xml_node element, const SheetReading& to);
void patch_views(pugi::xml_node root, const SheetPatching& from);
void copy_views(pugi::xml_node element, const SheetCopying& to);
void move_views(pugi::xml_node element, const SheetMoving& moving);

void copy_custom_views(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx

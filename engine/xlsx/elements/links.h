// What leads out of the sheet: hyperlinks, the sources of a consolidation.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void copy_consolidation(pugi::xml_node element, const SheetCopying& to);
// Sheets of this book are known by name; the cells of consolidations stay as they are.
void collect_consolidation(pugi::xml_node element, TextEdits& edits);

// Relationships of links are made and dropped as the sheet is written.
void read_links(pugi::xml_node element, const SheetReading& to);
void patch_links(pugi::xml_node root, const SheetPatching& from);
void copy_links(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx

// Rules for what may be typed into cells, and faults of cells that are not to be marked.
//
// A worksheet has its validations in dataValidations. Those that refer to other sheets may stand in
// an extension of extLst instead, with formulas and cells in elements of a namespace that all
// extensions share. The model knows them by one count: the list, then the extensions. What names no
// cells stays as it stands.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_validations(pugi::xml_node element, const SheetReading& to);
void read_extended_validations(pugi::xml_node extensions, const SheetReading& to);
// Both of them.
void patch_validations(pugi::xml_node root, const SheetPatching& from);

void read_ignored_errors(pugi::xml_node element, const SheetReading& to);
void patch_ignored_errors(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx

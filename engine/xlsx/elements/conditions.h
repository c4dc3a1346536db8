// Rules with formulas: conditional formats, validations, and what extends them and the sheet.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void collect_conditional_format(pugi::xml_node element, TextEdits& edits);
void collect_validations(pugi::xml_node element, TextEdits& edits);

// Extended conditional formats and validations, sparklines and their like.
void collect_extensions(pugi::xml_node element, TextEdits& edits);
void copy_extensions(pugi::xml_node element, const SheetCopying& to);
void move_extensions(pugi::xml_node element, const SheetMoving& moving);

// Formulas of rules are relative to the first cell of their ranges. Where that goes and others stay
// the formulas are restated, before anything moves, for the cell that is the first then.
void restate_rules(pugi::xml_node root, const formula::Move& move, const Grid& grid);

}  // namespace engine::xlsx

// Conditional formats: rules with formulas.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void collect_conditional_format(pugi::xml_node element, TextEdits& edits);

// Formulas of rules, the extended ones too, are relative to the first cell of their ranges. Where
// that goes and others stay the formulas are restated, before anything moves, for the cell that is
// the first then.
void restate_rules(pugi::xml_node root, const formula::Move& move, const Grid& grid);

}  // namespace engine::xlsx

// Rules with formulas: conditional formats, validations, and what extends them and the sheet.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void collect_conditional_format(pugi::xml_node element, TextEdits& edits);
void collect_validations(pugi::xml_node element, TextEdits& edits);

// Extended conditional formats and validations, sparklines and their like.
void collect_extensions(pugi::xml_node element, TextEdits& edits);
void copy_extensions(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx

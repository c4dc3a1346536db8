// The drawing of a worksheet: pictures, charts and shapes.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void copy_drawing(pugi::xml_node element, const SheetCopying& to);

}  // namespace engine::xlsx

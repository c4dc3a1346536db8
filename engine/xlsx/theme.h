// The colours of a package's theme part.
#pragma once

#include <string_view>

#include "engine/workbook/color.h"

namespace engine::xlsx {

// The colours by theme number. The part is optional: what it lacks, or all when it is damaged or
// empty, is taken from the usual theme.
ThemeColors read_theme(std::string_view bytes);

}  // namespace engine::xlsx

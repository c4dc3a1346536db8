// How wide the characters of common fonts are on a screen, which is what columns are measured by.
#pragma once

#include <string_view>

#include "engine/workbook/styles.h"

namespace engine {

// Pixels of a digit at 96 per inch, at least 1. Bold and italic do not count, case in names
// neither; a font that is not known counts as Calibri.
int digit_pixels(const FontRecord& font);

// Pixels of a line of text at 96 per inch: an estimate, rather too wide than too narrow.
double text_pixels(std::string_view line, const FontRecord& font);

}  // namespace engine

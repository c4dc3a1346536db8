// How a worksheet prints: printOptions, pageMargins, pageSetup, headerFooter.
#pragma once

#include "engine/xlsx/worksheet_elements.h"

namespace engine::xlsx {

void read_print_options(pugi::xml_node element, const SheetReading& to);
void patch_print_options(pugi::xml_node root, const SheetPatching& from);

void read_margins(pugi::xml_node element, const SheetReading& to);
void patch_margins(pugi::xml_node root, const SheetPatching& from);

void read_page_setup(pugi::xml_node element, const SheetReading& to);
void patch_page_setup(pugi::xml_node root, const SheetPatching& from);
void copy_page_setup(pugi::xml_node element, const SheetCopying& to);

void read_header_footer(pugi::xml_node element, const SheetReading& to);
void patch_header_footer(pugi::xml_node root, const SheetPatching& from);

}  // namespace engine::xlsx

// What a cell shows: its value under its number format.
//
// As a spreadsheet program in English shows it that has room enough: names of months and days in
// English, points in front of decimals and commas between thousands. What a code fills a cell's
// width with (`* `) is left out, and room for a character that is not shown (`_)`) is a blank.
#pragma once

#include <string>
#include <string_view>

#include "engine/workbook/workbook.h"

namespace engine {

// A number under a code; empty where the code shows nothing, and for dates that no calendar has.
std::string display_number(double number, std::string_view code, bool date1904);
std::string display_text(std::string_view text, std::string_view code);

std::string display(const Workbook& book, const SheetContents& sheet, const Cell& cell);

}  // namespace engine

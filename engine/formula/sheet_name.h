// Names of sheets, names and tables as formulas write them.
#pragma once

#include <string>
#include <string_view>

namespace engine::formula {

// True for A1 and $C$5 and for R1C1, R, C and the like: no defined name may look like this.
bool looks_like_address(std::string_view name);

// The first character of a defined name that none may hold at its place; empty when there is none.
std::string_view forbidden_in_name(std::string_view name);

// The name as it stands before `!`: in apostrophes, inner ones doubled, unless it is made of
// letters, digits, `_` and `.` only and cannot be taken for a number, an address or TRUE.
std::string quote_sheet_name(std::string_view name);

}  // namespace engine::formula

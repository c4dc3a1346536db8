// Names of sheets, names and tables as formulas write and compare them.
#pragma once

#include <string>
#include <string_view>

namespace engine::formula {

// Names are equal without regard to case, by Unicode's simple case folding.
bool same_name(std::string_view a, std::string_view b);

// The key under which names that are equal fall together.
std::string folded_name(std::string_view name);

// True for A1 and $C$5 and for R1C1, R, C and the like: no defined name may look like this.
bool looks_like_address(std::string_view name);

// The name as it stands before `!`: in apostrophes, inner ones doubled, unless it is made of
// letters, digits, `_` and `.` only and cannot be taken for a number, an address or TRUE.
std::string quote_sheet_name(std::string_view name);

}  // namespace engine::formula

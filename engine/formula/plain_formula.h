// Formulas that are told to be such by one look over the text.
//
// Most formulas that are written are numbers, texts, addresses and calls with operators between
// them. What parse() makes of those needs no tree to be known, and takes several times as long.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "engine/formula/formula.h"

namespace engine::formula {

// Whether a text in A1 notation is a formula that parse() takes under the same options and leaves
// as it is, and that names no sheets but those which `known` takes. False tells nothing: only the
// common forms are looked for, and a sheet that is not known may stand in a text that is none.
bool is_plain_formula(const std::string& text, const ParseOptions& options,
                      const std::function<bool(std::string_view)>& known);

}  // namespace engine::formula

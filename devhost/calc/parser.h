// From text to tree.
//
// From the loosest to the tightest: or xor, and, comparisons, &, + -, * /, ^, then - and not before
// an operand. Operators of one rank are applied from left to right.
#pragma once

#include <span>
#include <string_view>

#include "devhost/calc/tokens.h"
#include "devhost/calc/tree.h"

namespace devhost {

// Calculations that nest deeper are refused, as each level takes a share of the stack.
inline constexpr int kMaxNesting = 200;

// The tokens end in one of kind kEnd. Throws SyntaxError for a text that is no calculation, and for
// names that neither a function nor a variable in reach has.
Calculation parse_calculation(std::span<const Token> tokens);

Calculation parse_calculation(std::u16string_view text);

}  // namespace devhost

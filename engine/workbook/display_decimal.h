// Numbers under the tokens of a section: decimals, powers of ten, fractions, and without a format.
#pragma once

#include <string>

#include "engine/workbook/number_tokens.h"

namespace engine {

// The number must not be negative: the sign is the caller's.
std::string decimal_text(const NumberTokens& tokens, double number);

}  // namespace engine

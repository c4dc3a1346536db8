// Numbers as the host writes and reads them.
//
// The host calculates in decimal. Here a number is a double that is rounded to 16 significant
// digits whenever one is computed, so that .1 + .2 is .3; integers up to 2^53 stay exact.
#pragma once

#include <string>
#include <string_view>

namespace devhost {

inline constexpr int kPrecision = 16;

// The double nearest to the value's first `digits` significant decimal digits.
double round_significant(double value, int digits = kPrecision);

// Up to 16 significant digits, no zero before the decimal point, never an exponent or grouping:
// ".5", "-.25", "100000000000000000000". A value that is no number is "?".
std::u16string text_from_number(double value);

// Reads the digits, the first decimal point and a minus sign before them, and skips whatever else
// there is: "-1 234,5 kg" is -12345. A text without digits is 0; too large a number is infinity.
double number_from_text(std::u16string_view text);

}  // namespace devhost

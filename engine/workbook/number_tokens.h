// The code of a section cut into tokens, for showing values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/number_sections.h"

namespace engine {

enum class TokenKind : std::uint8_t {
  kLiteral,
  kBlank,  // room for a character
  kGeneral,
  kText,
  kDigit,
  kPoint,
  kComma,
  kPercent,
  kExponent,
  kSlash,
  kYear,
  kMonth,
  kDay,
  kHour,
  kMinute,
  kSecond,
  kFraction,  // of a second, point included
  kHalf,      // AM/PM or A/P
  kElapsed,
};

struct NumberToken {
  TokenKind kind;
  std::string_view text;
};
using NumberTokens = std::vector<NumberToken>;

// The tokens refer to the section's code. Letters of dates mean something only in sections that
// show dates, digits only in others.
NumberTokens tokens_of(const Section& section);

// What stands for itself; nothing for other tokens.
void append_literal(std::string& out, const NumberToken& token);

}  // namespace engine

// Signs of numbers in texts that the engine itself forms, by language.
#pragma once

#include <string_view>

namespace engine::api {

struct NumberSigns {
  std::string_view language;  // two or three letters; empty: no language's
  std::string_view decimal;
  std::string_view grouping;
};

// Those of a locale as the C library names it: "", "C", "POSIX", "de", "de_AT", "de-AT", each with
// or without a character set behind a point. Null when the name or its language is not known.
const NumberSigns* find_number_signs(std::string_view locale);

}  // namespace engine::api

// Codes of number formats: what the interface has to know about them without showing numbers.
//
// A code has up to four sections behind one another, parted by semicolons: for positive numbers,
// negative ones, zero and text; a condition in brackets overrides the sign. Quoted text, characters
// behind \ _ and *, and brackets are no instructions.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace engine {

inline constexpr std::size_t kMaxNumberFormatLength = 255;

// The code behind a number that needs no definition; empty for those that have none or whose code
// depends on the country.
std::string_view built_in_number_format(std::uint32_t id);
// Whether the number means a date or time unless a file gives it a code of its own.
bool is_built_in_date(std::uint32_t id);

// Quotes and brackets are balanced and there are at most four sections.
bool is_valid_number_format(std::string_view code);

// Whether the section that shows the value, or without one the first section, shows a date or time.
bool is_date_format(std::string_view code, std::optional<double> value = std::nullopt);
// Whether sections differ in that, so that the value counts.
bool is_date_by_value(std::string_view code);

}  // namespace engine

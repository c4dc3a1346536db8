// Names that the format knows by a number, which stands in place of their text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace engine::xls {

// What such names begin with in the model.
inline constexpr std::string_view kBuiltInPrefix = "_xlnm.";

// The name for the one character that a file has.
std::string built_in_name(std::string_view character);
// The number of a name, without the prefix; nothing when it has none.
std::optional<unsigned> built_in_number(std::string_view name);

}  // namespace engine::xls

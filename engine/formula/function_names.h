// Names of the worksheet functions.
#pragma once

#include <string_view>

namespace engine::formula {

// What a file puts before the name of a function that is newer than the file format; empty for the
// functions that came with it, and for unknown ones. Names in any case.
std::string_view file_prefix(std::string_view function);

bool is_known_function(std::string_view function);

}  // namespace engine::formula

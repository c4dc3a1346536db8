// Percent escapes, as URLs and the names of parts have them: %20 for a blank.
#pragma once

#include <string>
#include <string_view>

namespace engine {

void append_percent(std::string& out, char byte);
// What is no escape stays as it stands.
std::string decode_percent(std::string_view text);

}  // namespace engine

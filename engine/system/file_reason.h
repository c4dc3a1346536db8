// Why the operating system refused a file, in the fixed words of our messages.
#pragma once

#include <string>

namespace engine::system {

// `path` decides whether it is the file or its folder that is missing, where the system's number
// does not.
std::string file_reason(int error_number, const std::string& path);

}  // namespace engine::system

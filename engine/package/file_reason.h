// Why the operating system refused a file, in the fixed words of our messages.
#pragma once

#include <string>

namespace engine::package {

// `path` decides whether it is the file or its folder that is missing.
std::string file_reason(int error_number, const std::string& path);

// The folder that holds a path's last name, "." when the path names none.
std::string folder_of(const std::string& path);

}  // namespace engine::package

// The file behind a bundle, which is a question to the operating system.
#pragma once

#include <filesystem>

#include "platform/corefoundation/core_foundation.h"

namespace corefoundation {

// Null stands for the file that this code is part of; empty when the system does not know it.
std::filesystem::path bundle_file(CFBundleRef bundle);

}  // namespace corefoundation

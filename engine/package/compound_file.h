// Compound files: a file system inside one file, whose directory lists streams by name.
#pragma once

#include <string_view>

#include "engine/package/source.h"

namespace engine::package {

// Whether a compound file has a stream or folder of that name. Names compare without case; `name`
// is ASCII.
bool has_stream(const Source& source, std::string_view name);

}  // namespace engine::package

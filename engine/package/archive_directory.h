// The central directory of a zip archive, read and checked against the size of the archive.
#pragma once

#include <vector>

#include "engine/package/archive.h"
#include "engine/package/source.h"

namespace engine::package {

// All entries in the directory's order, folders left out, each with its limit. Throws FileError.
std::vector<ArchiveEntry> read_directory(const Source& source);

}  // namespace engine::package

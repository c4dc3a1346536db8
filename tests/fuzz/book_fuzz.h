// What every format of workbooks has to stand: a file is loaded, looked at, changed by lot, saved,
// and loaded again.
#pragma once

#include <cstdint>
#include <string>

#include "platform/libxl/libxl.h"

namespace fuzz {

using MakeBook = libxl::Book* (*)();

// The lot draws no changes from 0.
void change_and_save(MakeBook make, const std::string& file, std::uint32_t seed);

}  // namespace fuzz

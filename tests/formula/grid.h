// The grid of most formulas in these tests.
#pragma once

#include "engine/formula/reference.h"

namespace engine::formula {

inline constexpr Grid kGrid{1048576, 16384};

}  // namespace engine::formula

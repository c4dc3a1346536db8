// External functions that belong to no object: version and last error.
#pragma once

#include <span>

#include "runtime/bind.h"

std::span<const bind::Row> general_functions();

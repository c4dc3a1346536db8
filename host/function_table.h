// Every visible external function.
#pragma once

#include <span>

#include "runtime/bind.h"

// By rising id, the order in which they are registered.
std::span<const bind::Row> function_table();

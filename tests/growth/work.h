// Counts the work that a program does, in place of the time it takes.
//
// The code that is tested is compiled with a call at each of its basic blocks; that call is one
// step. Moving, clearing or comparing memory and allocating it counts by the size, as what does
// that is not compiled here. The same work gives the same count, whatever else the machine does.
#pragma once

#include <cstdint>

// Steps so far, those of all threads.
std::uint64_t work_done();

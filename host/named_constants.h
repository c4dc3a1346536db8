// The named constants: hidden functions that give calculations the library's numbers.
#pragma once

#include "platform/fmwrapper/fmwrapper.h"

inline constexpr short kFirstConstant = 5000;
inline constexpr short kLastConstant = 5361;
// Sorting on a protected sheet, the one constant that is not registered.
inline constexpr short kUnregisteredConstant = 5331;

// Serves them all: the value goes by the id.
short XL_NamedConstant(short funcId, const fmx::ExprEnv& environment, const fmx::DataVect& params,
                       fmx::Data& result);

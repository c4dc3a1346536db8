// Enumerations that calculations give by handle or by number.
//
// A number that is a handle of the enumeration's type gives what that entry holds. Any other number
// that is a value of the enumeration is that value, as the named constants give them; 0 is always a
// value and the library's to judge. Anything else fails as an unknown handle does.
#pragma once

#include <algorithm>
#include <iterator>

#include "runtime/bind.h"

namespace bind {

constexpr bool is_value(libxl::ErrorType, long number) {
  constexpr long kValues[] = {libxl::ErrorNull, libxl::ErrorDiv0, libxl::ErrorValue,
                              libxl::ErrorRef,  libxl::ErrorName, libxl::ErrorNum,
                              libxl::ErrorNA,   libxl::ErrorNone};
  return std::find(std::begin(kValues), std::end(kValues), number) != std::end(kValues);
}

// Several are added together.
constexpr bool is_value(libxl::IgnoredError, long number) {
  constexpr long kAll = 255;
  return number > 0 && number <= kAll;
}

constexpr bool is_value(libxl::DataValidationType, long number) {
  return number >= libxl::ValidationNone && number <= libxl::ValidationCustom;
}

constexpr bool is_value(libxl::DataValidationOperator, long number) {
  return number >= libxl::ValidationBetween && number <= libxl::ValidationGreaterOrEqual;
}

constexpr bool is_value(libxl::DataValidationErrorStyle, long number) {
  return number >= libxl::ErrorStyleStop && number <= libxl::ErrorStyleInformation;
}

template <class E>
E read_enumeration(const fmx::DataVect& params, unsigned index) {
  const long number = ParameterAsLong(params, index, 0);
  if (is_value(E{}, number) && !is_object(number, type_name<E>)) return static_cast<E>(number);
  return static_cast<E>(object_as_value(get_object(number, type_name<E>)));
}

}  // namespace bind

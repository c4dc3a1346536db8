// Outputs of the interface's operations: a caller may leave any of them out.
#pragma once

#include <type_traits>

#include "engine/formula/reference.h"

namespace engine::api {

template <class T>
void give(T* out, std::type_identity_t<T> value) {
  if (out) *out = value;
}

inline void give_range(const CellRange& range, int* row_first, int* row_last, int* column_first,
                       int* column_last) {
  give(row_first, range.row_first);
  give(row_last, range.row_last);
  give(column_first, range.column_first);
  give(column_last, range.column_last);
}

}  // namespace engine::api

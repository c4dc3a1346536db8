// Names of the worksheet functions.
#pragma once

#include <cstdint>
#include <string_view>

namespace engine::formula {

enum class FunctionKind : std::uint8_t {
  kUnknown,
  kClassic,            // as old as the file formats
  kNewer,              // files hold it with a prefix
  kNewerOfWorksheets,  // likewise, with one more
};

// Names in any case.
FunctionKind function_kind(std::string_view function);

inline bool is_known_function(std::string_view function) {
  return function_kind(function) != FunctionKind::kUnknown;
}

}  // namespace engine::formula

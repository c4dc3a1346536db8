// The words that the system's files are refused with.
#pragma once

#include <string>

#include "engine/system/file.h"

namespace engine::system {

// Empty when nothing is refused.
template <class Ask>
std::string refusal(Ask&& ask) {
  try {
    ask();
  } catch (const FileRefusal& refused) {
    return refused.what();
  }
  return "";
}

}  // namespace engine::system

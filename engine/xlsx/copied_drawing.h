// The drawing of a sheet that is a copy: the pictures of the original's drawing and nothing else.
//
// Charts, shapes and groups are not copied with a sheet, as they have parts and names of their own.
// The parts with the pictures are shared by both drawings.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "engine/xlsx/relationships.h"

namespace engine::xlsx {

struct CopiedDrawing {
  std::string bytes;
  Ids ids;  // of the relationships that the pictures need
};

// Nothing when the drawing has no picture. Throws FileError when it is damaged.
std::optional<CopiedDrawing> copy_pictures(std::string_view bytes, std::string_view part);

}  // namespace engine::xlsx

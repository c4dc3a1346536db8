// What a file's first bytes tell about it when it is put into a container.
#pragma once

#include <optional>
#include <span>

#include "devhost/fm/values.h"

namespace devhost {

struct ImageKind {
  // The stream that holds such an image.
  FourBytes stream;
  // In pixels.
  long width;
  long height;
};

// Knows PNG, JPEG, GIF and BMP. Nothing for other files and for images that are cut short before
// their size is told.
std::optional<ImageKind> image_kind(std::span<const unsigned char> file);

}  // namespace devhost

// Pictures as drawings store them, and as files of their own.
//
// A stored picture is one piece, whose instance tells how many digests stand in front of it.
// Rasters follow behind a byte; of a bitmap that is all but the header of its file. Metafiles are
// packed and say how big they are: what their files say in headers of their own, which go.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/workbook/picture_header.h"

namespace engine::xls {

// The file's bytes from those of a stored picture, its head included; nothing for one that cannot
// be understood.
std::string picture_file(std::string_view blip);

// A picture to be stored. What of its bytes is stored as it is stays the caller's.
struct Blip {
  std::uint32_t type = 0;            // as an entry of the store names it
  std::uint32_t type_elsewhere = 0;  // on systems whose metafiles are others
  std::string digest;
  std::string front;      // its head and what stands before the data
  std::string made_data;  // in place of the file's own
  std::string_view file_data;

  std::uint64_t size() const { return front.size() + made_data.size() + file_data.size(); }
};

// Of the bytes of a picture's file, which are of that kind.
Blip make_blip(PictureKind kind, std::string_view file);

// By which equal pictures are known.
std::string picture_digest(std::string_view file);

}  // namespace engine::xls

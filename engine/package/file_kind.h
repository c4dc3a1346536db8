// What a file is, told from its first bytes.
#pragma once

#include "engine/package/source.h"

namespace engine::package {

enum class FileKind {
  Zip,
  CompoundFile,
  Excel2,  // workbook streams that lie bare in the file
  Excel3,
  Excel4,
  BareStream,  // of later programs, which put theirs into a compound file
  Xml,
  Html,
  Other,
  Empty,
};

FileKind file_kind(const Source& source);

}  // namespace engine::package

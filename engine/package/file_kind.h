// What a file is, told from its first bytes.
#pragma once

#include "engine/package/source.h"

namespace engine::package {

enum class FileKind {
  Zip,
  CompoundFile,
  OldBiff,  // a workbook stream of BIFF2 to BIFF5 (or BIFF8) that lies bare in the file
  Xml,
  Html,
  Other,
  Empty,
};

FileKind file_kind(const Source& source);

}  // namespace engine::package

// Workbooks of the binary format, .xls.
#pragma once

#include "engine/workbook/codec.h"

namespace engine::xls {

extern const Codec kCodec;

}  // namespace engine::xls

// Workbooks as packages of XML parts, .xlsx.
#pragma once

#include "engine/workbook/codec.h"

namespace engine::xlsx {

extern const Codec kCodec;

}  // namespace engine::xlsx

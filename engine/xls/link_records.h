// What the record of a hyperlink says behind the cells.
#pragma once

#include <cstdint>
#include <string>

#include "engine/workbook/links.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

// What a record has of a link.
enum LinkFlag : std::uint32_t {
  kHasTarget = 0x01,
  kIsAbsolute = 0x02,
  kGivenDisplayText = 0x04,  // by the page that made the link
  kHasLocation = 0x08,
  kHasDisplayText = 0x10,
  kHasFrame = 0x80,
  kTargetIsText = 0x100,
};

struct LinkRecord {
  std::string text;     // as the model has it
  std::string display;  // that a program shows where the cell has nothing else
  std::string frame;    // of a page, in which the target opens
};

LinkRecord take_link(Fields& in);

}  // namespace engine::xls

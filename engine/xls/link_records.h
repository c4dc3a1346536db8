// What the record of a hyperlink says behind the cells.
#pragma once

#include <string>

#include "engine/workbook/links.h"
#include "engine/xls/sheet_records.h"

namespace engine::xls {

struct LinkRecord {
  std::string text;     // as the model has it
  std::string display;  // that a program shows where the cell has nothing else
  std::string frame;    // of a page, in which the target opens
};

LinkRecord take_link(Fields& in);

}  // namespace engine::xls

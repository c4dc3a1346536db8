// What a file format can hold. Lengths count UTF-16 units.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/formula/reference.h"
#include "engine/workbook/protection.h"

namespace engine {

struct StyleLimits {
  std::uint32_t formats = 65430;  // in a book's list
  std::uint32_t fonts = 65490;
  std::uint32_t number_formats = 65372;  // those that a book defines
  std::uint32_t last_number_format = 65535;
  int indent = 250;
};

struct Limits {
  Grid grid{1048576, 16384};
  std::size_t sheets = 65534;
  std::size_t sheet_name = 31;
  std::size_t text = 32767;         // of a cell or comment
  std::size_t author = 255;         // of a comment
  int arguments = 255;              // of one call in a formula
  bool later_formulas = true;       // which refer to tables, spills and results of functions
  std::size_t links = 65530;        // of a sheet
  std::size_t validations = 65534;  // of a sheet
  std::size_t page_breaks = 1023;   // in one direction
  std::size_t password = 255;
  PasswordForm password_form = PasswordForm::kSha512;
  StyleLimits styles;
  bool gif_pictures = true;
};

}  // namespace engine

// External functions on the pictures of a sheet.
#include "functions/families.h"

namespace {

using bind::row;
using libxl::Sheet;

// The path of a linked picture is not told.
int get_picture(Sheet& sheet, int index, int* row_top, int* col_left, int* row_bottom,
                int* col_right, int* width, int* height, int* offset_x, int* offset_y) {
  return sheet.getPicture(index, row_top, col_left, row_bottom, col_right, width, height, offset_x,
                          offset_y, nullptr);
}

constexpr bind::Row kRows[] = {
    row<&Sheet::pictureSize>(1832, "XL_Sheet_PictureSize"),
    row<get_picture>(1833, "XL_Sheet_GetPicture"),
    row<&Sheet::setPicture, 1.0, 0, 0, libxl::PositionMoveAndSize>(1834, "XL_Sheet_SetPicture"),
    row<&Sheet::setPicture2, -1, -1, 0, 0, libxl::PositionMoveAndSize>(1835,
                                                                       "XL_Sheet_SetPicture2"),
};

}  // namespace

std::span<const bind::Row> sheet_picture_functions() { return kRows; }

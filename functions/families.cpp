#include "functions/families.h"

namespace {

constexpr Family kFamilies[] = {
    book_lifecycle_functions, book_sheet_functions,
    book_format_functions,    book_date_and_color_functions,
    book_setting_functions,   cell_functions,
    shape_functions,          name_functions,
    format_functions,         font_functions,
    view_functions,           page_functions,
    moving_functions,         sheet_filter_functions,
    auto_filter_functions,    filter_column_functions,
    rule_functions,           book_picture_functions,
    sheet_picture_functions,
};

}  // namespace

std::span<const Family> function_families() { return kFamilies; }

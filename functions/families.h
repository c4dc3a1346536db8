// The families of external functions: each is a file that gives its rows.
#pragma once

#include <span>

#include "runtime/bind.h"

using Family = std::span<const bind::Row> (*)();

// Every family there is, in no particular order.
std::span<const Family> function_families();

// A new family is a declaration here and an entry in families.cpp.
std::span<const bind::Row> book_lifecycle_functions();
std::span<const bind::Row> book_sheet_functions();
std::span<const bind::Row> book_format_functions();
std::span<const bind::Row> book_date_and_color_functions();
std::span<const bind::Row> book_setting_functions();
std::span<const bind::Row> book_picture_functions();
std::span<const bind::Row> cell_functions();
std::span<const bind::Row> shape_functions();
std::span<const bind::Row> name_functions();
std::span<const bind::Row> moving_functions();
std::span<const bind::Row> format_functions();
std::span<const bind::Row> font_functions();
std::span<const bind::Row> view_functions();
std::span<const bind::Row> page_functions();
std::span<const bind::Row> sheet_filter_functions();
std::span<const bind::Row> auto_filter_functions();
std::span<const bind::Row> filter_column_functions();
std::span<const bind::Row> rule_functions();
std::span<const bind::Row> sheet_picture_functions();

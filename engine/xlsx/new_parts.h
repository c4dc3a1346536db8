// The parts of a new book that never change.
#pragma once

#include "engine/xlsx/parts.h"

namespace engine::xlsx {

inline constexpr std::string_view kMainPart = "xl/workbook.xml";

// Content types.
inline constexpr std::string_view kWorksheetType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
inline constexpr std::string_view kStylesType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml";
inline constexpr std::string_view kSharedStringsType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sharedStrings+xml";
inline constexpr std::string_view kCommentsType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.comments+xml";
inline constexpr std::string_view kDrawingType =
    "application/vnd.openxmlformats-officedocument.drawing+xml";
inline constexpr std::string_view kTableType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.table+xml";
inline constexpr std::string_view kNotesDrawingType =
    "application/vnd.openxmlformats-officedocument.vmlDrawing";

// The content type of a workbook part.
std::string_view workbook_type(bool has_macros, bool is_template);
bool is_workbook_type(std::string_view type);
bool is_template_type(std::string_view type);
bool is_macro_enabled_type(std::string_view type);
bool is_binary_workbook_type(std::string_view type);

// A package with a workbook part that is still empty, and the properties of the document, among
// them the time at which it was begun.
Parts new_parts();

}  // namespace engine::xlsx

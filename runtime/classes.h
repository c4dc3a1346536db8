// The names under which the registry keeps the library's objects. They show in messages.
#pragma once

#include "platform/libxl/libxl.h"

namespace bind {

template <class T>
inline constexpr const char* type_name = nullptr;
template <class T>
concept Registered = type_name<T>
!= nullptr;

template <>
inline constexpr const char* type_name<libxl::Book> = "Book";
template <>
inline constexpr const char* type_name<libxl::Sheet> = "Sheet";
template <>
inline constexpr const char* type_name<libxl::Format> = "Format";
template <>
inline constexpr const char* type_name<libxl::Font> = "Font";
template <>
inline constexpr const char* type_name<libxl::AutoFilter> = "AutoFilter";
template <>
inline constexpr const char* type_name<libxl::FilterColumn> = "FilterColumn";

// Numbers that functions hand out as handles.
template <>
inline constexpr const char* type_name<libxl::CellType> = "CellType";
template <>
inline constexpr const char* type_name<libxl::ErrorType> = "ErrorType";
template <>
inline constexpr const char* type_name<libxl::Filter> = "Filter";

// Numbers that functions only take as handles.
template <>
inline constexpr const char* type_name<libxl::DataValidationType> = "DataValidationType";
template <>
inline constexpr const char* type_name<libxl::DataValidationOperator> = "DataValidationOperator";
template <>
inline constexpr const char* type_name<libxl::DataValidationErrorStyle> =
    "DataValidationErrorStyle";
template <>
inline constexpr const char* type_name<libxl::IgnoredError> = "IgnoredError";

}  // namespace bind

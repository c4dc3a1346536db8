#include "engine/xls/built_in_names.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "engine/text/fold.h"

namespace engine::xls {

namespace {

// By their numbers.
constexpr std::string_view kBuiltInNames[] = {
    "Consolidate_Area", "Auto_Open",       "Auto_Close",   "Extract",         "Database",
    "Criteria",         "Print_Area",      "Print_Titles", "Recorder",        "Data_Form",
    "Auto_Activate",    "Auto_Deactivate", "Sheet_Title",  "_FilterDatabase",
};

}  // namespace

std::string built_in_name(std::string_view character) {
  const std::size_t number =
      character.size() == 1 ? static_cast<unsigned char>(character[0]) : 0xFF;
  std::string name(kBuiltInPrefix);
  return name.append(number < std::size(kBuiltInNames) ? kBuiltInNames[number] : character);
}

std::optional<unsigned> built_in_number(std::string_view name) {
  const auto* const found = std::ranges::find_if(
      kBuiltInNames, [&](std::string_view one) { return equal_ignoring_case(one, name); });
  if (found == std::end(kBuiltInNames)) return std::nullopt;
  return static_cast<unsigned>(found - std::begin(kBuiltInNames));
}

}  // namespace engine::xls

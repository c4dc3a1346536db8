#include "engine/xlsx/theme.h"

#include <pugixml.hpp>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/xlsx/styles_read.h"

namespace engine::xlsx {

namespace {

using package::Family;

// By theme number, which swaps the pairs of light and dark against the order in the part.
constexpr std::string_view kNames[] = {"lt1",     "dk1",     "lt2",     "dk2",
                                       "accent1", "accent2", "accent3", "accent4",
                                       "accent5", "accent6", "hlink",   "folHlink"};

// A colour of the theme's own or, as last seen, of the system.
std::optional<std::uint32_t> read_entry(pugi::xml_node entry) {
  if (const auto rgb = package::child(entry, Family::Drawing, "srgbClr"))
    return parse_rgb(rgb.attribute("val").value());
  if (const auto system = package::child(entry, Family::Drawing, "sysClr"))
    return parse_rgb(system.attribute("lastClr").value());
  return std::nullopt;
}

}  // namespace

ThemeColors read_theme(std::string_view bytes) {
  ThemeColors colors = kDefaultTheme;
  if (bytes.empty()) return colors;
  try {
    const auto document = package::XmlTree::parse(bytes, "theme");
    const auto elements = package::child(document.root(), Family::Drawing, "themeElements");
    const auto scheme = package::child(elements, Family::Drawing, "clrScheme");
    for (std::size_t number = 0; number < colors.size(); ++number) {
      const auto entry = package::child(scheme, Family::Drawing, kNames[number]);
      if (const auto rgb = read_entry(entry)) colors[number] = *rgb;
    }
  } catch (const package::FileError&) {
    return kDefaultTheme;
  }
  return colors;
}

}  // namespace engine::xlsx

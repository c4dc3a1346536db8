#include "engine/xlsx/table_names.h"

#include <algorithm>

#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/xlsx/escapes.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

TableNames::TableNames(const Parts& parts) {
  for (const auto& [key, part] : parts.all()) {
    if (part.type != kTableType) continue;
    const auto tree = package::XmlTree::parse(parts.read(part), part.name);
    const pugi::xml_node root = tree.root();
    last_id_ = std::max(last_id_, root.attribute("id").as_uint());
    for (const char* name : {"name", "displayName"})
      used_.insert(fold_case(unescape(root.attribute(name).value())));
  }
}

std::string TableNames::free(const std::string& name, const Workbook& book) {
  int& number = last_numbers_[fold_case(name)];
  for (;;) {
    std::string made = name + "_" + std::to_string(++number);
    const auto is_name = [&](const DefinedName& one) {
      return equal_ignoring_case(one.name, made);
    };
    if (std::ranges::none_of(book.names, is_name) && used_.insert(fold_case(made)).second)
      return made;
  }
}

}  // namespace engine::xlsx

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
  settled_id_ = last_id_;
}

std::string TableNames::free(const std::string& name, const Workbook& book) {
  given_.reserve(given_.size() + 1);
  int& number = last_numbers_[fold_case(name)];
  for (int next = number + 1;; ++next) {
    std::string made = name + "_" + std::to_string(next);
    const auto is_name = [&](const DefinedName& one) {
      return equal_ignoring_case(one.name, made);
    };
    if (std::ranges::any_of(book.names, is_name)) continue;
    const auto [place, is_new] = used_.insert(fold_case(made));
    if (!is_new) continue;
    given_.push_back({place, &number, number});
    number = next;
    return made;
  }
}

void TableNames::settle() noexcept {
  given_.clear();
  settled_id_ = last_id_;
}

void TableNames::take_back() noexcept {
  for (; !given_.empty(); given_.pop_back()) {
    used_.erase(given_.back().name);
    *given_.back().number = given_.back().former;
  }
  last_id_ = settled_id_;
}

}  // namespace engine::xlsx

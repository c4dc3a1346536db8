#include "engine/xlsx/attributes.h"

#include <algorithm>

#include "engine/package/xml_tree.h"
#include "engine/text/number_text.h"

namespace engine::xlsx {

using package::Family;

void set_attribute(pugi::xml_node element, const char* name, std::string_view value) {
  auto attribute = element.attribute(name);
  if (!attribute) attribute = element.append_attribute(name);
  attribute.set_value(value.data(), value.size());
}

void settle_attribute(pugi::xml_node element, const char* name, std::string_view value,
                      bool is_usual) {
  if (is_usual) element.remove_attribute(name);
  else set_attribute(element, name, value);
}

void settle_flag(pugi::xml_node element, const char* name, bool value, bool usual) {
  if (element.attribute(name).as_bool(usual) != value)
    settle_attribute(element, name, value ? "1" : "0", value == usual);
}

void remove_if_bare(pugi::xml_node element) {
  if (!element.first_attribute() && !element.first_child()) element.parent().remove_child(element);
}

std::size_t count_elements(pugi::xml_node parent) {
  const auto is_element = [](pugi::xml_node one) { return one.type() == pugi::node_element; };
  return static_cast<std::size_t>(std::count_if(parent.begin(), parent.end(), is_element));
}

void remove_with_lists(std::set<pugi::xml_node> gone, pugi::xml_node root) {
  while (!gone.empty()) {
    // What stands inside of another goes with that.
    std::erase_if(gone, [&gone](pugi::xml_node node) {
      while ((node = node.parent()))
        if (gone.contains(node)) return true;
      return false;
    });
    std::set<pugi::xml_node> parents;
    for (const pugi::xml_node node : gone) {
      if (node.parent() != root) parents.insert(node.parent());
      node.parent().remove_child(node);
    }
    gone.clear();
    for (const pugi::xml_node parent : parents) {
      const std::size_t left = count_elements(parent);
      if (left == 0)
        gone.insert(package::local_name(parent) == "sparklines" ? parent.parent() : parent);
      else if (parent.attribute("count")) set_attribute(parent, "count", std::to_string(left));
    }
  }
}

void remove_identification(pugi::xml_node element) {
  for (const pugi::xml_attribute attribute : element.attributes())
    if (package::local_name(attribute.name()) == "uid") {
      element.remove_attribute(attribute);
      return;
    }
}

std::string number_text(double number) {
  std::string text;
  append_number(text, number);
  return text;
}

pugi::xml_node ordered_child(pugi::xml_node parent, std::string_view name,
                             std::span<const std::string_view> order) {
  if (const auto found = package::child(parent, Family::Main, name)) return found;
  const auto own = std::ranges::find(order, name);
  for (const auto next : parent.children()) {
    if (package::family(next) != Family::Main) continue;
    if (std::find(own, order.end(), package::local_name(next)) != order.end())
      return package::insert_child(parent, name, next);
  }
  return package::append_child(parent, name);
}

}  // namespace engine::xlsx

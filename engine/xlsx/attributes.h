// Small changes of elements: attributes, and children at their place in the format's order.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace engine::xlsx {

void set_attribute(pugi::xml_node element, const char* name, std::string_view value);

// Sets an attribute, or removes it where its absence means the same.
void settle_attribute(pugi::xml_node element, const char* name, std::string_view value,
                      bool is_usual);

// Sets a flag whose absence means `usual`; one that says the same already stays as it stands.
void settle_flag(pugi::xml_node element, const char* name, bool value, bool usual = false);

// Removes an element that says nothing: without attributes and content.
void remove_if_bare(pugi::xml_node element);

// What a list with so many children says as its count: white space and comments are none.
std::size_t count_elements(pugi::xml_node parent);

// Removes elements, and what holds nothing then: the list around one, a group of sparklines, an
// extension, the list of extensions. What stands directly in the root goes alone.
void remove_with_lists(std::set<pugi::xml_node> gone, pugi::xml_node root);

// Removes what identifies one element among all files, which its copy may not keep.
void remove_identification(pugi::xml_node element);

// A number in its shortest form.
std::string number_text(double number);

// The child of the name; made, when there is none, in front of the first that stands behind it in
// the order. Children of other namespaces (alternate content above all) belong to what stands
// before them.
pugi::xml_node ordered_child(pugi::xml_node parent, std::string_view name,
                             std::span<const std::string_view> order);

}  // namespace engine::xlsx

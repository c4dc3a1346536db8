#include "engine/xlsx/elements/links.h"

#include "engine/package/xml_tree.h"
#include "engine/xlsx/attributes.h"

namespace engine::xlsx {

namespace {

using package::Family;

// Takes external relationships of the original over, under the ids that they have there.
class ExternalLinks {
 public:
  explicit ExternalLinks(const SheetCopying& to) : to_(to) {}

  // False when the element names a relationship that leads nowhere.
  bool take(pugi::xml_node element) {
    const std::string_view id = package::attribute(element, Family::Relationships, "id").value();
    if (id.empty()) return true;
    const Relationship* link = to_.parts.relationship(to_.original.part, id);
    if (!link || !link->external) return false;
    if (taken_.emplace(id).second) to_.made.add_relationship(to_.copy.part, *link);
    return true;
  }

 private:
  const SheetCopying& to_;
  Ids taken_;
};

}  // namespace

// References to other books, by a path each.
void copy_consolidation(pugi::xml_node element, const SheetCopying& to) {
  ExternalLinks links(to);
  pugi::xml_node list = package::child(element, Family::Main, "dataRefs");
  for (const pugi::xml_node source : package::children(list, Family::Main, "dataRef"))
    if (!links.take(source)) list.remove_child(source);
  const auto left = package::children(list, Family::Main, "dataRef").size();
  if (list && left == 0) element.remove_child(list);
  else if (list.attribute("count")) set_attribute(list, "count", std::to_string(left));
}

void copy_hyperlinks(pugi::xml_node element, const SheetCopying& to) {
  ExternalLinks links(to);
  for (const pugi::xml_node link : package::children(element, Family::Main, "hyperlink"))
    if (!links.take(link)) element.remove_child(link);
  if (!element.first_child()) element.parent().remove_child(element);
}

// Settings of a printer are not copied.
void copy_page_setup(pugi::xml_node element, const SheetCopying& /*to*/) {
  element.remove_attribute(package::attribute(element, Family::Relationships, "id"));
}

}  // namespace engine::xlsx

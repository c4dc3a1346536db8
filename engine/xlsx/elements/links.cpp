#include "engine/xlsx/elements/links.h"

#include <string>
#include <utility>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/workbook/links.h"
#include "engine/xlsx/attributes.h"
#include "engine/xlsx/escapes.h"

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

std::vector<pugi::xml_node> link_nodes(pugi::xml_node list) {
  return package::children(list, Family::Main, "hyperlink");
}

std::string_view id_of(pugi::xml_node link) {
  return package::attribute(link, Family::Relationships, "id").value();
}

// A link as callers write it. Some programs have places in the book as targets of relationships,
// and some begin a location with "#".
std::string text_of(std::string_view target, bool has_location, std::string_view location) {
  if (location.starts_with('#')) location.remove_prefix(1);
  if (target.starts_with('#')) return unescape_path(target);
  const LinkTarget parts = link_target(target);
  std::string text;
  if (parts.kind == LinkKind::kPath) text = unescape_path(target);
  else if (auto path = local_path(target)) text = *std::move(path);
  else text = target;
  if (has_location && (text.empty() || !location.empty())) text.append("#").append(location);
  return text;
}

std::string text_of(pugi::xml_node link, const Parts& parts, std::string_view sheet) {
  const std::string_view id = id_of(link);
  const Relationship* to = id.empty() ? nullptr : parts.relationship(sheet, id);
  const pugi::xml_attribute location = link.attribute("location");
  return text_of(to ? std::string_view(to->target) : std::string_view(), !location.empty(),
                 unescape(location.value()));
}

// The links of an element, numbered by their place in it. What lies on no cells is not among them
// and stays as it is. Throws FileError when the relationships of the sheet cannot be read.
Links links_of(pugi::xml_node list, const Parts& parts, std::string_view sheet, const Grid& grid) {
  parts.relationships(sheet);
  Links links;
  std::uint32_t number = 0;
  for (const pugi::xml_node node : link_nodes(list)) {
    ++number;
    if (const auto cells = formula::parse_range(node.attribute("ref").value(), grid))
      links.add({*cells, text_of(node, parts, sheet), number});
  }
  return links;
}

// The target as relationships have it.
std::string stored_target(const LinkTarget& to) {
  return to.kind == LinkKind::kUrl ? escape_url(to.target) : path_target(to.target);
}

// Writes targets into the elements of one list.
class TargetWriter {
 public:
  TargetWriter(const SheetPatching& from, const Ids& mentioned)
      : from_(from), mentioned_(mentioned) {}

  void set(pugi::xml_node node, std::string_view text, bool is_new) {
    const LinkTarget to = link_target(text);
    if (!is_new) node.remove_attribute(package::attribute(node, Family::Relationships, "id"));
    if (to.kind != LinkKind::kPlace) {
      const std::string id = from_.parts.relate_outside(from_.remains.part, mentioned_, "hyperlink",
                                                        stored_target(to));
      if (is_new) set_attribute(node, id_name(node), id);
      else package::set_attribute(node, Family::Relationships, "id", id);
    }
    settle_attribute(node, "location", escape(to.location),
                     to.kind != LinkKind::kPlace && to.location.empty());
  }

 private:
  // The same for all new elements.
  const char* id_name(pugi::xml_node node) {
    if (id_name_.empty()) id_name_ = package::attribute_name(node, Family::Relationships, "id");
    return id_name_.c_str();
  }

  const SheetPatching& from_;
  const Ids& mentioned_;
  std::string id_name_;
};

}  // namespace

void read_links(pugi::xml_node element, const SheetReading& to) {
  const SheetContext& context = to.context;
  try {
    to.sheet.links =
        links_of(element, context.parts, to.remains.part, context.workbook.limits.grid);
  } catch (const package::FileError& error) {
    to.remains.links_damage = error.what();
  }
}

void patch_links(pugi::xml_node root, const SheetPatching& from) {
  if (!from.remains.links_damage.empty()) return;
  const Links& links = from.sheet.contents().links;
  pugi::xml_node list = package::child(root, Family::Main, "hyperlinks");
  const Links stored = links_of(list, from.parts, from.remains.part, from.book.limits.grid);
  if (links == stored) return;
  const std::vector<pugi::xml_node> nodes = link_nodes(list);
  std::vector<const Link*> left(nodes.size());  // by number: those that nobody has claimed
  for (std::size_t i = 0; i < stored.size(); ++i) left[stored[i].details - 1] = &stored[i];

  const Ids mentioned = mentioned_ids(root);
  if (!list) list = worksheet_child(root, "hyperlinks");
  TargetWriter targets(from, mentioned);
  for (std::size_t i = 0; i < links.size(); ++i) {
    const Link& link = links[i];
    const Link* former = link.details == 0 ? nullptr : std::exchange(left[link.details - 1], {});
    const pugi::xml_node node = former ? list.append_move(nodes[link.details - 1])
                                       : package::append_child(list, "hyperlink");
    if (!former || former->cells != link.cells)
      set_attribute(node, "ref", formula::print_range(link.cells));
    if (!former || former->text != link.text) targets.set(node, link.text, !former);
  }
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (left[i]) list.remove_child(nodes[i]);
  if (count_elements(list) == 0) root.remove_child(list);

  if (mentioned.empty()) return;
  const Ids now = mentioned_ids(root);
  for (const std::string& id : mentioned)
    if (!now.contains(id)) from.parts.unrelate(from.remains.part, id);
}

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

void collect_consolidation(pugi::xml_node element, TextEdits& edits) {
  const pugi::xml_node list = package::child(element, Family::Main, "dataRefs");
  for (const pugi::xml_node source : package::children(list, Family::Main, "dataRef")) {
    const pugi::xml_attribute sheet = source.attribute("sheet");
    if (sheet && !package::attribute(source, Family::Relationships, "id")) edits.ask_sheet(sheet);
  }
}

// A link stays although its target is lost: the model knows it by its place.
void copy_links(pugi::xml_node element, const SheetCopying& to) {
  ExternalLinks links(to);
  for (pugi::xml_node link : link_nodes(element))
    if (!links.take(link))
      link.remove_attribute(package::attribute(link, Family::Relationships, "id"));
}

}  // namespace engine::xlsx

#include "engine/xlsx/relationships.h"

#include <algorithm>
#include <utility>

#include "engine/package/xml_text.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"

namespace engine::xlsx {

namespace {

using package::Family;

std::string_view folder_of(std::string_view part) {
  return part.substr(0, part.find_last_of('/') + 1);
}

void append_attribute(std::string& out, std::string_view name, std::string_view value) {
  out.append(" ").append(name).append("=\"");
  package::append_xml_attribute(out, value);
  out.push_back('"');
}

void enter_ids(pugi::xml_node node, Ids& ids) {
  for (const pugi::xml_attribute one : node.attributes())
    if (!package::prefix_of(std::string_view(one.name())).empty()) ids.emplace(one.value());
  for (const pugi::xml_node child : node.children()) enter_ids(child, ids);
}

}  // namespace

Ids mentioned_ids(pugi::xml_node root) {
  Ids ids;
  enter_ids(root, ids);
  return ids;
}

bool refers_to_parts(pugi::xml_node element) {
  return package::attribute(element, Family::Relationships, "id") ||
         std::ranges::any_of(element.children(), refers_to_parts);
}

Relationships::Relationships(const Relationships& other) {
  for (const Relationship& one : other) add(one);
}

const Relationship* Relationships::find(std::string_view id) const {
  const auto found = by_id_.lower_bound(id);
  return found == by_id_.end() || found->first != id ? nullptr : &*found->second;
}

void Relationships::add(Relationship one) {
  std::list<Relationship> made;
  made.push_back(std::move(one));
  by_id_.emplace(made.front().id, made.begin());
  items_.splice(items_.end(), made);
}

void Relationships::exchange(std::string_view id, std::string& target) noexcept {
  const auto found = std::ranges::find(items_, id, &Relationship::id);
  if (found != items_.end()) found->target.swap(target);
}

bool Relationships::remove(std::string_view id) {
  const auto [first, last] = by_id_.equal_range(id);
  const bool any = first != last;
  for (auto at = first; at != last;) {
    const auto item = at->second;
    at = by_id_.erase(at);
    items_.erase(item);
  }
  return any;
}

void Relationships::append(Relationships&& others) noexcept {
  by_id_.merge(others.by_id_);
  items_.splice(items_.end(), others.items_);
}

std::string relationship_type(std::string_view kind) {
  constexpr std::string_view kTypes =
      "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";
  std::string type;
  type.reserve(kTypes.size() + kind.size());
  return type.append(kTypes).append(kind);
}

std::string relationships_name(std::string_view part) {
  const std::string_view folder = folder_of(part);
  return std::string(folder).append("_rels/").append(part.substr(folder.size())).append(".rels");
}

std::optional<std::string> relationships_owner(std::string_view name) {
  constexpr std::string_view kFolder = "_rels/";
  constexpr std::string_view kEnding = ".rels";
  const std::string key = lower_ascii(name);
  const std::string_view folder = folder_of(key);
  const bool in_folder = folder == kFolder || folder.ends_with("/_rels/");
  if (!in_folder || !key.ends_with(kEnding)) return std::nullopt;
  std::string owner(name.substr(0, folder.size() - kFolder.size()));
  return owner.append(name.substr(folder.size(), name.size() - folder.size() - kEnding.size()));
}

Relationships parse_relationships(std::string_view xml, std::string_view name) {
  const auto document = package::XmlTree::parse(xml, name);
  Relationships found;
  for (const pugi::xml_node node : document.root().children()) {
    if (!package::is(node, Family::PackageRelationships, "Relationship")) continue;
    Relationship one;
    one.id = node.attribute("Id").value();
    one.type = node.attribute("Type").value();
    one.target = node.attribute("Target").value();
    one.external = std::string_view(node.attribute("TargetMode").value()) == "External";
    found.add(std::move(one));
  }
  return found;
}

std::string write_relationships(const Relationships& relationships) {
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  // Most are links to places outside, and a sheet may have very many.
  constexpr std::size_t kUsualLength = 192;
  out.reserve(out.size() + relationships.size() * kUsualLength);
  for (const Relationship& one : relationships) {
    out.append("<Relationship");
    append_attribute(out, "Id", one.id);
    append_attribute(out, "Type", one.type);
    append_attribute(out, "Target", one.target);
    if (one.external) append_attribute(out, "TargetMode", "External");
    out.append("/>");
  }
  return out.append("</Relationships>");
}

std::string resolve_target(std::string_view owner, std::string_view target) {
  std::string path(target.substr(0, target.find('#')));
  for (char& c : path)
    if (c == '\\') c = '/';
  if (!path.starts_with('/')) path.insert(0, folder_of(owner));
  std::string resolved;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string_view step = std::string_view(path).substr(begin, end - begin);
    begin = end + 1;
    if (step.empty() || step == ".") continue;
    if (step == "..") {
      const std::size_t parent = resolved.find_last_of('/');
      resolved.erase(parent == std::string::npos ? 0 : parent);
      continue;
    }
    if (!resolved.empty()) resolved.push_back('/');
    resolved.append(step);
  }
  return resolved;
}

std::string relative_target(std::string_view owner, std::string_view part) {
  std::string_view folder = folder_of(owner);
  std::string up;
  while (!part.starts_with(folder)) {
    up.append("../");
    folder = folder_of(folder.substr(0, folder.size() - 1));
  }
  return up.append(part.substr(folder.size()));
}

}  // namespace engine::xlsx

#include "engine/xlsx/relationships.h"

#include <charconv>

#include "engine/package/xml_text.h"
#include "engine/package/xml_tree.h"

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

}  // namespace

std::string relationship_type(std::string_view kind) {
  return std::string("http://schemas.openxmlformats.org/officeDocument/2006/relationships/")
      .append(kind);
}

std::string relationships_name(std::string_view part) {
  const std::string_view folder = folder_of(part);
  return std::string(folder).append("_rels/").append(part.substr(folder.size())).append(".rels");
}

std::vector<Relationship> parse_relationships(std::string_view xml, std::string_view name) {
  const auto document = package::XmlTree::parse(xml, name);
  std::vector<Relationship> found;
  for (const pugi::xml_node node : document.root().children()) {
    if (!package::is(node, Family::PackageRelationships, "Relationship")) continue;
    Relationship one;
    one.id = node.attribute("Id").value();
    one.type = node.attribute("Type").value();
    one.target = node.attribute("Target").value();
    one.external = std::string_view(node.attribute("TargetMode").value()) == "External";
    found.push_back(std::move(one));
  }
  return found;
}

std::string write_relationships(const std::vector<Relationship>& relationships) {
  std::string out =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
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

std::string decode_percent(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned char byte = 0;
    if (text[i] == '%' && i + 2 < text.size()) {
      const auto [end, error] = std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16);
      if (error == std::errc() && end == text.data() + i + 3) {
        out.push_back(static_cast<char>(byte));
        i += 2;
        continue;
      }
    }
    out.push_back(text[i]);
  }
  return out;
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

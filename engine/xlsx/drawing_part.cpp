#include "engine/xlsx/drawing_part.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>

#include "engine/package/file_error.h"
#include "engine/package/xml_tree.h"
#include "engine/text/fold.h"
#include "engine/workbook/links.h"
#include "engine/xlsx/formula_texts.h"

namespace engine::xlsx {

namespace {

using package::Family;

constexpr Family kOwn = Family::SpreadsheetDrawing;
constexpr std::string_view kPictureName = "Picture ";
constexpr unsigned kMaxId = std::numeric_limits<int>::max();

// Distances and sizes as the format allows them; files say anything.
std::int64_t coordinate(long long emu) {
  constexpr long long kMost = 27'273'042'316'900;
  return std::clamp(emu, -kMost, kMost);
}

pugi::xml_node own_child(pugi::xml_node parent, std::string_view local) {
  return package::child(parent, kOwn, local);
}

// The names of what a corner says of a column or row.
struct EdgeNames {
  const char* index;
  const char* offset;
};
constexpr EdgeNames kColumn = {"col", "colOff"};
constexpr EdgeNames kRow = {"row", "rowOff"};

AnchorEdge read_edge(pugi::xml_node corner, const EdgeNames& names, int count) {
  return {std::clamp(own_child(corner, names.index).text().as_int(), 0, count - 1),
          coordinate(own_child(corner, names.offset).text().as_llong())};
}

void change_edge(pugi::xml_node corner, const EdgeNames& names, const AnchorEdge& edge) {
  own_child(corner, names.index).text().set(edge.index);
  own_child(corner, names.offset).text().set(static_cast<long long>(edge.offset));
}

bool is_corner(pugi::xml_node corner) {
  return own_child(corner, kColumn.index) && own_child(corner, kRow.index);
}

}  // namespace

bool is_picture_anchor(pugi::xml_node node) {
  if (package::family(node) != kOwn) return false;
  const std::string_view name = package::local_name(node);
  return (name == "twoCellAnchor" || name == "oneCellAnchor" || name == "absoluteAnchor") &&
         own_child(node, "pic");
}

pugi::xml_node drawing_root(const package::XmlTree& tree, std::string_view part) {
  const pugi::xml_node root = tree.root();
  if (!package::is(root, kOwn, "wsDr")) package::throw_damaged(part, "not a drawing");
  return root;
}

std::vector<pugi::xml_node> picture_anchors(pugi::xml_node root) {
  std::vector<pugi::xml_node> found;
  for (const pugi::xml_node node : root.children())
    if (is_picture_anchor(node)) found.push_back(node);
  return found;
}

std::optional<Anchor> read_anchor(pugi::xml_node anchor, const Grid& grid) {
  using Form = Anchor::Form;
  Anchor made;
  const std::string_view name = package::local_name(anchor);
  if (name == "twoCellAnchor") {
    const std::string_view edit = anchor.attribute("editAs").value();
    if (edit == "absolute") made.anchoring = Anchoring::kStays;
    else if (edit == "oneCell") made.anchoring = Anchoring::kMoves;
  } else {
    made.form = name == "oneCellAnchor" ? Form::kOneCell : Form::kAbsolute;
    made.anchoring = made.form == Form::kOneCell ? Anchoring::kMoves : Anchoring::kStays;
    const pugi::xml_node size = own_child(anchor, "ext");
    made.width = coordinate(size.attribute("cx").as_llong());
    made.height = coordinate(size.attribute("cy").as_llong());
  }
  if (made.form == Form::kAbsolute) {
    const pugi::xml_node place = own_child(anchor, "pos");
    made.x = coordinate(place.attribute("x").as_llong());
    made.y = coordinate(place.attribute("y").as_llong());
    return made;
  }
  const pugi::xml_node from = own_child(anchor, "from");
  if (!is_corner(from)) return std::nullopt;
  made.left = read_edge(from, kColumn, grid.columns);
  made.top = read_edge(from, kRow, grid.rows);
  if (made.form == Form::kOneCell) return made;
  const pugi::xml_node to = own_child(anchor, "to");
  if (!is_corner(to)) return std::nullopt;
  made.right = read_edge(to, kColumn, grid.columns);
  made.bottom = read_edge(to, kRow, grid.rows);
  return made;
}

void change_anchor(pugi::xml_node anchor, const Anchor& now) {
  const pugi::xml_node from = own_child(anchor, "from");
  change_edge(from, kColumn, now.left);
  change_edge(from, kRow, now.top);
  if (now.form != Anchor::Form::kTwoCells) return;
  const pugi::xml_node to = own_child(anchor, "to");
  change_edge(to, kColumn, now.right);
  change_edge(to, kRow, now.bottom);
}

PictureSource source_of(pugi::xml_node blip, const Parts& parts, std::string_view drawing) {
  PictureSource source;
  for (const char* const name : {"embed", "link"}) {
    const std::string_view id = package::attribute(blip, Family::Relationships, name).value();
    const Relationship* to = id.empty() ? nullptr : parts.relationship(drawing, id);
    if (!to) continue;
    if (const Part* part = parts.target(drawing, *to)) source.first = part->name;
    else if (to->external)
      source.second = local_path(to->target).value_or(unescape_path(to->target));
  }
  return source;
}

pugi::xml_node blip_of(pugi::xml_node anchor) {
  return package::child(own_child(own_child(anchor, "pic"), "blipFill"), Family::Drawing, "blip");
}

void StoredPictures::add(PictureSource source) {
  if (source.first.empty() && source.second.empty()) return;
  const auto number = static_cast<std::uint32_t>(sources.size());
  if (numbers.try_emplace(source, number).second) sources.push_back(std::move(source));
}

PlacedPictures read_pictures(pugi::xml_node root, const Parts& parts, std::string_view drawing,
                             const StoredPictures& stored, const Grid& grid) {
  PlacedPictures made;
  std::uint32_t number = 0;
  for (const pugi::xml_node node : picture_anchors(root)) {
    ++number;
    const auto known = stored.numbers.find(source_of(blip_of(node), parts, drawing));
    const auto anchor = read_anchor(node, grid);
    if (known != stored.numbers.end() && anchor) made.push_back({known->second, *anchor, number});
  }
  return made;
}

std::string empty_drawing(pugi::xml_node sheet) {
  const std::string_view beside = package::namespace_of(sheet);
  std::string text = "<xdr:wsDr xmlns:xdr=\"";
  text.append(package::uri_of(kOwn, beside)).append("\" xmlns:a=\"");
  return text.append(package::uri_of(Family::Drawing, beside)).append("\"/>");
}

PictureAppender::PictureAppender(pugi::xml_node root) : root_(root) {
  prefix_ = package::prefix_of(root.name());
  if (!prefix_.empty()) prefix_.push_back(':');
  visit_elements(root, [&](pugi::xml_node node) {
    if (package::local_name(node) != "cNvPr") return;
    ids_.insert(node.attribute("id").as_uint());
    const std::string_view name = node.attribute("name").value();
    if (!name.starts_with(kPictureName)) return;
    unsigned number = 0;
    std::from_chars(name.data() + kPictureName.size(), name.data() + name.size(), number);
    if (number < kMaxId) name_ = std::max(name_, number);
  });
  // Behind all others, unless these leave little room there.
  const unsigned last = ids_.empty() ? 0 : *ids_.rbegin();
  id_ = last < kMaxId / 2 ? std::max(last, 1U) : 1;
}

unsigned PictureAppender::free_id() {
  do ++id_;
  while (ids_.contains(id_));
  return id_;
}

void PictureAppender::append(const Anchor& anchor, std::pair<int, int> size, std::string_view embed,
                             std::string_view link) {
  using Form = Anchor::Form;
  const auto own = [&](pugi::xml_node parent, std::string_view local) {
    return parent.append_child((prefix_ + std::string(local)).c_str());
  };
  const auto set = [](pugi::xml_node node, const char* name, long long value) {
    node.append_attribute(name).set_value(value);
  };
  const auto add_corner = [&](pugi::xml_node parent, const char* local, const AnchorEdge& column,
                              const AnchorEdge& row) {
    pugi::xml_node corner = own(parent, local);
    for (const auto& [edge, its] : {std::pair(column, kColumn), std::pair(row, kRow)}) {
      own(corner, its.index).text().set(edge.index);
      own(corner, its.offset).text().set(static_cast<long long>(edge.offset));
    }
  };
  const char* const kinds[] = {"twoCellAnchor", "oneCellAnchor", "absoluteAnchor"};
  pugi::xml_node outer = own(root_, kinds[static_cast<int>(anchor.form)]);
  for (const auto& [name, family] :
       {std::pair("xmlns:a", Family::Drawing), std::pair("xmlns:r", Family::Relationships)}) {
    const std::string_view uri = package::uri_of(family, package::namespace_of(root_));
    if (root_.attribute(name).value() != uri)
      outer.append_attribute(name) = std::string(uri).c_str();
  }
  if (anchor.form == Form::kAbsolute) {
    pugi::xml_node place = own(outer, "pos");
    set(place, "x", anchor.x);
    set(place, "y", anchor.y);
  } else {
    add_corner(outer, "from", anchor.left, anchor.top);
  }
  if (anchor.form == Form::kTwoCells) {
    constexpr const char* kEditAs[] = {"twoCell", "oneCell", "absolute"};
    outer.append_attribute("editAs") = kEditAs[static_cast<int>(anchor.anchoring)];
    add_corner(outer, "to", anchor.right, anchor.bottom);
  } else {
    pugi::xml_node extent = own(outer, "ext");
    set(extent, "cx", anchor.width);
    set(extent, "cy", anchor.height);
  }

  pugi::xml_node picture = own(outer, "pic");
  pugi::xml_node about = own(picture, "nvPicPr");
  pugi::xml_node name = own(about, "cNvPr");
  set(name, "id", free_id());
  name.append_attribute("name") = (std::string(kPictureName) + std::to_string(++name_)).c_str();
  set(own(about, "cNvPicPr").append_child("a:picLocks"), "noChangeAspect", 1);
  pugi::xml_node fill = own(picture, "blipFill");
  pugi::xml_node blip = fill.append_child("a:blip");
  if (!embed.empty()) blip.append_attribute("r:embed") = std::string(embed).c_str();
  if (!link.empty()) blip.append_attribute("r:link") = std::string(link).c_str();
  fill.append_child("a:stretch").append_child("a:fillRect");
  pugi::xml_node shape = own(picture, "spPr");
  pugi::xml_node frame = shape.append_child("a:xfrm");
  pugi::xml_node origin = frame.append_child("a:off");
  set(origin, "x", anchor.x);
  set(origin, "y", anchor.y);
  pugi::xml_node extent = frame.append_child("a:ext");
  set(extent, "cx", size.first * kEmuPerPixel);
  set(extent, "cy", size.second * kEmuPerPixel);
  pugi::xml_node geometry = shape.append_child("a:prstGeom");
  geometry.append_attribute("prst") = "rect";
  geometry.append_child("a:avLst");
  own(outer, "clientData");
}

std::optional<CopiedDrawing> copy_pictures(std::string_view bytes, std::string_view part) {
  const auto document = package::XmlTree::parse(bytes, part);
  pugi::xml_node root = document.root();
  for (pugi::xml_node anchor = root.first_child(); anchor;) {
    const pugi::xml_node next = anchor.next_sibling();
    if (!is_picture_anchor(anchor)) root.remove_child(anchor);
    anchor = next;
  }
  if (!root.first_child()) return std::nullopt;
  return CopiedDrawing{document.serialize(), mentioned_ids(root)};
}

}  // namespace engine::xlsx

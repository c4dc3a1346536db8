#include "engine/xlsx/elements/drawings.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/links.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

using package::Family;

namespace {

constexpr std::string_view kDrawingName = "xl/drawings/drawing#.xml";

// The relationship as another part has it. Targets inside the part itself, as "#Sheet1!A1" of a
// picture that leads to a cell, mean the same there.
Relationship moved_link(Relationship link, std::string_view from) {
  if (link.external || link.target.starts_with('#')) return link;
  const std::size_t fragment = std::min(link.target.find('#'), link.target.size());
  const std::string rest = link.target.substr(fragment);
  link.target = "/" + resolve_target(from, link.target) + rest;
  return link;
}

}  // namespace

// Of a drawing the pictures are copied.
void copy_drawing(pugi::xml_node element, const SheetCopying& to) {
  const auto [link, part] = to.parts.named_by(element, to.original.part);
  auto pictures = part ? copy_pictures(to.parts.read(*part), part->name) : std::nullopt;
  if (!pictures) {
    element.parent().remove_child(element);
    return;
  }
  const std::string name = to.made.add(kDrawingName, kDrawingType, std::move(pictures->bytes));
  for (const Relationship& one : to.parts.relationships(part->name))
    if (pictures->ids.contains(one.id)) to.made.add_relationship(name, moved_link(one, part->name));
  to.made.add_relationship(to.copy.part,
                           {link->id, link->type, relative_target(to.copy.part, name), false});
}

// Writing.

namespace {

// What a kind of picture is called in a package.
struct MediaKind {
  std::string_view pattern;
  std::string_view type;
};
constexpr MediaKind kMedia[] = {
    {"xl/media/image#.png", "image/png"},   {"xl/media/image#.jpeg", "image/jpeg"},
    {"xl/media/image#.gif", "image/gif"},   {"xl/media/image#.wmf", "image/x-wmf"},
    {"xl/media/image#.bmp", "image/bmp"},   {"xl/media/image#.emf", "image/x-emf"},
    {"xl/media/image#.pict", "image/pict"}, {"xl/media/image#.tiff", "image/tiff"},
};

// The relationships of a drawing to pictures, each made once.
class PictureLinks {
 public:
  PictureLinks(Parts& parts, const std::string& drawing, pugi::xml_node root)
      : parts_(parts), drawing_(drawing), mentioned_(mentioned_ids(root)) {
    for (const Relationship& one : parts.relationships(drawing)) {
      if (one.kind() != kKind) continue;
      if (const Part* part = parts.target(drawing, one)) to_parts_.try_emplace(part->name, one.id);
      else if (one.external) to_files_.try_emplace(one.target, one.id);
    }
  }

  // Empty for nothing to lead to.
  std::string to_part(const std::string& part) {
    if (part.empty()) return {};
    std::string& id = to_parts_[part];
    if (id.empty()) id = parts_.relate(drawing_, mentioned_, kKind, part);
    return id;
  }
  std::string to_file(const std::string& path) {
    if (path.empty()) return {};
    const std::string target = path_target(path);
    std::string& id = to_files_[target];
    if (id.empty()) id = parts_.relate_outside(drawing_, mentioned_, kKind, target);
    return id;
  }

 private:
  static constexpr std::string_view kKind = "image";

  Parts& parts_;
  const std::string& drawing_;
  const Ids mentioned_;
  std::map<std::string, std::string> to_parts_;
  std::map<std::string, std::string> to_files_;
};

// Pictures of the file stand where they stood, but those that were moved or are gone.
void settle_placed(pugi::xml_node drawing, const PlacedPictures& as_read,
                   const PlacedPictures& pictures) {
  const std::vector<pugi::xml_node> anchors = picture_anchors(drawing);
  auto now = pictures.begin();
  for (const PlacedPicture& then : as_read) {
    const pugi::xml_node anchor = anchors.at(then.number - 1);
    if (now == pictures.end() || now->number != then.number) {
      drawing.remove_child(anchor);
      continue;
    }
    if (now->anchor != then.anchor) change_anchor(anchor, now->anchor);
    ++now;
  }
}

}  // namespace

// The name of the part with a picture's bytes; empty for a mere link. Equal bytes share one.
std::string PicturesWriter::media_of(std::uint32_t picture) {
  if (picture < stored_.sources.size()) return stored_.sources[picture].first;
  const Picture& its = book_.pictures[picture];
  if (!its.bytes || !its.header) return {};
  std::string& name = media_[*its.bytes];
  if (name.empty()) {
    const auto& [pattern, type] = kMedia[static_cast<std::size_t>(its.header->kind)];
    name = parts_.free_name(pattern);
    parts_.put_shared(name, type, its.bytes);
  }
  return name;
}

void PicturesWriter::write(const SheetPatching& from, pugi::xml_node root) {
  const SheetContents& sheet = from.sheet.contents();
  pugi::xml_node link = package::child(root, Family::Main, "drawing");
  const Part* stored = parts_.named_by(link, from.remains.part).part;
  const std::string name = stored ? stored->name : parts_.free_name(kDrawingName);
  const auto tree =
      package::XmlTree::parse(stored ? parts_.read(*stored) : empty_drawing(root), name);
  pugi::xml_node drawing = drawing_root(tree, name);
  settle_placed(drawing, from.remains.pictures, sheet.pictures);
  PictureLinks links(parts_, name, drawing);
  PictureAppender appender(drawing);
  for (const PlacedPicture& one : sheet.pictures) {
    if (one.number != 0) continue;
    const std::string embed = links.to_part(media_of(one.picture));
    appender.append(one.anchor, size_of(sheet, one.anchor), embed,
                    links.to_file(book_.pictures[one.picture].link));
  }
  parts_.put(name, stored ? std::string_view() : kDrawingType, tree.serialize());
  if (stored) return;
  if (!link) link = worksheet_child(root, "drawing");
  package::set_attribute(link, Family::Relationships, "id",
                         parts_.relate(from.remains.part, mentioned_ids(root), "drawing", name));
}

void patch_drawing(pugi::xml_node root, const SheetPatching& from) {
  if (from.sheet.contents().pictures != from.remains.pictures) from.pictures.write(from, root);
}

// Moving.

namespace {

Anchoring anchoring_of(pugi::xml_node anchor) {
  const std::string_view name = package::local_name(anchor);
  if (name == "oneCellAnchor") return Anchoring::kMoves;
  if (name == "anchor") {
    if (!anchor.attribute("moveWithCells").as_bool()) return Anchoring::kStays;
    return anchor.attribute("sizeWithCells").as_bool() ? Anchoring::kMovesAndSizes
                                                       : Anchoring::kMoves;
  }
  const std::string_view edit = anchor.attribute("editAs").value();
  if (edit == "absolute") return Anchoring::kStays;
  return edit == "oneCell" ? Anchoring::kMoves : Anchoring::kMovesAndSizes;
}

bool is_anchor(pugi::xml_node node) {
  const std::string_view name = package::local_name(node);
  return name == "twoCellAnchor" || name == "oneCellAnchor" || name == "anchor";
}

pugi::xml_node child_named(pugi::xml_node parent, std::string_view local) {
  for (const pugi::xml_node node : parent.children())
    if (package::local_name(node) == local) return node;
  return {};
}

// One corner of a carried object along the axis of a move.
struct CarriedEdge {
  pugi::xml_node place;
  pugi::xml_node offset;
  AnchorEdge edge;

  CarriedEdge(pugi::xml_node corner, formula::Axis axis)
      : place(child_named(corner, axis == formula::Axis::kRows ? "row" : "col")),
        offset(child_named(corner, axis == formula::Axis::kRows ? "rowOff" : "colOff")),
        edge{std::max(place.text().as_int(), 0), offset.text().as_llong()} {}

  void write() {
    place.text().set(edge.index);
    if (offset) offset.text().set(static_cast<long long>(edge.offset));
  }
};

// False when the object goes.
bool move_anchor(pugi::xml_node anchor, const AnchorMove& moving) {
  CarriedEdge from(child_named(anchor, "from"), moving.move.axis);
  CarriedEdge to(child_named(anchor, "to"), moving.move.axis);
  const Anchoring anchoring = anchoring_of(anchor);
  if (!from.place || anchoring == Anchoring::kStays) return true;
  const bool stays = move_edges(anchoring, from.edge, to.place ? &to.edge : nullptr, moving);
  from.write();
  if (to.place) to.write();
  return stays;
}

// The anchors of a drawing that the model has no part in.
template <class Visit>
void visit_carried(pugi::xml_node root, const PlacedPictures& pictures, const Visit& visit) {
  const std::vector<pugi::xml_node> anchors = picture_anchors(root);
  std::set<pugi::xml_node> modelled;
  for (const PlacedPicture& one : pictures) modelled.insert(anchors.at(one.number - 1));
  visit_elements(root, [&](pugi::xml_node node) {
    if (is_anchor(node) && !modelled.contains(node)) visit(node);
  });
}

}  // namespace

void move_carried(pugi::xml_node root, const PlacedPictures& as_read, const AnchorMove& moving) {
  std::vector<pugi::xml_node> lost;
  visit_carried(root, as_read, [&](pugi::xml_node node) {
    if (!move_anchor(node, moving)) lost.push_back(node);
  });
  for (pugi::xml_node node : lost) {
    // A picture that leads nowhere shows nothing; it stays, as the others are counted with it.
    if (node.parent() == root && is_picture_anchor(node)) continue;
    // Alternatives of one object go together.
    while (node.parent() != root && node.parent()) node = node.parent();
    root.remove_child(node);
  }
}

int last_carried(pugi::xml_node root, const PlacedPictures& as_read, formula::Axis axis,
                 int first) {
  int last = -1;
  visit_carried(root, as_read, [&](pugi::xml_node node) {
    if (anchoring_of(node) == Anchoring::kStays) return;
    const CarriedEdge from(child_named(node, "from"), axis);
    if (from.place && from.edge.index >= first) last = std::max(last, from.edge.index);
  });
  return last;
}

void collect_drawing(pugi::xml_node root, TextEdits& edits) {
  visit_elements(root, [&](pugi::xml_node node) {
    const std::string_view name = package::local_name(node);
    const char* formula = name == "sp" ? "textlink" : name == "cameraTool" ? "cellRange" : nullptr;
    const pugi::xml_attribute text = formula ? node.attribute(formula) : pugi::xml_attribute();
    if (*text.value() != '\0') edits.ask(text);
  });
}

void collect_controls(pugi::xml_node element, TextEdits& edits) {
  visit_elements(element, [&](pugi::xml_node node) {
    for (const char* name : {"linkedCell", "listFillRange"})
      if (const pugi::xml_attribute cells = node.attribute(name)) edits.ask(cells);
  });
}

void move_controls(pugi::xml_node element, const SheetMoving& moving) {
  const AnchorMove drawing(moving.sheet, moving.move, moving.grid);
  visit_elements(element, [&](pugi::xml_node node) {
    if (package::local_name(node) == "anchor") move_anchor(node, drawing);
  });
}

}  // namespace engine::xlsx

#include "engine/xlsx/elements/drawings.h"

#include <algorithm>

#include "engine/package/xml_tree.h"
#include "engine/xlsx/copied_drawing.h"
#include "engine/xlsx/new_parts.h"

namespace engine::xlsx {

namespace {

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
  const std::string name =
      to.made.add("xl/drawings/drawing#.xml", kDrawingType, std::move(pictures->bytes));
  for (const Relationship& one : to.parts.relationships(part->name))
    if (pictures->ids.contains(one.id)) to.made.add_relationship(name, moved_link(one, part->name));
  to.made.add_relationship(to.copy.part,
                           {link->id, link->type, relative_target(to.copy.part, name), false});
}

namespace {

constexpr long long kEmuPerPixel = 9525;

enum class AnchorKind : std::uint8_t { kMovesAndSizes, kMoves, kStays };

AnchorKind kind_of(pugi::xml_node anchor) {
  const std::string_view name = package::local_name(anchor);
  if (name == "oneCellAnchor") return AnchorKind::kMoves;
  if (name == "anchor") {
    if (!anchor.attribute("moveWithCells").as_bool()) return AnchorKind::kStays;
    return anchor.attribute("sizeWithCells").as_bool() ? AnchorKind::kMovesAndSizes
                                                       : AnchorKind::kMoves;
  }
  const std::string_view edit = anchor.attribute("editAs").value();
  if (edit == "absolute") return AnchorKind::kStays;
  return edit == "oneCell" ? AnchorKind::kMoves : AnchorKind::kMovesAndSizes;
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

// One corner of an object along the axis of a move. Offsets are in EMU.
struct AnchorCorner {
  pugi::xml_node place;
  pugi::xml_node offset;
  int index = 0;
  long long distance = 0;

  AnchorCorner(pugi::xml_node corner, formula::Axis axis)
      : place(child_named(corner, axis == formula::Axis::kRows ? "row" : "col")),
        offset(child_named(corner, axis == formula::Axis::kRows ? "rowOff" : "colOff")),
        index(std::max(place.text().as_int(), 0)),
        distance(offset.text().as_llong()) {}

  int pixels() const {
    return static_cast<int>(std::clamp<long long>(distance / kEmuPerPixel, 0, 1 << 20));
  }
  // Puts it to a place, at the edge of which it stands if its own is gone.
  void move(const formula::Move& move, int size) {
    const auto to = formula::moved(index, move);
    index = std::min(to.value_or(move.at), size - 1);
    if (!to) distance = 0;
  }
  void write() {
    place.text().set(index);
    if (offset) offset.text().set(distance);
  }
};

bool is_removed(const AnchorCorner& from, const AnchorCorner& to, const formula::Move& move) {
  if (move.kind == formula::Move::Kind::kInsert) return false;
  const int end = move.at + move.count;
  return from.index >= move.at && from.index < end &&
         (to.index < end || (to.index == end && to.distance == 0));
}

// False when the object goes.
bool move_anchor(pugi::xml_node anchor, const DrawingMove& moving) {
  const AnchorKind kind = kind_of(anchor);
  if (kind == AnchorKind::kStays) return true;
  AnchorCorner from(child_named(anchor, "from"), moving.move.axis);
  AnchorCorner to(child_named(anchor, "to"), moving.move.axis);
  if (!from.place) return true;
  const bool goes =
      to.place && kind == AnchorKind::kMovesAndSizes && is_removed(from, to, moving.move);
  const long long length = moving.before.position(to.index) + to.pixels() -
                           moving.before.position(from.index) - from.pixels();
  from.move(moving.move, moving.size);
  from.write();
  if (!to.place) return true;
  if (kind == AnchorKind::kMovesAndSizes) {
    to.move(moving.move, moving.size);
  } else {
    const Corner end =
        moving.after.walk({from.index, from.pixels()}, static_cast<int>(std::max(length, 0LL)));
    to.index = end.index;
    if (end.offset != to.pixels()) to.distance = end.offset * kEmuPerPixel;
  }
  to.write();
  return !goes;
}

// What the model's inserted rows and columns look like.
int inserted_pixels(const SheetContents& sheet, const formula::Move& move) {
  if (move.axis == formula::Axis::kColumns)
    return move.at == 0 ? default_column_pixels(sheet) : unhidden_column_pixels(sheet, move.at - 1);
  const Row* before = move.at == 0 ? nullptr : sheet.cells.find_row(move.at - 1);
  const RowProperties* its = before ? sheet.properties(*before) : nullptr;
  return pixels_of_points(its && its->custom_height && its->height ? *its->height
                                                                   : sheet.default_row_height);
}

Edges edges_of(const SheetContents& sheet, formula::Axis axis, const Grid& grid) {
  return axis == formula::Axis::kRows ? Edges::of_rows(sheet, grid.rows)
                                      : Edges::of_columns(sheet, grid.columns);
}

}  // namespace

DrawingMove::DrawingMove(const SheetContents& sheet, const formula::Move& its, const Grid& grid)
    : move(its),
      size(its.axis == formula::Axis::kRows ? grid.rows : grid.columns),
      before(edges_of(sheet, its.axis, grid)),
      after(before.moved(its, inserted_pixels(sheet, its))) {}

void move_drawing(pugi::xml_node root, const DrawingMove& moving) {
  std::vector<pugi::xml_node> lost;
  visit_elements(root, [&](pugi::xml_node node) {
    if (is_anchor(node) && !move_anchor(node, moving)) lost.push_back(node);
  });
  for (pugi::xml_node node : lost) {
    // Alternatives of one object go together.
    while (node.parent() != root && node.parent()) node = node.parent();
    root.remove_child(node);
  }
}

int last_anchor(pugi::xml_node root, formula::Axis axis, int first) {
  int last = -1;
  visit_elements(root, [&](pugi::xml_node node) {
    if (!is_anchor(node) || kind_of(node) == AnchorKind::kStays) return;
    const AnchorCorner from(child_named(node, "from"), axis);
    if (from.place && from.index >= first) last = std::max(last, from.index);
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
  const DrawingMove drawing(moving.sheet, moving.move, moving.grid);
  visit_elements(element, [&](pugi::xml_node node) {
    if (package::local_name(node) == "anchor") move_anchor(node, drawing);
  });
}

}  // namespace engine::xlsx

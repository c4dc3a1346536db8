#include "engine/xls/drawing_anchor.h"

#include <algorithm>

#include "engine/package/little_endian.h"
#include "engine/xls/fields.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

namespace {

constexpr std::int64_t kColumnParts = 1024;
constexpr std::int64_t kRowParts = 256;

constexpr std::uint32_t kStaysFlag = 1;
constexpr std::uint32_t kKeepsSizeFlag = 2;

constexpr std::size_t kEdgeSize = 4;

// The edges in the order in which they are stored, behind the flags.
struct StoredEdge {
  AnchorEdge Anchor::*edge;
  bool is_column;
};
constexpr StoredEdge kEdges[] = {
    {&Anchor::left, true}, {&Anchor::top, false}, {&Anchor::right, true}, {&Anchor::bottom, false}};

std::int64_t size_at(const SheetContents& sheet, const StoredEdge& stored, int index) {
  return (stored.is_column ? column_pixels(sheet, index) : row_pixels(sheet, index)) * kEmuPerPixel;
}

std::uint32_t part_of(const AnchorEdge& edge, const StoredEdge& stored,
                      const SheetContents& sheet) {
  const std::int64_t parts = stored.is_column ? kColumnParts : kRowParts;
  const std::int64_t size = size_at(sheet, stored, edge.index);
  if (size == 0) return 0;
  const std::int64_t offset = std::clamp<std::int64_t>(edge.offset, 0, size);
  return static_cast<std::uint32_t>(std::min((offset * parts + size / 2) / size, parts - 1));
}

std::uint32_t flags_of(Anchoring anchoring) {
  switch (anchoring) {
    case Anchoring::kMovesAndSizes:
      return 0;
    case Anchoring::kMoves:
      return kKeepsSizeFlag;
    default:
      return kKeepsSizeFlag | kStaysFlag;
  }
}

}  // namespace

Anchor read_anchor(std::string_view bytes, const SheetContents& sheet, const Grid& grid) {
  Fields in(bytes);
  Anchor made;
  const unsigned flags = in.take16();
  made.anchoring = (flags & kStaysFlag) != 0       ? Anchoring::kStays
                   : (flags & kKeepsSizeFlag) != 0 ? Anchoring::kMoves
                                                   : Anchoring::kMovesAndSizes;
  for (const StoredEdge& stored : kEdges) {
    AnchorEdge& edge = made.*stored.edge;
    edge.index = std::min<int>(in.take16(), (stored.is_column ? grid.columns : grid.rows) - 1);
    const std::int64_t parts = stored.is_column ? kColumnParts : kRowParts;
    const std::int64_t part = std::min<std::int64_t>(in.take16(), parts);
    edge.offset = (part * size_at(sheet, stored, edge.index) + parts / 2) / parts;
  }
  return made;
}

void change_anchor(std::string& bytes, std::size_t at, const Anchor& as_read, const Anchor& now,
                   const SheetContents& sheet) {
  if (as_read.anchoring != now.anchoring) put16(&bytes[at], flags_of(now.anchoring));
  at += 2;
  for (const StoredEdge& stored : kEdges) {
    const AnchorEdge& was = as_read.*stored.edge;
    const AnchorEdge& is = now.*stored.edge;
    if (was.index != is.index) put16(&bytes[at], static_cast<std::uint32_t>(is.index));
    if (was.offset != is.offset) put16(&bytes[at + 2], part_of(is, stored, sheet));
    at += kEdgeSize;
  }
}

void put_anchor(std::string& out, const Anchor& anchor, const SheetContents& sheet) {
  package::put16(out, flags_of(anchor.anchoring));
  for (const StoredEdge& stored : kEdges) {
    const AnchorEdge& edge = anchor.*stored.edge;
    package::put16(out, static_cast<std::uint64_t>(edge.index));
    package::put16(out, part_of(edge, stored, sheet));
  }
}

Anchor at_two_cells(const Anchor& anchor, const SheetContents& sheet, const Grid& grid) {
  using Form = Anchor::Form;
  if (anchor.form == Form::kTwoCells) return anchor;
  const auto pixels = [](std::int64_t emu) { return (emu + kEmuPerPixel / 2) / kEmuPerPixel; };
  const auto corner_of = [&](const AnchorEdge& edge) {
    return Corner{edge.index, static_cast<int>(pixels(edge.offset))};
  };
  const auto edge_at = [](const Corner& corner) {
    return AnchorEdge{corner.index, corner.offset * kEmuPerPixel};
  };
  Anchor made = anchor;
  made.form = Form::kTwoCells;
  if (anchor.form == Form::kAbsolute) {
    made.left = edge_at(walk_columns(sheet, {}, pixels(anchor.x), grid.columns));
    made.top = edge_at(walk_rows(sheet, {}, pixels(anchor.y), grid.rows));
  }
  made.right =
      edge_at(walk_columns(sheet, corner_of(made.left), pixels(anchor.width), grid.columns));
  made.bottom = edge_at(walk_rows(sheet, corner_of(made.top), pixels(anchor.height), grid.rows));
  made.x = made.y = made.width = made.height = 0;
  return made;
}

}  // namespace engine::xls

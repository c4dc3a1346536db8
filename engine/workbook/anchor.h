// Where objects lie over the cells of a sheet.
//
// An object is anchored at corners: cells with a distance into them. Distances and sizes are in EMU
// (English metric units), the unit of drawings: 914400 an inch, 9525 a pixel.
#pragma once

#include <cstdint>

namespace engine {

inline constexpr std::int64_t kEmuPerPixel = 9525;

// What an object does when the cells under it move.
enum class Anchoring : std::uint8_t { kMovesAndSizes, kMoves, kStays };

// A row or column, and how far an object's corner lies in it.
struct AnchorEdge {
  int index = 0;
  std::int64_t offset = 0;  // EMU

  friend bool operator==(const AnchorEdge&, const AnchorEdge&) = default;
};

// How an object is held: at the cells of two corners, at the cell of its upper left one, or at the
// sheet. What a form does without is 0.
struct Anchor {
  enum class Form : std::uint8_t { kTwoCells, kOneCell, kAbsolute };

  Form form = Form::kTwoCells;
  Anchoring anchoring = Anchoring::kMovesAndSizes;
  AnchorEdge left, top;
  AnchorEdge right, bottom;
  std::int64_t x = 0, y = 0;           // EMU from the sheet's corner
  std::int64_t width = 0, height = 0;  // EMU

  friend bool operator==(const Anchor&, const Anchor&) = default;
};

}  // namespace engine

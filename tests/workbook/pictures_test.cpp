#include "engine/workbook/pictures.h"

#include <gtest/gtest.h>

#include "engine/workbook/metrics.h"
#include "engine/workbook/sheet.h"

namespace engine {
namespace {

constexpr Grid kGrid{1000, 100};

// Columns are 64 pixels wide and rows 20 high, but the second column 10 and the third row 40; the
// fifth row and the fourth column are hidden.
SheetContents sheet() {
  SheetContents made;
  ColumnProperties narrow;
  narrow.first = narrow.last = 1;
  narrow.width = width_of_pixels(10, 7);
  made.columns.append(narrow);
  ColumnProperties hidden;
  hidden.first = hidden.last = 3;
  hidden.hidden = true;
  made.columns.append(hidden);
  made.properties_at(2).height = 30;
  made.properties_at(4).hidden = true;
  return made;
}

std::string edge(const AnchorEdge& one) {
  return std::to_string(one.index) + "+" + std::to_string(one.offset / kEmuPerPixel) + " ";
}
std::string described(const Anchor& anchor) {
  using Form = Anchor::Form;
  if (anchor.form == Form::kAbsolute)
    return "at " + std::to_string(anchor.x / kEmuPerPixel) + " " +
           std::to_string(anchor.y / kEmuPerPixel);
  std::string text = edge(anchor.left) + edge(anchor.top);
  if (anchor.form == Form::kTwoCells) text += "to " + edge(anchor.right) + edge(anchor.bottom);
  return text;
}
std::string described(const PictureBox& box) {
  std::string text;
  for (const int field : {box.row_top, box.column_left, box.row_bottom, box.column_right, box.width,
                          box.height, box.offset_x, box.offset_y})
    text += std::to_string(field) + " ";
  return text;
}

TEST(Pictures, LieWhereTheyWerePlaced) {
  const struct {
    PictureBox at;  // row, column, offsets and size
    const char* anchor;
    const char* absolute;
    const char* box;  // rows and columns of both corners, size, offsets
  } cases[] = {
      {{.row_top = 1, .column_left = 0, .width = 70, .height = 30},
       "0+0 1+0 to 1+6 2+10 ",
       "at 0 20",
       "1 0 2 1 70 30 0 0 "},
      // The end of a cell is the beginning of the next one.
      {{.row_top = 0, .column_left = 0, .width = 64, .height = 20},
       "0+0 0+0 to 1+0 1+0 ",
       "at 0 0",
       "0 0 1 1 64 20 0 0 "},
      // Offsets that are larger than their cell, over what is hidden.
      {{.row_top = 2, .column_left = 1, .offset_x = 80, .offset_y = 61, .width = 5, .height = 5},
       "4+6 5+1 to 4+11 5+6 ",
       "at 144 101",
       "5 4 5 4 5 5 6 1 "},
      // A hidden cell stays the picture's as long as nothing leads out of it.
      {{.row_top = 4, .column_left = 3, .width = 5, .height = 5},
       "3+0 4+0 to 4+5 5+5 ",
       "at 138 100",
       "4 3 5 4 5 5 0 0 "},
      {{.row_top = 999, .column_left = 99, .offset_x = 60, .width = 500, .height = 500},
       "99+60 999+0 to 99+63 999+19 ",
       "at 6278 19980",
       "999 99 999 99 3 19 60 0 "},
  };
  const SheetContents contents = sheet();
  for (const auto& [at, anchor, absolute, box] : cases) {
    SCOPED_TRACE(anchor);
    const Anchor sizing = make_anchor(contents, Anchoring::kMovesAndSizes, at, kGrid);
    EXPECT_EQ(described(sizing), anchor);
    EXPECT_EQ(described(box_of(contents, sizing, kGrid)), box);
    const Anchor moving = make_anchor(contents, Anchoring::kMoves, at, kGrid);
    EXPECT_EQ(moving.left, sizing.left);
    EXPECT_EQ(moving.top, sizing.top);
    EXPECT_EQ(moving.width, at.width * kEmuPerPixel);
    const Anchor fixed = make_anchor(contents, Anchoring::kStays, at, kGrid);
    EXPECT_EQ(described(fixed), absolute);
    const PictureBox found = box_of(contents, fixed, kGrid);
    EXPECT_EQ(found.width, at.width);
    EXPECT_EQ(found.height, at.height);
  }
}

// Files hold any place: what is asked of it stays a number.
TEST(Pictures, PlacesThatCannotBeAreStillPlaces) {
  const SheetContents contents = sheet();
  Anchor anchor;
  anchor.left.offset = -kEmuPerPixel;
  anchor.right = {2, INT64_MIN / 4};
  anchor.bottom = {0, INT64_MAX / 4};
  const PictureBox box = box_of(contents, anchor, kGrid);
  EXPECT_EQ(box.offset_x, 0);
  EXPECT_EQ(box.width, 0);
  EXPECT_EQ(box.height, INT32_MAX);
  anchor.form = Anchor::Form::kAbsolute;
  anchor.x = INT64_MAX / 4;
  EXPECT_EQ(box_of(contents, anchor, kGrid).column_left, 99);
}

TEST(Pictures, MoveWithTheirCells) {
  using Kind = formula::Move::Kind;
  constexpr auto kRows = formula::Axis::kRows;
  constexpr auto kColumns = formula::Axis::kColumns;
  const PictureBox at{
      .row_top = 5, .column_left = 5, .offset_x = 3, .offset_y = 4, .width = 128, .height = 40};
  const struct {
    Anchoring anchoring;
    formula::Move move;
    const char* after;
  } cases[] = {
      {Anchoring::kMovesAndSizes, {kRows, Kind::kInsert, 5, 2}, "5+3 7+4 to 7+3 9+4 "},
      {Anchoring::kMovesAndSizes, {kRows, Kind::kInsert, 6, 2}, "5+3 5+4 to 7+3 9+4 "},
      {Anchoring::kMovesAndSizes, {kRows, Kind::kRemove, 4, 2}, "5+3 4+0 to 7+3 5+4 "},
      {Anchoring::kMovesAndSizes, {kRows, Kind::kRemove, 5, 3}, "gone"},
      {Anchoring::kMovesAndSizes, {kColumns, Kind::kInsert, 0, 1}, "6+3 5+4 to 8+3 7+4 "},
      {Anchoring::kMoves, {kRows, Kind::kInsert, 6, 2}, "5+3 5+4 "},
      {Anchoring::kMoves, {kRows, Kind::kInsert, 5, 2}, "5+3 7+4 "},
      {Anchoring::kMoves, {kRows, Kind::kRemove, 4, 9}, "5+3 4+0 "},
      {Anchoring::kStays, {kRows, Kind::kRemove, 0, 9}, "at 205 104"},
  };
  const SheetContents contents = sheet();
  for (const auto& [anchoring, move, after] : cases) {
    const PlacedPictures before = {{7, make_anchor(contents, anchoring, at, kGrid), 9}};
    const PlacedPictures found = moved(before, contents, move, kGrid);
    if (found.empty()) {
      EXPECT_STREQ(after, "gone");
      continue;
    }
    EXPECT_EQ(described(found[0].anchor), after);
    EXPECT_EQ(found[0].picture, 7);
    EXPECT_EQ(found[0].number, 9);
    EXPECT_EQ(last_picture(before, kRows, 5), anchoring == Anchoring::kStays ? -1 : 5);
    EXPECT_EQ(last_picture(before, kColumns, 6), -1);
  }
}

}  // namespace
}  // namespace engine

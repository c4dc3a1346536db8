// The shapes that are drawn anew: pictures, boxes of notes, buttons of filters.
//
// A shape is a container with its look, its place and a mark for the object, a record that stands
// behind these bytes and says what the shape is for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/workbook/anchor.h"
#include "engine/workbook/sheet.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

struct NewShape {
  enum class Kind : std::uint8_t { kPicture, kNote, kFilterButton };

  Kind kind = Kind::kPicture;
  Anchor anchor;              // at two cells
  std::uint32_t picture = 0;  // of the book's store, from 1; 0: a link to what is not stored
  std::string_view link;      // of a picture
  bool has_bytes = true;      // so that a link is not all there is
  std::string_view text;      // of a note

  std::uint32_t number = 0;
  std::uint32_t object = 0;
};

// The frame around all shapes of a sheet.
void put_frame(std::string& out, std::uint32_t number);

// The shape up to where its object stands, and what goes on behind that.
void put_shape(std::string& out, const NewShape& shape, const SheetContents& sheet);
std::size_t size_behind_object(const NewShape& shape);
void put_behind_object(std::string& out, const NewShape& shape);

// The records behind a shape: its object, and a note's text.
void write_object(RecordWriter& out, const NewShape& shape);
void write_text(RecordWriter& out, const NewShape& shape);

// What ties a box to its cell.
void write_note(RecordWriter& out, CellAddress cell, std::string_view author, std::uint32_t flags,
                std::uint32_t object);

// Where the box of a note stands beside its cell: one column to the right, one row up, a little
// inside.
Anchor note_anchor(const SheetContents& sheet, CellAddress cell, const Comment& note,
                   const Grid& grid);

}  // namespace engine::xls

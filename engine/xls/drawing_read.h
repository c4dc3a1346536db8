// Reading the drawing of a sheet: pictures, notes, and where everything stands.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/workbook/sheet.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/drawing_group.h"
#include "engine/xls/drawing_part.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/fields.h"
#include "engine/xls/record_reader.h"

namespace engine::xls {

class DrawingReader {
 public:
  explicit DrawingReader(DrawingPart& part) : part_(part) {}

  // Records as they come by; what continues them is passed.
  void take_drawing(RecordReader& reader);
  void take_object(RecordReader& reader);
  void take_text(RecordReader& reader);
  // A chart that lies in the sheet, with what it consists of.
  void take_substream(RecordReader& reader);
  // A record that continues another one: where a drawing became too long for its record, its bytes
  // go on behind an object.
  void take_continued(RecordReader& reader);
  void take_note(Fields& in, const Grid& grid);

  // Puts together what has come, once the sizes of rows and columns are known.
  void finish(SheetContents& sheet, const Grid& grid);

 private:
  // What a record says of a shape.
  struct Object {
    std::uint32_t at = 0;  // behind so many of the drawing's bytes
    std::uint32_t kind = 0;
    std::uint32_t number = 0;
    bool is_filter_button = false;
    bool is_foreign = false;  // shows what another program or the cells make
  };
  struct Note {
    CellAddress cell;
    std::uint32_t flags = 0;
    std::uint32_t object = 0;
    std::string author;
  };

  void attach(std::uint64_t begin, std::uint64_t end);
  void read_tree();
  void fail(std::string_view what) { part_.damage = what; }
  const Object* object_of(const DrawnShape& shape) const;
  void look_at_shape(const Piece& piece, const SheetContents& sheet, const Grid& grid);
  void read_notes(SheetContents& sheet);

  DrawingPart& part_;
  std::uint64_t end_ = 0;  // of the last record in the stream
  std::vector<Object> objects_;
  std::map<std::uint32_t, std::string> texts_;  // of notes by the numbers of their boxes
  std::vector<Note> notes_;
};

// Puts the pictures of a drawing on the sheet that they are of. Those that lead nowhere stay what
// the file alone has.
void place_pictures(DrawingPart& part, const DrawingGroup& group, LoadedPictures& loaded,
                    std::vector<Picture>& pictures, SheetContents& sheet);

}  // namespace engine::xls

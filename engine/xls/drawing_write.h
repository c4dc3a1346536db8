// Writing drawings: what lies over the cells of sheets, and what all of that shares.
//
// Shapes of a loaded file keep their bytes, numbers and order; those whose cells have moved get
// other anchors, those that are gone leave with the records behind them, and new ones stand on top.
// The list of the book follows: counts, clusters of shape numbers, pictures and their uses.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "engine/workbook/workbook.h"
#include "engine/xls/blips.h"
#include "engine/xls/drawing_group.h"
#include "engine/xls/drawing_part.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

// Writes records of the loaded stream from one place up to another, charts among them.
using CarryRecords = std::function<void(std::uint64_t begin, std::uint64_t end)>;

class Drawings {
 public:
  // What a loaded book has; a new one has nothing. All outlive this.
  Drawings(const Workbook& book, const DrawingGroup& group, const LoadedPictures& loaded);

  // Whether the records of a sheet's drawing and notes that the file has no longer hold.
  bool differs(const Sheet& sheet, const DrawingPart& part) const;

  // Those records as they are now: nothing for a sheet without shapes. Throws FileTargetError for
  // a drawing that is to be changed and cannot be understood.
  void write_sheet(RecordWriter& out, const Sheet& sheet, const DrawingPart& part,
                   const CarryRecords& carry);

  // Whether the list that the file has no longer holds; it is written anew in the globals once the
  // sheets have been written.
  bool list_differs() const { return changed_; }
  void write_list(RecordWriter& out) const;

 private:
  friend class SheetDrawing;

  // A picture of the store that is added.
  struct Added {
    Blip blip;
    std::uint32_t uses = 0;
  };

  std::uint32_t take_drawing();
  // Counts a drawing of a file that lists none.
  void enter_drawing(const DrawingPart& part);
  // `used` are the highest numbers that the drawing has in clusters.
  std::uint32_t take_shape(std::uint32_t drawing,
                           const std::map<std::uint32_t, std::uint32_t>& used);
  void count_shapes(std::int64_t by);
  // Counts uses of a stored picture, more or fewer.
  void use(std::uint32_t stored, int by);

  void add_pictures();
  std::string list_bytes() const;
  std::uint64_t added_size() const;
  void put_added(RecordWriter& out) const;
  void write_new_list(RecordWriter& out) const;
  void copy(RecordWriter& out, std::uint64_t at, std::uint64_t end) const;
  void copy_store(RecordWriter& out) const;
  void put_store_head(RecordWriter& out, std::uint64_t stored) const;

  const Workbook& book_;
  const DrawingGroup& group_;
  const LoadedPictures& loaded_;
  std::vector<std::uint32_t> stored_;  // of each of the book's pictures: its number in the store
  std::vector<Added> added_;
  std::map<std::uint32_t, std::int64_t> uses_;  // of pictures in the file's store, more or less
  std::vector<ShapeCluster> clusters_;
  std::uint32_t last_drawing_ = 0;
  std::uint32_t drawings_ = 0;
  std::uint32_t shapes_ = 0;
  std::uint32_t highest_shape_ = 0;
  bool changed_ = false;
};

}  // namespace engine::xls

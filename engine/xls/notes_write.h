// Writing comments: the boxes that show them, and what ties a box to its cell.
//
// Boxes are shapes of a drawing, a tree of containers whose bytes lie in several records: behind
// each shape stand records that say what it is for. The book lists its drawings. Shapes have
// numbers, given out in clusters of 1,024 that belong to one drawing each.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/formula/reference.h"
#include "engine/workbook/sheet.h"
#include "engine/xls/record_writer.h"

namespace engine::xls {

class Drawings {
 public:
  // `grid` is that of the book's sheets and outlives this.
  explicit Drawings(const Grid& grid) : grid_(grid) {}

  // The comments of a sheet; nothing without any.
  void write_notes(RecordWriter& out, const Sheet& sheet);

  // What the book says of the drawings that were written; nothing without any.
  void write_list(RecordWriter& out) const;

 private:
  struct Cluster {
    std::uint32_t drawing;
    std::uint32_t shapes;
  };

  std::uint32_t take_shape(std::uint32_t drawing);

  const Grid& grid_;
  std::vector<Cluster> clusters_;
  std::uint32_t drawings_ = 0;
  std::uint32_t shapes_ = 0;
};

}  // namespace engine::xls

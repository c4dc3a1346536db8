// The file that a book was loaded from, and what operations have changed in what it carries.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "engine/package/compound_file.h"
#include "engine/workbook/workbook.h"
#include "engine/xls/drawing_group.h"
#include "engine/xls/globals.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/sheet_part.h"

namespace engine::xls {

// A record that is carried and follows when cells move, or that uses colours of the palette.
struct CarriedRecord {
  std::uint64_t offset = 0;  // in the stream
  std::uint16_t id = 0;
};

struct LoadedFile {
  explicit LoadedFile(package::CompoundFile file) : container(std::move(file)) {}

  package::CompoundFile container;
  const package::CompoundEntry* entry = nullptr;  // of the stream
  package::CompoundStream stream;
  Globals globals;
  LoadedPictures pictures;
  SheetParts sheets;
  RecordEdits edits;  // of what all sheets share
  bool r1c1 = false;  // as the sheets say

  // Where another substream begins; some are said to begin behind the stream.
  std::uint64_t end_of(std::uint64_t begin) const {
    const auto next = ends.upper_bound(begin);
    return next == ends.end() ? stream.size() : std::min(*next, stream.size());
  }
  std::set<std::uint64_t> ends;

  // The carried records of each substream by where that begins, found once somebody asks.
  const std::map<std::uint64_t, std::vector<CarriedRecord>>& carried() const;

 private:
  mutable std::optional<std::map<std::uint64_t, std::vector<CarriedRecord>>> carried_;
};

// What a sheet of the format begins with.
SheetContents begin_contents(const Workbook& book);

// What goes with a sheet that is removed. A sheet that is damaged takes nothing along.
GoneDrawings drawings_of(const LoadedFile& file, const Workbook& book, const Sheet& sheet);

// The rows that a partial load of a sheet has left out. Throws FileError.
std::unique_ptr<OutsideRows> read_outside_rows(const LoadedFile& file, const Workbook& book,
                                               const Sheet& sheet);

}  // namespace engine::xls

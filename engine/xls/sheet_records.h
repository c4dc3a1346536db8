// The records of a worksheet beside its cells: to which group each belongs and how it is read.
//
// Whatever is too short or makes no sense is passed over and leaves the model as it was.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/workbook/sheet.h"
#include "engine/xls/drawing_read.h"
#include "engine/xls/fields.h"
#include "engine/xls/sheet_part.h"
#include "engine/xls/sheet_reader.h"

namespace engine::xls {

// What is gathered while the records of a sheet come by.
struct SheetReading {
  SheetReading(const SheetContext& its_context, SheetContents& contents, SheetFlags& its_flags)
      : context(its_context), sheet(contents), flags(its_flags), drawing(its_flags.drawing) {}

  const SheetContext& context;
  SheetContents& sheet;
  SheetFlags& flags;
  std::vector<ColumnProperties> columns;  // in the file's order
  DrawingReader drawing;
  bool frozen = false;
  bool preview = false;  // the view shows pages
  bool has_features = false;
  bool objects_locked = false;
  bool scenarios_locked = false;
};

struct SheetRecord {
  std::uint16_t id;
  std::optional<SheetGroup> group;             // nothing for one that is carried
  void (*read)(Fields& in, SheetReading& to);  // null for what only belongs to a group
};

// The entry of a record; null for one that the model has nothing of.
const SheetRecord* find_sheet_record(std::uint16_t id);
// The group of a record; nothing for a carried one.
std::optional<SheetGroup> group_of_record(std::uint16_t id, std::string_view data);

// Puts together what several records say.
void finish_sheet_records(SheetReading& reading);

// In a file of its own.
void read_link(Fields& in, SheetReading& to);

}  // namespace engine::xls

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

// A record of later programs with those that continue it.
struct FutureRecords {
  std::uint16_t id;
  std::vector<std::string> parts;  // at least one
};

// What they say of the sheet's filter.
struct FutureFilter {
  std::vector<FutureRecords> records;
  bool goes_on = false;  // the next record may continue the last of these
};

// What is gathered while the records of a sheet come by.
struct SheetReading {
  SheetReading(const SheetContext& its_context, SheetContents& contents, SheetFlags& its_flags)
      : context(its_context), sheet(contents), flags(its_flags), drawing(its_flags.drawing) {}

  const SheetContext& context;
  SheetContents& sheet;
  SheetFlags& flags;
  std::vector<ColumnProperties> columns;  // in the file's order
  std::uint64_t record = 0;               // where the one that is read stands in the stream
  DrawingReader drawing;
  FutureFilter filter;
  bool frozen = false;
  bool preview = false;  // the view shows pages
  bool has_features = false;
  bool objects_locked = false;
  bool scenarios_locked = false;
};

// Marks a formula without a value, in bytes that other programs leave unread: an empty text to
// them.
inline constexpr std::uint16_t kValueUnknown = 0xFFFF;

struct SheetRecord {
  std::uint16_t id;
  std::optional<SheetGroup> group;             // nothing for one that is carried
  void (*read)(Fields& in, SheetReading& to);  // null for what only belongs to a group
  // Which of the records of a number are meant, where it has several things to say.
  bool (*is_meant)(std::string_view data) = nullptr;
};

// The entry of a record; null for one that the model has nothing of.
const SheetRecord* find_sheet_record(std::uint16_t id, std::string_view data);
// The group of a record; nothing for a carried one.
std::optional<SheetGroup> group_of_record(std::uint16_t id, std::string_view data);

// Puts together what several records say.
void finish_sheet_records(SheetReading& reading);

// Rows and columns, first and last of each; nothing when they are none of the grid.
std::optional<CellRange> take_range(Fields& in, const Grid& grid);

// In a file of its own: links.
void read_link(Fields& in, SheetReading& to);

}  // namespace engine::xls

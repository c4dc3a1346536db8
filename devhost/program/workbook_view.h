// A workbook as it can be looked at through the plug-in's functions.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "devhost/fm/values.h"
#include "devhost/program/area.h"

namespace devhost {

struct SheetView {
  enum class State { kVisible, kHidden, kVeryHidden };

  std::u16string name;
  // The sheet's handle; an empty text for a sheet without cells, as a chart's.
  Value handle;
  State state = State::kVisible;
  bool active = false;
  // The cells that it holds, if any.
  std::optional<Area> used;

  bool has_cells() const { return handle.is_number(); }
};

struct CellView {
  enum class Kind { kEmpty, kNumber, kText, kBoolean, kError };

  Kind kind = Kind::kEmpty;
  Value value;
  // The value under the cell's number format.
  std::u16string shown;
  // Without the equals sign; empty when the cell has none.
  std::u16string formula;
};

// The process gives the book back: asking for a cell's format takes the book's handle away.
class WorkbookView {
 public:
  // Throws CallFailed with what is wrong with the file.
  explicit WorkbookView(const std::string& path);

  const std::vector<SheetView>& sheets() const { return sheets_; }
  CellView cell(const SheetView& sheet, int row, int column);

 private:
  void read_sheets();
  void read_codes();
  const std::string& code_of(const std::u16string& format, const std::vector<Value>& cell);

  Value book_;
  bool date1904_ = false;
  std::vector<SheetView> sheets_;
  // Codes by the number that the book has for each.
  std::map<std::uint32_t, std::string> codes_;
  // The code of each format that was met, by what the plug-in calls it.
  std::map<std::u16string, std::string> met_;
};

}  // namespace devhost

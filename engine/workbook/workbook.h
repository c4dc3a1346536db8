// A workbook in memory, whatever file it came from or goes to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/workbook/cell.h"
#include "engine/workbook/limits.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/string_pool.h"
#include "engine/workbook/styles.h"

namespace engine {

// A name that stands for a range, a constant or a formula.
struct DefinedName {
  std::string name;
  std::string definition;        // formula text without "="
  const Sheet* scope = nullptr;  // the only sheet that knows it; null: the whole book does
  bool hidden = false;
  std::string details;  // kept for the codec: what else the file says of the name
};

class Workbook {
 public:
  explicit Workbook(const Limits& format_limits);

  const Limits limits;
  std::vector<std::unique_ptr<Sheet>> sheets;  // in the order of their tabs
  StringPool strings;
  Styles styles;
  std::vector<DefinedName> names;
  std::size_t active_sheet = 0;
  bool date1904 = false;
  bool r1c1 = false;  // formulas are shown and taken in R1C1 notation
  bool is_template = false;
  int new_row_pixels = 20;  // of the rows of a new sheet

  // Cached values of formulas may be old: who opens the saved book is asked to calculate anew.
  bool needs_calculation = false;

  // Texts of errors that came after the classic seven; a cell's error is kNewError plus its number.
  StringPool new_errors;

  // The sheet of that name, ignoring case; else null.
  Sheet* find_sheet(std::string_view name) const;
  // The place of a sheet of this book among its tabs.
  std::size_t position(const Sheet& sheet) const;

 private:
  // Where sheets stood when they were last asked for, by the name as it was spelled: formulas ask
  // for the same ones again and again. Names and places change, so each is but where to look first.
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>()(text);
    }
  };
  mutable std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> places_seen_;
};

// Rows that a partial load left out. They have texts and errors of their own; only numbers of
// formats, and of texts that the file shares, are the book's.
struct OutsideRows {
  explicit OutsideRows(const Workbook& book) : texts(book.limits) {}

  Workbook texts;
  Sheet rows;
};

// Numbers of errors in cells: the classic ones as every file format knows them, then the others.
inline constexpr std::uint32_t kNewError = 256;

// "#DIV/0!" for 7, and so on; an empty text for a number that is no error.
std::string_view error_text(const Workbook& book, std::uint32_t error);
// The number of an error's text, which the book learns when it is new to it.
std::uint32_t error_number(Workbook& book, std::string_view text);
// True for the numbers of the seven errors that a caller may write.
bool is_classic_error(int error);

}  // namespace engine

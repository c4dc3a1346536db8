// A workbook in memory, whatever file it came from or goes to.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/workbook/cell.h"
#include "engine/workbook/defined_names.h"
#include "engine/workbook/limits.h"
#include "engine/workbook/pictures.h"
#include "engine/workbook/sheet.h"
#include "engine/workbook/string_pool.h"
#include "engine/workbook/styles.h"

namespace engine {

// Sheets by their folded names. Of sheets that share one, as those of a damaged file may, the first
// that came to the book stands first.
struct SheetNameLess {
  using is_transparent = void;
  bool operator()(const Sheet* a, const Sheet* b) const {
    return a->folded_name() < b->folded_name();
  }
  bool operator()(const Sheet* a, std::string_view b) const { return a->folded_name() < b; }
  bool operator()(std::string_view a, const Sheet* b) const { return a < b->folded_name(); }
};
using SheetNames = std::multiset<Sheet*, SheetNameLess>;

class Workbook {
 public:
  explicit Workbook(const Limits& format_limits);

  const Limits limits;
  StringPool strings;
  Styles styles;
  DefinedNames names;
  std::vector<Picture> pictures;  // never fewer; see Document::read_pictures()
  std::size_t active_sheet = 0;
  bool date1904 = false;
  bool r1c1 = false;  // formulas are shown and taken in R1C1 notation
  bool is_template = false;
  double new_row_height = 15;  // points; of the rows of a new sheet
  PageSetup new_page;          // of a new sheet

  // Texts of errors that came after the classic seven; a cell's error is kNewError plus its number.
  StringPool new_errors;

  // In the order of their tabs.
  const std::vector<std::unique_ptr<Sheet>>& sheets() const { return sheets_; }
  // The sheet of that name, ignoring case; else null.
  Sheet* find_sheet(std::string_view name) const;
  // The place of a sheet of this book among its tabs.
  std::size_t position(const Sheet& sheet) const;

  // Puts a sheet behind the others.
  void add_sheet(std::unique_ptr<Sheet> sheet);
  // The same at any position without allocating: there is room for one more, and `its_name` holds
  // the sheet and nothing else.
  void make_room_for_sheet();
  void insert_sheet(std::size_t position, std::unique_ptr<Sheet> sheet,
                    SheetNames its_name) noexcept;
  std::unique_ptr<Sheet> remove_sheet(std::size_t position) noexcept;
  // The others keep their order.
  void move_sheet(std::size_t from, std::size_t to) noexcept;
  // Changes the name and nothing that mentions it.
  void rename_sheet(Sheet& sheet, std::string name, std::string folded_name) noexcept;

 private:
  SheetNames::iterator place_in_names(const Sheet& sheet) const;

  std::vector<std::unique_ptr<Sheet>> sheets_;
  SheetNames sheet_names_;
  // Formulas name the same few sheets again and again; the latest first.
  mutable std::array<Sheet*, 2> last_found_{};
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

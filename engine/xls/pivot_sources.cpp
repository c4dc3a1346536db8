#include "engine/xls/pivot_sources.h"

#include <string>
#include <string_view>
#include <utility>

#include "engine/formula/formula_text.h"
#include "engine/formula/reference.h"
#include "engine/formula/sheet_name.h"
#include "engine/xls/characters.h"
#include "engine/xls/fields.h"

namespace engine::xls {

namespace {

// In front of the name of a sheet of the same book.
constexpr char kOwnSheet = 2;

// Rows of two bytes, columns of one, and where they are. Two bytes follow.
std::optional<std::string> edited_source(std::string_view data, const FormulaEdit& edit,
                                         const Grid& grid) {
  Fields in(data);
  CellRange range;
  range.row_first = in.take16();
  range.row_last = in.take16();
  range.column_first = in.take8();
  range.column_last = in.take8();
  const std::string place = in.take_long_text();
  if (!in.ok() || place.size() < 2 || place.front() != kOwnSheet) return std::nullopt;
  const auto text =
      edit(nullptr, formula::quote_sheet_name(place.substr(1)) + "!" + formula::print_range(range));
  if (!text) return std::nullopt;
  const auto to = formula::ranges_of_text(*text, grid);
  if (to.size() != 1 || to[0].sheet.empty()) return std::nullopt;
  const std::string named = kOwnSheet + to[0].sheet;
  const Characters characters(named);
  std::string made;
  package::put16(made, static_cast<std::uint64_t>(to[0].range.row_first));
  package::put16(made, static_cast<std::uint64_t>(to[0].range.row_last));
  package::put_number(made, static_cast<std::uint64_t>(to[0].range.column_first), 1);
  package::put_number(made, static_cast<std::uint64_t>(to[0].range.column_last), 1);
  package::put16(made, characters.count());
  package::put_number(made, characters.wide() ? 1 : 0, 1);
  return made.append(characters.bytes()).append(in.rest());
}

}  // namespace

std::optional<RecordEdits> edited_sources(const LoadedFile& file, const FormulaEdit& edit,
                                          const Grid& grid) {
  std::optional<RecordEdits> made;
  RecordReader reader(file.stream, 0, file.globals.cipher);
  for (const std::uint64_t offset : file.globals.pivot_sources) {
    const auto known = file.edits.find(offset);
    reader.go_to(offset);
    if (!reader.next()) continue;
    auto source =
        edited_source(known == file.edits.end() ? reader.data() : *known->second, edit, grid);
    if (!source) continue;
    if (!made) made = file.edits;
    (*made)[offset] = std::move(source);
  }
  return made;
}

}  // namespace engine::xls

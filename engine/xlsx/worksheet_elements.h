// The children of a worksheet, each a row of one table in the schema's order (ISO/IEC 29500-1,
// CT_Worksheet).
//
// A row says everything that the codec knows of an element: how it is read into the model, how it
// is patched from the model, what becomes of it in a copy of the sheet, which formulas it holds and
// which of its attributes name cells. What a row leaves out happens to the element as it stands: it
// is carried. Rows and cells (sheetData) never become part of a tree and have a reader and a writer
// of their own.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <span>
#include <string_view>
#include <vector>

#include "engine/formula/interval.h"
#include "engine/workbook/document.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/formula_texts.h"
#include "engine/xlsx/row_reader.h"
#include "engine/xlsx/sheet_part.h"
#include "engine/xlsx/styles_part.h"
#include "engine/xlsx/table_names.h"

namespace engine::xlsx {

class NotesWriter;
class PicturesWriter;

// Where an element is read into.
struct SheetReading {
  const SheetContext& context;
  SheetContents& sheet;
  SheetPart& remains;
};

// What an element is patched from.
struct SheetPatching {
  const Workbook& book;
  const Sheet& sheet;
  const SheetPart& remains;
  const OutsideRows* outside;  // the rows that a partial load left out; null without
  std::span<const Table> tables;
  const WrittenStyles& styles;
  Parts& parts;
  NotesWriter& notes;
  PicturesWriter& pictures;
};

// What a copy of an element is made with. The tree, of which the element is part, is the copy's.
struct SheetCopying {
  const Workbook& book;
  const Parts& parts;
  const SheetPart& original;
  const SheetPart& copy;
  NewParts& made;                             // the copy's parts
  std::optional<TableNames>& table_names;     // of the book, known once they are needed
  std::vector<formula::TableChange>& tables;  // receives the names of the copy's tables
};

// What an element is moved with: rows or columns are inserted or removed.
struct SheetMoving {
  const SheetContents& sheet;  // before
  const formula::Move& move;
  const Grid& grid;
};

enum class Copying : std::uint8_t {
  kAsItStands,
  kDropped,  // it is nothing without a part of the original, or the model makes it anew
};

// An attribute that names cells: B7, A1:B2, or several of them parted by blanks.
struct CellsAttribute {
  std::string_view element;  // the element itself or a descendant; empty: the element itself
  const char* attribute;
};

struct WorksheetElement {
  std::string_view name;
  // `element` is null where the worksheet has none.
  void (*read)(pugi::xml_node element, const SheetReading& to) = nullptr;
  void (*patch)(pugi::xml_node root, const SheetPatching& from) = nullptr;
  Copying copying = Copying::kAsItStands;
  // Makes of the element what the copy shall have; may remove it.
  void (*copy)(pugi::xml_node element, const SheetCopying& to) = nullptr;
  void (*formulas)(pugi::xml_node element, TextEdits& edits) = nullptr;
  // What becomes of the element when rows or columns are inserted or removed: its attributes name
  // cells, or it takes more than that; it may remove the element.
  std::span<const CellsAttribute> cells = {};
  void (*move)(pugi::xml_node element, const SheetMoving& moving) = nullptr;
};

// What the table says of all elements of a worksheet.
void read_elements(pugi::xml_node root, const SheetReading& to);
void patch_elements(pugi::xml_node root, const SheetPatching& from);
void copy_elements(pugi::xml_node root, const SheetCopying& to);
void collect_formulas(pugi::xml_node root, TextEdits& edits);

// Moves what elements say of cells after rows or columns of their sheet were inserted or removed.
// An element of which no cell is left goes, and its list with the last one.
void move_elements(pugi::xml_node root, const SheetMoving& moving);

// The child of that name, made at its place.
pugi::xml_node worksheet_child(pugi::xml_node root, std::string_view name);

}  // namespace engine::xlsx

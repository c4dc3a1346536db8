// The workbook part: the list of sheets, names and the book's settings.
//
// The tree is kept as it was read; writing patches a copy where the model differs from it.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"

namespace engine::xlsx {

// A sheet as the workbook part lists it.
struct SheetEntry {
  const Sheet* sheet = nullptr;
  std::string relationship;
  std::uint32_t id = 0;
};

class WorkbookPart {
 public:
  // A new book's.
  WorkbookPart();

  // Reads sheets, names and settings into the book; sheets stay unread. Throws FileError.
  void read(std::string_view bytes, const Parts& parts, std::string_view part, Workbook& book);

  // The tree with all that the book says.
  package::XmlTree patched(const Workbook& book, const std::vector<SheetEntry>& sheets) const;

  // The formulas of the part belong to the model, all of them: names.
  const package::XmlTree& tree() const { return document_; }

  // The highest sheet id that the file has given out.
  std::uint32_t last_sheet_id() const { return last_sheet_id_; }

 private:
  void read_sheets(pugi::xml_node root, const Parts& parts, std::string_view part, Workbook& book);

  package::XmlTree document_;
  std::uint32_t last_sheet_id_ = 0;
};

}  // namespace engine::xlsx

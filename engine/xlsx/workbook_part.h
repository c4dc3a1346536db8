// The workbook part: the list of sheets, names and the book's settings.
//
// The tree is kept as it was read; writing patches a copy where the model differs from it.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string_view>

#include "engine/package/xml_tree.h"
#include "engine/workbook/workbook.h"
#include "engine/xlsx/parts.h"
#include "engine/xlsx/sheet_part.h"

namespace engine::xlsx {

class WorkbookPart {
 public:
  // A new book's.
  WorkbookPart();

  // Reads sheets, names and settings into the book; sheets stay unread. Throws FileError.
  void read(std::string_view bytes, const Parts& parts, std::string_view part, Workbook& book,
            SheetParts& sheets);

  // The tree with all that the book says.
  package::XmlTree patched(const Workbook& book, const SheetParts& parts, bool calculate) const;

  // The formulas of the part belong to the model, all of them: names.
  const package::XmlTree& tree() const { return document_; }

  // Ids of relationships that the part mentions.
  const Ids& mentioned() const { return mentioned_; }

  // The highest sheet id that was ever given out.
  std::uint32_t last_sheet_id() const { return last_sheet_id_; }
  void note_sheet_id(std::uint32_t id) noexcept { last_sheet_id_ = id; }

 private:
  void read_sheets(pugi::xml_node root, const Parts& parts, std::string_view part, Workbook& book,
                   SheetParts& sheets);

  package::XmlTree document_;
  Ids mentioned_;
  std::uint32_t last_sheet_id_ = 0;
};

}  // namespace engine::xlsx

// New contents of what a document carries, held until all of them are made.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/xml_tree.h"
#include "engine/workbook/sheet.h"
#include "engine/xlsx/parts.h"
#include "engine/xlsx/sheet_part.h"

namespace engine::xlsx {

struct CarriedEdits {
  // What the file says of the formula of a record beside its text.
  struct Details {
    Sheet* rows;
    std::uint32_t record;
    std::string text;
  };

  std::vector<Details> details;
  std::vector<std::pair<Sheet*, std::shared_ptr<const package::XmlTree>>> trees;  // of sheets
  std::vector<std::pair<const Part*, std::shared_ptr<const std::string>>> parts;
  std::vector<Parts::Unlink> links;  // that go
  std::vector<Parts::Retarget> targets;

  void add_tree(Sheet& sheet, package::XmlTree tree) {
    trees.emplace_back(&sheet, std::make_shared<const package::XmlTree>(std::move(tree)));
  }
  void add_part(const Part& part, std::string bytes) {
    parts.emplace_back(&part, std::make_shared<const std::string>(std::move(bytes)));
  }
  // Gives the parts their new bytes, or their former ones back.
  void exchange_parts(Parts& package) noexcept;
  void apply(Parts& package, SheetParts& sheets) noexcept;
};

}  // namespace engine::xlsx

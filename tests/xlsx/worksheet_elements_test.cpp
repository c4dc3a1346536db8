// The table of a worksheet's elements.
#include "engine/xlsx/worksheet_elements.h"

#include <gtest/gtest.h>

#include "engine/package/xml_tree.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

// What is left of elements in front of or behind the rows after a move.
TEST(WorksheetElements, CellsThatTheyNameMove) {
  using formula::Axis;
  using Kind = formula::Move::Kind;
  const struct {
    const char* elements;
    formula::Move move;
    const char* moved;
  } cases[] = {
      {R"(<protectedRanges><protectedRange sqref="A1:B2"/><protectedRange sqref="A5:B6"/></protectedRanges>)",
       {Axis::kRows, Kind::kInsert, 1, 3},
       R"(<protectedRanges><protectedRange sqref="A1:B5"/><protectedRange sqref="A8:B9"/></protectedRanges>)"},
      {R"(<smartTags count="2"><cellSmartTags r="A1"/><cellSmartTags r="A5"/></smartTags>)",
       {Axis::kRows, Kind::kRemove, 4, 2},
       R"(<smartTags count="1"><cellSmartTags r="A1"/></smartTags>)"},
      {R"(<cellWatches><cellWatch r="C3"/></cellWatches>)",
       {Axis::kColumns, Kind::kRemove, 2, 1},
       ""},
      {R"(<conditionalFormatting sqref="A1:A9 C1 E:E"><cfRule/></conditionalFormatting>)",
       {Axis::kColumns, Kind::kRemove, 2, 1},
       R"(<conditionalFormatting sqref="A1:A9 D1:D1048576"><cfRule/></conditionalFormatting>)"},
      {R"(<sheetViews><sheetView><selection activeCell="B2" sqref="B2"/></sheetView></sheetViews>)",
       {Axis::kRows, Kind::kRemove, 1, 1},
       R"(<sheetViews><sheetView><selection activeCell="B2" sqref="B2"/></sheetView></sheetViews>)"},
      {R"(<own ref="A5"/><phoneticPr fontId="5"/>)", {Axis::kRows, Kind::kInsert, 0, 1}, nullptr},
      {R"(<protectedRanges><protectedRange sqref="A:B"/></protectedRanges>)",
       {Axis::kRows, Kind::kInsert, 3, 1},
       nullptr},
  };
  for (const auto& [elements, move, moved] : cases) {
    SCOPED_TRACE(elements);
    const auto tree = package::XmlTree::parse(worksheet("", elements), "sheet");
    move_elements(tree.root(), {SheetContents(), move, Limits().grid});
    EXPECT_NE(tree.serialize().find(std::string(moved ? moved : elements) + "<sheetData"),
              std::string::npos)
        << tree.serialize();
  }
}

}  // namespace
}  // namespace engine::xlsx

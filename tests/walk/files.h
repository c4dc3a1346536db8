// Files that the tables of calls read.
#pragma once

#include <fstream>
#include <string>

#include "tests/xlsx/packages.h"

namespace walk {

// A workbook whose sheet has a table in B2:C5, with totals.
inline std::string workbook_with_table() {
  using namespace engine::xlsx;  // NOLINT(google-build-using-namespace): makers of packages
  PartTexts parts =
      book_of(worksheet("", "", "<tableParts count=\"1\"><tablePart r:id=\"rId1\"/></tableParts>"));
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"table", "../tables/table1.xml"}});
  parts["xl/tables/table1.xml"] =
      "<table xmlns=\"" + std::string(kMainNamespace) +
      "\" id=\"1\" name=\"Table1\" displayName=\"Table1\" ref=\"B2:C5\" totalsRowCount=\"1\">"
      "<tableColumns count=\"2\"><tableColumn id=\"1\" name=\"a\"/><tableColumn id=\"2\" "
      "name=\"b\"/></tableColumns></table>";
  return zip(parts);
}

// Into the working folder.
inline void write_files() {
  std::ofstream("table.xlsx", std::ios::binary) << workbook_with_table();
}

}  // namespace walk

// Files that the tables of calls read.
#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "tests/xlsx/packages.h"

namespace walk {

inline void write_file(const char* name, std::string_view bytes) {
  std::ofstream(name, std::ios::binary) << bytes;
}

// The bytes of a text of hexadecimal digits.
inline std::string bytes_of(std::string_view digits) {
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    bytes.push_back(static_cast<char>(std::stoi(std::string(digits.substr(i, 2)), nullptr, 16)));
  return bytes;
}

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
  write_file("30x20.png",
             bytes_of("89504e470d0a1a0a0000000d494844520000001e00000014080200000015c91a930000001f"
                      "4944415478da631068f84023c4306af4a8d1a3468f1a3d6af4a8d143d16800ed6f842e1891"
                      "6c960000000049454e44ae426082"));
  write_file("40x10.png",
             bytes_of("89504e470d0a1a0a0000000d49484452000000280000000a080200000049f88b070000001a"
                      "4944415478da631068f830208861d4e2518b472d1eb5985c0400f1b2581ff167b055000000"
                      "0049454e44ae426082"));
  write_file("table.xlsx", workbook_with_table());
}

}  // namespace walk

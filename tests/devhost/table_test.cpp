#include "devhost/program/table.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "devhost/program/area.h"

namespace devhost {
namespace {

TEST(Table, FitsIntoTheTerminal) {
  Table table({u"A", u"B", u"C"});
  table.begin_row(u"9");
  table.add(u"数据数据数据数据", false);
  table.add(u"1234567890123456", true);
  table.begin_row(u"10");
  table.add(
      u"e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e",
      false);
  table.add(u"1", true);
  table.add(u"end", false);
  struct Case {
    int width;
    std::size_t columns;
    const char* printed;
  };
  constexpr Case kCases[] = {
      {0, 3,
       "   │ A                │                B │ C\n"
       "───┼──────────────────┼──────────────────┼────\n"
       " 9 │ 数据数据数据数据 │ 1234567890123456 │\n"
       "10 │ e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e "
       "   "
       "│                1 │ end\n"},
      {38, 3,
       "   │ A            │            B │ C\n"
       "───┼──────────────┼──────────────┼────\n"
       " 9 │ 数据数据数…  │ ############ │\n"
       "10 │ e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301…"
       " │            1 │ end\n"},
      {20, 1,
       "   │ A\n"
       "───┼────────────────\n"
       " 9 │ 数据数据数据数…\n"
       "10 │ "
       "e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\n"},
      {8, 1,
       "   │ A\n"
       "───┼────\n"
       " 9 │ 数…\n"
       "10 │ e\u0301e\u0301…\n"},
  };
  for (const auto& [width, columns, printed] : kCases) {
    SCOPED_TRACE(width);
    std::ostringstream out;
    EXPECT_EQ(table.print(out, width), columns);
    EXPECT_EQ(out.str(), printed);
  }
}

TEST(Area, IsReadAsPeopleWriteIt) {
  struct Case {
    const char* text;
    const char* area;
  };
  constexpr Case kCases[] = {
      {"b2", "B2"},
      {"$B$2:D20", "B2:D20"},
      {"D20:B2", "B2:D20"},
      {"b4:C1", "B1:C4"},
      {"b:d", "B1:D1048576"},
      {"2:20", "A2:XFD20"},
      {"XFD1048576", "XFD1048576"},
      {"", ""},
      {":", ""},
      {"B", ""},
      {"2", ""},
      {"A0", ""},
      {"A1048577", ""},
      {"XFE1", ""},
      {"A1:B", ""},
      {"A1:2", ""},
      {"A1:B2:C3", ""},
      {"A-1", ""},
      {"A1 ", ""},
      {"A99999999999", ""},
      {"AAAAAAAAAAAAAAAA1", ""},
  };
  for (const auto& [text, area] : kCases) {
    SCOPED_TRACE(text);
    const auto parsed = parse_area(text);
    EXPECT_EQ(parsed ? area_text(*parsed) : "", area);
  }
}

}  // namespace
}  // namespace devhost

// Header cells of tables and the names of their columns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/workbook/sheet_operations.h"
#include "engine/xlsx/table_part.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

std::string text_cell(const std::string& address, const std::string& text) {
  return "<c r=\"" + address + "\" t=\"inlineStr\"><is><t>" + text + "</t></is></c>";
}

// Sheet One has table T in B2:D4 with the columns Net, Gross and C, sheet Two a formula of it.
PartTexts book_with_table(const std::string& attributes = {}, const std::string& third = "C") {
  PartTexts parts = book_of(worksheet(
      "<row r=\"2\">" + text_cell("B2", "Net") + text_cell("C2", "Gross") + text_cell("D2", third) +
          "</row><row r=\"3\"><c r=\"B3\"><v>1</v></c><c r=\"C3\"><f>T[[#This Row],[Net]]*2</f></c>"
          "</row>",
      {}, "<tableParts count=\"1\"><tablePart r:id=\"rId1\"/></tableParts>"));
  parts["[Content_Types].xml"] = types(
      {{"xl/workbook.xml", "vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"},
       {"xl/tables/table1.xml", "vnd.openxmlformats-officedocument.spreadsheetml.table+xml"}});
  parts["xl/workbook.xml"] = workbook_text(
      "<sheet name=\"One\" sheetId=\"4\" r:id=\"rId1\"/><sheet name=\"Two\" "
      "sheetId=\"5\" r:id=\"rId2\"/>",
      "<definedNames><definedName name=\"N\">T[Gross]</definedName></definedNames>");
  parts["xl/_rels/workbook.xml.rels"] =
      relations({{"worksheet", "worksheets/sheet1.xml"}, {"worksheet", "worksheets/sheet2.xml"}});
  parts["xl/worksheets/sheet2.xml"] =
      worksheet("<row r=\"1\"><c r=\"A1\"><f>SUM(T[Net])+T[[#Totals],[c]]</f></c></row>");
  parts["xl/worksheets/_rels/sheet1.xml.rels"] = relations({{"table", "../tables/table1.xml"}});
  parts["xl/tables/table1.xml"] =
      "<table xmlns=\"" + std::string(kMainNamespace) +
      "\" id=\"1\" name=\"T\" displayName=\"T\" ref=\"B2:D4\" " + attributes +
      "><tableColumns count=\"3\"><tableColumn id=\"1\" name=\"Net\"/><tableColumn id=\"2\" "
      "name=\"Gross\"><calculatedColumnFormula>T[[#This Row],[Net]]*2</calculatedColumnFormula>"
      "</tableColumn><tableColumn id=\"3\" name=\"C\"/></tableColumns></table>";
  return parts;
}

void put_text(Book& book, int column, std::string_view text) {
  book.sheet().change().put_value(1, column, Value::of_text(book.workbook.strings.add(text)), {});
}

// The book as it is saved, after what a save does first.
PartTexts saved(Book& book) {
  book.document->settle_tables(book.workbook);
  return unzip(book.save());
}

TEST(Tables, ColumnsFollowTheirHeaders) {
  struct Case {
    const char* what;
    void (*change)(Book&);
    std::array<const char*, 3> names;  // in the part
    std::array<const char*, 3> shown;  // in the cells
    const char* formula;               // of the other sheet
  };
  const Case cases[] = {
      {"a new name",
       [](Book& book) { put_text(book, 1, "Sum"); },
       {"Sum", "Gross", "C"},
       {"Sum", "Gross", "C"},
       "SUM(T[Sum])+T[[#Totals],[c]]"},
      {"one that is taken",
       [](Book& book) { put_text(book, 1, "gross"); },
       {"gross2", "Gross", "C"},
       {"gross2", "Gross", "C"},
       "SUM(T[gross2])+T[[#Totals],[c]]"},
      {"all the same",
       [](Book& book) {
         for (const int column : {1, 2, 3}) put_text(book, column, "x");
       },
       {"x", "x2", "x3"},
       {"x", "x2", "x3"},
       "SUM(T[x])+T[[#Totals],[x3]]"},
      {"exchanged names",
       [](Book& book) {
         put_text(book, 1, "C");
         put_text(book, 3, "Net");
       },
       {"C", "Gross", "Net"},
       {"C", "Gross", "Net"},
       "SUM(T[C])+T[[#Totals],[Net]]"},
      {"none",
       [](Book& book) { book.sheet().change().put_blank(1, 1, {}); },
       {"Column1", "Gross", "C"},
       {"Column1", "Gross", "C"},
       "SUM(T[Column1])+T[[#Totals],[c]]"},
      {"a number",
       [](Book& book) { book.sheet().change().put_value(1, 3, Value::of_number(2024.5), {}); },
       {"Net", "Gross", "2024.5"},
       {"Net", "Gross", "2024.5"},
       "SUM(T[Net])+T[[#Totals],[2024.5]]"},
      {"what has to be escaped",
       [](Book& book) { put_text(book, 1, "a\n[b]'#\"_x0041_"); },
       {"a_x000a_[b]'#&quot;_x005F_x0041_", "Gross", "C"},
       {"a\n[b]'#\"_x0041_", "Gross", "C"},
       "SUM(T[a\n'[b']'''#\"_x0041_])+T[[#Totals],[c]]"},
      {"a formula",
       [](Book& book) {
         CellRecord record;
         record.formula = "T[[#Totals],[Net]]";
         record.value = Value::of_boolean(true);
         book.sheet().change().put_record(1, 1, std::move(record), {});
       },
       {"TRUE", "Gross", "C"},
       {"TRUE", "Gross", "C"},
       "SUM(T[TRUE])+T[[#Totals],[c]]"},
      {"nothing of the header",
       [](Book& book) { book.sheet().change().put_blank(9, 1, {}); },
       {"Net", "Gross", "C"},
       {"Net", "Gross", "C"},
       "SUM(T[Net])+T[[#Totals],[c]]"},
  };
  for (const auto& [what, change, names, shown, formula] : cases) {
    SCOPED_TRACE(what);
    const auto book = load(book_with_table());
    book->read();
    change(*book);
    const PartTexts parts = saved(*book);
    for (int i = 0; i < 3; ++i) {
      const auto at = static_cast<std::size_t>(i);
      EXPECT_THAT(parts.at("xl/tables/table1.xml"),
                  HasSubstr("id=\"" + std::to_string(i + 1) + "\" name=\"" + names[at] + "\""));
      EXPECT_EQ(book->show(1, i + 1), '"' + std::string(shown[at]) + '"');
    }
    book->read(1);
    EXPECT_EQ(book->show(book->sheet(1), 0, 0), "=" + std::string(formula) + ": -");
    EXPECT_EQ(saved(*book), parts) << "saving again gives the same";
    const auto again = load(parts);
    again->read();
    for (int i = 1; i <= 3; ++i) EXPECT_EQ(again->show(1, i), book->show(1, i));
  }
}

TEST(Tables, FormulasFollowWhereverTheyStand) {
  const auto book = load(book_with_table());
  book->read();
  put_text(*book, 1, "Sum");
  put_text(*book, 2, "Brutto");
  for (const int column : {3, 4}) {  // inside and beside of the table
    CellRecord record;
    record.formula = "[@Net]+T[@Net]";
    book->sheet().change().put_record(3, column, std::move(record), {});
  }
  const PartTexts parts = saved(*book);
  EXPECT_EQ(book->show(3, 3), "=[@Sum]+T[@Sum]: -");
  EXPECT_EQ(book->show(3, 4), "=[@Net]+T[@Sum]: -");
  EXPECT_THAT(parts.at("xl/worksheets/sheet1.xml"),
              HasSubstr("<f>T[[#This Row],[Sum]]+T[[#This Row],[Sum]]</f>"));
  EXPECT_THAT(parts.at("xl/tables/table1.xml"),
              HasSubstr("<calculatedColumnFormula>T[[#This Row],[Sum]]*2<"));
  EXPECT_THAT(parts.at("xl/worksheets/sheet1.xml"), HasSubstr("<f>T[[#This Row],[Sum]]*2</f>"));
  EXPECT_THAT(parts.at("xl/worksheets/sheet2.xml"), HasSubstr("<f>SUM(T[Sum])+"));
  EXPECT_THAT(parts.at("xl/workbook.xml"), HasSubstr(">T[Brutto]<"));
}

TEST(Tables, FormulasOutsideOfAPartialLoadFollow) {
  PartTexts parts = book_with_table();
  std::string& sheet = parts["xl/worksheets/sheet1.xml"];
  sheet.insert(sheet.find("</sheetData>"), R"(<row r="4"><c r="D4"><f>SUM([Net],T[Net])</f></c>)"
                                           R"(<c r="E4"><f>SUM(T[Net])</f></c></row>)");
  const auto book = load(parts);
  book->sheet().loading = Loading::kPartly;
  book->sheet().loaded_rows = {1, 1, 0, 16383};
  book->read();
  put_text(*book, 1, "Sum");
  const std::string part = saved(*book).at("xl/worksheets/sheet1.xml");
  for (const char* formula : {"<f>SUM(T[Sum],T[Sum])</f>", "<f>SUM(T[Sum])</f>"})
    EXPECT_THAT(part, HasSubstr(formula));
}

// Tables of a sheet that no file has yet have columns of their own.
TEST(Tables, CopiesHaveColumnsOfTheirOwn) {
  const auto book = load(book_with_table());
  book->read();
  NewSheet copy = make_copy(book->workbook, *book->document, book->sheet(), "Copy");
  make_room(book->workbook, copy);
  place_sheet(book->workbook, *book->document, 2, std::move(copy));
  const std::uint32_t text = book->workbook.strings.add("Sum");
  book->sheet(2).change().put_value(1, 1, Value::of_text(text), {});
  const PartTexts parts = saved(*book);
  EXPECT_THAT(parts.at("xl/tables/table1.xml"), HasSubstr("name=\"Net\""));
  EXPECT_THAT(parts.at("xl/tables/table2.xml"), HasSubstr("name=\"Sum\""));
  EXPECT_THAT(parts.at("xl/tables/table2.xml"), HasSubstr(">T_1[[#This Row],[Sum]]*2<"));
  EXPECT_EQ(book->show(book->sheet(2), 2, 2), "=T_1[[#This Row],[Sum]]*2: -");
  EXPECT_EQ(book->show(2, 2), "=T[[#This Row],[Net]]*2: -");
}

// What differs in the file differs in a copy and in a copy of that, until somebody writes there.
TEST(Tables, CopiesDifferWhereTheOriginalDoes) {
  const auto book = load(book_with_table("", "other"));
  book->read();
  put_text(*book, 2, "new");
  for (const std::size_t original : {0U, 2U}) {
    NewSheet copy = make_copy(book->workbook, *book->document, book->sheet(original),
                              "Copy" + std::to_string(original));
    make_room(book->workbook, copy);
    place_sheet(book->workbook, *book->document, 2, std::move(copy));
  }
  PartTexts parts = saved(*book);
  for (const char* name :
       {"xl/tables/table1.xml", "xl/tables/table2.xml", "xl/tables/table3.xml"}) {
    EXPECT_THAT(parts.at(name), HasSubstr("name=\"C\"")) << name;
    EXPECT_THAT(parts.at(name), HasSubstr("name=\"new\"")) << name;
  }
  const std::uint32_t text = book->workbook.strings.add("third");
  book->sheet(3).change().put_value(1, 3, Value::of_text(text), {});
  parts = saved(*book);
  EXPECT_THAT(parts.at("xl/tables/table2.xml"), HasSubstr("name=\"third\""));
  EXPECT_THAT(parts.at("xl/tables/table3.xml"), HasSubstr("name=\"C\""));
}

// What the file has itself, or what is no header, changes nothing.
TEST(Tables, OtherDifferencesStay) {
  struct Case {
    const char* attributes;
    const char* third_header;
    int column;
  };
  for (const auto& [attributes, third_header, column] :
       {Case{"headerRowCount=\"0\"", "C", 1}, Case{"", "other", 7}}) {
    SCOPED_TRACE(attributes);
    const PartTexts parts = book_with_table(attributes, third_header);
    const auto book = load(parts);
    book->read();
    put_text(*book, column, "new");
    EXPECT_EQ(saved(*book).at("xl/tables/table1.xml"), parts.at("xl/tables/table1.xml"));
    EXPECT_EQ(book->show(1, 3), '"' + std::string(third_header) + '"');
  }
}

// A sheet that nobody can read is no reason to refuse the others.
TEST(Tables, DamageElsewhereStaysThere) {
  PartTexts parts = book_with_table();
  parts["xl/worksheets/sheet2.xml"] = "<broken";
  const auto book = load(parts);
  book->read();
  put_text(*book, 1, "Sum");
  const PartTexts made = saved(*book);
  EXPECT_THAT(made.at("xl/tables/table1.xml"), HasSubstr("name=\"Sum\""));
  EXPECT_EQ(made.at("xl/worksheets/sheet2.xml"), "<broken");
}

TEST(Tables, NamesStayShortAndManyOfThemCheap) {
  using Headers = std::vector<std::optional<std::string>>;
  std::string long_name;
  for (int i = 0; i < 100; ++i) long_name.append("\xC3\xA4\xF0\x9F\x98\x80");
  const auto names = column_names({"a", "b", "c"}, Headers{long_name, long_name, "c"});
  EXPECT_EQ(names[0], long_name.substr(0, 85 * 6));
  EXPECT_EQ(names[1], long_name.substr(0, 84 * 6) + "\xC3\xA4" + "2");
  const std::vector<std::string> present(16384, "p");
  const auto many = column_names(present, Headers(present.size(), std::string()));
  EXPECT_EQ(many.back(), "Column16384");
}

}  // namespace
}  // namespace engine::xlsx

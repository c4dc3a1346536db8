// Books that are begun here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

TEST(NewBook, ComesBackAsItWas) {
  const auto book = new_book();
  Workbook& workbook = book->workbook;
  Sheet& sheet = book->add_sheet("Größe & <Maß>");
  Sheet& hidden = book->add_sheet("Hidden");
  hidden.visibility = SheetVisibility::kVeryHidden;
  sheet.selected = false;
  hidden.selected = true;
  workbook.active_sheet = 1;
  workbook.date1904 = true;
  workbook.r1c1 = true;
  workbook.names.add({"Rate", "0.19", nullptr, false, ""});
  workbook.names.add({"_xlnm.Print_Area", "Hidden!$A$1:$B$2", &hidden, true, ""});
  const auto text = [&](const char* value) { return Value::of_text(workbook.strings.add(value)); };
  const std::string odd = " \x01 _x0041_ <&>\"'\r\n\t";
  sheet.change().put_value(0, 0, text(odd.c_str()), {});
  sheet.change().put_value(0, 1, text(""), {});
  sheet.change().put_value(0, 16383, Value::of_number(1e300), {});
  sheet.change().put_value(1048575, 0, Value::of_boolean(true), {});
  sheet.change().put_value(5, 5, Value::of_error(error_number(workbook, "#SPILL!")), {});
  sheet.change().put_blank(6, 6, {});
  CellRecord record;
  record.formula = "A1&\"<>\"";
  record.value = text("of \x02 formula");
  sheet.change().put_record(3, 3, std::move(record), {});
  sheet.change().comments[{2, 2}] = {"note", "author", 0, 0};

  const auto again = load(book->save());
  const Workbook& read = again->workbook;
  again->read(0);
  ASSERT_EQ(read.sheets().size(), 2u);
  EXPECT_EQ(read.sheets()[0]->name(), "Größe & <Maß>");
  EXPECT_EQ(again->sheet(1).visibility, SheetVisibility::kVeryHidden);
  EXPECT_TRUE(again->read(1).selected && !again->sheet(0).selected);
  EXPECT_TRUE(read.date1904 && read.r1c1);
  EXPECT_EQ(read.active_sheet, 1u);
  ASSERT_EQ(read.names.size(), 2u);
  const DefinedName& area = *std::next(read.names.begin());
  EXPECT_EQ(area.scope, &again->sheet(1));
  EXPECT_TRUE(area.hidden);
  EXPECT_EQ(again->show(0, 0), "\"" + odd + "\"");
  EXPECT_EQ(again->show(0, 1), "\"\"");
  EXPECT_EQ(again->sheet().contents().cells.find(0, 16383)->number, 1e300);
  EXPECT_EQ(again->show(1048575, 0), "TRUE");
  EXPECT_EQ(again->show(5, 5), "#SPILL!");
  EXPECT_EQ(again->show(6, 6), "-");
  EXPECT_EQ(again->show(3, 3), "=A1&\"<>\": \"of \x02 formula\"");
  EXPECT_EQ(again->sheet().contents().comments.at({2, 2}).text, "note");
  EXPECT_THAT(unzip(book->save({false, std::nullopt, true})).at("xl/workbook.xml"),
              HasSubstr("fullCalcOnLoad=\"1\""));
}

TEST(NewBook, SavingAgainGivesTheSameBytes) {
  const auto book = new_book();
  Sheet& sheet = book->add_sheet("One");
  sheet.change().put_value(0, 0, Value::of_text(book->workbook.strings.add("text")), {});
  sheet.change().comments[{2, 2}] = {"note", "author", 0, 0};
  const std::string first = book->save();
  EXPECT_EQ(book->save(), first);
}

TEST(NewBook, HoldsOnlyTextsThatCellsShow) {
  const auto book = new_book();
  Sheet& sheet = book->add_sheet("One");
  StringPool& strings = book->workbook.strings;
  strings.add("of nobody");
  sheet.change().put_value(0, 0, Value::of_text(strings.add("b")), {});
  sheet.change().put_value(1, 0, Value::of_text(strings.add("a\nb")), {});
  sheet.change().put_value(2, 0, Value::of_text(strings.add("b")), {});
  const PartTexts parts = unzip(book->save());
  EXPECT_THAT(parts.at("xl/sharedStrings.xml"),
              HasSubstr("count=\"3\" uniqueCount=\"2\"><si><t>b</t></si><si><t "
                        "xml:space=\"preserve\">a\nb</t></si></sst>"));
  EXPECT_THAT(parts.at("xl/worksheets/sheet1.xml"), HasSubstr("<c r=\"A3\" t=\"s\"><v>0</v></c>"));
}

// A project of macros counts before the target's name, that before what the file was.
TEST(NewBook, TellsItsKindByContentType) {
  constexpr const char* kPlain = "vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
  constexpr const char* kMacros = "vnd.ms-excel.sheet.macroEnabled.main+xml";
  const struct {
    const char* in_file;
    bool has_project;
    SaveOptions options;
    const char* written;
  } cases[] = {
      {kPlain, false, {false, {}}, "spreadsheetml.sheet.main+xml"},
      {kPlain, false, {true, {}}, "spreadsheetml.template.main+xml"},
      {kPlain, false, {false, true}, "ms-excel.sheet.macroEnabled.main+xml"},
      {kMacros, false, {false, {}}, "ms-excel.sheet.macroEnabled.main+xml"},
      {kMacros, false, {true, true}, "ms-excel.template.macroEnabled.main+xml"},
      {kMacros, false, {false, false}, "spreadsheetml.sheet.main+xml"},
      {kMacros, true, {false, false}, "ms-excel.sheet.macroEnabled.main+xml"},
  };
  for (const auto& [in_file, has_project, options, written] : cases) {
    PartTexts parts = book_of(worksheet(""));
    parts["[Content_Types].xml"] = types({{"xl/workbook.xml", in_file}});
    if (has_project) {
      parts["xl/vbaProject.bin"] = "project";
      parts["xl/_rels/workbook.xml.rels"] =
          relations({{"worksheet", "worksheets/sheet1.xml"}, {"vbaProject", "vbaProject.bin"}});
    }
    EXPECT_THAT(unzip(load(parts)->save(options)).at("[Content_Types].xml"), HasSubstr(written))
        << in_file << has_project << written;
  }
  const auto made = new_book();
  made->add_sheet("One");
  EXPECT_TRUE(load(made->save({true, {}}))->workbook.is_template);
}

}  // namespace
}  // namespace engine::xlsx

// Validations and ignored errors of files: what of them a change leaves, and what is added.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/workbook/move_cells.h"
#include "tests/xlsx/packages.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kList =
    "<dataValidations count=\"3\" disablePrompts=\"1\" xWindow=\"5\">"
    "<dataValidation type=\"whole\" errorStyle=\"warning\" imeMode=\"off\" operator=\"lessThan\" "
    "allowBlank=\"1\" showInputMessage=\"1\" error=\"a_x000a_b\" prompt=\"p\" sqref=\"A1:A9 C1\">"
    "<formula1>A1+_xlfn.CONCAT($B$1)</formula1></dataValidation>"
    "<dataValidation type=\"list\" sqref=\"nowhere\"><formula1>\"x\"</formula1></dataValidation>"
    "<dataValidation type=\"list\" allowBlank=\"true\" sqref=\"B1\"><mc:AlternateContent "
    "xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\"><mc:Choice "
    "Requires=\"x12ac\"><x12ac:list>\"1,0\",2</x12ac:list></mc:Choice><mc:Fallback><formula1>"
    "\"1,0,2\"</formula1></mc:Fallback></mc:AlternateContent></dataValidation></dataValidations>";
constexpr const char* kExtended =
    "<extLst><ext uri=\"{CCE6A557-97BC-4b89-ADB6-D9C93CAAB3DF}\" "
    "xmlns:x14=\"http://schemas.microsoft.com/office/spreadsheetml/2009/9/main\">"
    "<x14:dataValidations count=\"2\" "
    "xmlns:xm=\"http://schemas.microsoft.com/office/excel/2006/main\">"
    "<x14:dataValidation type=\"list\" allowBlank=\"1\"><x14:formula1><xm:f>One!A1:A3</xm:f>"
    "</x14:formula1><xm:sqref>D1:D9</xm:sqref></x14:dataValidation>"
    "<x14:dataValidation type=\"custom\"><x14:formula1><xm:f>E1=One!$A$1</xm:f></x14:formula1>"
    "<xm:sqref>E1 E3:E5</xm:sqref></x14:dataValidation></x14:dataValidations></ext></extLst>";

std::unique_ptr<Book> book_with_rules() {
  auto book = load(book_of(worksheet("", "", std::string(kList) + kExtended)));
  book->read();
  return book;
}

std::string saved(const std::unique_ptr<Book>& book) {
  return unzip(book->save()).at("xl/worksheets/sheet1.xml");
}

void put(Book& book, const CellRange& cells, Validation rule) {
  book.sheet().change().validations.put(cells, std::move(rule), Limits().grid);
}

TEST(ValidationsOfFiles, AreKeptAsTheyStand) {
  const auto book = book_with_rules();
  book->sheet().change();
  EXPECT_THAT(saved(book), HasSubstr(std::string(kList) + kExtended));

  const auto& rules = book->sheet().contents().validations.slots();
  ASSERT_EQ(rules.size(), 4U);
  EXPECT_EQ(rules[0].type, ValidationType::kWhole);
  EXPECT_EQ(rules[0].comparison, ValidationOperator::kLess);
  EXPECT_EQ(rules[0].error_style, ValidationErrorStyle::kWarning);
  EXPECT_EQ(rules[0].error, "a\nb");
  EXPECT_EQ(rules[0].formulas[0], "A1+CONCAT($B$1)");
  EXPECT_EQ(rules[1].formulas[0], "\"1,0,2\"");
  EXPECT_EQ(rules[2].formulas[0], "One!A1:A3");
  EXPECT_EQ(rules[3].cells, (CellRanges{{0, 0, 4, 4}, {2, 4, 4, 4}}));
}

// A new rule takes cells of a rule of the list and of an extended one, and the corner of both.
TEST(ValidationsOfFiles, LoseTheirCellsToANewRule) {
  const auto book = book_with_rules();
  Validation rule{.type = ValidationType::kTextLength, .allow_blank = true, .show_error = true};
  rule.prompt_title = "<&\"";
  rule.error = "one\ntwo";
  rule.formulas = {"1", "CONCAT(A1)"};
  put(*book, {0, 1, 0, 4}, rule);
  std::string text = saved(book);
  EXPECT_THAT(text, HasSubstr("count=\"3\" disablePrompts"));
  EXPECT_THAT(text, HasSubstr("prompt=\"p\" sqref=\"A3:A9\"><formula1>A3+_xlfn.CONCAT($B$1)</f"));
  EXPECT_THAT(text, HasSubstr("sqref=\"nowhere\""));
  EXPECT_THAT(text, Not(HasSubstr("x12ac")));
  EXPECT_THAT(
      text,
      HasSubstr("<dataValidation type=\"textLength\" allowBlank=\"1\" showErrorMessage=\"1\" "
                "error=\"one&#10;two\" promptTitle=\"&lt;&amp;&quot;\" sqref=\"A1:E2\"><formula1>"
                "1</formula1><formula2>_xlfn.CONCAT(A1)</formula2></dataValidation></dataV"));
  EXPECT_THAT(text, HasSubstr("<xm:f>One!A3:A5</xm:f></x14:formula1><xm:sqref>D3:D9</xm:sqref>"));
  EXPECT_THAT(text, HasSubstr("<xm:f>E3=One!$A$1</xm:f></x14:formula1><xm:sqref>E3:E5</xm:sqref>"));

  put(*book, {0, 99, 3, 4}, {});
  text = saved(book);
  EXPECT_THAT(text, Not(HasSubstr("extLst")));
  EXPECT_THAT(text, HasSubstr("<dataValidation sqref=\"D1:E100\"/>"));
  const auto again = load(book->save());
  EXPECT_EQ(again->read().contents().validations.size(), 3U);

  book->sheet().change().validations = {};
  EXPECT_THAT(saved(book), HasSubstr("<dataValidations count=\"1\" disablePrompts=\"1\" "
                                     "xWindow=\"5\"><dataValidation type=\"list\" sqref=\"nowh"));
}

TEST(ValidationsOfFiles, FollowRowsAndNamesOfSheets) {
  const auto book = book_with_rules();
  using formula::Axis;
  const formula::Move remove{Axis::kRows, formula::Move::Kind::kRemove, 0, 1};
  EXPECT_FALSE(move_cells(book->workbook, *book->document, book->sheet(), {remove, true}));
  rename_sheet(book->workbook, *book->document, book->sheet(), "New");
  const std::string text = saved(book);
  EXPECT_THAT(text, HasSubstr("sqref=\"A1:A8\"><formula1>A1+_xlfn.CONCAT(#REF!)</formula1>"));
  EXPECT_THAT(text, HasSubstr("<xm:f>New!A1:A3</xm:f></x14:formula1><xm:sqref>D1:D8</xm:sqref>"));
  EXPECT_THAT(text, HasSubstr("<xm:f>E2=#REF!</xm:f></x14:formula1><xm:sqref>E2:E4</xm:sqref"));
  EXPECT_THAT(text, Not(HasSubstr("x12ac")));

  NewSheet made = make_copy(book->workbook, *book->document, book->sheet(), "Copy");
  make_room(book->workbook, made);
  place_sheet(book->workbook, *book->document, 1, std::move(made));
  const auto again = load(book->save());
  const auto& copies = again->read(1).contents().validations.slots();
  ASSERT_EQ(copies.size(), 3U);
  EXPECT_EQ(copies[1].formulas[0], "Copy!A1:A3");
}

// One attribute holds 32,767 ranges at most.
TEST(ValidationsOfFiles, OfVeryManyRangesAreWrittenAsSeveral) {
  const auto book = load(book_of(worksheet("")));
  book->read();
  Validation rule{.type = ValidationType::kCustom};
  rule.formulas[0] = "A1>0";
  for (int row = 0; row < 40000; ++row) rule.cells.insert({2 * row, 2 * row, 0, 0});
  book->sheet().change().validations.add(rule);
  const std::string text = saved(book);
  EXPECT_THAT(text, HasSubstr("<dataValidations count=\"2\"><dataValidation type=\"custom\" sqref="
                              "\"A1 A3 A5 "));
  EXPECT_THAT(text, HasSubstr(" A65533\"><formula1>A1&gt;0</formula1></dataValidation>"
                              "<dataValidation type=\"custom\" sqref=\"A65535 "));
  EXPECT_THAT(text, HasSubstr("<formula1>A65535&gt;0</formula1>"));
}

TEST(IgnoredErrorsOfFiles, KeepWhatTheModelDoesNotKnow) {
  const auto book = load(book_of(worksheet(
      "", "",
      "<ignoredErrors><ignoredError sqref=\"A1:B2\" evalError=\"1\" calculatedColumn=\"1\"/>"
      "<ignoredError sqref=\"C1 C3\" formula=\"true\"/><ignoredError sqref=\"D1\"/><extLst/>"
      "</ignoredErrors>")));
  book->read();
  IgnoredErrors& errors = book->sheet().change().ignored_errors;
  errors.put({0, 1, 0, 1}, kNumberAsTextFault);
  errors.put({0, 0, 2, 2}, kValidationFault | kUnlockedFormulaFault);
  errors =
      moved(errors, {formula::Axis::kColumns, formula::Move::Kind::kRemove, 3, 1}, Limits().grid);
  EXPECT_THAT(
      saved(book),
      HasSubstr("<ignoredErrors><ignoredError sqref=\"A1:B2\" evalError=\"1\" "
                "calculatedColumn=\"1\" numberStoredAsText=\"1\"/><ignoredError sqref=\"C1 C3\" "
                "formula=\"true\"/><ignoredError sqref=\"C1\" unlockedFormula=\"1\" "
                "listDataValidation=\"1\"/><extLst/></ignoredErrors>"));
  errors = {};
  EXPECT_THAT(saved(book), Not(HasSubstr("ignoredErrors")));
}

}  // namespace
}  // namespace engine::xlsx

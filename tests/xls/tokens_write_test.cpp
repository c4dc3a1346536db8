// Formulas become the tokens that spreadsheet programs make of them, and text again from these.
#include "engine/xls/tokens_write.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "engine/package/output.h"
#include "engine/xls/tokens_read.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

struct Stage {
  Stage() : book(kCodec.limits), links((add("One"), add("Two 2"), book), no_links) {}

  void add(const char* name) { book.add_sheet(std::make_unique<Sheet>(name)); }

  Workbook book;
  LinkTable no_links;
  LinkWriter links;
  TokenWriter writer{links, book.limits.grid};
};

std::string hex(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 15];
  }
  return text;
}

TEST(XlsTokensWritten, StandInTheOrderOfCalculationWithTheirClasses) {
  struct Case {
    const char* formula;
    const char* tokens;
    FormulaUse use = FormulaUse::kCell;
  };
  const Case kCases[] = {
      {"1+2*3", "1E01001E02001E03000503"},
      {"70000", "1F000000000017F140"},
      {"-A1%", "44000000C01314"},
      {"(A1)", "44000000C015"},
      {"$B$3", "4402000100"},
      {"\"\xC3\xA4\"\"b\"", "170300E42262"},
      {"\"\xE2\x82\xAC\"", "170101AC20"},
      {"TRUE", "1D01"},
      {"#N/A", "1C2A"},
      {"#REF!", "4A00000000"},
      // One argument of SUM, references as such.
      {"SUM(A1:B2)",
       "25000001"
       "0000C001C019100000"},
      {"SUM(A1,2)",
       "24000000C01E0200420204"
       "00"},
      {"ABS(A1)", "44000000C0411800"},
      // IF jumps over what does not count, CHOOSE by a table.
      {"IF(A1,2,3)",
       "44000000C019020700"
       "1E020019080A001E030019080300"
       "42030100"},
      {"IF(A1,2)",
       "44000000C019020700"
       "1E0200190803"
       "00"
       "42020100"},
      {"CHOOSE(1,2)",
       "1E0100190401000400"
       "0B001E02001908030042026400"},
      // Whole columns and rows.
      {"SUM($A:$A)", "250000FFFF0000000019100000"},
      // What makes a reference of others is told its size.
      {"SUM((A1,B1))", "290B0024000000C024000001C0101519100000"},
      // All values of a range, in functions that take arrays and in array formulas.
      {"SUMPRODUCT(A1:A2*2)",
       "6500000100"
       "00C000C01E02000542"
       "01E400"},
      {"A1:A2*2", "650000010000C000C01E020005", FormulaUse::kArray},
      // Some functions take arrays where they are given no reference, others single values.
      {"ROWS(1+ABS(A1))",
       "1E010064000000C0611800034"
       "14C00"},
      {"SUMPRODUCT(IF(A1,2))",
       "44000000C0"
       "190207001E020019080300"
       "62020100"
       "4201E400"},
      {"STDEV(ROUND({1,2},1))", "60000000000000001E0100411B0042010C00"},
      {"MMULT({1},{2})", "6000000000000000600000000000000041A500"},
      // A criterion is one value, also of a function without a number.
      {"COUNTIFS(A1:A2,B1)",
       "39000001000000"
       "250000010000C000C044000001C04203FF00"},
      // Names count relative references from their own cell.
      {"A1", "2C000000C0", FormulaUse::kName},
      {"$A$1", "2400000000", FormulaUse::kName},
      // Blanks of the text.
      {"1 + 2",
       "1E0100194000011E0200"
       "19400001"
       "03"},
      {"NOW()", "19010000414A00"},
      {"{1,TRUE}", "4000000000000000"},
      {"'Two 2'!A1", "5A0000000000C0"},
  };
  for (const auto& [formula, tokens, use] : kCases) {
    SCOPED_TRACE(formula);
    Stage stage;
    ASSERT_TRUE(stage.writer.write(formula, {nullptr, use})) << stage.writer.why_not();
    EXPECT_EQ(hex(stage.writer.tokens()), tokens);
  }
}

TEST(XlsTokensWritten, BecomeTheSameTextAgain) {
  const char* const kFormulas[] = {
      "A1+$B2*C$3/$D$4-5^2&\"x\"",
      "A1=B1",
      "A1<>B1",
      "A1<=B1",
      "IF(A1>0,IF(B1>0,1,2),CHOOSE(C1,1,SUM(A1:A5),3))",
      "VLOOKUP(A1,$A$1:$F$50,3,FALSE)",
      "SUM(A:C,2:7,$5:$6)",
      "SUM((A1:A3,B1:B3) A2:B2)",
      "A1:INDEX(B1:B9,3)",
      "{1,-2.5,\"a\"\"b\";TRUE,#N/A,\"\xE2\x82\xAC\"}",
      "ROUND( A1, 2 ) * ( B1 )",
      "IFERROR(EDATE(A1,1),STDEV.S(A1:A3))",
      "MYFUNCTION(1,,\"x\")",
      "ABS(1,2)",
      "-A1^2",
      "50%%",
      "+1",
      "TRUE()",
      "PI()*A1",
      "'Two 2'!B7",
      "'One:Two 2'!A1",
  };
  for (const char* const formula : kFormulas) {
    SCOPED_TRACE(formula);
    Stage stage;
    ASSERT_TRUE(stage.writer.write(formula, {})) << stage.writer.why_not();
    // The file's own tables of what formulas refer to.
    package::MemoryOutput output;
    RecordWriter records(output);
    stage.links.write_new_books(records);
    stage.links.write_entries(records);
    records.flush();
    const std::string cell =
        testing::cell(kFormula, 0, 0, 15,
                      testing::f64(1) + testing::u16(0) + testing::u32(0) +
                          testing::expression(stage.writer.tokens()) + stage.writer.behind());
    testing::LoadedBook loaded(testing::file_of(
        testing::stream_of({{"One", cell}, {"Two 2", ""}}, std::string(output.view()))));
    EXPECT_EQ(testing::shown(loaded, 0, 0), "1.000000 =" + std::string(formula));
  }
}

// Other books are known by their numbers, which the functions of add-ins do not share.
TEST(XlsTokensWritten, ReferToBooksThatTheFileIsLinkedWith) {
  using testing::narrow16, testing::narrow8, testing::record, testing::u16, testing::u32,
      testing::u8;
  const auto name = [](const char* text, unsigned sheet = 0) {
    return record(kExternName, u16(0) + u16(sheet) + u16(0) + narrow8(text) + u16(0));
  };
  const std::string macro = record(
      kName, u16(0x0E) + u8(0) + u8(5) + u16(0) + u16(0) + u16(0) + u32(0) + u8(0) + "tax20");
  const std::string links = record(kSupBook, u16(1) + u16(0x401)) +
                            record(kSupBook, u16(0) + narrow16("\1Excel\3Sheet")) +
                            name("an item") + record(kSupBook, u16(1) + u16(0x3A01)) +
                            name("_xlfn.XOR") +
                            record(kSupBook, u16(3) + narrow16("\1other.xls") + narrow16("One") +
                                                 narrow16("Two 2") + narrow16("It's")) +
                            name("Rate") + name("Rate", 2) + macro +
                            record(kExternSheet, u16(1) + u16(3) + u16(1) + u16(1));
  const std::string file = testing::file_of(testing::stream_of({{"Data", ""}}, links));
  struct Case {
    const char* formula;
    bool is_written = true;
  };
  constexpr Case kCases[] = {
      {"'[2]Two 2'!A1:B2"},       {"'[2]It''s'!$A1+[2]One!A:A"},
      {"'[2]One:Two 2'!A1"},      {"[2]!Rate*'[2]Two 2'!Rate"},
      {"[1]!'an item'"},          {"[2]!Rate(1,Data!A1)"},
      {"XOR(1)+tax20(A1)-tax20"}, {"SUM(A1:tax20)"},
      {"[3]One!A1", false},       {"[2]Three!A1", false},
      {"[2x]One!A1", false},      {"[other.xls]One!A1", false},
      {"[2]!Nothing", false},     {"[2]One!Rate", false},
      {"[2]!F(1)", false},
  };
  for (const auto& [formula, is_written] : kCases) {
    SCOPED_TRACE(formula);
    testing::LoadedBook book(file);
    CellRecord record;
    record.formula = formula;
    book.sheet().change().put_record(0, 0, record, 0);
    if (is_written) {
      testing::LoadedBook saved(book.file());
      EXPECT_EQ(testing::shown(saved, 0, 0), "blank =" + std::string(formula));
      // Nothing is made a function of an add-in that is known already.
      EXPECT_EQ(std::ranges::count(testing::records_of(book.file()), kExternName,
                                   &std::pair<unsigned, std::string>::first),
                4);
    } else {
      EXPECT_ANY_THROW(book.file());
    }
  }
}

}  // namespace
}  // namespace engine::xls

#include <gtest/gtest.h>

#include <string>

#include "engine/workbook/sheet.h"
#include "engine/xls/tokens_read.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using testing::f64;
using testing::narrow16;
using testing::narrow8;
using testing::u16;
using testing::u32;
using testing::u8;
using testing::wide16;

constexpr Grid kGrid{65536, 256};
constexpr unsigned kRelative = 0xC000;  // both parts of a reference

std::string token(unsigned number, const std::string& fields = {}) { return u8(number) + fields; }
std::string integer(unsigned value) { return token(0x1E, u16(value)); }
std::string cell(unsigned row, unsigned column) { return token(0x44, u16(row) + u16(column)); }
std::string text(const std::string& value) { return token(0x17, narrow8(value)); }
std::string call(unsigned function) { return token(0x41, u16(function)); }
std::string call(unsigned function, unsigned arguments) {
  return token(0x42, u8(arguments) + u16(function));
}
std::string area(unsigned row_first, unsigned row_last, unsigned column_first,
                 unsigned column_last) {
  return token(0x25, u16(row_first) + u16(row_last) + u16(column_first) + u16(column_last));
}
std::string blanks(unsigned where, unsigned count) {
  return token(0x19, u8(0x40) + u8(where) + u8(count));
}

struct Case {
  const char* printed;  // null: no text says it
  std::string tokens;
  std::string behind = {};
};

// A book of two sheets, the first one with a name of its own, another book and an add-in.
class TokensTest : public ::testing::Test {
 protected:
  TokensTest() {
    links_.sheets = {&first_, &second_, nullptr};
    links_.books.resize(3);
    links_.books[0].kind = LinkedBook::Kind::kOwn;
    links_.books[1].number = 1;
    links_.books[1].sheets = {"Far", "Far away"};
    links_.books[1].names = {{"Rate", 0}, {"Local", 2}};
    links_.books[2].kind = LinkedBook::Kind::kAddIn;
    links_.books[2].names = {{"EDATE", 0}};
    links_.entries = {{0, 0, 0},   {0, 0, 1}, {0, -1, -1}, {1, 1, 1}, {1, -2, -2},
                      {2, -2, -2}, {0, 2, 2}, {9, 0, 0},   {0, 1, 1}};
    links_.names = {{"Net", 0}, {"Local", 1}, {"_xlfn.IFS", 0}};
  }

  void check(const std::vector<Case>& cases, FormulaPlace place) {
    TokenReader reader(links_, kGrid);
    for (const auto& [printed, tokens, behind] : cases) {
      SCOPED_TRACE(printed ? printed : "none");
      ASSERT_EQ(reader.read(tokens, behind, place), printed != nullptr) << reader.text();
      if (printed) {
        EXPECT_EQ(reader.text(), printed);
      }
    }
  }

  Sheet first_{"Data"};
  Sheet second_{"It's two"};
  LinkTable links_;
};

TEST_F(TokensTest, PrintsConstantsAndOperators) {
  const std::string one = integer(1);
  const std::string two = integer(2);
  check(
      {
          {"1+2", one + two + token(0x03)},
          {"1-2*1", one + two + one + token(0x05) + token(0x04)},
          {"(1-2)*1", one + two + token(0x04) + token(0x15) + one + token(0x05)},
          // Brackets that a program left out.
          {"(1-2)*1", one + two + token(0x04) + one + token(0x05)},
          {"1-(2-1)", one + two + one + token(0x04) + token(0x04)},
          {"-2^2", two + token(0x13) + two + token(0x07)},
          {"-(2^2)", two + two + token(0x07) + token(0x13)},
          {"1/2&1<=2", one + two + token(0x06) + one + token(0x08) + two + token(0x0A)},
          {"+1%", one + token(0x12) + token(0x14)},
          {"1=2<>1>=2>1<2", one + two + token(0x0B) + one + token(0x0E) + two + token(0x0C) + one +
                                token(0x0D) + two + token(0x09)},
          {"0.1", token(0x1F, f64(0.1))},
          {"1E+20", token(0x1F, f64(1e20))},
          {"\"a\"\"b\"", text("a\"b")},
          {"\"\xC3\xA4\xE2\x82\xAC\"", token(0x17, u8(2) + u8(1) + u16(0xE4) + u16(0x20AC))},
          {"TRUE", token(0x1D, u8(1))},
          {"#N/A", token(0x1C, u8(0x2A))},
          {"{1,\"a\";TRUE,#DIV/0!}", token(0x60, std::string(7, '\0')),
           u8(1) + u16(1) + u8(1) + f64(1) + u8(2) + narrow16("a") + u8(4) + u8(1) +
               std::string(7, '\0') + u8(16) + u8(7) + std::string(7, '\0')},
          {"1 +\n2", one + blanks(1, 1) + two + blanks(0, 1) + token(0x03)},
      },
      {});
}

TEST_F(TokensTest, PrintsReferences) {
  const std::string fields = u16(0) + u16(1) + u16(0x4001) + u16(0x4002);
  check(
      {
          {"B1", cell(0, 1 | kRelative)},
          {"$B$1", cell(0, 1)},
          {"B$65536", cell(65535, 0x4001)},
          {"$A:$B", area(0, 65535, 0, 1)},
          {"3:4", area(2, 3, 0x8000, 255 | 0x8000U)},
          {"$A$1:$B$2,$C$3", area(0, 1, 0, 1) + token(0x24, u16(2) + u16(2)) + token(0x10)},
          {"$A$1:$B$2 $B$2", area(0, 1, 0, 1) + token(0x24, u16(1) + u16(1)) + token(0x0F)},
          {"#REF!", token(0x2A, u32(0))},
          {"Data!$A$1", token(0x3A, u16(0) + u16(0) + u16(0))},
          {"'It''s two'!$A$1", token(0x3A, u16(8) + u16(0) + u16(0))},
          {"'Data:It''s two'!B$1:C$2", token(0x3B, u16(1) + fields)},
          {"#REF!$A$1", token(0x3A, u16(2) + u32(0))},
          {"#REF!$A$1", token(0x3A, u16(6) + u32(0))},
          {"#REF!$A$1", token(0x3A, u16(7) + u32(0))},
          {"Data!#REF!", token(0x3C, u16(0) + u32(0))},
          {"#REF!", token(0x3D, u16(2) + u32(0) + u32(0))},
          {"'[1]Far away'!$A$1", token(0x3A, u16(3) + u32(0))},
          {"Net", token(0x23, u16(1) + u16(0))},
          {"Data!Local", token(0x23, u16(2) + u16(0))},
          {"#NAME?", token(0x23, u16(9) + u16(0))},
          {"[1]!Rate", token(0x39, u16(4) + u32(1))},
          {"'[1]Far away'!Local", token(0x39, u16(4) + u32(2))},
          {"Data!Local", token(0x39, u16(0) + u32(2))},
      },
      {&second_, {}});
  check({{"Local", token(0x23, u16(2) + u16(0))}}, {&first_, {}});
}

TEST_F(TokensTest, PrintsCalls) {
  const std::string one = integer(1);
  const std::string two = cell(1, 1 | kRelative);
  check(
      {
          {"PI()", call(19)},
          {"ROUND(1,B2)", one + two + call(27)},
          {"SUM(1,B2,1)", one + two + one + call(4, 3)},
          {"SUM(B2)", two + token(0x19, u8(0x10) + u16(0))},
          {"SUM((B2,B2))", two + two + token(0x10) + call(4, 1)},
          {"SUM((B2,B2))", two + two + token(0x10) + token(0x15) + call(4, 1)},
          {"SUM((B2,B2))", two + two + token(0x10) + blanks(2, 0) + token(0x15) + call(4, 1)},
          {"IF(1,,B2)", one + token(0x19, u8(2) + u16(4)) + token(0x16) +
                            token(0x19, u8(8) + u16(4)) + two + call(1, 3)},
          {"CHOOSE(1,B2)", one + token(0x19, u8(4) + u16(1) + u32(0)) + two + call(100, 2)},
          {"IFS(1,B2)", token(0x23, u16(3) + u16(0)) + one + two + call(255, 3)},
          {"EDATE(B2,1)", token(0x39, u16(5) + u32(1)) + two + one + call(255, 3)},
          {"Net()", token(0x23, u16(1) + u16(0)) + call(255, 1)},
          {"SUM( B2 )", blanks(0, 1) + two + blanks(4, 1) + call(4, 1)},
          // What was calculated before the operands stands in front of them.
          {"(B2:B2)", token(0x29, u16(11)) + two + two + token(0x11) + token(0x15)},
          {"B2", token(0x2E, u16(5)) + two},
          {"B2", token(0x6F, u16(5)) + two},
          {"B2", token(0x26, u32(0) + u16(5)) + two, u16(1) + std::string(8, '\0')},
      },
      {});
}

TEST_F(TokensTest, RefusesWhatNoTextSays) {
  const std::string one = integer(1);
  std::string deep = one;
  for (int i = 0; i < 8000; ++i) deep += token(0x13);
  std::string many;
  for (int i = 0; i < 2000; ++i) many += text(std::string(255, 'x')) + (i == 0 ? "" : token(0x08));
  check(
      {
          {nullptr, ""},
          {nullptr, one + one},
          {nullptr, token(0x03)},
          {nullptr, one + token(0x03)},
          {nullptr, token(0x1E, u8(1))},
          {nullptr, token(0x17, u8(9) + u8(0) + "abc")},
          {nullptr, call(9999)},
          {nullptr, call(27)},
          {nullptr, call(255, 0)},
          {nullptr, one + call(255, 1) + one},
          {nullptr, token(0x18, u8(6) + u32(0))},
          {nullptr, token(0xFF)},
          {nullptr, token(0x60, std::string(7, '\0')), u8(255) + u16(65535)},
          {nullptr, many},
      },
      {});
  TokenReader reader(links_, kGrid);
  ASSERT_TRUE(reader.read(deep, "", {}));
  EXPECT_EQ(reader.text().size(), 8001U);
}

// Relative parts of shared formulas are distances, which wrap around.
TEST_F(TokensTest, CountsDistancesFromTheCell) {
  const auto relative = [](int row, int column) {
    return token(0x4C, u16(static_cast<std::uint16_t>(row)) +
                           u16((static_cast<unsigned>(column) & 0xFF) | kRelative));
  };
  TokenReader reader(links_, kGrid);
  const struct {
    int row;
    int column;
    const char* printed;
    CellAddress furthest;
  } kCases[] = {
      {-1, 2, "E4", {4, 4}},
      {3, -3, "IV8", {7, 255}},
      {-5, 0, "C65536", {65535, 2}},
  };
  for (const auto& [row, column, printed, furthest] : kCases) {
    SCOPED_TRACE(printed);
    ASSERT_TRUE(reader.read(relative(row, column), "", {nullptr, {4, 2}}));
    EXPECT_EQ(reader.text(), printed);
    EXPECT_EQ(reader.furthest(), furthest);
  }
  // Ends that change places by that are put in order.
  ASSERT_TRUE(reader.read(token(0x2D, u16(0xFFFE) + u16(1) + u16(0x8000) + u16(0x8000)), "",
                          {nullptr, {1, 0}}));
  EXPECT_EQ(reader.text(), "$A3:$A65536");
}

}  // namespace
}  // namespace engine::xls

// Files that are no workbooks, or broken ones: refused with the place, never more.
#include <gmock/gmock.h>

#include "engine/package/file_error.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): records are made of its pieces
using ::testing::HasSubstr;

// The message of what refuses a stream: its load, or the reading of its first sheet.
std::string refusal(const std::string& stream) {
  try {
    LoadedBook book(file_of(stream));
    book.sheet();
  } catch (const package::FileError& error) {
    return error.what();
  }
  return "none";
}

std::string with_sheet(const std::string& records, const std::string& globals = {}) {
  return stream_of({{"Data", records}}, globals);
}

TEST(XlsDamage, TellsWhatAndWhere) {
  const struct {
    std::string stream;
    const char* message;
  } kCases[] = {
      {"", "is damaged: Workbook, the stream does not begin with a workbook"},
      {record(0x809, u16(0x700) + u16(5) + u32(0)),
       "is damaged: Workbook, the stream does not begin with a workbook"},
      {bof(0x10) + cell(0x203, 0, 0, 15, f64(1)) + eof(),
       "is damaged: Workbook, the stream does not begin with a workbook"},
      {bof(5), "is damaged: Workbook, ends too early"},
      {bof(5) + u16(0x22) + u16(9), "is damaged: Workbook, record 22 at 20, ends too early"},
      {bof(5) + record(0x2F, u16(1)) + eof(), "is protected by a password"},
      {bof(5) + record(0xFC, u32(1) + u32(1) + u16(9) + u8(0) + "abc") + eof(),
       "is damaged: Workbook, record FC at 20, ends too early"},
      {with_sheet("").substr(0, with_sheet("").size() - 4),
       "is damaged: Workbook, sheet \"Data\", record 809 at 40, ends too early"},
      {with_sheet(cell(0xFD, 1, 2, 15, u32(40))),
       "is damaged: Workbook, sheet \"Data\", record FD at 60, text 40 of 0"},
      {with_sheet(cell(0x203, 1, 256, 15, f64(1))),
       "is damaged: Workbook, sheet \"Data\", record 203 at 60, a cell is beyond the last one"},
      {with_sheet(cell(0x203, 1, 2, 15, "x")),
       "is damaged: Workbook, sheet \"Data\", record 203 at 60, ends too early"},
      {with_sheet(cell(0x06, 1, 2, 15, f64(1) + u16(0) + u32(0) + u16(99))),
       "is damaged: Workbook, sheet \"Data\", record 6 at 60, ends too early"},
      {with_sheet(record(0x4BC, u16(9) + u16(1) + std::string(9, '\0'))),
       "is damaged: Workbook, sheet \"Data\", record 4BC at 60, the range is none"},
      {with_sheet(bof(0x20)),
       "is damaged: Workbook, sheet \"Data\", record A at 80, ends too early"},
  };
  for (const auto& [stream, message] : kCases) EXPECT_EQ(refusal(stream), message);
}

bool can_be_read(LoadedBook& book, std::size_t sheet) {
  try {
    book.sheet(sheet);
    return true;
  } catch (const package::FileError&) {
    return false;
  }
}

// Wherever the damage lies, and whichever thread meets it.
TEST(XlsDamage, TellsWhereInLongSheets) {
  constexpr int kRows = 50000;
  std::string cells;
  for (int row = 0; row < kRows; ++row) cells += cell(0x203, row, 0, 15, f64(row));
  const std::size_t size = cells.size() / kRows;
  const std::size_t begin = with_sheet("").size() - eof().size();
  for (const int row : {100, 25000, 49990}) {
    const auto place = static_cast<std::size_t>(row) * size;
    std::string damaged = cells;
    damaged.replace(place, 4, record(0xFD, std::string(14, '\0')).substr(0, 4));
    EXPECT_EQ(refusal(with_sheet(damaged)), "is damaged: Workbook, sheet \"Data\", record FD at " +
                                                std::to_string(begin + place) + ", text 0 of 0");
  }
  EXPECT_THAT(refusal(with_sheet(cells).substr(0, begin + cells.size())),
              HasSubstr("record 203 at " + std::to_string(begin + cells.size() - size) +
                        ", ends too early"));
}

// Sheets that lead nowhere leave the others usable, and those that end in no record go out whole.
TEST(XlsDamage, KeepsToOneSheet) {
  const std::string broken = u16(0x203) + u16(0xFFFF) + std::string(9000, 'x');
  std::string stream = stream_of({{"Bad", broken}, {"Good", cell(0x203, 0, 0, 15, f64(1))}});
  LoadedBook saved(LoadedBook(file_of(stream)).file());
  EXPECT_FALSE(can_be_read(saved, 0));
  EXPECT_EQ(shown(saved, 0, 0, 1), "1.000000");
  const std::string file = saved.file();
  EXPECT_NE(file.find(bof(0x10) + broken + eof()), std::string::npos);
  stream.replace(bof(5).size() + 4, 4, u32(999999));
  LoadedBook book(file_of(stream));
  EXPECT_FALSE(can_be_read(book, 0));
  EXPECT_EQ(shown(book, 0, 0, 1), "1.000000");
}

// Sheets follow in their order, wherever the file says that they begin.
TEST(XlsDamage, FindsSheetsThatBeginElsewhere) {
  std::string stream = stream_of({{"One", cell(0x203, 0, 0, 15, f64(1)) + bof(0x20) + eof()},
                                  {"Two", cell(0x203, 0, 0, 15, f64(2))}});
  const std::size_t place = bof(5).size() + 4;
  const std::size_t second = place + 6 + narrow8("One").size() + 4;
  stream.replace(second, 4, u32(package::get32(stream, second) - 10));
  LoadedBook book(file_of(stream));
  EXPECT_EQ(shown(book, 0, 0, 0), "1.000000");
  EXPECT_EQ(shown(book, 0, 0, 1), "2.000000");
}

TEST(XlsDamage, OfABeginningLeavesTheNextSheetItsCells) {
  std::string stream =
      stream_of({{"One", ""}, {"Two", ""}, {"Six", cell(0x203, 0, 0, 15, f64(6))}});
  const std::size_t second = bof(5).size() + 4 + 6 + narrow8("One").size() + 4;
  stream.replace(package::get32(stream, second), 2, u16(0x999));
  LoadedBook book(file_of(stream));
  EXPECT_FALSE(can_be_read(book, 1));
  EXPECT_EQ(shown(book, 0, 0, 2), "6.000000");
}

// A file may say that sheets begin at one place, or inside of one another: each record is read for
// one of them at most.
TEST(XlsDamage, ReadsNoRecordForTwoSheets) {
  const std::string number = cell(0x203, 0, 0, 15, f64(1));
  std::string stream = stream_of({{"One", number + bof(0x10) + eof()}, {"Two", ""}});
  const std::size_t place = bof(5).size() + 4;
  const std::size_t second = place + 6 + narrow8("One").size() + 4;
  const std::uint32_t begin = package::get32(stream, place);
  stream.replace(second, 4, u32(begin));
  LoadedBook same(file_of(stream));
  EXPECT_TRUE(can_be_read(same, 0));
  EXPECT_FALSE(can_be_read(same, 1));
  stream.replace(second, 4, u32(begin + bof(0x10).size() + number.size()));
  LoadedBook inside(file_of(stream));
  EXPECT_FALSE(can_be_read(inside, 0));
  EXPECT_TRUE(can_be_read(inside, 1));
}

// Records beside cells that are cut or lie tell nothing.
TEST(XlsDamage, PassesOverWhatIsNoCell) {
  for (const unsigned id :
       {0x0F, 0x12, 0x13, 0x14, 0x15, 0x1A, 0x1B, 0x1C,  0x26,  0x2A,  0x41,  0x55,  0x5D,
        0x7D, 0x81, 0x83, 0x99, 0xA0, 0xA1, 0xE5, 0x1B6, 0x1B8, 0x225, 0x23E, 0x862, 0x867}) {
    SCOPED_TRACE(id);
    for (const std::size_t size : {0, 1, 3, 7, 12})
      EXPECT_EQ(
          refusal(with_sheet(record(static_cast<std::uint16_t>(id), std::string(size, '\xFF')) +
                             cell(0x201, 0, 0, 15, ""))),
          "none");
  }
}

// Every beginning of a file is refused or read.
TEST(XlsDamage, EndsForEveryCut) {
  const std::string records =
      cell(0x203, 0, 0, 15, f64(1)) + formula(0, 1, u8(0x1E) + u16(1)) +
      record(0x4BC, u16(0) + u16(0) + u8(1) + u8(1) + u16(1) + expression(u8(0x1E) + u16(1))) +
      record(0x207, narrow16("x")) + cell(0x204, 1, 0, 15, narrow16("label"));
  const std::string stream = with_sheet(records, record(0xFC, u32(1) + u32(1) + narrow16("text")));
  for (std::size_t size = 0; size < stream.size(); ++size) {
    SCOPED_TRACE(size);
    EXPECT_NE(refusal(stream.substr(0, size)), "none");
  }
  EXPECT_EQ(refusal(stream), "none");
}

}  // namespace
}  // namespace engine::xls

// Drawings: pictures of every kind come back as they were, and what lies on a loaded sheet keeps
// its bytes while other things come, move and go.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "engine/package/compound_file.h"
#include "engine/workbook/sheet_operations.h"
#include "engine/xls/blips.h"
#include "engine/xls/drawing_pieces.h"
#include "engine/xls/drawing_read.h"
#include "engine/xls/drawing_write.h"
#include "engine/xls/globals.h"
#include "engine/xls/record_merge.h"
#include "engine/xls/record_reader.h"
#include "engine/xls/sheet_reader.h"
#include "tests/support/pictures.h"
#include "tests/xls/streams.h"

namespace engine::xls {
namespace {

using namespace testing;  // NOLINT(google-build-using-namespace): files are looked at by its pieces
using ::testing::ElementsAre;

Picture picture_of(std::string bytes) {
  Picture picture;
  picture.header = read_picture_header(bytes);
  picture.bytes = std::make_shared<const std::string>(std::move(bytes));
  return picture;
}

TEST(XlsPictures, ComeBackAsTheyWere) {
  // Between the header of the second bitmap and its rows there is a gap, which closes up.
  std::string gap = pictures::bitmap(4, 3);
  gap.insert(54, "gap!");
  gap.replace(2, 4, u32(gap.size())).replace(10, 4, u32(58));
  const std::pair<std::string, std::string> kCases[] = {
      {pictures::png(30, 20), ""},
      {pictures::jpeg(40, 30), ""},
      {pictures::bitmap(5, -4), ""},
      {gap, pictures::bitmap(4, 3)},
      {pictures::tiff(7, 8), ""},
      {pictures::enhanced_metafile(2540, 1270), ""},
      {pictures::placeable_metafile(1440, 720, 1440), ""},
      {pictures::pict(64, 32), ""},
  };
  for (const auto& [file, other] : kCases) {
    const auto header = read_picture_header(file);
    ASSERT_TRUE(header);
    SCOPED_TRACE(name_of(header->kind));
    const Blip blip = make_blip(header->kind, file);
    const std::string stored = blip.front + blip.made_data + std::string(blip.file_data);
    EXPECT_EQ(blip.size(), stored.size());
    const std::string back = picture_file(stored);
    EXPECT_EQ(read_picture_header(back), header);
    // That of a Windows metafile has a checksum, which the sample does without.
    if (header->kind != PictureKind::kWmf) {
      EXPECT_EQ(back, other.empty() ? file : other);
    }
    // No prefix is more than the bytes that it has, and a size that lies is nothing to allocate.
    for (std::size_t size = 0; size < stored.size(); ++size)
      EXPECT_LE(picture_file(stored.substr(0, size)).size(), file.size() + 512);
    std::string lying = stored;
    if (!blip.made_data.empty()) lying.replace(24, 4, u32(0xFFFFFFFF));
    EXPECT_LE(picture_file(lying).size(), file.size());
  }
}

// A sheet's shapes as other programs write them: a drawing cut by the records of its shapes.
constexpr unsigned kGroupShape = 0xF003;

std::string piece(unsigned version, unsigned instance, unsigned kind, std::string_view content) {
  return u16(version | instance << 4) + u16(kind) + u32(content.size()) + std::string(content);
}
std::string container(unsigned kind, std::string_view content) {
  return piece(15, 0, kind, content);
}

struct Shape {
  unsigned type;
  unsigned number;
  std::string look;     // properties
  std::string anchor;   // 18 bytes
  std::string records;  // behind it
  bool has_text = false;
};

std::string anchor(unsigned flags, unsigned left, unsigned top, unsigned right, unsigned bottom) {
  return u16(flags) + u16(left) + u16(512) + u16(top) + u16(64) + u16(right) + u16(256) +
         u16(bottom) + u16(128);
}
std::string object(unsigned kind, unsigned number, std::string_view more = {}) {
  return record(0x5D, u16(0x15) + u16(18) + u16(kind) + u16(number) + u16(0x6011) +
                          std::string(12, '\0') + std::string(more) + u32(0));
}
std::string property(unsigned number, unsigned value) { return u16(number) + u32(value); }

std::string bytes_of(const Shape& shape) {
  const auto count = static_cast<unsigned>(shape.look.size() / 6);
  return piece(2, shape.type, 0xF00A, u32(shape.number) + u32(0xA00)) +
         piece(3, count, 0xF00B, shape.look) + piece(0, 0, 0xF010, shape.anchor) +
         piece(0, 0, 0xF011, "");
}

std::string drawing_records(const std::vector<Shape>& shapes) {
  const std::string frame = container(
      0xF004, piece(1, 0, 0xF009, std::string(16, '\0')) + piece(2, 0, 0xF00A, u32(1024) + u32(5)));
  std::size_t size = frame.size();
  for (const Shape& one : shapes) size += 8 + bytes_of(one).size() + (one.has_text ? 8 : 0);
  const unsigned last = shapes.empty() ? 1024 : shapes.back().number;
  std::string bytes = u16(15) + u16(0xF002) + u32(size + 24) +
                      piece(0, 1, 0xF008, u32(shapes.size() + 1) + u32(last)) + u16(15) +
                      u16(kGroupShape) + u32(size) + frame;
  std::string records;
  for (const Shape& one : shapes) {
    const std::string text = one.has_text ? piece(0, 0, 0xF00D, "") : "";
    const std::string content = bytes_of(one);
    bytes += u16(15) + u16(0xF004) + u32(content.size() + text.size()) + content;
    records += record(0xEC, bytes) + one.records;
    bytes = text;
    if (!text.empty()) records += record(0xEC, text) + record(0x1B6, std::string(18, '\0'));
    bytes.clear();
  }
  return bytes.empty() ? records : records + record(0xEC, bytes);
}

std::string drawing_group(std::string_view store, unsigned shapes) {
  return record(
      0xEB, container(0xF000, piece(0, 0, 0xF006,
                                    u32(1024 + shapes) + u32(2) + u32(shapes) + u32(1) + u32(1) +
                                        u32(shapes)) +
                                  std::string(store) + piece(0, 4, 0xF11E, std::string(16, 'c'))));
}
std::string store_entry(const std::string& file, unsigned uses) {
  const Blip blip = make_blip(read_picture_header(file)->kind, file);
  const std::string stored = blip.front + blip.made_data + std::string(blip.file_data);
  return piece(2, blip.type, 0xF007,
               std::string(24, '\0') + u32(uses) + std::string(8, '\0') + stored);
}

// A loaded book whose first sheet is drawn again.
struct Redrawn {
  explicit Redrawn(const std::string& file)
      : compound(package::Source::from_bytes({file.begin(), file.end()})),
        stream(compound.open(*compound.find_stream("Workbook"))) {
    RecordReader reader(stream, 0);
    read_globals(reader, LoadScope::kEverything, book, globals);
    globals.drawings.look_into(stream, {});
    RecordReader records(stream, globals.sheets.front());
    SheetFlags flags;
    Sheet& sheet = *book.sheets().front();
    read_sheet(records, {book, globals, sheet, 0, 0}, {}, sheet.change(), flags);
    part = std::move(flags.drawing);
    place_pictures(part, globals.drawings, pictures, book.pictures, sheet.change());
  }

  SheetContents& sheet() { return book.sheets().front()->change(); }
  bool differs() {
    return Drawings(book, globals.drawings, pictures).differs(*book.sheets().front(), part);
  }
  void move(const formula::Move& how) {
    SheetContents& its = sheet();
    const Grid& grid = book.limits.grid;
    MovedDrawing now = moved(part, its, how, grid);
    its.pictures = engine::moved(its.pictures, its, how, grid);
    part.shapes = std::move(now.shapes);
    part.notes = std::move(now.notes);
    Comments comments;
    for (const auto& [cell, note] : its.comments)
      if (const auto row = formula::moved(cell.row, how)) comments[{*row, cell.column}] = note;
    its.comments = std::move(comments);
  }

  // A file with that sheet alone.
  std::string file() {
    Drawings drawings(book, globals.drawings, pictures);
    const auto written = [&](const auto& write) {
      package::MemoryOutput output;
      RecordWriter out(output);
      write(out);
      out.flush();
      return std::string(output.view());
    };
    const std::string records = written([&](RecordWriter& out) {
      const RecordReader from(stream, 0);
      const RecordEdits none;
      drawings.write_sheet(out, *book.sheets().front(), part, [&](auto begin, auto end) {
        copy_records(from, begin, end, none, out);
      });
    });
    return file_of(stream_of({{"One", records}},
                             written([&](RecordWriter& out) { drawings.write_list(out); })));
  }

  package::CompoundFile compound;
  package::CompoundStream stream;
  Workbook book{kCodec.limits};
  Globals globals;
  LoadedPictures pictures;
  DrawingPart part;
};

// The whole drawing, checked: containers are filled by what is in them, shapes have numbers of
// their own that the list of clusters has given out, and counts are true.
void expect_sound(Redrawn& book) {
  const DrawingPart& part = book.part;
  EXPECT_EQ(part.damage, "");
  ASSERT_TRUE(book.globals.drawings.exists());
  std::vector<std::uint32_t> numbers;
  Piece one;
  for (std::size_t at = 0; part.bytes.size() - at >= kPieceHead;) {
    one = piece_of(std::string_view(part.bytes).substr(at), at);
    at = one.is_container() ? one.content_at() : one.end();
    if (one.kind == PieceKind::kShapeHead)
      numbers.push_back(package::get32(part.bytes, one.content_at()));
  }
  EXPECT_EQ(one.end(), part.bytes.size());
  EXPECT_EQ(package::get32(part.bytes, part.head_at), numbers.size());
  EXPECT_EQ(book.globals.drawings.shapes(), numbers.size());
  EXPECT_TRUE(std::ranges::find(numbers, package::get32(part.bytes, part.head_at + 4)) !=
              numbers.end());
  std::ranges::sort(numbers);
  EXPECT_TRUE(std::ranges::adjacent_find(numbers) == numbers.end());
  const auto& clusters = book.globals.drawings.clusters();
  for (const std::uint32_t number : numbers) {
    ASSERT_LE(number / kShapesInCluster, clusters.size());
    EXPECT_EQ(clusters[number / kShapesInCluster - 1].drawing, part.drawing);
    EXPECT_LT(number % kShapesInCluster, clusters[number / kShapesInCluster - 1].shapes);
  }
}

const std::string kChart = bof(0x20) + record(0x1002, "chart") + eof();

std::string sample_stream(const std::vector<SheetStream>& others = {}) {
  const std::string note = record(0x1C, u16(9) + u16(1) + u16(2) + u16(5) + narrow16("me") + u8(0));
  const std::string store = container(
      0xF001, store_entry(pictures::png(30, 20), 1) + piece(2, 0, 0xF007, std::string(36, '\0')) +
                  store_entry(pictures::enhanced_metafile(2540, 1270), 1));
  const std::vector<Shape> shapes = {
      {1, 1025, property(0x181, 7), anchor(2, 3, 4, 5, 6), object(2, 3)},
      {75, 1026, property(0x4104, 1), anchor(0, 1, 2, 3, 5), object(8, 4)},
      {202, 1027, "", anchor(3, 2, 8, 4, 12), object(0x19, 5), true},
      {201, 1028, "", anchor(0, 6, 30, 9, 40), object(5, 7) + kChart},
      {75, 1029, property(0x4104, 3), anchor(3, 0, 50, 2, 60), object(8, 8)},
      {75, 1030, property(0x4104, 2), anchor(0, 0, 1, 2, 3), object(8, 9)},
      {75, 1031, property(0x4104, 1), anchor(0, 0, 1, 2, 3), object(8, 10, u16(9) + u16(0))},
  };
  std::vector<SheetStream> sheets = {{"One", drawing_records(shapes) + note}};
  sheets.insert(sheets.end(), others.begin(), others.end());
  return stream_of(sheets, drawing_group(store, 8));
}

std::string sample_file() { return file_of(sample_stream()); }

std::vector<std::uint32_t> shown(const SheetContents& sheet) {
  std::vector<std::uint32_t> list;
  for (const PlacedPicture& one : sheet.pictures) list.push_back(one.picture);
  return list;
}

TEST(XlsDrawings, AreChangedWithoutLosingWhatTheyCarry) {
  Redrawn book(sample_file());
  expect_sound(book);
  EXPECT_EQ(book.book.pictures.size(), 3U);
  EXPECT_EQ(book.globals.drawings.picture(0), pictures::png(30, 20));
  EXPECT_THAT(shown(book.sheet()), ElementsAre(0U, 2U));  // no empty ones, none that cells make
  EXPECT_EQ(book.sheet().pictures[0].anchor.anchoring, Anchoring::kMovesAndSizes);
  EXPECT_EQ(book.sheet().pictures[1].anchor.anchoring, Anchoring::kStays);
  EXPECT_EQ(book.sheet().comments.at({9, 1}).author, "me");
  EXPECT_FALSE(book.differs());
  const std::string before = book.part.bytes;

  // As it is, it comes out as it was.
  Redrawn same(book.file());
  EXPECT_EQ(same.part.bytes, before);
  EXPECT_EQ(same.part.records.size(), book.part.records.size());
  EXPECT_FALSE(same.differs());

  // One picture goes, others come, with notes, one of them in place of the file's.
  book.book.pictures.push_back(picture_of(pictures::jpeg(8, 8)));
  book.book.pictures.push_back(picture_of(pictures::jpeg(8, 8)));
  book.book.pictures.push_back({nullptr, false, PictureHeader(), "pictures\\\xC3\xA4.png"});
  SheetContents& sheet = book.sheet();
  Anchor corner;
  corner.right.index = corner.bottom.index = 1;
  sheet.pictures.erase(sheet.pictures.begin());
  for (const std::uint32_t picture : {3U, 4U, 5U, 2U})
    sheet.pictures.push_back({picture, corner, 0});
  sheet.comments[{9, 1}] = {"new", "me", 100, 50};
  sheet.comments[{0, 0}] = {"second", "", 0, 0};
  EXPECT_TRUE(book.differs());
  Redrawn changed(book.file());
  expect_sound(changed);
  EXPECT_FALSE(changed.differs());
  EXPECT_THAT(shown(changed.sheet()), ElementsAre(2U, 3U, 3U, 4U, 2U));
  EXPECT_EQ(changed.book.pictures.at(4).link, "pictures\\\xC3\xA4.png");
  EXPECT_EQ(changed.globals.drawings.picture(3), pictures::jpeg(8, 8));
  EXPECT_EQ(changed.sheet().comments.at({9, 1}).text, "new");
  EXPECT_EQ(changed.sheet().comments.at({0, 0}).text, "second");
  std::vector<std::uint32_t> uses;
  for (const StoredPicture& one : changed.globals.drawings.pictures()) uses.push_back(one.uses);
  EXPECT_THAT(uses, ElementsAre(0U, 0U, 2U, 2U));
  // The shape that nobody knows and the chart have their bytes.
  const auto bytes_at = [](const Redrawn& of, std::size_t shape) {
    return of.part.bytes.substr(of.part.shapes[shape].begin,
                                of.part.shapes[shape].end - of.part.shapes[shape].begin);
  };
  EXPECT_EQ(bytes_at(changed, 0), bytes_at(book, 0));
  EXPECT_EQ(bytes_at(changed, 1), bytes_at(book, 3));
  EXPECT_NE(book.file().find(kChart), std::string::npos);
}

TEST(XlsDrawings, GoWithTheirSheets) {
  for (const bool is_read : {false, true}) {
    SCOPED_TRACE(is_read);
    LoadedBook book(file_of(sample_stream({{"Two", ""}})));
    if (is_read) book.sheet();
    delete_sheet(book.book, *book.document, 0);
    const Redrawn after(book.file());
    EXPECT_EQ(after.globals.drawings.drawings(), 0U);
    EXPECT_EQ(after.globals.drawings.shapes(), 0U);
    for (const StoredPicture& one : after.globals.drawings.pictures()) EXPECT_EQ(one.uses, 0U);
  }
}

TEST(XlsDrawings, MoveWithTheirCells) {
  struct Case {
    formula::Move move;
    const char* rows;  // of the upper and lower edges; none for what is gone
  };
  using Kind = formula::Move::Kind;
  const formula::Axis rows = formula::Axis::kRows;
  const Case kCases[] = {
      {{rows, Kind::kInsert, 3, 10}, "14-16 2-15 18-22 40-50 50-60 note 19"},
      {{rows, Kind::kRemove, 4, 2}, "4-6 2-4 6-10 28-38 50-60 note 7"},
      {{rows, Kind::kRemove, 8, 33}, "4-6 2-5 50-60"},
  };
  for (const auto& [how, expected] : kCases) {
    SCOPED_TRACE(expected);
    Redrawn book(sample_file());
    book.move(how);
    Redrawn now(book.file());
    expect_sound(now);
    std::string rows_of;
    const auto add = [&](const Anchor& its) {
      if (!rows_of.empty()) rows_of += ' ';
      rows_of.append(std::to_string(its.top.index)).append("-");
      rows_of += std::to_string(its.bottom.index);
    };
    for (const DrawnShape& shape : now.part.shapes) {
      if (&shape == &now.part.shapes.back() || &shape == &now.part.shapes.back() - 1) break;
      add(shape.as_read);
      EXPECT_EQ(package::get16(now.part.bytes, shape.anchor_at + 4), 512U);
    }
    for (const auto& [cell, note] : now.part.notes)
      rows_of.append(" note ").append(std::to_string(cell.row));
    EXPECT_EQ(rows_of, expected);
  }
}

// Whatever is wrong with a drawing, the sheet can be read, and what cannot be understood is said.
TEST(XlsDrawings, SurviveDamage) {
  const std::string stream = sample_stream();
  const std::size_t begin = stream.find(u16(15) + u16(0xF000));
  ASSERT_NE(begin, std::string::npos);
  int damaged = 0;
  for (std::size_t at = begin; at < stream.size(); ++at) {
    for (const char byte : {'\0', '\xFF'}) {
      std::string cut = stream;
      if (std::exchange(cut[at], byte) == byte) continue;
      try {
        Redrawn book(file_of(cut));
        for (std::size_t i = 0; i < book.globals.drawings.pictures().size(); ++i)
          book.globals.drawings.picture(i);
        book.sheet().comments[{1, 1}] = {"more", "", 1, 1};
        book.move({formula::Axis::kRows, formula::Move::Kind::kInsert, 2, 3});
        Redrawn again(book.file());
        EXPECT_EQ(again.part.damage, "");
      } catch (const package::FileError&) {
        ++damaged;
      }
    }
  }
  EXPECT_GT(damaged, 100);
}

}  // namespace
}  // namespace engine::xls

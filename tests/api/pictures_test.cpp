// Pictures as the interface gives and takes them.
#include "tests/support/pictures.h"

#include <gmock/gmock.h>

#include <limits>

#include "engine/text/wide.h"
#include "tests/api/files.h"
#include "tests/package/temp_folder.h"

namespace {

using engine::package::testing::TempFolder;

int add(libxl::Book& book, const std::string& bytes) {
  return book.addPicture2(bytes.data(), static_cast<unsigned>(bytes.size()));
}

// "kind: bytes", or the message.
std::string picture(const libxl::Book& book, int index) {
  const char* data = nullptr;
  unsigned size = 0;
  const int type = book.getPicture(index, &data, &size);
  if (type == libxl::PictureError) return book.errorMessage();
  return std::to_string(type) + ": " + std::string(data, size);
}

// Nine values, or the message.
std::string placed(const Stage& stage, int index) {
  int fields[8] = {};
  const int id = stage.sheet->getPicture(index, &fields[0], &fields[1], &fields[2], &fields[3],
                                         &fields[4], &fields[5], &fields[6], &fields[7]);
  if (id < 0) return stage.message();
  std::string text = std::to_string(id);
  for (const int field : fields) text += " " + std::to_string(field);
  return text;
}

TEST(Pictures, OfABookComeBackAsTheyWere) {
  const std::pair<int, std::string> kPictures[] = {
      {libxl::PicturePng, pictures::png(30, 20)},
      {libxl::PictureJpeg, pictures::jpeg(30, 20)},
      {libxl::PictureGif, pictures::gif(30, 20)},
      {libxl::PictureWmf, pictures::placeable_metafile(30, 20, 96)},
      {libxl::PictureDib, pictures::bitmap(30, 20)},
      {libxl::PictureEmf, pictures::enhanced_metafile(794, 529)},
      {libxl::PicturePict, pictures::pict(30, 20)},
      {libxl::PictureTiff, pictures::tiff(30, 20)},
  };
  const TempFolder folder;
  Stage stage;
  int id = 0;
  for (const auto& [type, bytes] : kPictures) {
    folder.write("picture", bytes);
    const std::wstring path = engine::to_wide(folder.file("picture"));
    EXPECT_EQ(id % 2 == 0 ? add(*stage.book, bytes) : stage.book->addPicture(path.c_str()), id);
    EXPECT_EQ(stage.book->pictureSize(), id + 1);
    stage.sheet->setPicture(2 * id, 1, id);
    EXPECT_EQ(stage.message(), "ok");
    ++id;
  }
  for (int round = 0; round < 2; ++round) {
    for (id = 0; id < 8; ++id) {
      EXPECT_EQ(picture(*stage.book, id),
                std::to_string(kPictures[id].first) + ": " + kPictures[id].second);
      const std::string row = std::to_string(2 * id);
      EXPECT_EQ(placed(stage, id), std::to_string(id) + " " + row + " 1 " +
                                       std::to_string(2 * id + 1) + " 1 30 20 0 0");
    }
    ASSERT_TRUE(stage.reload()) << stage.message();
    EXPECT_EQ(stage.book->pictureSize(), 8);
    EXPECT_EQ(stage.sheet->pictureSize(), 8);
  }
}

// What nobody places is not saved, and equal pictures are one in the file.
TEST(Pictures, AreSavedWhereASheetShowsThem) {
  Stage stage;
  for (const unsigned width : {1U, 2U, 2U}) add(*stage.book, pictures::png(width, 1));
  stage.sheet->setPicture(0, 0, 1);
  stage.sheet->setPicture(1, 0, 2);
  stage.sheet->setPicture(2, 0, 1);
  ASSERT_TRUE(stage.reload());
  EXPECT_EQ(stage.book->pictureSize(), 1);
  EXPECT_EQ(stage.sheet->pictureSize(), 3);
  EXPECT_EQ(add(*stage.book, pictures::png(3, 1)), 1);
}

TEST(Pictures, HaveTheSizeThatIsAskedFor) {
  using libxl::Sheet;
  const struct {
    void (*place)(Sheet&);
    const char* values;  // id, rows and columns of the corners, size, offsets
  } cases[] = {
      {[](Sheet& s) { s.setPicture(3, 2, 0); }, "0 3 2 5 3 100 50 0 0"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 0.5); }, "0 3 2 4 2 50 25 0 0"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 0.0001); }, "0 3 2 3 2 1 1 0 0"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 1.006); }, "0 3 2 5 3 101 50 0 0"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 1, 70, 25); }, "0 4 3 6 4 100 50 6 5"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 1, 70, 25, libxl::PositionMoveOnly); },
       "0 4 3 6 4 100 50 6 5"},
      {[](Sheet& s) { s.setPicture(3, 2, 0, 1, 70, 25, libxl::PositionFree); },
       "0 4 3 6 4 100 50 6 5"},
      {[](Sheet& s) { s.setPicture2(3, 2, 0); }, "0 3 2 5 3 100 50 0 0"},
      {[](Sheet& s) { s.setPicture2(3, 2, 0, 64, 20); }, "0 3 2 4 3 64 20 0 0"},
      {[](Sheet& s) { s.setPicture2(3, 2, 0, 30); }, "0 3 2 3 2 30 15 0 0"},
      {[](Sheet& s) { s.setPicture2(3, 2, 0, -1, 10, 1, 2); }, "0 3 2 3 2 20 10 1 2"},
      {[](Sheet& s) { s.setPicture2(3, 2, 0, 1, -1); }, "0 3 2 3 2 1 1 0 0"},
      {[](Sheet& s) { s.setPicture2(1048575, 16383, 0, 500, 500); },
       "0 1048575 16383 1048575 16383 63 19 0 0"},
  };
  Stage stage;
  add(*stage.book, pictures::png(100, 50));
  int count = 0;
  for (const auto& one : cases) {
    one.place(*stage.sheet);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(placed(stage, count++), one.values);
  }
  ASSERT_TRUE(stage.reload());
  for (int i = 0; i < count; ++i) EXPECT_EQ(placed(stage, i), cases[i].values) << i;
}

TEST(Pictures, LieFreeWhateverBecomesOfTheRowsAbove) {
  Stage stage;
  add(*stage.book, pictures::png(100, 50));
  stage.sheet->setPicture(100, 2, 0, 1, 0, 0, libxl::PositionFree);
  EXPECT_EQ(placed(stage, 0), "0 100 2 102 3 100 50 0 0");
  stage.sheet->setRow(0, 30);
  EXPECT_EQ(placed(stage, 0), "0 99 2 101 3 100 50 0 0");
  stage.sheet->setRowHidden(1, true);
  EXPECT_EQ(placed(stage, 0), "0 100 2 102 3 100 50 0 0");
  stage.sheet->removeRow(0, 0);
  EXPECT_EQ(placed(stage, 0), "0 101 2 103 3 100 50 0 0");
}

TEST(Pictures, MayBeLinks) {
  const TempFolder folder;
  folder.write("a#1 %20.png", pictures::png(5, 4));
  const std::string path = folder.file("a#1 %20.png");
  Stage stage;
  EXPECT_EQ(stage.book->addPictureAsLink(engine::to_wide(path).c_str()), 0);
  EXPECT_EQ(stage.book->addPictureAsLink(engine::to_wide(path).c_str(), true), 1);
  for (const int id : {0, 1}) stage.sheet->setPicture(id, 0, id);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(picture(*stage.book, 0), "picture 0 is a link without data");
    EXPECT_EQ(picture(*stage.book, 1), "0: " + pictures::png(5, 4));
    for (const int id : {0, 1}) {
      const wchar_t* link = nullptr;
      EXPECT_EQ(stage.sheet->getPicture(id, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr, nullptr, &link),
                id);
      EXPECT_EQ(link, engine::to_wide(path));
    }
    ASSERT_TRUE(stage.reload());
  }
  // How big it is only its file could tell.
  stage.sheet->setPicture(0, 0, 0);
  EXPECT_EQ(stage.message(), "picture 0 is a link without data");
  stage.sheet->setPicture2(0, 0, 0, 10, 10);
  EXPECT_EQ(stage.message(), "ok");
}

TEST(Pictures, AreRefusedByName) {
  const TempFolder folder;
  folder.write("text.png", "no picture");
  const std::wstring text = engine::to_wide(folder.file("text.png"));
  Stage stage;
  const struct {
    int (*add)(libxl::Book&, const wchar_t* text);
    std::string message;
  } cases[] = {
      {[](libxl::Book& b, const wchar_t*) { return b.addPicture(L""); }, "file name is empty"},
      {[](libxl::Book& b, const wchar_t*) { return b.addPicture(L"/nowhere/a.png"); },
       "file \"/nowhere/a.png\" cannot be opened: no such folder"},
      {[](libxl::Book& b, const wchar_t*) { return b.addPictureAsLink(L"/tmp"); },
       "file \"/tmp\" cannot be opened: it is a folder"},
      {[](libxl::Book& b, const wchar_t* file) { return b.addPicture(file); },
       "file \"" + folder.file("text.png") + "\" is not a known picture format"},
      {[](libxl::Book& b, const wchar_t*) { return b.addPicture2(nullptr, 3); },
       "picture data is empty"},
      {[](libxl::Book& b, const wchar_t*) { return b.addPicture2("text", 0); },
       "picture data is empty"},
      {[](libxl::Book& b, const wchar_t*) { return b.addPicture2("text", 4); },
       "the picture data is not a known picture format"},
      {[](libxl::Book& b, const wchar_t*) { return add(b, pictures::png(0xFFFFFFFF, 1)); },
       "the picture data is not a known picture format"},
  };
  for (const auto& [add_one, message] : cases) {
    EXPECT_EQ(add_one(*stage.book, text.c_str()), -1);
    EXPECT_EQ(stage.message(), message);
  }
  EXPECT_EQ(picture(*stage.book, 0), "picture 0 is out of range: there are none");
  EXPECT_EQ(stage.book->pictureSize(), 0);
  Stage old(xlCreateBookW());
  EXPECT_EQ(add(*old.book, pictures::gif(1, 1)), -1);
  EXPECT_EQ(old.message(), "picture format GIF is not possible in an .xls workbook");
  EXPECT_EQ(add(*old.book, pictures::png(1, 1)), 0);
}

TEST(Pictures, AreNotPlacedWhereNoneCanLie) {
  using libxl::PositionFree;
  using libxl::Sheet;
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const struct {
    void (*place)(Sheet&);
    const char* message;
  } cases[] = {
      {[](Sheet& s) { s.setPicture(-1, -1, 9, kNaN); }, "row -1 is out of range 0..1048575"},
      {[](Sheet& s) { s.setPicture(0, 16384, 9); }, "column 16384 is out of range 0..16383"},
      {[](Sheet& s) { s.setPicture(0, 0, 1, kNaN); }, "picture 1 is out of range 0..0"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, kNaN, -1); }, "scale is not a finite number"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, 0, -1); },
       "scale 0 is out of range: it must be more than 0"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, 1, -1, -2); },
       "offset x -1 is out of range: it must be at least 0"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, 1, 0, -2); },
       "offset y -2 is out of range: it must be at least 0"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, 1, 0, 0, static_cast<libxl::Position>(3)); },
       "position 3 is not known"},
      {[](Sheet& s) { s.setPicture(0, 0, 0, 1e300, 0, 0, PositionFree); },
       "picture width 1E+302 is out of range 1..2147483647"},
      {[](Sheet& s) { s.setPicture2(0, 0, 0, 0, -2); },
       "picture width 0 is out of range: it must be at least 1"},
      {[](Sheet& s) { s.setPicture2(0, 0, 0, -1, -2); },
       "picture height -2 is out of range: it must be at least 1"},
      {[](Sheet& s) { s.setPicture2(0, 0, 0, -1, 2147483647); },
       "picture width 4294967294 is out of range 1..2147483647"},
  };
  Stage stage;
  add(*stage.book, pictures::png(100, 50));
  for (const auto& [place, message] : cases) {
    place(*stage.sheet);
    EXPECT_EQ(stage.message(), message);
  }
  EXPECT_EQ(stage.sheet->pictureSize(), 0);
  EXPECT_EQ(placed(stage, 0), "picture 0 is out of range: there are none");
}

}  // namespace

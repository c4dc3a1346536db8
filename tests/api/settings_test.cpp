// Dates, colours, locales, formats and fonts of a book.
#include <gmock/gmock.h>

#include "tests/api/files.h"
#include "tests/api/stage.h"

namespace {

TEST(Settings, ColoursInBothModes) {
  Stage stage;
  libxl::Book& book = *stage.book;
  EXPECT_EQ(book.colorPack(255, 0, 1), libxl::ColorRed) << "the nearest of the palette";
  book.setRgbMode();
  EXPECT_EQ(book.colorPack(255, 0, 1), 0x01FF0001);
  struct Case {
    int color;
    int rgb;
  };
  constexpr Case kCases[] = {
      {8, 0x000000}, {10, 0xFF0000},         {63, 0x333333}, {65, 0xFFFFFF},
      {32767, 0},    {0x0112AB03, 0x12AB03}, {-1, 0xFFFFFF},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.color);
    int red = 0;
    int green = 0;
    int blue = 0;
    book.colorUnpack(static_cast<libxl::Color>(c.color), &red, &green, &blue);
    EXPECT_EQ(stage.message(), "ok");
    EXPECT_EQ(red * 65536 + green * 256 + blue, c.rgb);
  }
}

TEST(Settings, DatesFollowTheBooksSystem) {
  Stage stage;
  EXPECT_EQ(stage.book->datePack(1900, 3, 1), 61);
  EXPECT_EQ(stage.book->datePack(0, 0, 0, 18), 0.75);
  stage.book->setDate1904();
  EXPECT_EQ(stage.book->datePack(1904, 1, 1), 0);
  ASSERT_TRUE(stage.reload()) << stage.message();
  int year = 0;
  int month = 0;
  int day = 0;
  EXPECT_TRUE(stage.book->dateUnpack(60, &year, &month, &day));
  EXPECT_THAT((std::vector<int>{year, month, day}), testing::ElementsAre(1904, 3, 1));
  EXPECT_FALSE(stage.book->dateUnpack(-1, &year, nullptr, nullptr));
  EXPECT_EQ(stage.message(), "ok");
  EXPECT_EQ(year, 1904);
}

TEST(Settings, LocalesAreKnownByLanguage) {
  Stage stage;
  for (const char* known : {"", "C", "POSIX", "C.UTF-8", "de", "de_AT", "de-CH", "fr_FR.UTF-8"})
    EXPECT_TRUE(stage.book->setLocale(known)) << known;
  for (const char* unknown : {"xx", "DE", "de_", "de_AUT", "german", "de_AT_x"})
    EXPECT_FALSE(stage.book->setLocale(unknown)) << unknown;
  EXPECT_FALSE(stage.book->setLocale(nullptr));
  EXPECT_EQ(stage.message(), "ok");
}

TEST(Settings, FormatsAreOneObjectAnEntryAndCopyOnce) {
  Stage stage;
  Stage other;
  libxl::Format* format = stage.book->addFormat();
  format->setNumFormat(stage.book->addCustomNumFormat(L"0.000"));
  format->setFont(stage.book->addFont());
  format->font()->setBold();
  EXPECT_EQ(stage.book->format(1), format);
  EXPECT_EQ(stage.book->font(1), format->font());
  libxl::Format* copy = stage.book->addFormat(format);
  EXPECT_EQ(copy->font(), format->font()) << "shared";
  format->setNumFormat(libxl::NumPercent);
  EXPECT_EQ(copy->numFormat(), 164);
  libxl::Format* imported = other.book->addFormat(copy);
  EXPECT_TRUE(imported->font()->bold());
  EXPECT_NE(imported->font(), copy->font());
  EXPECT_STREQ(other.book->customNumFormat(imported->numFormat()), L"0.000");
}

TEST(Settings, NumberFormatsHaveOneIdACode) {
  Stage stage;
  EXPECT_EQ(stage.book->addCustomNumFormat(L"0.000"), 164);
  EXPECT_EQ(stage.book->addCustomNumFormat(L"yyyy"), 165);
  EXPECT_EQ(stage.book->addCustomNumFormat(L"0.000"), 164);
  // A built-in code gets an id too: what the built-in ones show depends on the system.
  EXPECT_EQ(stage.book->addCustomNumFormat(L"mm-dd-yy"), 166);
  EXPECT_STREQ(stage.book->customNumFormat(165), L"yyyy");
}

TEST(Settings, DefaultFontIsFontZero) {
  Stage stage;
  stage.book->setDefaultFont(L"Arial", 14);
  EXPECT_STREQ(stage.book->font(0)->name(), L"Arial");
  ASSERT_TRUE(stage.reload()) << stage.message();
  int size = 0;
  EXPECT_STREQ(stage.book->defaultFont(&size), L"Arial");
  EXPECT_EQ(size, 14);
}

constexpr const char* kSheetOne = "xl/worksheets/sheet1.xml";

// A workbook whose columns are ten characters wide in Calibri 11, of 7 pixels a digit.
std::string with_widths() {
  return with_replaced(three_sheets(), kSheetOne, "<sheetData>",
                       "<cols><col min=\"1\" max=\"2\" width=\"10.7109375\" customWidth=\"1\"/>"
                       "</cols><sheetData>");
}

// Wider digits make wider columns, which files say in digits with their padding.
TEST(Settings, ColumnsKeepTheirCharactersInAnotherDefaultFont) {
  const struct {
    const char* name;
    void (*change)(libxl::Book&);
    const char* width;
  } cases[] = {
      {"the default font", [](libxl::Book& book) { book.setDefaultFont(L"Calibri", 22); },
       "width=\"10.33203125\""},
      {"the size of font 0", [](libxl::Book& book) { book.font(0)->setSize(22); },
       "width=\"10.33203125\""},
      {"the name of font 0", [](libxl::Book& book) { book.font(0)->setName(L"Verdana"); },
       "width=\"10.5546875\""},
      {"to and back",
       [](libxl::Book& book) {
         book.setDefaultFont(L"Verdana", 30);
         book.setDefaultFont(L"Calibri", 11);
       },
       "width=\"10.7109375\""},
      {"digits as wide", [](libxl::Book& book) { book.setDefaultFont(L"Arial", 10); },
       "width=\"10.7109375\""},
      {"another font", [](libxl::Book& book) { book.addFont()->setSize(40); },
       "width=\"10.7109375\""},
  };
  for (const auto& [name, change, width] : cases) {
    SCOPED_TRACE(name);
    const OwnedBook book(xlCreateXMLBookW());
    ASSERT_TRUE(load(*book, with_widths())) << book->errorMessage();
    change(*book);
    EXPECT_THAT(part_of(saved(*book), kSheetOne), testing::HasSubstr(width));
  }
}

TEST(Settings, TheDefaultFontStaysWhereASheetIsDamaged) {
  const OwnedBook book(xlCreateXMLBookW());
  ASSERT_TRUE(load(*book, with_replaced(with_widths(), "xl/worksheets/sheet2.xml", "<row", "<<")));
  book->setDefaultFont(L"Verdana", 30);
  EXPECT_THAT(book->errorMessage(), testing::HasSubstr("is damaged: xl/worksheets/sheet2.xml"));
  EXPECT_FALSE(book->font(0)->setName(L"Verdana"));
  EXPECT_STREQ(book->font(0)->name(), L"Calibri");
  EXPECT_EQ(book->font(0)->size(), 11);
}

}  // namespace

// Parts in UTF-16, as some programs write them: they are read like others and written as UTF-8.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "engine/package/xml_text.h"
#include "engine/text/wide.h"
#include "engine/workbook/sheet_operations.h"
#include "tests/xlsx/rich_package.h"

namespace engine::xlsx {
namespace {

using testing::HasSubstr;

struct Encoding {
  const char* name;
  bool big_endian;
  bool marked;
};
constexpr Encoding kEncodings[] = {
    {"little endian with a mark", false, true},
    {"big endian with a mark", true, true},
    {"little endian", false, false},
    {"big endian", true, false},
};

std::string utf16(std::string_view utf8, const Encoding& encoding) {
  std::string out;
  const auto put = [&](unsigned unit) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    out += encoding.big_endian ? high : low;
    out += encoding.big_endian ? low : high;
  };
  if (encoding.marked) put(0xFEFF);
  for (const wchar_t unit : to_wide(utf8)) put(static_cast<unsigned>(unit));
  return out;
}

// The rich package with texts beyond ASCII, each part declared to be what it is.
PartTexts package_in(const Encoding* encoding) {
  PartTexts parts = rich_package();
  for (auto& [name, text] : parts) {
    if (name.ends_with(".png")) continue;
    for (std::size_t at = 0; (at = text.find("note", at)) != std::string::npos; at += 4)
      text.replace(at, 4, "nöt😀");
    text.insert(0, std::string(R"(<?xml version="1.0" encoding=")") +
                       (encoding ? "UTF-16" : "UTF-8") + "\" standalone=\"yes\"?>\r\n");
    if (encoding) text = utf16(text, *encoding);
  }
  return parts;
}

// Changes something in every part that a save can write anew.
PartTexts edited(const PartTexts& parts) {
  const auto book = load(parts);
  Workbook& workbook = book->workbook;
  const std::uint32_t text = workbook.strings.add("größer 😀");
  book->read(1);
  EXPECT_EQ(book->read().contents().comments.at({0, 0}).width, 128);
  book->sheet().change().put_value(7, 7, Value::of_text(text), workbook.styles.add_format());
  book->sheet().change().comments[{4, 4}] = {"neu", "Zoë", 100, 100};
  NewSheet copy = make_copy(workbook, *book->document, book->sheet(), "Copy");
  make_room(workbook, copy);
  place_sheet(workbook, *book->document, 3, std::move(copy));
  activate_sheet(workbook, *book->document, 2);
  delete_sheet(workbook, *book->document, 1);
  return unzip(book->save());
}

TEST(Encodings, PartsAreReadInBothByteOrdersAndWrittenAsUtf8) {
  const PartTexts wanted = edited(package_in(nullptr));
  for (const Encoding& encoding : kEncodings) {
    SCOPED_TRACE(encoding.name);
    const PartTexts given = package_in(&encoding);
    PartTexts parts = edited(given);
    EXPECT_EQ(parts.size(), wanted.size());
    for (const auto& [name, text] : wanted) {
      // What nobody has to change is stored as it was.
      const auto former = given.find(name);
      if (former != given.end() && parts[name] == former->second) package::xml_to_utf8(parts[name]);
      EXPECT_EQ(parts[name], text) << name;
    }
    EXPECT_THAT(parts["xl/sharedStrings.xml"], HasSubstr("größer 😀"));
  }
}

// Texts beyond ASCII come behind those of the file.
TEST(Encodings, ANarrowDeclarationGivesWay) {
  PartTexts parts = book_of(worksheet("<row><c t=\"s\"><v>1</v></c></row>"));
  parts["xl/sharedStrings.xml"].insert(0, "<?xml version='1.0' encoding='us-ascii'?>");
  const auto book = load(parts);
  const std::uint32_t text = book->workbook.strings.add("größer");
  book->read().change().put_value(7, 7, Value::of_text(text), {});
  EXPECT_THAT(unzip(book->save()).at("xl/sharedStrings.xml"),
              testing::StartsWith("<?xml version='1.0' encoding='UTF-8'?><sst "));
}

}  // namespace
}  // namespace engine::xlsx

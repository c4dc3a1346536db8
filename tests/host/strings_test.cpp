#include "host/strings.h"

#include <gtest/gtest.h>

#include <vector>

#include "devhost/fm/values.h"
#include "tests/support/calls.h"
#include "tests/support/string_table.h"

namespace {

constexpr const char* kEntries = R"(
"1" = "options";
"129" = "never loaded";
"1600" = "XL_Book_Load ( book ; path )|Loads a workbook.";
"1601" = "bare";
"1602" = "XL_Odd|with ( a bracket";
"65000" = "About %@ of it";
)";

std::string as_text(const std::vector<unsigned short>& buffer) {
  const std::u16string units(buffer.begin(), buffer.end());
  return calls::narrow(units.c_str());
}

TEST(Strings, AreRefusedWhole) {
  const calls::StringTable table(kEntries);
  struct Case {
    unsigned long id;
    long capacity;
    long written;
    const char* text;
  };
  // "options" has seven units.
  constexpr Case kCases[] = {
      {1, 9, 7, "options"}, {1, 8, 0, "????????"},  {1, 1, 0, "?"},
      {1, 0, 0, ""},        {2, 9, 0, "?????????"},
  };
  for (const auto& [id, capacity, written, text] : kCases) {
    SCOPED_TRACE(testing::Message() << id << " " << capacity);
    std::vector<unsigned short> buffer(static_cast<std::size_t>(capacity), u'?');
    EXPECT_EQ(Sub_LoadString(id, buffer.data(), capacity, ""), written);
    EXPECT_EQ(as_text(buffer), text);
    EXPECT_TRUE(buffer.empty() || buffer.back() == u'?');
  }
  EXPECT_EQ(Sub_LoadString(1, nullptr, 100, ""), 0);
}

// The text keeps the length that it has before the version is put in.
TEST(Strings, AnswerTheHostsRequests) {
  const calls::StringTable table(kEntries);
  struct Case {
    unsigned long kind;
    const char* text;
  };
  constexpr Case kCases[] = {
      {131, "options"}, {129, "About " VORNELIX_VERSION " of i"}, {1601, "bare"}, {7, "untouched"}};
  for (const auto& [kind, text] : kCases) {
    SCOPED_TRACE(kind);
    std::vector<unsigned short> buffer = {'u', 'n', 't', 'o', 'u', 'c', 'h', 'e', 'd', 0};
    buffer.resize(100);
    Do_GetString(kind, 0, static_cast<unsigned long>(buffer.size()), buffer.data());
    EXPECT_EQ(as_text(buffer), text);
  }
}

TEST(Strings, HaveNamePrototypeAndDescription) {
  const calls::StringTable table(kEntries);
  struct Case {
    unsigned long id;
    int part;
    const char* text;
  };
  constexpr Case kCases[] = {
      {1600, kName, "XL_Book_Load"},
      {1600, kPrototype, "XL_Book_Load ( book ; path )"},
      {1600, kDescription, "Loads a workbook."},
      {1600, 3, "XL_Book_Load ( book ; path )|Loads a workbook."},
      {1601, kName, "bare"},
      {1601, kPrototype, "bare"},
      {1601, kDescription, "bare"},
      {1602, kName, "XL_Odd"},
      {1602, kDescription, "with ( a bracket"},
      {131, kName, "options"},
      {9, kName, ""},
  };
  for (const auto& [id, part, text] : kCases) {
    SCOPED_TRACE(testing::Message() << id << " " << part);
    fmx::TextUniquePtr loaded;
    Do_GetString(id, loaded, part);
    const auto& units = static_cast<devhost::TextObject&>(*loaded).units;
    EXPECT_EQ(calls::narrow(units), text);
  }
}

}  // namespace

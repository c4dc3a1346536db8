// The table of texts against lists of its own: which entries there are, and what each must hold.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/listed_functions.h"

namespace {

constexpr int kFirstConstant = 5000;
constexpr std::size_t kLongestEntry = 4093;  // in UTF-16 units

// Constants with rising ids, their values rising by one or doubling.
struct ConstantRun {
  int first_id = 0;
  int first_value = 0;
  int count = 0;
  bool doubling = false;
};
constexpr ConstantRun kConstants[] = {
    {5000, 8, 58},      {5058, 81, 1}, {5059, 32767, 1}, {5060, 0, 23}, {5083, 37, 13},
    {5096, 0, 8},       {5104, 0, 5},  {5109, 0, 14},    {5123, 0, 4},  {5127, 0, 19},
    {5146, 0, 3},       {5149, 0, 3},  {5152, 33, 2},    {5154, 0, 48}, {5202, 50, 69},
    {5271, 0, 3},       {5274, 0, 6},  {5280, 0, 1},     {5281, 7, 1},  {5282, 15, 1},
    {5283, 23, 1},      {5284, 29, 1}, {5285, 36, 1},    {5286, 42, 1}, {5287, 255, 1},
    {5288, 0, 2},       {5290, 3, 5},  {5295, 255, 1},   {5296, 0, 3},  {5299, -2, 2},
    {5301, 0, 3},       {5304, 0, 8},  {5312, 0, 6},     {5318, -1, 2}, {5320, 1, 15, true},
    {5335, 1, 8, true}, {5343, 0, 8},  {5351, 0, 8},     {5359, 0, 3},
};

// Texts that the host asks for by kind: the name twice, the description, the text with the version.
constexpr int kHostTexts[] = {1, 128, 130, 65000};

// Functions after which the handle of the book names something else.
const std::set<std::string> kTakeBookHandle = {
    "XL_Sheet_CellType",
    "XL_Sheet_CellFormat",
    "XL_Sheet_ReadError",
    "XL_Sheet_AutoFilter",
    "XL_Format_Font",
    "XL_AutoFilter_Column",
    "XL_AutoFilter_ColumnByIndex",
    "XL_FilterColumn_FilterType",
};

struct Entry {
  int id;
  std::string text;

  std::string prototype() const { return text.substr(0, text.find('|')); }
  std::string name() const { return prototype().substr(0, prototype().find(" (")); }
  std::string description() const { return text.substr(text.find('|') + 1); }
};

// Steps over the text up to and including the end mark.
std::string take_until(const std::string& table, std::size_t& at, const std::string& end) {
  const std::size_t found = table.find(end, at);
  if (found == std::string::npos)
    throw std::runtime_error("no " + end + " after " + table.substr(at, 40));
  std::string taken = table.substr(at, found - at);
  at = found + end.size();
  return taken;
}

std::string unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') ++i;
    plain += text.at(i);
  }
  return plain;
}

// The entries in the table's order, each of which stands on one line between comments. Throws at
// anything else, so that a quote too many does not hide what follows it.
std::vector<Entry> read_entries() {
  std::ifstream file(STRINGS_TABLE, std::ios::binary);
  const std::string table{std::istreambuf_iterator<char>(file), {}};
  static const std::regex line(R"re("(\d+)" = "((?:[^"\\]|\\["\\])*)";)re");
  std::vector<Entry> entries;
  std::size_t at = 0;
  while ((at = table.find_first_not_of('\n', at)) != std::string::npos) {
    if (table.compare(at, 2, "/*") == 0) {
      take_until(table, at, "*/");
      continue;
    }
    const std::string entry = take_until(table, at, "\n");
    std::smatch match;
    if (!std::regex_match(entry, match, line)) throw std::runtime_error("not an entry: " + entry);
    entries.push_back({std::stoi(match[1]), unescaped(match[2])});
  }
  return entries;
}

const std::vector<Entry>& entries() {
  static const std::vector<Entry> all = read_entries();
  return all;
}

std::vector<Entry> described_entries() {
  std::vector<Entry> described;
  std::copy_if(entries().begin(), entries().end(), std::back_inserter(described),
               [](const Entry& e) {
                 return std::find(std::begin(kHostTexts), std::end(kHostTexts), e.id) ==
                        std::end(kHostTexts);
               });
  return described;
}

// The counts of parameters that a prototype shows: "2", or "2-3" with optional ones in braces.
std::string counts(const std::string& prototype) {
  const auto semicolons = [](const std::string& part) {
    return std::count(part.begin(), part.end(), ';');
  };
  if (prototype.find(" ( ") == std::string::npos) return "0";
  const std::string required = prototype.substr(0, prototype.find('{'));
  const auto least = 1 + semicolons(required);
  if (required.size() == prototype.size()) return std::to_string(least);
  return std::to_string(least) + "-" + std::to_string(1 + semicolons(prototype));
}

std::map<int, int> expected_constants() {
  std::map<int, int> constants;
  for (const auto& [first_id, first_value, count, doubling] : kConstants)
    for (int i = 0; i < count; ++i)
      constants[first_id + i] = doubling ? first_value << i : first_value + i;
  return constants;
}

std::size_t utf16_units(const std::string& text) {
  std::size_t units = 0;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0) != 0x80) units += value >= 0xF0 ? 2 : 1;
  }
  return units;
}

TEST(StringsTable, HoldsEveryIdOnce) {
  std::vector<int> wanted(std::begin(kHostTexts), std::end(kHostTexts));
  for (const auto& [id, function] : listed_functions()) wanted.push_back(id);
  for (const auto& [id, value] : expected_constants()) wanted.push_back(id);
  std::vector<int> found;
  for (const Entry& entry : entries()) found.push_back(entry.id);
  EXPECT_THAT(found, testing::UnorderedElementsAreArray(wanted));
}

TEST(StringsTable, EntriesHaveNamePrototypeAndDescription) {
  // Names are told apart without regard to case, as the host does.
  const std::regex prototype(R"((XL_\w+)( \( \w+( ; \w+)*( \{; \w+( ; \w+)*\})? \))?)");
  std::set<std::string> names;
  for (const Entry& entry : described_entries()) {
    SCOPED_TRACE(entry.text);
    EXPECT_TRUE(std::regex_match(entry.prototype(), prototype));
    EXPECT_EQ(std::count(entry.text.begin(), entry.text.end(), '|'), 1);
    EXPECT_TRUE(entry.description().ends_with("."));
    EXPECT_LE(utf16_units(entry.text), kLongestEntry);
    std::string name = entry.name();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    EXPECT_TRUE(names.insert(name).second);
  }
}

TEST(StringsTable, PrototypesShowTheCountsOfParameters) {
  std::map<int, std::string> wanted;
  for (const auto& [id, function] : listed_functions()) wanted[id] = function.with_counts();
  std::map<int, std::string> found;
  for (const Entry& entry : described_entries())
    if (entry.id < kFirstConstant) found[entry.id] = entry.name() + " " + counts(entry.prototype());
  EXPECT_EQ(found, wanted);
}

TEST(StringsTable, ConstantsTellTheirValues) {
  const std::map<int, int> values = expected_constants();
  for (const Entry& entry : described_entries()) {
    if (entry.id < kFirstConstant) continue;
    SCOPED_TRACE(entry.text);
    EXPECT_EQ(counts(entry.prototype()), "0");
    EXPECT_TRUE(entry.text.ends_with(". Value " + std::to_string(values.at(entry.id)) + "."));
  }
}

// A description names functions and constants, or a group of them by the start of their names.
TEST(StringsTable, DescriptionsNameOnlyWhatExists) {
  std::set<std::string> names;
  for (const Entry& entry : described_entries()) names.insert(entry.name());
  const std::regex mention(R"((XL_\w+)( constant| function)?)");
  for (const Entry& entry : described_entries()) {
    const std::string text = entry.description();
    for (std::sregex_iterator i(text.begin(), text.end(), mention), end; i != end; ++i) {
      const std::string name = (*i)[1];
      const auto next = names.lower_bound(name);
      const bool is_start = next != names.end() && next->starts_with(name);
      EXPECT_TRUE(names.contains(name) || ((*i)[2].matched && is_start))
          << name << " in " << entry.text;
    }
  }
}

TEST(StringsTable, WarnsWhereTheHandleOfTheBookIsTaken) {
  std::set<std::string> warning;
  for (const Entry& entry : described_entries())
    if (entry.description().find("handle no longer names the book: save first") !=
        std::string::npos)
      warning.insert(entry.name());
  EXPECT_EQ(warning, kTakeBookHandle);
}

// The text with the version is cut to the length of its format.
TEST(StringsTable, VersionTextLosesNothingVisible) {
  const auto format = std::find_if(entries().begin(), entries().end(),
                                   [](const Entry& e) { return e.id == 65000; });
  const std::size_t placeholder = format->text.find("%@");
  ASSERT_NE(placeholder, std::string::npos);
  EXPECT_EQ(format->text.find('%', placeholder + 1), std::string::npos);
  std::string whole = format->text;
  whole.replace(placeholder, 2, VORNELIX_VERSION);
  const std::string lost = whole.substr(std::min(whole.size(), format->text.size()));
  EXPECT_EQ(lost.find_first_not_of(' '), std::string::npos) << "cut off: " << lost;
}

}  // namespace

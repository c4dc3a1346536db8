#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/corefoundation/core_foundation.h"
#include "platform/corefoundation/strings_table.h"

namespace {

using corefoundation::parse_strings_table;

struct Release {
  void operator()(CFStringRef string) const { CFRelease(string); }
};
using Owned = std::unique_ptr<const OpaqueString, Release>;

std::u16string units_of(const Owned& string) {
  const CFIndex length = CFStringGetLength(string.get());
  std::vector<UniChar> units(static_cast<std::size_t>(length));
  CFStringGetCharacters(string.get(), CFRangeMake(0, length), units.data());
  return {units.begin(), units.end()};
}

TEST(StringsTable, ReadsEntries) {
  struct Case {
    std::string bytes;
    std::u16string value;
  };
  using namespace std::string_literals;
  const Case kCases[] = {
      {R"("k" = "v";)", u"v"},
      {"/* a \" */ \"k\"\n=// b\n\"v\" ; // end", u"v"},
      {R"(k = v;)", u"v"},
      {R"("1600" = "x"; "k" = "v"; "k" = "second";)", u"v"},
      {R"("k" = "a\n\r\t\"\\\U00e4\UD83D\UDE00/*x*/";)", u"a\n\r\t\"\\ä😀/*x*/"},
      {R"("\U006b" = "Grüße 😀 %";)", u"Grüße 😀 %"},
      {"\xEF\xBB\xBF\"k\"=\"\";", u""},
      {"\xFF\xFE\"\0k\0\"\0=\0\"\0\xE4\0\"\0;\0"s, u"ä"},
      {"\xFE\xFF\0\"\0k\0\"\0=\0\"\0\xE4\0\"\0;"s, u"ä"},
      {"\"k\" = \"a\xC3\";", u"a\uFFFD"},
      {"\"k\" = \"a\xE2\x82z\xED\xA0\x80\";", u"a\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD"},
  };
  for (const auto& [bytes, value] : kCases) {
    SCOPED_TRACE(bytes);
    const auto table = parse_strings_table(bytes);
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(table->at(u"k"), value);
  }
  EXPECT_TRUE(parse_strings_table("").has_value());
}

TEST(StringsTable, RefusesWhatIsNone) {
  for (const char* bytes :
       {"\"k\"", "\"k\" = ", R"("k" = "v")", R"("k" "v";)", R"("k" = "v;)", R"("k" = "v\)",
        R"("k" = "\U12";)", R"("k" = "\U12g4";)", R"("k" = "v"; /* open)", "= \"v\";", "?"}) {
    EXPECT_FALSE(parse_strings_table(bytes).has_value()) << bytes;
  }
}

class LocalizedStrings : public testing::Test {
 public:
  LocalizedStrings() {
    const std::filesystem::path folder = folder_ / "Resources" / "en.lproj";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "Table.strings") << R"("7" = "seven %@ 100%%";)";
    std::ofstream(folder / "Damaged.strings") << R"("7" = "seven"; "8")";
  }
  ~LocalizedStrings() override { std::filesystem::remove_all(folder_); }

 protected:
  Owned find(CFStringRef key, CFStringRef default_value, const char* table) {
    return Owned(
        CFBundleCopyLocalizedString(static_cast<CFBundleRef>(static_cast<void*>(file_.data())), key,
                                    default_value, CFSTR(table)));
  }

 private:
  std::filesystem::path folder_ = std::filesystem::path(testing::TempDir()) / "localized";
  std::string file_ = (folder_ / "Plugin.fmx").string();
};

// What is not found is told by giving back the very object that stands for it.
TEST_F(LocalizedStrings, AreFoundByKey) {
  EXPECT_EQ(units_of(find(CFSTR("7"), CFSTR("7"), "Table")), u"seven %@ 100%%");
  const Owned key(CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%ld"), -12L));
  EXPECT_EQ(units_of(key), u"-12");
  for (const char* table : {"Table", "Damaged", "Missing"}) {
    EXPECT_EQ(find(key.get(), key.get(), table).get(), key.get());
    EXPECT_EQ(find(key.get(), nullptr, table).get(), key.get());
    EXPECT_EQ(find(key.get(), CFSTR("default"), table).get(), CFSTR("default"));
  }
  // This code lies in a program without a table.
  const Owned none(CFBundleCopyLocalizedString(nullptr, key.get(), key.get(), CFSTR("Table")));
  EXPECT_EQ(none.get(), key.get());
}

TEST_F(LocalizedStrings, AreFormats) {
  const Owned format = find(CFSTR("7"), CFSTR("7"), "Table");
  const Owned text(
      CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, format.get(), CFSTR("1.5")));
  EXPECT_EQ(units_of(text), u"seven 1.5 100%");
}

TEST_F(LocalizedStrings, MayBeAskedForByManyThreads) {
  std::array<std::thread, 4> threads;
  for (std::thread& thread : threads) {
    thread = std::thread([this] {
      for (int round = 0; round < 200; ++round) {
        EXPECT_EQ(CFStringGetLength(find(CFSTR("7"), CFSTR("7"), "Table").get()), 14);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

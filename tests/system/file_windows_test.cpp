#include <gtest/gtest.h>
#include <windows.h>


#include "engine/system/file.h"
#include "engine/text/wide.h"
#include "tests/package/temp_folder.h"
#include "tests/system/refusal.h"

namespace engine::system {
namespace {

using package::testing::TempFolder;

void replace(const std::string& path, std::string_view text) {
  Replacement side(path);
  side.write(0, text);
  side.commit();
}

TEST(File, TellsWhyItIsRefused) {
  const TempFolder folder;
  folder.write("used", "x");
  folder.write("kept", "x");
  SetFileAttributesW(to_wide(folder.file("kept")).c_str(), FILE_ATTRIBUTE_READONLY);
  const HANDLE used = CreateFileW(to_wide(folder.file("used")).c_str(), GENERIC_READ, 0, nullptr,
                                  OPEN_EXISTING, 0, nullptr);
  const struct {
    std::string path;
    const char* to_read;
    const char* to_write;
  } cases[] = {
      {folder.file("used"), "another program uses it", "another program uses it"},
      {folder.file("kept"), "", "permission denied"},
      {folder.path(), "it is a folder", "it is a folder"},
      {folder.file("NUL"), "it is not a plain file", "it is not a plain file"},
      {folder.file("a|b"), "no file can have this name", "no file can have this name"},
      {"", "no such file", "no such file"},
  };
  for (const auto& [path, to_read, to_write] : cases) {
    EXPECT_EQ(refusal([&path = path] { File::open(path); }), to_read) << path;
    EXPECT_EQ(refusal([&path = path] { Replacement side(path); }), to_write) << path;
  }
  CloseHandle(used);
  SetFileAttributesW(to_wide(folder.file("kept")).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(File, HasAnyNameAndEitherSlash) {
  const TempFolder folder;
  std::string deep = folder.path();
  for (int i = 0; i < 8; ++i) {
    deep += "\\" + std::string(40, static_cast<char>('a' + i));
    std::filesystem::create_directory(LR"(\\?\)" +
                                      std::filesystem::path(deep).make_preferred().native());
  }
  for (const std::string& path : {folder.file("Größe 数据 😀.xlsx"), deep + "\\a.xlsx"}) {
    replace(path, "first");
    replace(path, "second");
    std::string text(6, '\0');
    EXPECT_EQ(File::open(path).read(0, text), 6U) << path;
    EXPECT_EQ(text, "second") << path;
  }
}

TEST(Replacement, FailsWhole) {
  const TempFolder folder;
  folder.write("a", "old");
  const std::wstring path = to_wide(folder.file("a"));
  {
    Replacement side(folder.file("a"));
    side.write(0, std::string_view("lost"));
    const HANDLE used = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(refusal([&] { side.commit(); }), "another program uses it");
    CloseHandle(used);
  }
  EXPECT_EQ(folder.read("a"), "old");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST(File, WhenTemporaryGoesWithItsHandle) {
  const TempFolder folder;
  folder.write("a", "text");
  {
    File file = File::open_temporary(folder.file("temp"), File::open(folder.file("a")));
    file.write(0, std::string_view("copy"));
    EXPECT_EQ(file.size(), 4U);
  }
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

}  // namespace
}  // namespace engine::system

#include "engine/package/source.h"

#include <gtest/gtest.h>

#include <functional>

#include "engine/package/output.h"
#include "tests/package/temp_folder.h"

namespace engine::package::testing {
namespace {

std::string failure_of(const std::function<void()>& open) {
  try {
    open();
  } catch (const FileError& error) {
    return error.what();
  }
  return "";
}

std::string read(const Source& source, std::uint64_t offset, std::size_t size) {
  std::string text(size, '\0');
  source.read(offset, text);
  return text;
}

TEST(Source, OutlivesTheFile) {
  const TempFolder folder;
  folder.write("a", "0123456789");
  const auto whole = Source::from_file(folder.file("a"));
  const auto copied = Source::from_file_via(folder.file("a"), folder.file("temp"));
  folder.write("a", "");
  EXPECT_EQ(whole->view(), "0123456789");
  EXPECT_EQ(copied->view(), "");
  for (const auto& source : {whole, copied}) {
    EXPECT_EQ(source->size(), 10U);
    EXPECT_EQ(read(*source, 3, 4), "3456");
    EXPECT_EQ(read(*source, 10, 0), "");
    EXPECT_THROW(read(*source, 8, 3), FileError);
    EXPECT_THROW(read(*source, UINT64_MAX, 2), FileError);
  }
}

TEST(Source, TellsWhyAFileCannotBeOpened) {
  const TempFolder folder;
  folder.write("plain", "x");
  const struct {
    std::string path;
    const char* error;
  } cases[] = {
      {folder.file("missing"), "cannot be opened: no such file"},
      {folder.file("missing/a"), "cannot be opened: no such folder"},
      {folder.file("plain/a"), "cannot be opened: no such folder"},
      {folder.path(), "cannot be opened: it is a folder"},
  };
  for (const auto& [path, error] : cases) {
    EXPECT_EQ(failure_of([&path = path] { Source::from_file(path); }), error) << path;
  }
}

TEST(Source, TakesNoTemporaryFileThatWouldBeLost) {
  const TempFolder folder;
  folder.write("a", "text");
  folder.write("full", "other");
  folder.write("empty", "");
  std::filesystem::create_hard_link(folder.file("a"), folder.file("same"));
  const struct {
    const char* temp;
    const char* error;
  } cases[] = {
      {"full", "cannot be written: it exists already"},
      {"a", "cannot be written: it is the workbook itself"},
      {"same", "cannot be written: it is the workbook itself"},
      {"missing/temp", "cannot be written: no such folder"},
      {".", "cannot be written: it is a folder"},
      {"empty", ""},
      {"new", ""},
  };
  for (const auto& [temp, error] : cases) {
    const auto path = folder.file(temp);
    EXPECT_EQ(failure_of([&] { Source::from_file_via(folder.file("a"), path); }), error) << temp;
  }
  EXPECT_EQ(folder.read("full"), "other");
  EXPECT_EQ(folder.read("a"), "text");
}

}  // namespace
}  // namespace engine::package::testing

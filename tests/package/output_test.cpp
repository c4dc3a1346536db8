#include "engine/package/output.h"

#include <gtest/gtest.h>

#include "tests/package/temp_folder.h"

namespace engine::package::testing {
namespace {

void write_text(Output& output, std::string_view text) { output.write({text.data(), text.size()}); }

std::string write_failure(const std::string& path) {
  try {
    FileOutput output(path);
  } catch (const FileTargetError& error) {
    return error.what();
  }
  return "";
}

std::string all_of(const MemoryOutput& output) { return std::string(output.view()); }

std::string all_of(const BlockOutput& output) {
  std::string all;
  for (const auto piece : output.pieces()) all.append(piece.data(), piece.size());
  return all;
}

// Writes are cut and patches parted where blocks end, which they do at powers of two here.
template <class Kind>
void keeps_what_is_written() {
  Kind output(100000);
  std::string expected;
  for (int i = 0; i < 10000; ++i) {
    const auto text = std::to_string(i * 7919);
    write_text(output, text);
    expected += text;
  }
  for (const std::size_t at : {std::size_t{0}, std::size_t{4094}, std::size_t{4096},
                               std::size_t{12286}, expected.size() - 3}) {
    output.patch(at, std::string_view("abc"));
    expected.replace(at, 3, "abc");
  }
  EXPECT_EQ(all_of(output), expected);
  EXPECT_EQ(output.position(), expected.size());
  EXPECT_THROW(write_text(output, std::string(100001 - expected.size(), 'x')), SizeError);
  EXPECT_EQ(all_of(output), expected);
}

TEST(Output, InMemoryKeepsWhatIsWrittenAndItsLimit) {
  keeps_what_is_written<MemoryOutput>();
  keeps_what_is_written<BlockOutput>();
}

TEST(FileOutput, AppearsOnCommitOnly) {
  const TempFolder folder;
  const auto path = folder.file("a");
  {
    FileOutput output(path);
    write_text(output, "new");
    EXPECT_EQ(folder.read("a"), "");
  }
  EXPECT_EQ(folder.names(), std::vector<std::string>{});
  folder.write("a", "old");
  {
    FileOutput output(path);
    write_text(output, std::string(1000000, 'x'));
  }
  EXPECT_EQ(folder.read("a"), "old");
  {
    FileOutput output(path);
    write_text(output, "new");
    EXPECT_EQ(folder.read("a"), "old");
    output.commit();
  }
  EXPECT_EQ(folder.read("a"), "new");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST(FileOutput, PatchesBeforeAndBehindItsBuffer) {
  const TempFolder folder;
  std::string expected;
  FileOutput output(folder.file("a"));
  for (const std::size_t size : {100U, 200000U, 100000U, 400000U, 10U}) {
    const std::string text(size, static_cast<char>('a' + expected.size() % 26));
    write_text(output, text);
    expected += text;
    EXPECT_EQ(output.position(), expected.size());
  }
  for (const std::size_t at : {0U, 199998U, 300099U, 655358U, 700105U}) {
    output.patch(at, std::string_view("12345"));
    expected.replace(at, 5, "12345");
  }
  output.commit();
  EXPECT_EQ(folder.read("a"), expected);
}

TEST(FileOutput, TellsWhyItCannotWrite) {
  const TempFolder folder;
  folder.write("plain", "x");
  const struct {
    std::string path;
    const char* error;
  } cases[] = {
      {folder.path(), "cannot be written: it is a folder"},
      {folder.file("missing/a"), "cannot be written: no such folder"},
      {folder.file("plain/a"), "cannot be written: no such folder"},
  };
  for (const auto& [path, error] : cases) EXPECT_EQ(write_failure(path), error) << path;
}

}  // namespace
}  // namespace engine::package::testing

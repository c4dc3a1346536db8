#include "engine/package/output.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "engine/package/file_reason.h"
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

TEST(MemoryOutput, KeepsWhatIsWrittenAndItsLimit) {
  MemoryOutput output(100000);
  std::string expected;
  for (int i = 0; i < 1000; ++i) {
    const auto text = std::to_string(i * 7919);
    write_text(output, text);
    expected += text;
  }
  output.patch(5, std::string_view("abc"));
  expected.replace(5, 3, "abc");
  EXPECT_EQ(output.view(), expected);
  EXPECT_EQ(output.position(), expected.size());
  EXPECT_THROW(write_text(output, std::string(100001 - expected.size(), 'x')), SizeError);
  EXPECT_EQ(output.view(), expected);
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

TEST(FileOutput, KeepsPermissionsAndFollowsLinks) {
  const TempFolder folder;
  folder.write("target", "old");
  chmod(folder.file("target").c_str(), 0640);
  ASSERT_EQ(symlink("target", folder.file("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.file("dangling").c_str()), 0);
  for (const char* const name : {"link", "dangling"}) {
    FileOutput output(folder.file(name));
    write_text(output, name);
    output.commit();
  }
  EXPECT_EQ(folder.read("target"), "link");
  EXPECT_EQ(folder.read("nowhere"), "dangling");
  struct stat about {};
  ASSERT_EQ(stat(folder.file("target").c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777, 0640U);
  ASSERT_EQ(lstat(folder.file("link").c_str(), &about), 0);
  EXPECT_TRUE(S_ISLNK(about.st_mode));
}

TEST(FileOutput, TellsWhyItCannotWrite) {
  const TempFolder folder;
  folder.write("plain", "x");
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  ASSERT_EQ(symlink("loop", folder.file("loop").c_str()), 0);
  const struct {
    std::string path;
    const char* error;
  } cases[] = {
      {folder.path(), "cannot be written: it is a folder"},
      {folder.file("missing/a"), "cannot be written: no such folder"},
      {folder.file("plain/a"), "cannot be written: no such folder"},
      {folder.file("pipe"), "cannot be written: it is not a plain file"},
      {"/dev/null", "cannot be written: it is not a plain file"},
      {folder.file("loop"), "cannot be written: too many levels of symbolic links"},
  };
  for (const auto& [path, error] : cases) EXPECT_EQ(write_failure(path), error) << path;
}

TEST(FileOutput, RefusesAFileThatMayNotBeWritten) {
  if (geteuid() == 0) GTEST_SKIP() << "everything may be written";
  const TempFolder folder;
  folder.write("a", "old");
  chmod(folder.file("a").c_str(), 0400);
  EXPECT_EQ(write_failure(folder.file("a")), "cannot be written: permission denied");
}

// A limit on the size of files stands in for a full disk.
TEST(FileOutput, LeavesTheOldFileWhenWritingFails) {
  const TempFolder folder;
  folder.write("a", "old");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit tight{1000, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  std::string failure;
  try {
    FileOutput output(folder.file("a"));
    write_text(output, std::string(5000, 'x'));
    output.commit();
  } catch (const FileTargetError& error) {
    failure = error.what();
  }
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(failure, "cannot be written: file too large");
  EXPECT_EQ(folder.read("a"), "old");
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST(FileReason, UsesFixedWords) {
  constexpr struct {
    int error;
    const char* reason;
  } kCases[] = {
      {ENOSPC, "no space left"},         {EDQUOT, "no space left"},
      {EROFS, "the disk is read-only"},  {EACCES, "permission denied"},
      {EPERM, "permission denied"},      {EISDIR, "it is a folder"},
      {ENXIO, "it is not a plain file"}, {EIO, "input/output error"},
  };
  for (const auto& [error, reason] : kCases) EXPECT_EQ(file_reason(error, "a"), reason);
}

}  // namespace
}  // namespace engine::package::testing

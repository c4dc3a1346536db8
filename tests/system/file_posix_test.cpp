#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "engine/system/file.h"
#include "engine/system/file_reason.h"
#include "tests/package/temp_folder.h"
#include "tests/system/refusal.h"

namespace engine::system {
namespace {

using package::testing::TempFolder;

TEST(File, IsPlainOrRefused) {
  const TempFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  ASSERT_EQ(symlink("loop", folder.file("loop").c_str()), 0);
  const struct {
    std::string path;
    const char* reason;
  } cases[] = {
      {folder.file("pipe"), "it is not a plain file"},
      {"/dev/null", "it is not a plain file"},
      {folder.file("loop"), "too many levels of symbolic links"},
      {folder.file(std::string(300, 'x')), "file name too long"},
  };
  for (const auto& [path, reason] : cases) {
    EXPECT_EQ(refusal([&path = path] { File::open(path); }), reason) << path;
    EXPECT_EQ(refusal([&path = path] { Replacement side(path); }), reason) << path;
  }
}

TEST(File, WhenTemporaryLosesItsName) {
  const TempFolder folder;
  folder.write("a", "text");
  File file = File::open_temporary(folder.file("temp"), File::open(folder.file("a")));
  file.write(0, std::string_view("copy"));
  EXPECT_EQ(file.size(), 4U);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"a"});
}

TEST(Replacement, KeepsPermissionsAndFollowsLinks) {
  const TempFolder folder;
  folder.write("target", "old");
  chmod(folder.file("target").c_str(), 0640);
  ASSERT_EQ(symlink("target", folder.file("link").c_str()), 0);
  ASSERT_EQ(symlink("nowhere", folder.file("dangling").c_str()), 0);
  for (const std::string_view name : {"link", "dangling"}) {
    Replacement side(folder.file(std::string(name)));
    side.write(0, name);
    side.commit();
  }
  EXPECT_EQ(folder.read("target"), "link");
  EXPECT_EQ(folder.read("nowhere"), "dangling");
  struct stat about {};
  ASSERT_EQ(stat(folder.file("target").c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777, 0640U);
  ASSERT_EQ(lstat(folder.file("link").c_str(), &about), 0);
  EXPECT_TRUE(S_ISLNK(about.st_mode));
}

TEST(Replacement, RefusesAFileThatMayNotBeWritten) {
  if (geteuid() == 0) GTEST_SKIP() << "everything may be written";
  const TempFolder folder;
  folder.write("a", "old");
  chmod(folder.file("a").c_str(), 0400);
  EXPECT_EQ(refusal([&] { Replacement side(folder.file("a")); }), "permission denied");
}

// A limit on the size of files stands in for a full disk.
TEST(Replacement, LeavesTheOldFileWhenWritingFails) {
  const TempFolder folder;
  folder.write("a", "old");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit tight{1000, before.rlim_max};
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  const std::string failure = refusal([&] {
    Replacement side(folder.file("a"));
    side.write(0, std::string(5000, 'x'));
    side.commit();
  });
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(failure, "file too large");
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
}  // namespace engine::system

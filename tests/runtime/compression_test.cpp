#include "runtime/compression.h"

#include <gtest/gtest.h>

#include <string>

#include "runtime/error_state.h"

namespace {

std::vector<char> bytes_of(const std::string& text) { return {text.begin(), text.end()}; }

TEST(Compression, UnpacksWhatItPacked) {
  // One window, its end, and many windows.
  for (const std::size_t size : {100U, 8192U, 8193U, 100000U}) {
    SCOPED_TRACE(size);
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i) text += std::to_string(i * i % 977);
    text.resize(size);
    g_last_error = 5;
    const std::vector<char> packed = CompressContainerStream(bytes_of(text));
    EXPECT_EQ(g_last_error, 0);
    EXPECT_LT(packed.size(), size);
    ASSERT_GT(packed.size(), 2);
    EXPECT_EQ(packed[0], '\x1f');
    EXPECT_EQ(UncompressContainerStream(packed), bytes_of(text));
    EXPECT_EQ(g_last_error, 0);
  }
}

TEST(Compression, LeavesTheStatusAsTheError) {
  struct Case {
    const char* name;
    std::string packed;
    short last_error;
    std::string unpacked;
  };
  const std::string zlib("\x78\x9c\x4b\x4c\x4a\x06\x00\x02\x4d\x01\x27", 11);
  const Case kCases[] = {
      {"neither wrapper", "neither zlib nor gzip", -3, ""},
      {"zlib wrapper", zlib, 0, "abc"},
      {"wrong checksum", zlib.substr(0, 10) + "x", -3, ""},
      {"ends early", zlib.substr(0, 8), 0, "abc"},
      {"with a dictionary", std::string("\x78\xbb\x02\x4d\x01\x27\x4b", 7), 2, ""},
      {"nothing", "", 0, ""},
  };
  for (const Case& each : kCases) {
    SCOPED_TRACE(each.name);
    g_last_error = 5;
    EXPECT_EQ(UncompressContainerStream(bytes_of(each.packed)), bytes_of(each.unpacked));
    EXPECT_EQ(g_last_error, each.last_error);
  }
}

}  // namespace

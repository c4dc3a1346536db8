#include "runtime/containers.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/support/calls.h"

namespace {

using calls::container;
using Streams = std::vector<std::pair<std::string, std::string>>;

constexpr int kNone = -1;

TEST(Containers, PreferTheStreamWithTheContent) {
  struct Case {
    const char* name;
    Streams streams;
    int preferred;
  };
  const Case kCases[] = {
      {"nothing", {}, kNone},
      {"attributes", {{"FNAM", "n"}, {"DPI_", "x"}}, kNone},
      {"other than JPEG", {{"FNAM", "n"}, {"SIZE", "s"}, {"JPEG", "j"}, {"PNGf", "p"}}, 3},
      {"last JPEG", {{"FNAM", "n"}, {"JPEG", "1"}, {"JPEG", "2"}}, 2},
      {"first other", {{"PDF ", "1"}, {"GIFf", "2"}}, 0},
      {"main before file", {{"FILE", "f"}, {"PNGf", "p"}, {"MAIN", "PNGf"}}, 1},
      {"main of nothing", {{"MAIN", "ABCD"}, {"PNGf", "p"}, {"FILE", "f"}}, 2},
      {"main of main", {{"MAIN", "MAIN"}, {"FILE", "f"}}, 0},
      {"file before zlib", {{"ZLIB", "z"}, {"FILE", "f"}}, 1},
      {"zlib before sound", {{"snd ", "s"}, {"ZLIB", "z"}}, 1},
      {"sound before image", {{"PNGf", "p"}, {"snd ", "s"}}, 1},
  };
  for (const auto& [name, streams, preferred] : kCases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(static_cast<int>(PreferredContainerType(container(streams))), preferred);
  }
  EXPECT_THROW(PreferredContainerType(container({{"MAIN", "PNG"}})), std::exception);
}

TEST(Containers, KnowTheirCompression) {
  EXPECT_TRUE(StreamIsCompressed(container({{"FNAM", "n"}, {"ZLIB", "z"}})));
  EXPECT_FALSE(StreamIsCompressed(container({{"FILE", "f"}})));
}

// The types of the streams in order, and a size as its bytes.
std::string streams_of(const devhost::Value& value) {
  std::string list;
  for (const devhost::Stream& stream : value.container().streams)
    list.append(stream.type.data(), stream.type.size()).append(" ");
  return list;
}

TEST(Containers, AreStoredWithNameSizeAndBytes) {
  struct Case {
    const char* name;
    const char* type;
    short width;
    short height;
    const char* streams;
  };
  constexpr Case kCases[] = {
      {"a.png", "PNGf", 3, 4, "FNAM SIZE PNGf "}, {"a.png", "PNGf", 0, 0, "FNAM SIZE PNGf "},
      {"a.png", "PNGf", -1, -1, "FNAM PNGf "},    {"a.png", "PNGf", -1, 4, "FNAM PNGf "},
      {"a.xlsx", "FILE", 3, 4, "FNAM FILE "},     {"", "FILE", 0, 0, ""},
  };
  for (const auto& [name, type, width, height, streams] : kCases) {
    SCOPED_TRACE(testing::Message() << name << " " << type << " " << width);
    devhost::Value result;
    SetResult(name, std::vector<char>{'x', '\0', 'y'}, type, width, height, result);
    EXPECT_EQ(streams_of(result), streams);
    EXPECT_EQ(result.is_container(), *streams != '\0');
    if (result.is_container()) continue;
    EXPECT_EQ(calls::narrow(result.units()), "x");
  }
}

TEST(Containers, HoldImagesAndFiles) {
  devhost::Value result;
  KelImage image({'p', 'n', 'g'}, 65536 + 2, 5);
  image.type = "JPEG";
  SetResult("a.jpg", image, result);
  EXPECT_EQ(streams_of(result), "FNAM SIZE JPEG ");
  EXPECT_EQ(*result.container().streams[1].bytes, (devhost::Bytes{0, 2, 0, 5}));
  EXPECT_EQ(*result.container().streams[2].bytes, image.bytes);

  SetResult("\xc3\xbc.xlsx", std::vector<unsigned char>{1, 0, 255}, result);
  EXPECT_EQ(streams_of(result), "FNAM FILE ");
  EXPECT_EQ(result.container().file_name(), u"\u00fc.xlsx");
  EXPECT_EQ(*result.container().streams[1].bytes, (devhost::Bytes{1, 0, 255}));
}

TEST(Containers, TypesHaveFourBytes) {
  devhost::Value result;
  for (const char* type : {"", "PNG", "PNGfx"}) {
    SCOPED_TRACE(type);
    EXPECT_THROW(SetResult("", std::vector<char>{}, type, 0, 0, result), std::out_of_range);
  }
  const KelQuadChar code("PN\xe9 ");
  EXPECT_EQ(code.as_string(), "PN\xc3\xa9 ");
  EXPECT_TRUE(code.is_type("PN\xe9 and more"));
  EXPECT_FALSE(code.is_type("PN"));
  EXPECT_TRUE(*code.get_type() == *KelQuadChar("PN\xe9 ").get_type());
}

TEST(Containers, TypesKnowTheirKind) {
  for (const char* type : {"JPEG", "GIFf", "EPS ", "META", "PNGf", "BMPf", "PDF "})
    EXPECT_TRUE(KelQuadChar(type).is_image()) << type;
  for (const char* type : {"FILE", "FNAM", "snd ", "ZLIB", "FORK"})
    EXPECT_FALSE(KelQuadChar(type).is_image()) << type;
  EXPECT_TRUE(KelQuadChar("FILE").is_file() && KelQuadChar("ZLIB").is_zlib());
  EXPECT_TRUE(KelQuadChar("FORK").is_fork() && !KelQuadChar("FORK").is_file());
}

}  // namespace

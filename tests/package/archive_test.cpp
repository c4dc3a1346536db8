#include "engine/package/archive.h"

#include <gmock/gmock.h>

#include "tests/package/zip_builder.h"

namespace engine::package::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string read_all(BlockReader& reader) {
  std::string text;
  for (auto block = reader.next(); !block.empty(); block = reader.next()) {
    text.append(block.data(), block.size());
  }
  return text;
}

// Text that is big enough to be unpacked ahead, in several blocks.
std::string long_text() {
  std::string text;
  for (int i = 0; text.size() < 3'000'000; ++i) text += std::to_string(i * 7919L) + ' ';
  return text;
}

RawEntry with(RawEntry entry, const std::function<void(RawEntry&)>& change) {
  change(entry);
  return entry;
}

TEST(Archive, ReadsWhatWritersDo) {
  const auto unsigned_descriptor = std::string("\0\0\0\0\0\0\0\0\0\0\0\0", 12);
  const struct {
    const char* what = nullptr;
    RawEntry entry;
    bool wide_end = false;
  } cases[] = {
      {"stored", stored("xl/a.xml", "text"), false},
      {"deflated", deflated("xl/a.xml", "text"), false},
      {"backslashes", deflated("xl\\a.xml", "text"), false},
      {"leading slash", deflated("/xl/a.xml", "text"), false},
      {"other case", deflated("XL/A.xml", "text"), false},
      {"bytes behind the stream",
       with(deflated("xl/a.xml", "text"), [](RawEntry& e) { e.packed += "xyz"; }), false},
      {"zip64 sizes", with(deflated("xl/a.xml", "text"), [](RawEntry& e) { e.wide = true; }),
       false},
      {"zip64 end", deflated("xl/a.xml", "text"), true},
      {"longer local extra field",
       with(deflated("xl/a.xml", "text"), [](RawEntry& e) { e.local_extra = "12345678"; }), false},
      {"descriptor without a signature",
       with(deflated("xl/a.xml", "text"),
            [&](RawEntry& e) {
              e.flags = 8;
              e.descriptor = unsigned_descriptor;
            }),
       false},
      {"descriptor's signature in the data",
       with(stored("xl/a.xml", "PK\x07\x08 text"),
            [&](RawEntry& e) {
              e.flags = 8;
              e.descriptor = unsigned_descriptor;
            }),
       false},
  };
  for (const auto& [what, entry, wide_end] : cases) {
    SCOPED_TRACE(what);
    const auto archive = open_zip(build_zip({stored("first", "1"), entry}, wide_end));
    const auto* const found = archive.find("/xl/A.XML");
    ASSERT_NE(found, nullptr);
    EXPECT_THAT(archive.read(*found), HasSubstr("text"));
    EXPECT_EQ(read_all(*archive.open(*found)), archive.read(*found));
    EXPECT_EQ(archive.find("xl/b.xml"), nullptr);
  }
}

TEST(Archive, LeavesOutFoldersAndJoinsEqualEntries) {
  const auto archive =
      open_zip(build_zip({stored("xl/", ""), stored("xl\\", ""), stored("xl/a.xml", "same"),
                          deflated("XL/A.XML", "same"), stored("", "no name")}));
  ASSERT_EQ(archive.entries().size(), 1U);
  EXPECT_EQ(archive.entries()[0].name, "xl/a.xml");
}

TEST(Archive, ToleratesCommentAndBytesBehindIt) {
  auto bytes = build_zip({stored("a", "text")});
  bytes += "behind";
  EXPECT_EQ(failure_of(bytes), "");
  bytes[bytes.size() - 6 - 2] = 6;  // now it is the comment
  EXPECT_EQ(failure_of(bytes), "");
}

TEST(Archive, RefusesWhatContradictsItself) {
  const auto good = deflated("a.xml", "some text, some text");
  const struct {
    const char* what;
    std::string bytes;
    const char* error;
  } cases[] = {
      {"wrong checksum", build_zip({with(good, [](RawEntry& e) { ++e.crc; })}),
       "a.xml, checksum does not match"},
      {"too long", build_zip({with(good, [](RawEntry& e) { --e.size; })}),
       "a.xml, is longer than the directory tells"},
      {"too short", build_zip({with(good, [](RawEntry& e) { ++e.size; })}),
       "a.xml, ends too early"},
      {"cut data", build_zip({with(good, [](RawEntry& e) { e.packed.resize(6); })}),
       "a.xml, ends too early"},
      {"no deflate data", build_zip({with(good, [](RawEntry& e) { e.packed[0] = '\x07'; })}),
       "a.xml, cannot be unpacked"},
      {"unknown method", build_zip({with(good, [](RawEntry& e) { e.method = 12; })}),
       "a.xml, is packed with unknown method 12"},
      {"stored with two sizes", build_zip({with(stored("a", "b"), [](RawEntry& e) { ++e.size; })}),
       "a, is stored with two different sizes"},
      {"different duplicates", build_zip({stored("a", "x"), stored("A", "y")}),
       "A, stands in the archive twice with different content"},
      {"overlapping entries",
       build_zip({stored("a", "12345"),
                  with(stored("b", "x"), [](RawEntry& e) { e.shifted_offset = -2; })}),
       "a, overlaps what follows it"},
      {"two names for one entry",
       build_zip({stored("a", "12345"),
                  with(stored("b", "12345"), [](RawEntry& e) { e.shifted_offset = -36; })}),
       "overlaps what follows it"},
      {"size beyond the next entry",
       build_zip({with(deflated("a", "12345"), [](RawEntry& e) { e.shifted_size = 1; }),
                  stored("b", "x")}),
       "a, overlaps what follows it"},
      {"size beyond the file",
       build_zip({with(stored("a", "1"), [](RawEntry& e) { e.shifted_size = 0x7FFFFFFF; })}),
       "a, overlaps what follows it"},
      {"huge zip64 offset",
       build_zip({with(stored("a", "1"),
                       [](RawEntry& e) {
                         e.wide = true;
                         e.shifted_offset = INT64_MAX;
                       })}),
       "a, overlaps what follows it"},
      {"local header elsewhere",
       build_zip({with(stored("b", "123456789"),
                       [](RawEntry& e) {
                         e.shifted_offset = 1;
                         e.shifted_size = -1;
                         --e.size;
                       })}),
       "b, local header is missing"},
      {"no archive", std::string(100, 'x'), "zip directory, is missing"},
      {"empty", "", "zip directory, is missing"},
  };
  for (const auto& [what, bytes, error] : cases) {
    SCOPED_TRACE(what);
    const auto failure = failure_of(bytes);
    EXPECT_THAT(failure, StartsWith("is damaged: "));
    EXPECT_THAT(failure, HasSubstr(error));
  }
}

TEST(Archive, TellsThatAnEntryIsEncrypted) {
  EXPECT_EQ(failure_of(build_zip({with(stored("a", "x"), [](RawEntry& e) { e.flags = 1; })})),
            "is protected by a password");
}

TEST(Archive, RefusesEveryPrefix) {
  const auto bytes = build_zip({stored("a", "12345"), deflated("b", "some text")}, true);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_THAT(failure_of(bytes.substr(0, size)), StartsWith("is damaged: ")) << size;
  }
}

// Whatever a byte becomes, reading ends with the same parts or with an error.
TEST(Archive, SurvivesEveryChangedByte) {
  const auto bytes = build_zip({stored("a", "12345"), deflated("b", "some text")});
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const char value : {'\0', '\x01', '\x7F', '\xFF'}) {
      auto changed = bytes;
      changed[at] = value;
      EXPECT_NO_THROW(failure_of(changed)) << at;
    }
  }
}

TEST(Archive, RefusesBombsBeforeAllocating) {
  const std::uint64_t mega = 1024 * 1024;
  const struct {
    std::uint64_t claimed;
    std::size_t packed;
    bool refused;
  } cases[] = {
      {(std::uint64_t{1} << 32) + 1, 5 * mega, true},  // more than 4 GiB
      {65 * mega, 66'000, true},                       // more than 1000 times, above 64 MiB
      {63 * mega, 1000, true},                         // more than deflate can give
  };
  for (const auto& [claimed, packed, refused] : cases) {
    SCOPED_TRACE(claimed);
    RawEntry entry{"a", std::string(packed, '\0'), claimed, 0, kDeflated};
    entry.wide = true;
    EXPECT_THAT(failure_of(build_zip({entry})), HasSubstr("beyond the limit"));
  }
  const auto zeros = deflated("a", std::string(10 * mega, '\0'));
  EXPECT_EQ(failure_of(build_zip({zeros})), "");
}

TEST(Archive, UnpacksAhead) {
  const auto text = long_text();
  const auto good = open_zip(build_zip({deflated("a", text)}));
  EXPECT_EQ(read_all(*good.open(*good.find("a"))), text);
  {
    const auto left_early = good.open(*good.find("a"));
    EXPECT_FALSE(left_early->next().empty());
  }
  const auto bad = open_zip(build_zip({with(deflated("a", text), [](RawEntry& e) { ++e.crc; })}));
  EXPECT_THROW(read_all(*bad.open(*bad.find("a"))), FileError);
}

}  // namespace
}  // namespace engine::package::testing

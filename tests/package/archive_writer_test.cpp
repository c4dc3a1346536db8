#include "engine/package/archive_writer.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "engine/system/second_core.h"
#include "tests/package/zip_builder.h"

namespace engine::package::testing {
namespace {

std::string block_text(std::size_t block) {
  std::string text;
  for (std::size_t i = 0; i < 5000; ++i) text += "<c>" + std::to_string(block * i * 31) + "</c>";
  return text;
}

void make_block(std::size_t block, std::string& out) { out += block_text(block); }

std::string written(const std::function<void(ArchiveWriter&)>& fill) {
  MemoryOutput output;
  ArchiveWriter writer(output);
  fill(writer);
  writer.finish();
  return std::string(output.view());
}

std::string part(const Archive& archive, std::string_view name) {
  const auto* const entry = archive.find(name);
  return entry == nullptr ? "missing" : archive.read(*entry);
}

TEST(ArchiveWriter, WritesWhatTheReaderReads) {
  constexpr std::size_t kLong = std::size_t{1} << 20;
  std::string noise(kLong, '\0');
  std::ranges::generate(
      noise, [random = std::minstd_rand()]() mutable { return static_cast<char>(random() >> 8); });
  const auto bytes = written([&noise](ArchiveWriter& writer) {
    writer.add("empty", "");
    writer.add("short", "x");
    writer.add("long", std::string(kLong, 'x'));
    writer.add("noise", noise);
    writer.add_blocks("none", 0, make_block);
    writer.add_blocks("one", 1, make_block);
    writer.add_blocks("many", 50, make_block);
    writer.add("Größe", "name");
  });
  const auto archive = open_zip(bytes);
  EXPECT_EQ(part(archive, "empty"), "");
  EXPECT_EQ(part(archive, "short"), "x");
  EXPECT_EQ(archive.find("short")->method, kStored);
  EXPECT_EQ(part(archive, "long"), std::string(kLong, 'x'));
  EXPECT_EQ(archive.find("long")->method, kDeflated);
  EXPECT_EQ(part(archive, "noise"), noise);
  EXPECT_EQ(archive.find("noise")->method, kStored);
  EXPECT_EQ(part(archive, "none"), "");
  EXPECT_EQ(part(archive, "one"), block_text(0));
  std::string all;
  for (std::size_t block = 0; block < 50; ++block) make_block(block, all);
  EXPECT_EQ(part(archive, "many"), all);
  EXPECT_EQ(part(archive, "Größe"), "name");
}

// Sizes must stand in local headers, which some readers believe.
TEST(ArchiveWriter, PatchesTheLocalHeader) {
  const auto bytes = written([](ArchiveWriter& w) { w.add_blocks("a", 5, make_block); });
  const auto archive = open_zip(bytes);
  const auto& entry = archive.entries()[0];
  EXPECT_EQ(get16(bytes, 6), 0);  // flags: no descriptor
  EXPECT_EQ(get32(bytes, 14), entry.crc);
  EXPECT_EQ(get32(bytes, 18), entry.packed_size);
  EXPECT_EQ(get32(bytes, 22), entry.size);
}

TEST(ArchiveWriter, GivesTheSameBytesHoweverThreadsRun) {
  const auto slow = [](std::size_t odd) {
    return written([odd](ArchiveWriter& writer) {
      writer.add_blocks("a", 20, [odd](std::size_t block, std::string& out) {
        if (block % 2 == odd) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        make_block(block, out);
      });
    });
  };
  EXPECT_EQ(slow(0), slow(1));
}

TEST(ArchiveWriter, HoldsFewBlocksThatWait) {
  // How far the other thread comes while one makes a block for long.
  std::atomic<std::size_t> meanwhile{0};
  std::atomic<std::size_t> furthest{0};
  written([&](ArchiveWriter& writer) {
    writer.add_blocks("a", 60, [&](std::size_t block, std::string& out) {
      if (block == 1) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        meanwhile = furthest.load();
      }
      furthest = std::max(furthest.load(), block);
      make_block(block, out);
    });
  });
  EXPECT_LT(meanwhile, 16U);
  if (system::has_second_core()) {
    EXPECT_GT(meanwhile, 1U);
  }
}

TEST(ArchiveWriter, CarriesFailuresOfAnyBlock) {
  for (const std::size_t failing : {0U, 1U, 2U, 7U, 29U}) {
    SCOPED_TRACE(failing);
    EXPECT_THROW(written([failing](ArchiveWriter& writer) {
                   writer.add_blocks("a", 30, [failing](std::size_t block, std::string& out) {
                     if (block == failing) throw FileError("failed");
                     make_block(block, out);
                   });
                 }),
                 FileError);
  }
}

TEST(ArchiveWriter, StopsAtTheLimitOfItsOutput) {
  MemoryOutput output(10000);
  ArchiveWriter writer(output);
  EXPECT_THROW(writer.add_blocks("a", 30, make_block), SizeError);
}

TEST(ArchiveWriter, CopiesPackedBytesAsTheyAre) {
  auto described = deflated("b", "some text, some text");
  described.flags = 8;
  described.descriptor = std::string(12, '\0');
  const auto from = open_zip(build_zip({stored("a", "12345"), described}));
  const auto bytes = written([&from](ArchiveWriter& writer) {
    for (const auto& entry : from.entries()) writer.copy(from, entry);
    writer.copy(from, *from.find("b"), "c");
  });
  const auto archive = open_zip(bytes);
  EXPECT_EQ(part(archive, "a"), "12345");
  EXPECT_EQ(part(archive, "b"), "some text, some text");
  EXPECT_EQ(part(archive, "c"), "some text, some text");
  EXPECT_NE(bytes.find(described.packed), std::string::npos);
}

TEST(ArchiveWriter, UsesZip64ForManyEntriesOnly) {
  for (const int count : {65534, 65535}) {
    SCOPED_TRACE(count);
    const auto bytes = written([count](ArchiveWriter& writer) {
      for (int i = 0; i < count; ++i) writer.add(std::to_string(i), "");
    });
    EXPECT_EQ(bytes.find(kWideEndMark) != std::string::npos, count >= 65535);
    EXPECT_EQ(open_zip(bytes).entries().size(), static_cast<std::size_t>(count));
  }
}

// An output that only counts, as its contents do not matter beyond four gigabytes.
class CountingOutput : public Output {
 public:
  void write(std::span<const char> bytes) override {
    if (position_ > UINT32_MAX) kept_.append(bytes.data(), bytes.size());
    position_ += bytes.size();
  }
  void patch(std::uint64_t, std::span<const char>) override {}
  std::uint64_t position() const override { return position_; }
  void skip(std::uint64_t size) { position_ += size; }
  const std::string& kept() const { return kept_; }

 private:
  std::uint64_t position_ = 0;
  std::string kept_;
};

TEST(ArchiveWriter, UsesZip64ForOffsetsBeyondFourGigabytes) {
  CountingOutput output;
  ArchiveWriter writer(output);
  output.skip(std::uint64_t{1} << 32);
  writer.add("a", "x");
  writer.finish();
  EXPECT_EQ(get16(output.kept(), 4), 45);  // version needed, in the local header
  const auto entry = output.kept().find(kDirectoryMark);
  ASSERT_NE(entry, std::string::npos);
  EXPECT_EQ(get32(output.kept(), entry + 42), kFull32);
  EXPECT_EQ(get64(output.kept(), entry + 46 + 1 + 4), std::uint64_t{1} << 32);
  EXPECT_NE(output.kept().find(kWideEndMark), std::string::npos);
}

TEST(ArchiveWriterInterop, IsAcceptedByUnzip) {
  if (std::system("unzip -v > /dev/null 2>&1") != 0) GTEST_SKIP() << "no unzip here";
  const auto path = std::filesystem::temp_directory_path() /
                    ("archive_writer_test_" + std::to_string(getpid()) + ".zip");
  FileOutput output(path.string());
  ArchiveWriter writer(output);
  writer.add("[Content_Types].xml", "<x/>");
  writer.add_blocks("many", 40, make_block);
  writer.add("last", std::string(1000, 'y'));
  writer.finish();
  output.commit();
  EXPECT_EQ(std::system(("unzip -tq " + path.string() + " > /dev/null").c_str()), 0);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace engine::package::testing

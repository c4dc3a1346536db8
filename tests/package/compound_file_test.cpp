#include "engine/package/compound_file.h"

#include <gmock/gmock.h>

#include <map>
#include <string>
#include <vector>

#include "engine/package/compound_format.h"
#include "engine/package/compound_writer.h"
#include "engine/package/file_error.h"
#include "engine/package/output.h"
#include "engine/text/fold.h"

namespace engine::package {
namespace {

using ::testing::HasSubstr;

std::shared_ptr<const Source> source_of(std::string_view bytes) {
  return Source::from_bytes({bytes.begin(), bytes.end()});
}

std::string content(std::size_t size, unsigned seed) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<char>((i * 31 + i / 251 + seed) & 0xFF);
  return text;
}

CompoundItem named(std::string name) {
  CompoundItem item;
  item.name = std::move(name);
  return item;
}

std::string read(const CompoundFile& file, const CompoundEntry& entry) {
  const CompoundStream stream = file.open(entry);
  std::string text(static_cast<std::size_t>(stream.size()), '\0');
  stream.read(0, text);
  return text;
}

std::string written(const std::map<std::string, std::string>& streams) {
  MemoryOutput output;
  CompoundWriter writer(output);
  for (const auto& [name, text] : streams) {
    writer.begin_stream(0, named(name));
    writer.write(text);
  }
  writer.finish();
  return std::string(output.view());
}

TEST(CompoundFile, GivesBackWhatWasWritten) {
  std::map<std::string, std::string> streams;
  for (const std::size_t size : {0, 1, 63, 64, 65, 511, 512, 4095, 4096, 4097, 70000})
    streams["Stream " + std::to_string(size)] = content(size, static_cast<unsigned>(size));
  const std::string bytes = written(streams);
  EXPECT_EQ(bytes.size() % 512, 0U);
  EXPECT_EQ(bytes, written(streams));
  const CompoundFile file(source_of(bytes));
  for (const auto& [name, text] : streams) {
    SCOPED_TRACE(name);
    const CompoundEntry* entry = file.find_stream(upper_case(name));
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->size, text.size());
    EXPECT_EQ(read(file, *entry), text);
  }
  EXPECT_EQ(file.find_stream("Stream 2"), nullptr);
}

// Above some 7 MiB the table's sectors are listed outside of the header.
TEST(CompoundFile, HoldsLargeStreams) {
  std::map<std::string, std::string> streams{{"a", content(9000000, 1)}, {"b", content(100, 2)}};
  const std::string bytes = written(streams);
  const CompoundFile file(source_of(bytes));
  EXPECT_EQ(read(file, *file.find_stream("a")), streams["a"]);
  EXPECT_EQ(read(file, *file.find_stream("b")), streams["b"]);
  const CompoundStream stream = file.open(*file.find_stream("a"));
  EXPECT_EQ(stream.view_at(1000).size(), 9000000U - 1000);
  EXPECT_EQ(stream.view_at(9000000), "");
}

TEST(CompoundFile, KeepsFoldersAndWhatItemsSayOfThemselves) {
  MemoryOutput output;
  CompoundItem root;
  root.class_id.fill('\x20');
  CompoundWriter writer(output, root);
  CompoundItem folder = named("Ordner \xC3\xA4");
  folder.class_id.fill('\x11');
  folder.state = 7;
  folder.created = 0x0102030405060708;
  folder.changed = 0x1112131415161718;
  const std::size_t outer = writer.add_folder(0, folder);
  const std::size_t inner = writer.add_folder(outer, named("inner"));
  writer.begin_stream(inner, named("same"));
  writer.write(std::string("inner"));
  writer.begin_stream(0, named("same"));
  writer.write(std::string("ou"));
  writer.write(std::string("ter"));
  writer.finish();

  const CompoundFile file(source_of(output.view()));
  ASSERT_EQ(file.entries().size(), 5U);
  EXPECT_EQ(file.entries()[0].item.class_id, root.class_id);
  const CompoundEntry& made = file.entries()[1];
  EXPECT_EQ(made.item.name, folder.name);
  EXPECT_EQ(made.item.class_id, folder.class_id);
  EXPECT_EQ(made.item.state, folder.state);
  EXPECT_EQ(made.item.created, folder.created);
  EXPECT_EQ(made.item.changed, folder.changed);
  EXPECT_FALSE(made.is_stream);
  EXPECT_EQ(file.entries()[2].folder, 1U);
  EXPECT_EQ(file.entries()[3].folder, 2U);
  EXPECT_EQ(read(file, file.entries()[3]), "inner");
  EXPECT_EQ(read(file, *file.find_stream("same")), "outer");
}

// Programs find an item by the order of names: shorter ones first, then by capitals. In a tree that
// they accept no red item has a red one below, and all ways down meet as many black ones.
class Tree {
 public:
  explicit Tree(std::string_view bytes) : bytes_(bytes), directory_(get32(bytes, 48) * 512 + 512) {}

  // The number of black items on a way down, of which none is less than `low` or beyond `high`.
  int check(std::uint32_t number, bool below_red, std::vector<std::string>& names) {
    if (number == kNoItem) return 1;
    const std::string_view item = bytes_.substr(directory_ + number * 128, 128);
    const bool red = item[67] == 0;
    EXPECT_FALSE(red && below_red);
    const int left = check(get32(item, 68), red, names);
    names.emplace_back(item.substr(0, get16(item, 64) - 2U));
    const int right = check(get32(item, 72), red, names);
    EXPECT_EQ(left, right);
    return left + (red ? 0 : 1);
  }
  std::uint32_t root() const { return get32(bytes_.substr(directory_ + 76), 0); }

 private:
  std::string_view bytes_;
  std::size_t directory_;
};

TEST(CompoundFile, OrdersNamesAsASearchTree) {
  for (int count = 0; count < 40; ++count) {
    SCOPED_TRACE(count);
    std::map<std::string, std::string> streams;
    for (int i = 0; i < count; ++i)
      streams[std::string(static_cast<std::size_t>(i % 3 + 1), i % 2 == 0 ? 'a' : 'Z') +
              std::to_string(i * 7)] = "x";
    const std::string bytes = written(streams);
    Tree tree(bytes);
    std::vector<std::string> names;
    tree.check(tree.root(), false, names);
    ASSERT_EQ(names.size(), streams.size());
    for (std::size_t i = 1; i < names.size(); ++i) {
      const bool shorter = names[i - 1].size() < names[i].size();
      const bool smaller = upper_case(names[i - 1]) < upper_case(names[i]);
      EXPECT_TRUE(shorter || (names[i - 1].size() == names[i].size() && smaller)) << i;
    }
  }
}

// One stream in sectors of 4096 bytes, which lie in the file in another order.
TEST(CompoundFile, ReadsLargeSectors) {
  const std::string text = content(9000, 3);
  std::string bytes = written({{"Workbook", text}}).substr(0, 512);
  const auto put = [&](std::size_t at, std::uint64_t number, std::size_t size) {
    std::string field;
    put_number(field, number, size);
    bytes.replace(at, size, field);
  };
  put(26, 4, 2);
  put(30, 12, 2);
  put(44, 1, 4);
  put(48, 1, 4);            // directory
  put(60, kEndOfChain, 4);  // no mini sectors
  put(68, kEndOfChain, 4);
  bytes.resize(std::size_t{4096} * 6);
  put(76, 0, 4);
  for (std::size_t i = 1; i < 109; ++i) put(76 + 4 * i, kFreeSector, 4);
  const std::uint32_t next[] = {kTableSector, kEndOfChain, kEndOfChain, 2, 3};
  for (std::size_t i = 0; i < 1024; ++i) put(4096 + 4 * i, i < 5 ? next[i] : kFreeSector, 4);
  const auto item = [&](std::size_t number, const std::string& name, unsigned kind) {
    const std::size_t at = 2 * 4096 + number * 128;
    for (std::size_t i = 0; i < name.size(); ++i) bytes[at + 2 * i] = name[i];
    put(at + 64, 2 * name.size() + 2, 2);
    put(at + 66, kind, 1);
    for (const std::size_t link : {68, 72, 76}) put(at + link, kNoItem, 4);
    return at;
  };
  put(item(0, "Root Entry", kRootItem) + 76, 1, 4);
  const std::size_t stream = item(1, "Workbook", kStreamItem);
  put(stream + 116, 4, 4);
  put(stream + 120, text.size(), 8);
  bytes.replace(5 * 4096, 4096, text.substr(0, 4096));
  bytes.replace(4 * 4096, 4096, text.substr(4096, 4096));
  bytes.replace(3 * 4096, text.size() - 8192, text.substr(8192));

  const CompoundFile file(source_of(bytes));
  ASSERT_NE(file.find_stream("workbook"), nullptr);
  EXPECT_EQ(read(file, *file.find_stream("workbook")), text);
  EXPECT_EQ(file.open(*file.find_stream("workbook")).view_at(4000).size(), 96U);
}

// Whatever is changed, reading ends and gives no more than the file has.
TEST(CompoundFile, EndsOnDamage) {
  const std::string bytes = written({{"Workbook", content(5000, 1)}, {"short", content(900, 2)}});
  const auto look = [](const std::string& damaged) {
    try {
      const CompoundFile file(source_of(damaged));
      for (const CompoundEntry& entry : file.entries()) {
        EXPECT_LE(read(file, entry).size(), damaged.size());
      }
    } catch (const FileError& error) {
      EXPECT_THAT(error.what(), HasSubstr("is damaged: compound file"));
    }
  };
  for (std::size_t size = 0; size < bytes.size(); size += 37) look(bytes.substr(0, size));
  for (std::size_t at = 24; at < bytes.size(); at += at < 600 ? 1 : 4) {
    for (const std::uint64_t number :
         {std::uint64_t{0}, std::uint64_t{5}, std::uint64_t{0xFFFFFFFE}}) {
      std::string field;
      put_number(field, number, 4);
      std::string damaged = bytes;
      damaged.replace(at, std::min<std::size_t>(4, bytes.size() - at), field, 0,
                      std::min<std::size_t>(4, bytes.size() - at));
      look(damaged);
    }
  }
}

TEST(CompoundFile, FindsStreamsWithoutTheTree) {
  std::string bytes = written({{"Workbook", content(5000, 1)}, {"other", "x"}});
  const std::size_t directory = get32(bytes, 48) * 512 + 512;
  std::string number;
  put32(number, 77);
  bytes.replace(directory + 76, 4, number);
  const CompoundFile file(source_of(bytes));
  ASSERT_NE(file.find_stream("Workbook"), nullptr);
  EXPECT_EQ(read(file, *file.find_stream("Workbook")), content(5000, 1));
}

}  // namespace
}  // namespace engine::package

#include "engine/package/compound_writer.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <utility>

#include "engine/package/compound_format.h"
#include "engine/text/fold.h"
#include "engine/text/utf16.h"

namespace engine::package {

namespace {

constexpr std::size_t kSector = std::size_t{1} << kSectorShift;
constexpr std::size_t kMiniSector = std::size_t{1} << kMiniSectorShift;
constexpr std::size_t kNumbersASector = kSector / 4;
constexpr std::size_t kListedASector = kNumbersASector - 1;  // the last number leads on

std::uint64_t parts_of(std::uint64_t size, std::uint64_t part) { return (size + part - 1) / part; }

// The order of a folder's tree: shorter names first, then by their units in upper case.
std::pair<std::size_t, std::string> order_of(const CompoundItem& item) {
  std::string upper = utf16_bytes(upper_case(item.name));
  // Units compare by their high bytes first.
  for (std::size_t at = 0; at + 1 < upper.size(); at += 2) std::swap(upper[at], upper[at + 1]);
  return {upper.size(), std::move(upper)};
}

// The entries of a table for a chain of sectors that lie side by side.
void append_chain(std::string& table, std::uint32_t first, std::uint32_t count) {
  for (std::uint32_t i = 1; i < count; ++i) put32(table, first + i);
  if (count != 0) put32(table, kEndOfChain);
}

}  // namespace

CompoundWriter::CompoundWriter(Output& output, CompoundItem root) : output_(output) {
  root.name = "Root Entry";
  add(0, std::move(root), kRootItem);
  const std::string header(kSector, '\0');
  output_.write(header);
}

std::size_t CompoundWriter::add(std::size_t folder, CompoundItem item, unsigned kind) {
  items_.push_back({std::move(item), kind, folder, 0, 0, kNoItem, kNoItem, kNoItem});
  return items_.size() - 1;
}

std::size_t CompoundWriter::add_folder(std::size_t folder, CompoundItem item) {
  end_stream();
  return add(folder, std::move(item), kFolderItem);
}

void CompoundWriter::begin_stream(std::size_t folder, CompoundItem item) {
  end_stream();
  add(folder, std::move(item), kStreamItem);
  in_stream_ = true;
}

void CompoundWriter::write(std::span<const char> bytes) {
  assert(in_stream_);
  Item& item = items_.back();
  const bool was_short = item.size < kMiniCutoff;
  item.size += bytes.size();
  if (was_short) {
    beginning_.insert(beginning_.end(), bytes.begin(), bytes.end());
    if (item.size < kMiniCutoff) return;
    output_.write(beginning_);
    beginning_.clear();
  } else {
    output_.write(bytes);
  }
}

void CompoundWriter::end_stream() {
  if (!std::exchange(in_stream_, false)) return;
  Item& item = items_.back();
  item.first_sector = kEndOfChain;
  if (item.size >= kMiniCutoff) {
    item.first_sector = append_run(item.size, kEndOfChain);
    write_padded({}, '\0');
  } else if (item.size != 0) {
    item.first_sector = static_cast<std::uint32_t>(mini_stream_.size() / kMiniSector);
    const auto count = static_cast<std::uint32_t>(parts_of(item.size, kMiniSector));
    append_chain(mini_table_, item.first_sector, count);
    mini_stream_.insert(mini_stream_.end(), beginning_.begin(), beginning_.end());
    mini_stream_.resize((std::size_t{item.first_sector} + count) * kMiniSector);
  }
  beginning_.clear();
}

std::uint32_t CompoundWriter::append_run(std::uint64_t size, std::uint32_t mark) {
  const std::uint32_t first = sectors_;
  runs_.push_back({static_cast<std::uint32_t>(parts_of(size, kSector)), mark});
  sectors_ += runs_.back().count;
  return first;
}

void CompoundWriter::write_padded(std::span<const char> bytes, char padding) {
  output_.write(bytes);
  const std::string rest((kSector - output_.position() % kSector) % kSector, padding);
  output_.write(rest);
}

std::uint32_t CompoundWriter::write_chain(std::span<const char> bytes) {
  if (bytes.empty()) return kEndOfChain;
  write_padded(bytes, '\xFF');
  return append_run(bytes.size(), kEndOfChain);
}

void CompoundWriter::finish() {
  end_stream();
  items_[0].size = mini_stream_.size();
  items_[0].first_sector = write_chain(mini_stream_);
  link_folders();
  const std::uint32_t directory_sector = write_chain(directory());
  const auto mini_sectors = static_cast<std::uint32_t>(parts_of(mini_table_.size(), kSector));
  write_tables(directory_sector, write_chain(mini_table_), mini_sectors);
}

// The items of a folder become a search tree that is full but for its last level. That level is
// red, unless it is full as well.
void CompoundWriter::link_folders() {
  std::vector<std::pair<std::pair<std::size_t, std::string>, std::uint32_t>> order;
  for (std::uint32_t i = 1; i < items_.size(); ++i) order.emplace_back(order_of(items_[i].item), i);
  std::ranges::sort(order);
  std::vector<std::vector<std::uint32_t>> children(items_.size());
  for (const auto& [key, number] : order) children[items_[number].folder].push_back(number);
  for (std::size_t folder = 0; folder < items_.size(); ++folder)
    items_[folder].child =
        link(children[folder], 0,
             static_cast<unsigned>(std::bit_width(children[folder].size() + 1)) - 1);
}

std::uint32_t CompoundWriter::link(std::span<const std::uint32_t> sorted, unsigned level,
                                   unsigned red_level) {
  if (sorted.empty()) return kNoItem;
  const std::size_t middle = sorted.size() / 2;
  Item& item = items_[sorted[middle]];
  item.red = level == red_level;
  item.left = link(sorted.first(middle), level + 1, red_level);
  item.right = link(sorted.subspan(middle + 1), level + 1, red_level);
  return sorted[middle];
}

std::string CompoundWriter::directory() const {
  std::string bytes;
  for (const Item& item : items_) {
    std::string name = utf16_bytes(item.item.name);
    const std::size_t name_size = name.size() + 2;
    name.resize(2 * (kMaxNameUnits + 1));
    bytes += name;
    put16(bytes, name_size);
    put_number(bytes, item.kind, 1);
    put_number(bytes, item.red ? 0 : 1, 1);
    put32(bytes, item.left);
    put32(bytes, item.right);
    put32(bytes, item.child);
    bytes.append(item.item.class_id.begin(), item.item.class_id.end());
    put32(bytes, item.item.state);
    put64(bytes, item.item.created);
    put64(bytes, item.item.changed);
    put32(bytes, item.first_sector);
    put64(bytes, item.size);
  }
  // Items that are none.
  while (bytes.size() % kSector != 0) {
    bytes.append(68, '\0');
    for (int i = 0; i < 3; ++i) put32(bytes, kNoItem);
    bytes.append(48, '\0');
  }
  return bytes;
}

// The table has entries for its own sectors and for those that list them, too.
void CompoundWriter::write_tables(std::uint32_t directory, std::uint32_t mini_table,
                                  std::uint32_t mini_sectors) {
  std::uint64_t tables = 0;
  std::uint64_t lists = 0;
  for (std::uint64_t wanted = 1; tables < wanted;) {
    tables = wanted;
    lists =
        tables > kHeaderTableSectors ? parts_of(tables - kHeaderTableSectors, kListedASector) : 0;
    wanted = parts_of(sectors_ + tables + lists, kNumbersASector);
  }
  const std::uint32_t first_table = append_run(tables * kSector, kTableSector);
  const std::uint32_t first_list = append_run(lists * kSector, kListSector);
  std::string table;
  std::uint32_t sector = 0;
  for (const Run& run : runs_) {
    if (run.mark == kEndOfChain) append_chain(table, sector, run.count);
    else
      for (std::uint32_t i = 0; i < run.count; ++i) put32(table, run.mark);
    sector += run.count;
  }
  write_padded(table, '\xFF');

  std::string list;
  std::string header(kCompoundMark);
  header.append(16, '\0');
  put16(header, 0x3E);
  put16(header, 3);
  put16(header, 0xFFFE);
  put16(header, kSectorShift);
  put16(header, kMiniSectorShift);
  header.append(10, '\0');
  put32(header, tables);
  put32(header, directory);
  put32(header, 0);
  put32(header, kMiniCutoff);
  put32(header, mini_table);
  put32(header, mini_sectors);
  put32(header, lists == 0 ? kEndOfChain : first_list);
  put32(header, lists);
  for (std::uint64_t i = 0; i < std::max<std::uint64_t>(tables, kHeaderTableSectors); ++i) {
    const std::uint64_t number = i < tables ? first_table + i : kFreeSector;
    if (i < kHeaderTableSectors) {
      put32(header, number);
      continue;
    }
    if (list.size() % kSector == kSector - 4) put32(list, first_list + list.size() / kSector + 1);
    put32(list, number);
  }
  if (lists != 0) {
    while (list.size() % kSector != kSector - 4) put32(list, kFreeSector);
    put32(list, kEndOfChain);
    output_.write(list);
  }
  output_.patch(0, header);
}

}  // namespace engine::package

#include "engine/package/compound_file.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "engine/package/compound_format.h"
#include "engine/package/file_error.h"
#include "engine/text/fold.h"
#include "engine/text/utf16.h"

namespace engine::package {

namespace {

constexpr std::uint64_t kWholeChain = std::numeric_limits<std::uint64_t>::max();

std::string name_of(std::string_view item) {
  const std::size_t bytes = std::min<std::size_t>(get16(item, 64), 2 * (kMaxNameUnits + 1));
  std::string name;
  append_utf16(name, item.substr(0, bytes));
  return name.substr(0, name.find('\0'));
}

CompoundEntry entry_of(std::string_view item, bool large_sectors) {
  CompoundEntry entry;
  entry.item.name = name_of(item);
  std::ranges::copy(item.substr(80, 16), entry.item.class_id.begin());
  entry.item.state = get32(item, 96);
  entry.item.created = get64(item, 100);
  entry.item.changed = get64(item, 108);
  entry.is_stream = static_cast<unsigned char>(item[66]) == kStreamItem;
  entry.first_sector = get32(item, 116);
  // With small sectors the upper half may be rubbish.
  entry.size = large_sectors ? get64(item, 120) : get32(item, 120);
  return entry;
}

// Directory entries begin with their name in UTF-16; where the directory lies does not matter for
// finding one.
bool has_entry_anywhere(const Source& source, std::string_view name) {
  std::string wanted = utf16_bytes(lower_ascii(name));
  wanted.append(2, '\0');
  const auto is_wanted = [&](std::string_view entry) {
    return std::ranges::equal(entry.substr(0, wanted.size()), wanted,
                              [](char a, char b) { return lower_ascii(a) == b; });
  };
  std::vector<char> block(512 * kDirectoryItemSize);
  for (std::uint64_t offset = 0; offset < source.size(); offset += block.size()) {
    const std::size_t size = std::min<std::uint64_t>(block.size(), source.size() - offset);
    source.read(offset, std::span(block).first(size));
    for (std::size_t at = 0; at + kDirectoryItemSize <= size; at += kDirectoryItemSize)
      if (is_wanted({&block[at], kDirectoryItemSize})) return true;
  }
  return false;
}

}  // namespace

void CompoundStream::append(std::uint64_t place, std::uint64_t length) {
  const bool joins = !runs_.empty() && runs_.back().place + (size_ - runs_.back().offset) == place;
  if (!joins) runs_.push_back({size_, place});
  size_ += length;
}

std::size_t CompoundStream::run_at(std::uint64_t offset) const {
  const auto behind = std::ranges::upper_bound(runs_, offset, {}, &Run::offset);
  return static_cast<std::size_t>(behind - runs_.begin()) - 1;
}

void CompoundStream::read(std::uint64_t offset, std::span<char> into) const {
  if (into.empty()) return;
  for (std::size_t run = run_at(offset); !into.empty(); ++run) {
    const std::uint64_t inside = offset - runs_[run].offset;
    const auto part =
        static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), end_of(run) - offset));
    source_->read(runs_[run].place + inside, into.first(part));
    into = into.subspan(part);
    offset += part;
  }
}

std::string_view CompoundStream::view_at(std::uint64_t offset) const {
  if (offset >= size_ || source_->view().empty()) return {};
  const std::size_t run = run_at(offset);
  return source_->view().substr(
      static_cast<std::size_t>(runs_[run].place + (offset - runs_[run].offset)),
      static_cast<std::size_t>(end_of(run) - offset));
}

CompoundFile::CompoundFile(std::shared_ptr<const Source> source) : source_(std::move(source)) {
  std::array<char, kCompoundHeaderSize> bytes{};
  const std::string_view header(bytes.data(), bytes.size());
  if (source_->size() < bytes.size()) throw_damaged("compound file", "ends too early");
  source_->read(0, bytes);
  sector_shift_ = get16(header, 30);
  const bool known = sector_shift_ == kSectorShift || sector_shift_ == kLargeSectorShift;
  if (!header.starts_with(kCompoundMark) || !known || get16(header, 32) != kMiniSectorShift)
    throw_damaged("compound file", "the header is none");
  const std::uint64_t sector = std::uint64_t{1} << sector_shift_;
  const std::uint64_t parts = (source_->size() + sector - 1) >> sector_shift_;
  sectors_ = parts > 0 ? parts - 1 : 0;
  read_table(header);
  read_directory(chain(get32(header, 48), kWholeChain));

  const CompoundEntry& root = entries_.front();
  mini_stream_ = chain(root.first_sector, root.size);
  const CompoundStream mini = chain(get32(header, 60), kWholeChain);
  // There is nothing to be found behind the last mini sector.
  const std::uint64_t count = std::min(mini.size() / 4, mini_stream_.size() >> kMiniSectorShift);
  std::vector<char> table(static_cast<std::size_t>(count * 4));
  mini.read(0, table);
  for (std::size_t at = 0; at < table.size(); at += 4)
    mini_table_.push_back(get32({table.data(), table.size()}, at));
}

// The header lists the first sectors of the table, a chain of further ones the rest. A sector that
// cannot be read says that those in its place are free.
void CompoundFile::read_table(std::string_view header) {
  const std::size_t sector = std::size_t{1} << sector_shift_;
  std::vector<char> bytes(sector);
  const auto read_sector = [&](std::uint32_t number) {
    if (number >= sectors_) return false;
    const std::uint64_t place = place_of(number);
    const std::size_t there = std::min<std::uint64_t>(sector, source_->size() - place);
    source_->read(place, std::span(bytes).first(there));
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(there), bytes.end(), '\xFF');
    return true;
  };
  const auto take = [&](std::uint32_t number) {
    const bool readable = read_sector(number);
    for (std::size_t at = 0; at < sector && table_.size() < sectors_; at += 4)
      table_.push_back(readable ? get32({bytes.data(), sector}, at) : kFreeSector);
  };
  for (std::size_t i = 0; i < kHeaderTableSectors && table_.size() < sectors_; ++i)
    take(get32(header, 76 + 4 * i));
  std::uint32_t next = get32(header, 68);
  while (table_.size() < sectors_ && read_sector(next)) {
    const std::vector<char> list = bytes;
    const std::string_view numbers(list.data(), list.size());
    for (std::size_t at = 0; at + 4 < sector; at += 4) take(get32(numbers, at));
    next = get32(numbers, sector - 4);
  }
}

CompoundStream CompoundFile::chain(std::uint32_t first, std::uint64_t size) const {
  CompoundStream stream;
  stream.source_ = source_;
  const std::uint64_t sector = std::uint64_t{1} << sector_shift_;
  std::uint32_t number = first;
  for (std::uint64_t steps = 0; steps < sectors_ && stream.size_ < size; ++steps) {
    if (number >= sectors_) break;
    const std::uint64_t place = place_of(number);
    stream.append(place, std::min({sector, size - stream.size_, source_->size() - place}));
    number = number < table_.size() ? table_[number] : kEndOfChain;
  }
  return stream;
}

CompoundStream CompoundFile::mini_chain(std::uint32_t first, std::uint64_t size) const {
  CompoundStream stream;
  stream.source_ = source_;
  constexpr std::uint64_t kSector = std::uint64_t{1} << kMiniSectorShift;
  std::uint32_t number = first;
  for (std::size_t steps = 0; steps < mini_table_.size() && stream.size_ < size; ++steps) {
    if (number >= mini_table_.size()) break;
    const std::uint64_t offset = std::uint64_t{number} << kMiniSectorShift;
    const std::size_t run = mini_stream_.run_at(offset);
    const std::uint64_t place =
        mini_stream_.runs_[run].place + (offset - mini_stream_.runs_[run].offset);
    stream.append(place, std::min(kSector, size - stream.size_));
    number = mini_table_[number];
  }
  return stream;
}

// The items of a folder are a search tree, whose root the folder names.
void CompoundFile::read_directory(const CompoundStream& directory) {
  const auto count = static_cast<std::size_t>(directory.size() / kDirectoryItemSize);
  if (count == 0) throw_damaged("compound file", "the directory is missing");
  std::vector<char> bytes(count * kDirectoryItemSize);
  directory.read(0, bytes);
  const auto item = [&](std::size_t number) {
    return std::string_view(&bytes[number * kDirectoryItemSize], kDirectoryItemSize);
  };
  const auto kind = [&](std::size_t number) {
    return static_cast<unsigned char>(item(number)[66]);
  };
  constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
  std::vector<std::size_t> folders(count, kNowhere);
  std::vector<std::pair<std::uint32_t, std::size_t>> waiting{{get32(item(0), 76), 0}};
  folders[0] = 0;
  bool broken = false;
  while (!waiting.empty()) {
    const auto [number, folder] = waiting.back();
    waiting.pop_back();
    if (number == kNoItem) continue;
    const bool usable = number < count && folders[number] == kNowhere &&
                        (kind(number) == kFolderItem || kind(number) == kStreamItem);
    broken = broken || !usable;
    if (!usable) continue;
    folders[number] = folder;
    waiting.emplace_back(get32(item(number), 72), folder);
    waiting.emplace_back(get32(item(number), 68), folder);
    if (kind(number) == kFolderItem) waiting.emplace_back(get32(item(number), 76), number);
  }
  std::vector<std::size_t> places(count);
  for (std::size_t number = 0; number < count; ++number) {
    const bool lost = folders[number] == kNowhere;
    if (lost && !(broken && (kind(number) == kFolderItem || kind(number) == kStreamItem))) continue;
    places[number] = entries_.size();
    entries_.push_back(entry_of(item(number), sector_shift_ == kLargeSectorShift));
    entries_.back().folder = lost ? 0 : folders[number];
  }
  for (CompoundEntry& entry : entries_) entry.folder = places[entry.folder];
}

const CompoundEntry* CompoundFile::find_stream(std::span<const std::string_view> names) const {
  const CompoundEntry* found = nullptr;
  for (const std::string_view name : names) {
    for (const CompoundEntry& entry : entries_) {
      if (!entry.is_stream || !equal_ignoring_case(entry.item.name, name)) continue;
      if (entry.folder == 0) return &entry;
      if (!found) found = &entry;
    }
  }
  return found;
}

CompoundStream CompoundFile::open(const CompoundEntry& entry) const {
  return entry.size < kMiniCutoff ? mini_chain(entry.first_sector, entry.size)
                                  : chain(entry.first_sector, entry.size);
}

bool has_stream(const std::shared_ptr<const Source>& source,
                std::span<const std::string_view> names) {
  try {
    return CompoundFile(source).find_stream(names) != nullptr;
  } catch (const FileError&) {
    return std::ranges::any_of(
        names, [&](std::string_view name) { return has_entry_anywhere(*source, name); });
  }
}

}  // namespace engine::package

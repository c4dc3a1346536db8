#include "engine/package/source.h"

#include <cstring>
#include <future>
#include <system_error>
#include <utility>

#include "engine/package/file_error.h"
#include "engine/package/output.h"
#include "engine/system/second_core.h"

namespace engine::package {
namespace {

constexpr std::size_t kCopyBlock = 256 * 1024;

system::File open_plain(const std::string& path) {
  try {
    return system::File::open(path);
  } catch (const system::FileRefusal& refusal) {
    throw FileError(std::string("cannot be opened: ") + refusal.what());
  }
}

// Fills as much as the file has.
std::size_t read_some(const system::File& file, std::uint64_t offset, std::span<char> into) {
  try {
    return file.read(offset, into);
  } catch (const system::FileRefusal& refusal) {
    throw FileError(std::string("cannot be read: ") + refusal.what());
  }
}

// The same in two halves at a time where the file is large: to get memory takes longer than to fill
// it, and two threads get it twice as fast.
std::size_t read_whole(const system::File& file, std::span<char> into) {
  constexpr std::size_t kLarge = std::size_t{4} << 20;
  if (into.size() < kLarge || !system::has_second_core()) return read_some(file, 0, into);
  const std::size_t half = into.size() / 2;
  std::future<std::size_t> rest;
  try {
    rest =
        std::async(std::launch::async, [&] { return read_some(file, half, into.subspan(half)); });
  } catch (const std::system_error&) {
    return read_some(file, 0, into);
  }
  const std::size_t size = read_some(file, 0, into.first(half));
  return size < half ? size : half + rest.get();
}

}  // namespace

std::shared_ptr<const Source> Source::from_bytes(std::vector<char> bytes) {
  std::shared_ptr<Source> source(new Source);
  source->bytes_ = std::move(bytes);
  source->view_ = {source->bytes_.data(), source->bytes_.size()};
  source->size_ = source->bytes_.size();
  return source;
}

std::shared_ptr<const Source> Source::from_file(const std::string& path) {
  const system::File file = open_plain(path);
  const auto size = static_cast<std::size_t>(file.size());
  std::shared_ptr<Source> source(new Source);
  source->block_ = system::make_items<char>(size);
  source->size_ = read_whole(file, {source->block_.get(), size});
  source->view_ = {source->block_.get(), static_cast<std::size_t>(source->size_)};
  return source;
}

std::shared_ptr<const Source> Source::from_file_via(const std::string& path,
                                                    const std::string& temp_path) {
  const system::File file = open_plain(path);
  std::shared_ptr<Source> source(new Source);
  source->file_ = telling_target([&] { return system::File::open_temporary(temp_path, file); });
  const auto block = std::make_unique_for_overwrite<char[]>(kCopyBlock);
  while (const auto got = read_some(file, source->size_, {block.get(), kCopyBlock})) {
    telling_target([&] { source->file_.write(source->size_, {block.get(), got}); });
    source->size_ += got;
  }
  return source;
}

std::shared_ptr<const Source> Source::look_into(const std::string& path) {
  std::shared_ptr<Source> source(new Source);
  source->file_ = open_plain(path);
  source->size_ = source->file_.size();
  return source;
}

void Source::read(std::uint64_t offset, std::span<char> into) const {
  if (offset > size_ || into.size() > size_ - offset) throw_damaged("file", "ends too early");
  if (!file_) {
    if (!into.empty()) std::memcpy(into.data(), view_.data() + offset, into.size());
  } else if (read_some(file_, offset, into) != into.size()) {
    throw FileError("cannot be read: the file has become shorter");
  }
}

}  // namespace engine::package

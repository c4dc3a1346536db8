// Where an archive is written to: memory, or a file that appears whole or not at all.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "engine/package/file_error.h"
#include "engine/system/file.h"
#include "engine/system/large_pages.h"

namespace engine::package {

// A file that cannot be written, as the predicate "cannot be written: {reason}". It is a class of
// its own as the file at fault may be the temporary one of a load.
class FileTargetError : public FileError {
 public:
  using FileError::FileError;
};

// Runs what writes to a file and tells the system's refusal as FileTargetError.
template <class Body>
decltype(auto) telling_target(Body body) {
  try {
    return body();
  } catch (const system::FileRefusal& refusal) {
    throw FileTargetError(std::string("cannot be written: ") + refusal.what());
  }
}

// More of something than a format or a buffer's receiver can take. The text is a whole sentence.
class LimitError : public std::runtime_error {
 public:
  LimitError(std::string_view things, std::uint64_t limit);

 protected:
  using std::runtime_error::runtime_error;
};

// The same of bytes.
class SizeError : public LimitError {
 public:
  explicit SizeError(std::uint64_t limit);
};

class Output {
 public:
  Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  virtual ~Output() = default;

  virtual void write(std::span<const char> bytes) = 0;
  // Replaces bytes that are already written.
  virtual void patch(std::uint64_t offset, std::span<const char> bytes) = 0;
  virtual std::uint64_t position() const = 0;
};

// Grows in place where the system can move pages, so peaks stay close to the final size.
class MemoryOutput : public Output {
 public:
  // Throws SizeError when more than `limit` bytes come together.
  explicit MemoryOutput(std::uint64_t limit = UINT32_MAX) : limit_(limit) {}

  void write(std::span<const char> bytes) override;
  void patch(std::uint64_t offset, std::span<const char> bytes) override;
  std::uint64_t position() const override { return size_; }

  // Valid until the next write and as long as this object.
  std::string_view view() const { return {data_.get(), size_}; }

 private:
  struct Free {
    void operator()(char* data) const { std::free(data); }
  };

  std::unique_ptr<char, Free> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  std::uint64_t limit_;
};

// Grows by blocks, which stay where they are: for much that is written elsewhere later on.
class BlockOutput : public Output {
 public:
  // Throws SizeError when more than `limit` bytes come together.
  explicit BlockOutput(std::uint64_t limit) : limit_(limit) {}

  void write(std::span<const char> bytes) override;
  void patch(std::uint64_t offset, std::span<const char> bytes) override;
  std::uint64_t position() const override { return size_; }

  // All bytes, in order. Valid until the next write.
  std::vector<std::span<const char>> pieces() const;

 private:
  struct Block {
    system::Items<char> bytes;
    std::uint64_t begin = 0;
  };

  std::vector<Block> blocks_;
  std::span<char> free_;  // of the last block
  std::uint64_t size_ = 0;
  std::uint64_t limit_;
};

// Writes a new file beside the target and renames it over the target on commit(). Until then, and
// after any failure, the target is what it was; without a commit the new file is removed.
class FileOutput : public Output {
 public:
  // `path` is UTF-8; a symbolic link is followed. Throws FileTargetError, as do all operations.
  explicit FileOutput(const std::string& path);

  void write(std::span<const char> bytes) override;
  void patch(std::uint64_t offset, std::span<const char> bytes) override;
  std::uint64_t position() const override { return flushed_ + buffer_.size(); }

  // Flushes to disk, gives the file the target's permissions and renames it.
  void commit();

 private:
  void hand_on(std::span<const char> bytes);
  void flush();
  void begin_writeback();

  std::unique_ptr<system::Replacement> file_;
  std::vector<char> buffer_;
  std::uint64_t flushed_ = 0;
  std::uint64_t handed_over_ = 0;  // to the disk
};

}  // namespace engine::package

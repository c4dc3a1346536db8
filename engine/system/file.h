// Files of the operating system. Paths are UTF-8.
//
// What the system refuses is thrown as FileRefusal, whose text is the reason alone, in the fixed
// words of our messages: "no such folder". What it was that could not be done, the caller knows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

namespace engine::system {

class FileRefusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An open file, closed with its owner. Bytes are read and written at offsets, from several threads
// if need be.
class File {
 public:
  // The system's number or pointer of an open file; -1 is none, whatever the system.
  using Handle = std::intptr_t;
  static constexpr Handle kNone = -1;

  File() = default;
  explicit File(Handle handle) : handle_(handle) {}
  File(File&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}
  File& operator=(File&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~File() { close(); }

  // A plain file, to be read. Nothing but a plain file is opened, and nothing waited for.
  static File open(const std::string& path);

  // A file that is written and read by this process only and goes with its handle. A file that
  // exists at `path` is taken when it is empty; anything else would be lost. `source` is the file
  // that is going to be copied there.
  static File open_temporary(const std::string& path, const File& source);

  Handle handle() const { return handle_; }
  explicit operator bool() const { return handle_ != kNone; }

  std::uint64_t size() const;

  // Fills as much as the file has from `offset` on, and tells how much that is.
  std::size_t read(std::uint64_t offset, std::span<char> into) const;

  void write(std::uint64_t offset, std::span<const char> bytes);

  // False when the system could not write what it had kept for later. The file is closed anyway.
  bool close() noexcept;

 private:
  Handle handle_ = kNone;
};

// A new file beside a target, which takes the target's place on commit(). Until then, and after any
// failure, the target is what it was; without a commit the new file is removed.
class Replacement {
 public:
  // The target may be missing. A symbolic link is followed.
  explicit Replacement(const std::string& path);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;
  ~Replacement();

  void write(std::uint64_t offset, std::span<const char> bytes) { file_.write(offset, bytes); }

  // A hint: these bytes are written to the disk while more is made.
  void begin_writeback(std::uint64_t offset, std::uint64_t size) noexcept;

  // Flushes to the disk, gives the file the target's permissions and then its name.
  void commit();

 private:
  std::filesystem::path target_;
  std::filesystem::path side_path_;
  File file_;
};

}  // namespace engine::system

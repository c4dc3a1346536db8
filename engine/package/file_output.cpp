#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

#include "engine/package/file_reason.h"
#include "engine/package/output.h"

namespace engine::package {
namespace {

// The system keeps what is written in pieces as large as one write. Large pieces come from memory
// that nobody used for long, which virtual machines have to fetch first: after other programs had
// run, 24 MB took 12 ms to write in steps of this size and 70 ms in steps of twice it.
constexpr std::size_t kBufferSize = 64 * 1024;
constexpr int kMaxLinks = 40;
constexpr mode_t kPermissions = 0777;

[[noreturn]] void cannot_write(const std::string& reason) {
  throw FileTargetError("cannot be written: " + reason);
}

// The file a path leads to. The last link of a chain may lead nowhere yet.
std::string follow_links(std::string path) {
  std::array<char, 4096> link{};
  for (int followed = 0; followed <= kMaxLinks; ++followed) {
    const auto size = readlink(path.c_str(), link.data(), link.size());
    if (size < 0) return path;
    const std::string target(link.data(), static_cast<std::size_t>(size));
    path = target.starts_with('/') ? target : folder_of(path).append("/").append(target);
  }
  cannot_write(file_reason(ELOOP, path));
}

// Renaming would succeed over files that must not be written, so they are looked at first.
bool check_target(const std::string& path, struct stat& about) {
  if (stat(path.c_str(), &about) != 0) {
    if (errno == ENOENT) return false;
    cannot_write(file_reason(errno, path));
  }
  if (S_ISDIR(about.st_mode)) cannot_write("it is a folder");
  if (!S_ISREG(about.st_mode)) cannot_write("it is not a plain file");
  if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
    cannot_write(file_reason(errno, path));
  }
  return true;
}

std::string random_name() {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz012345";
  std::random_device random;
  std::string name = ".save-";
  for (int i = 0; i < 16; ++i) name += kLetters[random() % kLetters.size()];
  return name;
}

// Writes all of `bytes` at `offset`.
void write_at(int handle, std::span<const char> bytes, std::uint64_t offset,
              const std::string& path) {
  while (!bytes.empty()) {
    const auto put = pwrite(handle, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) cannot_write(file_reason(errno, path));
    bytes = bytes.subspan(static_cast<std::size_t>(put));
    offset += static_cast<std::uint64_t>(put);
  }
}

// Makes a rename last. The file is complete by then, so a folder that cannot be flushed is no
// failure.
void flush_folder(const std::string& folder) {
  const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return;
  fsync(handle);
  close(handle);
}

}  // namespace

FileOutput::FileOutput(const std::string& path) : target_(follow_links(path)) {
  buffer_.reserve(kBufferSize);
  open_side_file();
}

FileOutput::~FileOutput() {
  if (handle_ >= 0) close(handle_);
  if (!side_path_.empty()) unlink(side_path_.c_str());
}

// A file that replaces another is nobody else's to read until it has that one's permissions.
void FileOutput::open_side_file() {
  struct stat about {};
  const bool replaces = check_target(target_, about);
  const mode_t mode = replaces ? S_IRUSR | S_IWUSR : mode_t{0666};
  const auto folder = folder_of(target_);
  while (handle_ < 0) {
    auto side_path = folder + '/' + random_name();
    handle_ = open(side_path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (handle_ >= 0) {
      side_path_ = std::move(side_path);
    } else if (errno != EEXIST) {
      cannot_write(file_reason(errno, target_));
    }
  }
}

void FileOutput::write(std::span<const char> bytes) {
  while (!bytes.empty()) {
    const auto part = bytes.first(std::min(bytes.size(), kBufferSize - buffer_.size()));
    buffer_.insert(buffer_.end(), part.begin(), part.end());
    bytes = bytes.subspan(part.size());
    if (buffer_.size() < kBufferSize) continue;
    flush();
    begin_writeback();
  }
}

// The disk begins with what is written while more is made, so that there is less to wait for in the
// end. Only a hint: what fails here fails again when the file is flushed.
void FileOutput::begin_writeback() {
#ifdef SYNC_FILE_RANGE_WRITE
  constexpr std::uint64_t kStep = std::uint64_t{1} << 20;
  if (flushed_ - handed_over_ < kStep) return;
  static_cast<void>(sync_file_range(handle_, static_cast<off_t>(handed_over_),
                                    static_cast<off_t>(flushed_ - handed_over_),
                                    SYNC_FILE_RANGE_WRITE));
  handed_over_ = flushed_;
#endif
}

void FileOutput::flush() {
  write_at(handle_, buffer_, flushed_, target_);
  flushed_ += buffer_.size();
  buffer_.clear();
}

void FileOutput::patch(std::uint64_t offset, std::span<const char> bytes) {
  if (offset < flushed_ && offset + bytes.size() > flushed_) flush();
  if (offset < flushed_) {
    write_at(handle_, bytes, offset, target_);
  } else {
    std::memcpy(buffer_.data() + (offset - flushed_), bytes.data(), bytes.size());
  }
}

void FileOutput::commit() {
  flush();
  struct stat about {};
  if (check_target(target_, about)) {
    // Only a privileged process may give a file away; the others keep it.
    static_cast<void>(fchown(handle_, about.st_uid, about.st_gid) == 0);
    if (fchmod(handle_, about.st_mode & kPermissions) != 0) {
      cannot_write(file_reason(errno, target_));
    }
  }
  // Once the file has its name nothing may fail any more, for want of memory for instance.
  const auto folder = folder_of(target_);
  if (fsync(handle_) != 0) cannot_write(file_reason(errno, target_));
  if (close(std::exchange(handle_, -1)) != 0) cannot_write(file_reason(errno, target_));
  if (rename(side_path_.c_str(), target_.c_str()) != 0) {
    cannot_write(file_reason(errno, target_));
  }
  side_path_.clear();
  flush_folder(folder);
}

}  // namespace engine::package
